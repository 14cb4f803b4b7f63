# What is in the libraries and the command, for who must know (SPDX 2.3). SOURCE_DATE_EPOCH sets its date.

# vorn_mero_contains(NAME VERSION LICENCE HOW): HOW is the relationship of the library, or of a part of it, to the package
function(vorn_mero_contains name version licence how)
  if(version)
    set(version "\n      \"versionInfo\": \"${version}\",")
  endif()
  string(APPEND sbom_packages ",
    {
      \"SPDXID\": \"SPDXRef-${name}\",
      \"name\": \"${name}\",${version}
      \"licenseConcluded\": \"NOASSERTION\",
      \"licenseDeclared\": \"${licence}\",
      \"copyrightText\": \"NOASSERTION\",
      \"downloadLocation\": \"NOASSERTION\",
      \"filesAnalyzed\": false
    }")
  string(APPEND sbom_relationships ",
    { \"spdxElementId\": \"SPDXRef-vorn-mero\", \"relationshipType\": \"${how}\", \"relatedSpdxElement\": \"SPDXRef-${name}\" }")
  set(sbom_packages "${sbom_packages}" PARENT_SCOPE)
  set(sbom_relationships "${sbom_relationships}" PARENT_SCOPE)
endfunction()

set(spdlog_how DYNAMIC_LINK)
if(VORN_MERO_SPDLOG_HEADER_ONLY)
  set(spdlog_how CONTAINS)
endif()
vorn_mero_contains(spdlog "${spdlog_VERSION}" MIT ${spdlog_how}) # the logger
vorn_mero_contains(fmt "${fmt_VERSION}" MIT ${spdlog_how})
vorn_mero_contains(opencl-headers "" Apache-2.0 CONTAINS) # types and constants in the bridge
if(VORN_MERO_LAYERS)
  vorn_mero_contains(libbacktrace "" BSD-3-Clause STATIC_LINK) # the layer leaks
  get_directory_property(zstd_VERSION DIRECTORY ${PROJECT_SOURCE_DIR}/layers DEFINITION zstd_VERSION)
  vorn_mero_contains(zstd "${zstd_VERSION}" BSD-3-Clause DYNAMIC_LINK) # the layer record, the command
  if(VORN_MERO_COMMAND)
    get_directory_property(CLI11_VERSION DIRECTORY ${PROJECT_SOURCE_DIR}/command DEFINITION CLI11_VERSION)
    vorn_mero_contains(CLI11 "${CLI11_VERSION}" BSD-3-Clause CONTAINS) # the command
    get_directory_property(json_VERSION DIRECTORY ${PROJECT_SOURCE_DIR}/command DEFINITION nlohmann_json_VERSION)
    vorn_mero_contains(nlohmann-json "${json_VERSION}" MIT CONTAINS) # the command
  endif()
endif()
string(TIMESTAMP sbom_time UTC)
string(UUID sbom_uuid NAMESPACE 6ba7b812-9dad-11d1-80b4-00c04fd430c8 TYPE SHA1
  NAME "${PROJECT_NAME} ${PROJECT_VERSION} ${sbom_packages} ${sbom_time}")
set(sbom ${CMAKE_CURRENT_BINARY_DIR}/vorn-mero.spdx.json)
configure_file(vorn-mero.spdx.json.in ${sbom} @ONLY)
install(FILES ${sbom} DESTINATION ${CMAKE_INSTALL_DOCDIR} ${core})

# vorn-mero-bridge_sources: the sources of the bridge, for a test that replaces OpenCL's functions by its own, and the
# names of these functions as entry_points.inc.
if(NOT TARGET vorn-mero-bridge_sources)
  get_target_property(sources vorn-mero-bridge SOURCES)
  list(TRANSFORM sources PREPEND ${PROJECT_SOURCE_DIR}/bridge/)
  set(header ${VORN_MERO_OPENCL_INCLUDE_DIR}/CL/cl.h)
  file(STRINGS ${header} names REGEX "^ *cl[A-Z][A-Za-z0-9]+\\(")
  list(TRANSFORM names REPLACE "^ *(cl[A-Za-z0-9]+).*" "ENTRY(\\1)")
  list(JOIN names "\n" names)
  set(generated ${PROJECT_BINARY_DIR}/tests/bridge_sources)
  file(GENERATE OUTPUT ${generated}/entry_points.inc CONTENT "${names}\n")
  add_library(vorn-mero-bridge_sources INTERFACE)
  target_sources(vorn-mero-bridge_sources INTERFACE ${sources})
  target_include_directories(vorn-mero-bridge_sources INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include
    ${PROJECT_SOURCE_DIR}/tests ${generated} ${VORN_MERO_OPENCL_INCLUDE_DIR})
  target_compile_definitions(vorn-mero-bridge_sources INTERFACE CL_HEADER="${header}")
  target_link_libraries(vorn-mero-bridge_sources INTERFACE Threads::Threads ${CMAKE_DL_LIBS})
endif()

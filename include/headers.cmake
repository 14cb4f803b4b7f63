# The installed headers, by folder, and where they lie.
set(vorn_mero_include ${CMAKE_CURRENT_LIST_DIR})
set(vorn_mero_headers "")

function(vorn_mero_add_headers folder)
  list(TRANSFORM ARGN REPLACE "(.+)" "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/${folder}/\\1.hpp")
  set(vorn_mero_headers ${vorn_mero_headers} ${ARGN} PARENT_SCOPE)
endfunction()

vorn_mero_add_headers(nq blocks call_handle commands describe error export nq types)
vorn_mero_add_headers(nq/blocks context enqueue_buffer enqueue_image enqueue_kernel enqueue_svm memory program query
  reference)
vorn_mero_add_headers(nq/describe enqueues field format memory names objects queries values)
vorn_mero_add_headers(vorn/mero easy version)
vorn_mero_add_headers(vorn/mero/easy argument array binary_cache borders builder continuation device devices embedded error
  event host_event image included_files kernel mapped_image needs options order parameter pixel program range sampler session
  session_state shared split transfer tune versions)
vorn_mero_add_headers(vorn/mero/common error error_base error_code export)
vorn_mero_add_headers(vorn/mero/internal call_capability check_error find_devices handle kept_pattern
  lifetimebound logger strings)
vorn_mero_add_headers(vorn/mero/opencl api buffer_commands command command_queue context dependencies device event
  extension forward hash image_commands kernel kernel_commands memory_object platform program sampler svm_commands types)

# Read several times by the headers of the versions, never by itself.
set(vorn_mero_part_headers ${CMAKE_CURRENT_LIST_DIR}/vorn/mero/opencl/parts.hpp)

# The headers of the versions. Those of a version that is left out are replaced by one that says so, in a folder that
# is searched first and installed in their place; a build of all versions uses the folder of the sources alone.
set(generated ${PROJECT_BINARY_DIR}/include)
set(all_versions 1_0 1_1 1_2 2_0 2_1 2_2)
set(umbrella "#pragma once\n\n/// The OpenCL versions that this library was built with, each in its own namespace.\n\n")
set(versions "")
foreach(version IN LISTS all_versions)
  set(header vorn/mero/opencl_${version}.hpp)
  if(version IN_LIST VORN_MERO_VERSIONS)
    list(PREPEND versions ${version}) # newest first: tools look at the first compilation of a source
    string(APPEND umbrella "#include <${header}>\n")
    vorn_mero_add_headers(vorn/mero opencl_${version})
    file(REMOVE ${generated}/${header})
  else()
    string(REPLACE "_" "." dotted ${version})
    file(CONFIGURE OUTPUT ${generated}/${header} CONTENT
      "#error \"vorn-mero was built without OpenCL ${dotted}: add ${version} to its CMake option VORN_MERO_VERSIONS\"\n")
    list(APPEND vorn_mero_part_headers ${generated}/${header})
  endif()
endforeach()
list(REMOVE_ITEM VORN_MERO_VERSIONS ${versions})
if(VORN_MERO_VERSIONS OR NOT versions)
  message(FATAL_ERROR "VORN_MERO_VERSIONS names one or more of ${all_versions}, and not '${VORN_MERO_VERSIONS}'")
endif()
set(VORN_MERO_VERSIONS ${versions})
list(LENGTH versions count)
if(count EQUAL 6)
  vorn_mero_add_headers(vorn/mero opencl)
else()
  file(CONFIGURE OUTPUT ${generated}/vorn/mero/opencl.hpp CONTENT "${umbrella}")
  list(PREPEND vorn_mero_include ${generated})
  list(APPEND vorn_mero_headers ${generated}/vorn/mero/opencl.hpp)
endif()

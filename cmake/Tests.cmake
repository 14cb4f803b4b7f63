# How every test is run, so that `ctest` needs nothing but the build folder. Each test carries the name of its room, the
# folder under tests/ (or examples), as a label.

# The environment of the tests: the OpenCL implementations that scripts/implementations made ready; without it those of
# the machine. What the implementations themselves do wrong is kept out of the sanitizers' reports, and AddressSanitizer need
# not be the first library, which a preloaded one is. That of g++ 12 takes wrong places for the variables of threads in
# libraries that are loaded late, and crashes when it looks there for leaks, unless intercept_tls_get_addr is off.
set(vorn_mero_implementations ${PROJECT_SOURCE_DIR}/build/implementations/environment)
set(vorn_mero_test_environment
  ASAN_OPTIONS=string_prepend:new_delete_type_mismatch=0:detect_stack_use_after_return=1:verify_asan_link_order=0:
  ASAN_OPTIONS=string_prepend:intercept_tls_get_addr=0:
  LSAN_OPTIONS=string_prepend:suppressions=${PROJECT_SOURCE_DIR}/tests/sanitizers/lsan.supp:print_suppressions=0:
  UBSAN_OPTIONS=string_prepend:print_stacktrace=1:halt_on_error=1:
  TSAN_OPTIONS=string_prepend:ignore_noninstrumented_modules=1:halt_on_error=0:)
if(EXISTS ${vorn_mero_implementations})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${vorn_mero_implementations})
  file(STRINGS ${vorn_mero_implementations} vorn_mero_assignments REGEX "^export ")
  foreach(assignment IN LISTS vorn_mero_assignments)
    if(NOT assignment MATCHES "^export ([A-Z_]+)='(.*)'$")
      message(FATAL_ERROR "${vorn_mero_implementations}: not one variable: ${assignment}")
    endif()
    list(APPEND vorn_mero_test_environment ${CMAKE_MATCH_1}=set:${CMAKE_MATCH_2})
  endforeach()
else()
  message(STATUS "The tests run on this machine's OpenCL implementations; scripts/implementations adds others")
endif()

# The emulator, where the tests are built for another machine. ThreadSanitizer of g++ 12 does not start under the widest
# address space randomization.
set(vorn_mero_test_launcher ${CMAKE_CROSSCOMPILING_EMULATOR})
if(VORN_MERO_SANITIZE MATCHES thread)
  execute_process(COMMAND setarch --addr-no-randomize true RESULT_VARIABLE vorn_mero_refused ERROR_QUIET)
  if(NOT vorn_mero_refused)
    set(vorn_mero_test_launcher setarch --addr-no-randomize)
  endif()
endif()

# vorn_mero_add_test(ROOM NAME TIMEOUT COMMAND...): a timeout in seconds; sanitizers get longer
function(vorn_mero_add_test room name timeout)
  if(VORN_MERO_SANITIZE)
    math(EXPR timeout "${timeout} * 5")
  endif()
  add_test(NAME ${name} COMMAND ${vorn_mero_test_launcher} ${ARGN})
  set_tests_properties(${name} PROPERTIES LABELS ${room} TIMEOUT ${timeout} SKIP_RETURN_CODE 77
    ENVIRONMENT_MODIFICATION "${vorn_mero_test_environment}")
endfunction()

# The same for a tool that may be missing: the test is then skipped, and names the package that brings it.
function(vorn_mero_add_test_with tool package room name timeout)
  if(NOT tool)
    set(ARGN sh -c "echo 'package ${package} is not installed' && exit 77")
  endif()
  vorn_mero_add_test(${room} ${name} ${timeout} ${ARGN})
endfunction()

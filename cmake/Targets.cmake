# How every target of the project is built. What a parent project sets for its own targets stays as it is.
if(PROJECT_IS_TOP_LEVEL)
  set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
  set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
  set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
endif()

if(VORN_MERO_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  find_program(VORN_MERO_CCACHE_PROGRAM ccache)
  if(VORN_MERO_CCACHE_PROGRAM)
    # paths relative to the checkout, so that every build folder and every clone shares what one has compiled
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_NOHASHDIR=true CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}
      ${VORN_MERO_CCACHE_PROGRAM})
  endif()
endif()

# What makes mistakes in memory harder to use, where it costs no instruction of a call: shadow stacks, guarded arrays of
# characters, checked calls of libc, and tables that are read-only once the library is loaded. A guard for every function
# that takes an address (-fstack-protector-strong) costs a call 5 instructions; distributions add it by their own flags.
# Nothing is added that the compiler or these flags have: the last option counts, and ours would weaken theirs.
set(vorn_mero_hardening "")
set(vorn_mero_link_hardening "")
if(VORN_MERO_HARDENED AND NOT VORN_MERO_SANITIZE AND NOT WIN32)
  set(vorn_mero_link_hardening LINKER:-z,relro,-z,now)
  include(CheckCXXCompilerFlag)
  include(CheckCXXSourceCompiles)
  check_cxx_source_compiles("#if defined __SSP__ || defined __SSP_STRONG__ || defined __SSP_ALL__\n#error\n#endif\nint main() {}"
    VORN_MERO_LACKS_STACK_GUARDS)
  if(VORN_MERO_LACKS_STACK_GUARDS)
    list(APPEND vorn_mero_hardening -fstack-protector)
  endif()
  check_cxx_source_compiles("#ifdef __CET__\n#error\n#endif\nint main() {}" VORN_MERO_LACKS_SHADOW_STACKS)
  check_cxx_compiler_flag(-fcf-protection=return VORN_MERO_HAS_SHADOW_STACKS)
  if(VORN_MERO_LACKS_SHADOW_STACKS AND VORN_MERO_HAS_SHADOW_STACKS)
    list(APPEND vorn_mero_hardening -fcf-protection=return)
  endif()
  set(CMAKE_REQUIRED_FLAGS -O2)
  check_cxx_source_compiles("#ifdef _FORTIFY_SOURCE\n#error\n#endif\nint main() {}" VORN_MERO_LACKS_FORTIFY)
  unset(CMAKE_REQUIRED_FLAGS)
  if(VORN_MERO_LACKS_FORTIFY) # some compilers have a higher level by default
    list(APPEND vorn_mero_hardening -D_FORTIFY_SOURCE=2)
  endif()
endif()

function(vorn_mero_target_defaults target)
  target_compile_features(${target} PRIVATE cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON UNITY_BUILD OFF)
  if(NOT WIN32)
    target_compile_options(${target} PRIVATE -fno-plt -fno-semantic-interposition)
    target_compile_options(${target} PRIVATE $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:${vorn_mero_hardening}>)
    target_link_options(${target} PRIVATE ${vorn_mero_link_hardening})
  endif()
  if(VORN_MERO_WARNINGS)
    target_compile_options(${target} PRIVATE
      -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast
      -Woverloaded-virtual -Wnull-dereference
      -Wno-missing-field-initializers) # designated initialisers leave the results of a block out on purpose
  endif()
  if(VORN_MERO_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${VORN_MERO_SANITIZE} -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${VORN_MERO_SANITIZE})
  endif()
endfunction()

# The sources of a target contain what its library exports.
function(vorn_mero_marks_exports target)
  target_compile_definitions(${target} PRIVATE $<$<PLATFORM_ID:Windows>:NQ_BUILDING VORN_MERO_BUILDING>)
endfunction()

# A shared library exports what the version script names. Windows has none: the marks in the sources say it there.
function(vorn_mero_exports target version_script)
  if(NOT VORN_MERO_SANITIZE) # clang's runtime library is in the program alone
    target_link_options(${target} PRIVATE LINKER:--no-undefined)
  endif()
  if(WIN32)
    vorn_mero_marks_exports(${target})
    set_target_properties(${target} PROPERTIES PREFIX "")
  else()
    target_link_options(${target} PRIVATE LINKER:--version-script=${version_script})
    set_target_properties(${target} PROPERTIES LINK_DEPENDS ${version_script})
  endif()
endfunction()

# Adds the target vorn-mero-NAME, which builds the program NAME.
function(vorn_mero_add_program name)
  add_executable(vorn-mero-${name} ${ARGN})
  set_target_properties(vorn-mero-${name} PROPERTIES OUTPUT_NAME ${name})
  vorn_mero_target_defaults(vorn-mero-${name})
endfunction()

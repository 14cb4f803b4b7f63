# OpenCL C as constant data of a program, checked while the program is built.
#
#   vorn_mero_kernels(TARGET FILE.cl... [HEADER name] [NAMESPACE name] [STANDARD CL1.2] [OPTIONS option...]
#                     [SPIRV] [CHECK OFF])
#
# The sources of TARGET then `#include "kernels.hpp"` (HEADER). It has an object of type `vorn::mero::easy::embedded` for
# each file, named after the file: `kernels::blur` (NAMESPACE) for blur.cl.
#
# The text is that of the file and of the files that it includes, so that the program needs none of them when it runs.
# They are looked for beside the file that includes them, then in the folders of `-Ifolder` among the options. The header
# is made anew when one of them changes.
#
# clang compiles each text with the standard (CL1.2) and the options, as it would be for a device with 64-bit addresses
# and every extension; its errors stop the build, with file and line. It also tells the names of the kernels and how many
# arguments each takes. CHECK OFF needs no clang, and leaves them unknown. SPIRV adds the program as SPIR-V 1.0, for which
# llvm-spirv of clang's version is needed too.
#
# A standard that is given, and the options, are noted in the object: the program is built with them on the device.
#
# The name of a file must not be a keyword of C++.
#
# VORN_MERO_KERNEL_CLANG, VORN_MERO_KERNEL_LLVM_SPIRV and VORN_MERO_KERNEL_SPIRV_CLANG name the tools.

cmake_policy(PUSH)
cmake_policy(VERSION 3.20) # whatever the project asks for: Ninja reads the paths of what a kernel includes by CMP0116

# _vorn_mero_find_kernel_tool(VARIABLE PACKAGE WHAT NAME...)
function(_vorn_mero_find_kernel_tool variable package what)
  find_program(${variable} NAMES ${ARGN} DOC "For vorn_mero_kernels")
  if(NOT ${variable})
    message(FATAL_ERROR "vorn_mero_kernels needs ${what}; on Debian:\n  apt-get install ${package}")
  endif()
endfunction()

# Sets `clang` and `llvm_spirv`, each empty where it is not needed.
function(_vorn_mero_find_kernel_tools check spirv)
  foreach(version RANGE 30 13 -1)
    list(APPEND clangs clang-${version})
    list(APPEND llvm_spirvs llvm-spirv-${version})
  endforeach()
  set(clang "")
  set(llvm_spirv "")
  if(spirv)
    _vorn_mero_find_kernel_tool(VORN_MERO_KERNEL_LLVM_SPIRV "llvm-spirv-14 clang-14" "llvm-spirv for SPIRV"
      ${llvm_spirvs} llvm-spirv)
    set(llvm_spirv ${VORN_MERO_KERNEL_LLVM_SPIRV})
    string(REGEX MATCH "-[0-9]+$" version ${llvm_spirv}) # it reads the bitcode of its own version
    _vorn_mero_find_kernel_tool(VORN_MERO_KERNEL_SPIRV_CLANG clang${version} "clang${version} for SPIRV" clang${version})
    set(clang ${VORN_MERO_KERNEL_SPIRV_CLANG})
  elseif(check)
    _vorn_mero_find_kernel_tool(VORN_MERO_KERNEL_CLANG clang "clang to check kernels (CHECK OFF leaves that out)"
      clang ${clangs})
    set(clang ${VORN_MERO_KERNEL_CLANG})
  endif()
  set(clang "${clang}" PARENT_SCOPE)
  set(llvm_spirv "${llvm_spirv}" PARENT_SCOPE)
endfunction()

# Refuses a name that the object of a file cannot have: the keywords of C++20, and the namespace in the header.
function(_vorn_mero_check_kernel_name name source)
  set(refused alignas alignof and and_eq asm auto bitand bitor bool break case catch char char8_t char16_t char32_t class
    co_await co_return co_yield compl concept const const_cast consteval constexpr constinit continue decltype default delete
    detail do double dynamic_cast else enum explicit export extern false float for friend goto if inline int long mutable
    namespace new noexcept not not_eq nullptr operator or or_eq private protected public register reinterpret_cast requires
    return short signed sizeof static static_assert static_cast struct switch template this thread_local throw true try
    typedef typeid typename union unsigned using virtual void volatile wchar_t while xor xor_eq)
  if(name IN_LIST refused)
    message(FATAL_ERROR "vorn_mero_kernels: no object of C++ can be named '${name}': rename ${source}")
  endif()
endfunction()

function(vorn_mero_kernels target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "SPIRV" "HEADER;NAMESPACE;STANDARD;CHECK" "OPTIONS")
  if(NOT TARGET ${target} OR NOT arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "vorn_mero_kernels takes a target and the files of its kernels, and not '${ARGV}'")
  endif()
  foreach(default HEADER=kernels.hpp NAMESPACE=kernels CHECK=ON)
    string(REGEX MATCH "(.*)=(.*)" whole ${default})
    if(NOT DEFINED arg_${CMAKE_MATCH_1})
      set(arg_${CMAKE_MATCH_1} ${CMAKE_MATCH_2})
    endif()
  endforeach()
  _vorn_mero_find_kernel_tools(${arg_CHECK} ${arg_SPIRV})

  # the folders are for the build alone, the other options go with the program
  set(namespace ${arg_NAMESPACE})
  set(passed ${arg_OPTIONS})
  list(FILTER passed EXCLUDE REGEX "^-I")
  list(TRANSFORM passed REPLACE "^(-D *)?(.*[ \t'].*)$" "\\1 \"\\2\"" OUTPUT_VARIABLE noted) # as build_options does
  list(TRANSFORM noted STRIP)
  set(folders "")
  foreach(option IN LISTS arg_OPTIONS)
    if(option MATCHES "^-I(.+)")
      get_filename_component(option ${CMAKE_MATCH_1} ABSOLUTE)
      list(APPEND folders ${option})
    endif()
  endforeach()
  set(standard CL1.2)
  if(arg_STANDARD)
    set(standard ${arg_STANDARD})
    list(PREPEND noted -cl-std=${arg_STANDARD})
  endif()

  set(folder ${CMAKE_CURRENT_BINARY_DIR}/vorn-mero-kernels/${target})
  set(parts ${folder}/parts/${arg_HEADER})
  set(script ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/vorn-mero-embed-kernel.cmake)
  set(lines "// Made by vorn_mero_kernels.\n#pragma once\n\n")
  set(made "")
  foreach(source IN LISTS arg_UNPARSED_ARGUMENTS)
    get_filename_component(source ${source} ABSOLUTE)
    get_filename_component(name ${source} NAME_WE)
    string(MAKE_C_IDENTIFIER ${name} name)
    _vorn_mero_check_kernel_name(${name} ${source})
    set(part ${parts}/${name})
    if(${part}.hpp IN_LIST made)
      message(FATAL_ERROR "vorn_mero_kernels: two files of ${arg_HEADER} are named ${name}")
    endif()
    set(settings "")
    foreach(each source name namespace part standard passed noted folders clang llvm_spirv)
      string(APPEND settings "set(${each} [==[${${each}}]==])\n")
    endforeach()
    file(GENERATE OUTPUT ${part}.cmake CONTENT "${settings}")
    add_custom_command(OUTPUT ${part}.hpp DEPENDS ${source} ${script} ${part}.cmake DEPFILE ${part}.d
      COMMAND ${CMAKE_COMMAND} -DSETTINGS=${part}.cmake -P ${script} COMMENT "Embedding ${name}.cl" VERBATIM)
    list(APPEND made ${part}.hpp)
    string(APPEND lines "#include \"parts/${arg_HEADER}/${name}.hpp\"\n")
  endforeach()
  file(GENERATE OUTPUT ${folder}/${arg_HEADER} CONTENT "${lines}")

  string(MAKE_C_IDENTIFIER ${target}-${arg_HEADER} all)
  add_custom_target(${all} DEPENDS ${made})
  add_dependencies(${target} ${all})
  get_target_property(type ${target} TYPE)
  if(type STREQUAL INTERFACE_LIBRARY)
    target_include_directories(${target} INTERFACE $<BUILD_INTERFACE:${folder}>)
  else()
    target_include_directories(${target} PRIVATE ${folder})
  endif()
endfunction()

cmake_policy(POP)

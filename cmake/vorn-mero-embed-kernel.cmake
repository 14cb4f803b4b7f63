# Checks the OpenCL C of one file and writes it as C++: cmake -DSETTINGS=file -P vorn-mero-embed-kernel.cmake
#
# SETTINGS sets source, name, namespace, part (the path of what is written, without suffix), standard, passed (options of
# clang), noted (options of the embedded program), folders (to look for includes in), clang and llvm_spirv. Texts are kept
# as %6b%65 here, since CMake's own strings cannot hold every byte.
cmake_minimum_required(VERSION 3.20)
include(${SETTINGS})

set(blank "(%20|%09)*")
set(begin "(^|%0a)${blank}%23${blank}") # of a line with a directive
set(include "${begin}%69%6e%63%6c%75%64%65${blank}(%22|%3c)")
set(pragma_once "${begin}%70%72%61%67%6d%61${blank}%6f%6e%63%65")

function(to_bytes text result)
  string(HEX "${text}" text)
  string(REGEX REPLACE "(..)" "%\\1" text "${text}")
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

function(to_text bytes result)
  string(REGEX MATCHALL "[0-9a-f][0-9a-f]" bytes "${bytes}")
  set(text "")
  foreach(byte IN LISTS bytes)
    math(EXPR code "0x${byte}")
    string(ASCII ${code} character)
    string(APPEND text "${character}")
  endforeach()
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

# The file that an include directive names, empty if there is none: quoted ones are looked for in the folder first.
function(find_included file quoted folder result)
  if(quoted)
    list(PREPEND folders ${folder})
  endif()
  foreach(each IN LISTS folders)
    if(EXISTS ${each}/${file} AND NOT IS_DIRECTORY ${each}/${file})
      get_filename_component(found ${each}/${file} REALPATH)
      set(${result} ${found} PARENT_SCOPE)
      return()
    endif()
  endforeach()
  set(${result} "" PARENT_SCOPE)
endfunction()

# Sets `result` to the bytes of a file with those of the files that it includes; `known_as` is its name in messages. #line
# says where each line is from. Files that are being read are left out. #pragma once becomes a macro of its own, since only
# the compiler knows which of several places a condition takes.
function(expand path known_as result)
  set_property(GLOBAL APPEND PROPERTY read ${path})
  file(READ ${path} rest HEX)
  string(REGEX REPLACE "(..)" "%\\1" rest "${rest}")
  set(head "")
  set(end "")
  if(open)
    set(head "#line 1 \"${known_as}\"\n")
    if(rest MATCHES "${pragma_once}")
      string(REGEX REPLACE "${pragma_once}" "\\1" rest "${rest}") # clang warns of it in what is no header
      get_property(files GLOBAL PROPERTY read)
      list(FIND files ${path} number)
      set(head "#ifndef VORN_MERO_FILE_${number}\n#define VORN_MERO_FILE_${number}\n${head}")
      set(end "\n#endif")
    endif()
    to_bytes("${head}" head)
    to_bytes("${end}" end)
  endif()
  list(APPEND open ${path})
  get_filename_component(folder ${path} DIRECTORY)
  set(line 1)
  set(text "")
  while(rest MATCHES "${include}")
    set(directive "${CMAKE_MATCH_0}")
    set(break "${CMAKE_MATCH_1}")
    set(closing "${CMAKE_MATCH_5}")
    string(FIND "${rest}" "${directive}" at)
    string(SUBSTRING "${rest}" 0 ${at} before)
    string(LENGTH "${directive}" length)
    math(EXPR at "${at} + ${length}")
    string(SUBSTRING "${rest}" ${at} -1 rest)
    string(REGEX MATCHALL "%0a" breaks "${before}${break}")
    list(LENGTH breaks count)
    math(EXPR line "${line} + ${count}")
    string(REPLACE "%3c" "%3e" closing "${closing}")
    string(FIND "${rest}" "${closing}" length)
    string(SUBSTRING "${rest}" 0 ${length} file)
    string(LENGTH "${file}${closing}" length)
    to_text("${file}" file)
    string(COMPARE EQUAL "${closing}" "%22" quoted)
    find_included("${file}" ${quoted} ${folder} found)
    if(NOT found)
      string(APPEND text "${before}${directive}")
      continue()
    endif()
    string(SUBSTRING "${rest}" ${length} -1 rest)
    string(APPEND text "${before}${break}")
    if(found IN_LIST open)
      continue()
    endif()
    expand(${found} "${file}" inner)
    to_bytes("\n#line ${line} \"${known_as}\"\n" tail)
    string(APPEND text "${inner}${tail}")
  endwhile()
  set(${result} "${head}${text}${rest}${end}" PARENT_SCOPE)
endfunction()

# Runs a tool. Its messages go where those of the build go.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${source} is refused by: ${command}")
  endif()
endfunction()

# The kernels and how many arguments each takes, in C++, from the metadata in LLVM's text.
function(list_kernels ir result)
  set(list "")
  file(STRINGS ${ir} definitions REGEX "^define .*spir_kernel .*!kernel_arg_addr_space ")
  foreach(definition IN LISTS definitions)
    string(REGEX MATCH "@([A-Za-z0-9_]+)\\(" whole "${definition}")
    set(kernel ${CMAKE_MATCH_1})
    string(REGEX MATCH "!kernel_arg_addr_space (![0-9]+)" whole "${definition}")
    file(STRINGS ${ir} spaces REGEX "^${CMAKE_MATCH_1} = ")
    string(REGEX MATCHALL "i32 [0-9]+" spaces "${spaces}")
    list(LENGTH spaces count)
    string(APPEND list "{\"${kernel}\", ${count}}, ")
  endforeach()
  set(${result} "${list}" PARENT_SCOPE)
endfunction()

# An array of C++ and its name, or an empty list.
function(array type array values result)
  if(values STREQUAL "")
    set(declaration "")
    set(${result} "{}" PARENT_SCOPE)
  else()
    set(declaration "inline constexpr ${type} ${array}[] = {${values}};\n")
    set(${result} "detail::${array}" PARENT_SCOPE)
  endif()
  set(declaration "${declaration}" PARENT_SCOPE)
endfunction()

set_property(GLOBAL PROPERTY read "")
set(open "")
get_filename_component(file ${source} NAME)
expand(${source} ${file} text)
get_property(read GLOBAL PROPERTY read)
list(REMOVE_DUPLICATES read)
list(LENGTH read count)
if(count GREATER 1)
  to_bytes("#line 1 \"${file}\"\n" head)
  set(text "${head}${text}")
endif()

set(kernels "")
set(il "")
if(clang)
  list(TRANSFORM folders PREPEND -I OUTPUT_VARIABLE includes)
  set(compile ${clang} -x cl -cl-std=${standard} -target spir64 -Xclang -finclude-default-header ${passed}
    -O2 -Xclang -disable-llvm-passes)
  run(${compile} ${includes} -S -emit-llvm ${source} -o ${part}.ll)
  list_kernels(${part}.ll kernels)
  if(count GREATER 1) # without the folders, as on the device
    to_text("${text}" whole)
    file(WRITE ${part}.cl "${whole}")
    run(${compile} -w -fsyntax-only ${part}.cl)
  endif()
endif()
if(llvm_spirv)
  run(${compile} ${includes} -w -c -emit-llvm ${source} -o ${part}.bc)
  run(${llvm_spirv} --spirv-max-version=1.0 ${part}.bc -o ${part}.spv)
  file(READ ${part}.spv il HEX)
  string(REGEX REPLACE "(................................)" "\\1\n" il "${il}")
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," il "${il}")
endif()

string(REPLACE "%0a" "%0a\"\n    \"" text "${text}")
string(REPLACE "%" "\\x" text "${text}")
list(JOIN noted " " options)
string(REGEX REPLACE "([\\\"])" "\\\\\\1" options "${options}")
array("vorn::mero::easy::embedded_kernel" ${name}_kernels "${kernels}" kernels_of)
set(declarations "${declaration}")
array("unsigned char" ${name}_il "${il}" il_of)
string(APPEND declarations "${declaration}")
file(WRITE ${part}.hpp "// Made by vorn_mero_kernels from ${file}.
#pragma once

#include <vorn/mero/easy/embedded.hpp>

#ifdef __clang__
#pragma clang diagnostic push
#pragma clang diagnostic ignored \"-Woverlength-strings\"
#endif

namespace ${namespace}::detail {

inline constexpr char ${name}_source[] =
    \"${text}\";
${declarations}
} // namespace ${namespace}::detail

namespace ${namespace} {

inline constexpr vorn::mero::easy::embedded ${name}{
    \"${file}\", {detail::${name}_source, sizeof detail::${name}_source - 1}, ${kernels_of}, ${il_of}, \"${options}\"};

} // namespace ${namespace}

#ifdef __clang__
#pragma clang diagnostic pop
#endif
")
list(JOIN read "\n" read)
string(REPLACE " " "\\ " rule "${part}.hpp:\n${read}")
string(REPLACE "\n" " \\\n  " rule "${rule}")
file(WRITE ${part}.d "${rule}\n")

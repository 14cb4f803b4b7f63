# What every target of the project is built with.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)

find_program(VORN_MERO_CCACHE ccache)
if(VORN_MERO_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # paths relative to the checkout, so that every build folder and every clone shares what one has compiled
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_NOHASHDIR=true CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}
    ${VORN_MERO_CCACHE})
endif()

add_library(project_defaults INTERFACE)
target_compile_options(project_defaults INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast
  -Woverloaded-virtual -Wnull-dereference -Werror -fno-plt
  -Wno-missing-field-initializers) # designated initialisers leave the results of a block out on purpose
if(VORN_MERO_SANITIZE)
  target_compile_options(project_defaults INTERFACE -fsanitize=${VORN_MERO_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(project_defaults INTERFACE -fsanitize=${VORN_MERO_SANITIZE})
endif()

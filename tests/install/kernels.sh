#!/bin/sh
# Builds and runs a program with kernels in it, changes what a kernel includes, and makes mistakes:
# kernels.sh FOLDER PREFIX COMPILER GENERATOR
set -eu
project=$(cd "$(dirname "$0")" && pwd)/kernels
mkdir -p "$1"
cd "$1"
rm -rf source build
cp -r "$project" source
cmake -G "$4" -S source -B build -DCMAKE_PREFIX_PATH="$2" -DCMAKE_CXX_COMPILER="$3" >log 2>&1 || { cat log; exit 1; }
cmake --build build >log 2>&1 || { cat log; exit 1; }
build/kernels 10

# refuse WHAT PATTERN COMMAND...
refuse() {
    what=$1 pattern=$2
    shift 2
    if "$@" >log 2>&1 || ! grep -q "$pattern" log; then
        cat log
        echo "$what: accepted, or refused without '$pattern'"
        exit 1
    fi
}
sleep 1 # make looks at whole seconds
sed -i 's/OFFSET 10/OFFSET 20/' source/include/sum.h
cmake --build build >log 2>&1 || { cat log; exit 1; }
build/kernels 20
cmake --build build >log 2>&1 || { cat log; exit 1; }
if grep -q Embedding log; then cat log && echo "embeds without a change" && exit 1; fi
sleep 1
sed -i 's/return a + b/return a + c/' source/include/sum.h
refuse "a mistake in what a kernel includes" 'include/sum.h:5:[0-9]*: error: ' cmake --build build
cp source/odd.cl source/double.cl
sed 's/kernels odd.cl /kernels double.cl /' source/CMakeLists.txt >with-keyword
mv with-keyword source/CMakeLists.txt
refuse "a keyword" "can be named 'double': rename" cmake build
cp "$project/CMakeLists.txt" source
nothing_is_found="-DCMAKE_FIND_USE_SYSTEM_ENVIRONMENT_PATH=OFF -DCMAKE_FIND_USE_CMAKE_SYSTEM_PATH=OFF"
# shellcheck disable=SC2086
refuse "no clang" 'apt-get install clang' cmake build -U'VORN_MERO_KERNEL_*CLANG' $nothing_is_found
# shellcheck disable=SC2086
refuse "no llvm-spirv" 'apt-get install llvm-spirv' cmake build -U'VORN_MERO_KERNEL_*' $nothing_is_found

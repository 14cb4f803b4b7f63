#!/bin/sh
# Takes a launch out of a recorded session, builds it as a project with the installed tree, and runs it:
# launch.sh FOLDER PREFIX COMPILER COMMAND PROGRAM PICTURE
set -eu
platform="Portable Computing Language"
rm -rf "$1"
mkdir -p "$1"
cd "$1"
status=0
"$4" record -o s.nqr -- "$5" "$6" edges.png --platform "$platform" >log 2>&1 || status=$?
if [ $status != 0 ]; then
    cat log
    grep -q "no device" log || exit 1
    echo "no platform $platform: scripts/implementations adds it"
    exit 77
fi
"$4" replay s.nqr --kernel edges --nth 1 --extract launch
cmake -G Ninja -S launch -B build -DCMAKE_PREFIX_PATH="$2" -DCMAKE_CXX_COMPILER="$3" -DCMAKE_CXX_FLAGS="-Wall -Wextra -Werror" \
    >log 2>&1 || { cat log; exit 1; }
cmake --build build >log 2>&1 || { cat log; exit 1; }
build/launch "$platform"
printf 'x' | dd of=launch/argument-1.expected.bin bs=1 seek=400 conv=notrunc 2>log
if build/launch "$platform" >log; then
    echo "another result passes"
    exit 1
fi
grep "^argument-1: 1 of 409600 bytes differ$" log

#!/bin/sh
# Builds the consumer with what pkg-config says, and runs it: pkg-config.sh COMPILER FOLDER_OF_PC_FILE PROGRAM
# Without position-independent code the program has copies of the library's tables.
set -eu
export PKG_CONFIG_PATH="$2"
# shellcheck disable=SC2046
"$1" -std=c++17 -fno-pie -no-pie -Wall -Wextra -Werror -fvisibility=hidden -DPACKAGE_VERSION="\"$(pkg-config --modversion vorn-mero)\"" \
    -o "$3" "$(dirname "$0")/consumer/main.cpp" \
    $(pkg-config --cflags --libs 'vorn-mero >= 0.1') -Wl,-rpath,"$(pkg-config --variable=libdir vorn-mero)"
"$3"

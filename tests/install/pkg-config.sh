#!/bin/sh
# Builds programs of the consumer with what pkg-config says, and runs them: pkg-config.sh COMPILER FOLDER_OF_PC_FILES PROGRAM
# Without position-independent code the first has copies of the library's tables.
set -eu
export PKG_CONFIG_PATH="$2"

# build SOURCE PACKAGE OPTION...
build() {
    source=$1 package=$2
    shift 2
    # shellcheck disable=SC2046
    "$@" -std=c++17 -Wall -Wextra -Werror "$(dirname "$0")/consumer/$source" \
        $(pkg-config --cflags --libs "$package >= 0.1") -Wl,-rpath,"$(pkg-config --variable=libdir "$package")"
}
build main.cpp vorn-mero "$1" -o "$3" -fno-pie -no-pie -fvisibility=hidden -DPACKAGE_VERSION="\"$(pkg-config --modversion vorn-mero)\""
"$3"
build wire.cpp nq "$1" -o "$3-nq"
"$3-nq"

#!/bin/sh
# Loads, uses and unloads the plugin many times with each target of the log: plugin.sh HOST PLUGIN LIBRARY
# Each use logs one failure, and the host ends well; so it does where the installation is incomplete.
set -eu
times=300
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
mkdir incomplete
cp "$3" "$(dirname "$3")/libnq.so" incomplete
LD_LIBRARY_PATH=incomplete MERO_LOG_LEVEL=error MERO_LOG_TARGET=console "$1" "$2" $times late 2>console.log ||
    { cat console.log; exit 1; }
[ -s console.log ] && { echo "logged without the library that logs"; exit 1; }
for target in none console file; do
    : >mero.log
    loaded=early
    [ $target != none ] || loaded=late
    MERO_LOG_LEVEL=error MERO_LOG_TARGET=$target "$1" "$2" $times $loaded 2>console.log || { status=$?; echo "$target: the host ends with $status"; tail console.log; exit 1; }
    for found in console.log mero.log; do
        expected=0
        case "$target $found" in "console console.log" | "file mero.log") expected=$times ;; esac
        logged=$(grep -c 'Exception caught in event::~event' $found) || true
        [ "$logged" = "$expected" ] || { echo "$target: $logged lines in $found, not $expected"; exit 1; }
    done
done

#!/bin/sh
# Loads, uses and unloads the plugin many times with each target of the log: plugin.sh HOST PLUGIN
# Each use logs one failure, and the host ends well.
set -eu
times=300
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
for target in none console file; do
    : >mero.log
    MERO_LOG_LEVEL=error MERO_LOG_TARGET=$target "$1" "$2" $times 2>console.log || { status=$?; echo "$target: the host ends with $status"; tail console.log; exit 1; }
    for found in console.log mero.log; do
        expected=0
        case "$target $found" in "console console.log" | "file mero.log") expected=$times ;; esac
        logged=$(grep -c 'Exception caught in event::~event' $found) || true
        [ "$logged" = "$expected" ] || { echo "$target: $logged lines in $found, not $expected"; exit 1; }
    done
done

#!/bin/sh
# Compares what gdb shows of a program's objects: objects.sh PRINTERS PROGRAM
set -eu
shown=$(gdb -nx -batch -ex "source $1" -ex 'rbreak ^.*look<' -ex run -ex up -ex 'info locals' -ex 'print base' \
    -ex 'print $refcount(buffer)' -ex 'print $refcount(newer)' -ex 'print $refcount(moved)' -ex 'print $refcount(1)' "$2" 2>&1) || true # gdb fails where a command did
case $shown in *"is no device"*) echo "no OpenCL device"; exit 77 ;; esac

failed=0
while read -r pattern; do
    printf '%s\n' "$shown" | grep -Eq "$pattern" || { echo "failed: no $pattern"; failed=1; }
done <<'PATTERNS'
^device = 1\.2 device 0x[0-9a-f]+$
^platform = 1\.2 platform 0x[0-9a-f]+$
^context = 1\.2 context 0x[0-9a-f]+$
^queue = 1\.2 command queue 0x[0-9a-f]+$
^moved = 1\.2 buffer, empty$
^base = .* 1\.2 buffer 0x[0-9a-f]+$
^newer = 2\.0 device 0x[0-9a-f]+$
^\$1 = .* 1\.2 buffer 0x[0-9a-f]+$
^\$2 = 2$
^\$3 = 1$
^the object is empty: it was moved from$
^\$refcount takes an object of vorn-mero that is in memory$
PATTERNS
[ $failed = 0 ] || printf '%s\n' "$shown"
exit $failed

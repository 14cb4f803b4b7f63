#!/usr/bin/env python3
"""What OpenCL programs see through the drop-in is what they see without, and the layers see them.

dropin.py PROGRAM DROPIN LOADER COMMAND
"""

import os
import pathlib
import re
import subprocess
import sys

PLATFORM = "Portable Computing Language"
NULLS = """import ctypes, sys
for name in sys.argv[1:]:
    call = ctypes.CDLL("libOpenCL.so.1")[name]
    call.argtypes = [ctypes.c_void_p] * 12
    print(name, call(*[None] * 12))
"""


def run(*command, **variables):
    done = subprocess.run(command, env=dict(os.environ, **variables), capture_output=True, text=True, timeout=200)
    return done.returncode, done.stdout, done.stderr


def exports(library):
    """The functions with their versions, apart from the one by which libnq knows a drop-in."""
    names = {line.split()[-1] for line in run("nm", "-D", "--defined-only", library)[1].splitlines()}
    return {name for name in names if name.startswith("cl")}


def breaches_of_exports(dropin, loader):
    missing = exports(loader) - exports(dropin)
    if missing or not exports(loader):
        yield f"{loader} has, and the drop-in lacks: {missing}"


def breaches_of_programs(program, dropin, loader, command):
    """The same output on every platform: by hand, where the name of the loader is the drop-in's, and with a layer. Also of
    every function, called with null and 0."""
    path = {"LD_LIBRARY_PATH": str(dropin.parent)}
    nulls = [sys.executable, "-c", NULLS, *sorted(name.partition("@")[0] for name in exports(loader))]
    for line in ([program], ["oclgrind", program], ["clinfo"], nulls):
        plain = run(*line)
        for through in (run(*line, **path), run(*line, **path, NQ_BRIDGE_OPENCL="libOpenCL.so.1"),
                        run(command, "faults", "-r", "probability=0:-5", "--", *line)):
            if through != plain:
                yield f"{line[0]} sees {plain}\n  and through the drop-in {through}"


def breaches_of_layers(program, dropin, command):
    preloaded = {"LD_LIBRARY_PATH": str(dropin.parent), "LD_PRELOAD": str(dropin.parents[1] / "libnq-errors.so")}
    null_event = (sys.executable, "-c", NULLS, "clReleaseEvent")
    if "clReleaseEvent" not in run(*null_event, **preloaded)[2]:
        yield "a preloaded layer does not see what a script loads"
    for arguments, status, pattern in (
        (("errors", "--", program, PLATFORM), 0, r"^nq-errors: clCreateKernel\(.*\"skale\".* kernels: scale$"),
        (("errors", "--", *null_event), 0, r"^nq-errors: clReleaseEvent\(event=null\) = CL_INV"),
        (("leaks", "--", program, PLATFORM), 0, ""),
        (("leaks", "--", program, PLATFORM, "leak"), 1, r"^nq-leaks: clCreateContext at .*: 1 reference$"),
        (("check", "--", program, PLATFORM, "released"), None, "^nq-check: clSetKernelArg.*which was released at "),
        (("trace", "-o", "/dev/null", "--summary", "--", program, PLATFORM), 0, "^nq-trace: clCreateBuffer +4 "),
        (("faults", "-r", "entry=clCreateBuffer:-4", "--report", "--", program), 0, "-4$"),
    ):
        seen, output, printed = run(command, *arguments)
        if status not in (seen, None) or not re.search(pattern, output + printed, re.M):
            yield f"{arguments}: exit status {seen}, {output}{printed}"


def main():
    program, dropin, loader, command = sys.argv[1], pathlib.Path(sys.argv[2]), *sys.argv[3:]
    failed = 0
    for found in (breaches_of_exports(dropin, loader), breaches_of_programs(program, dropin, loader, command),
                  breaches_of_layers(program, dropin, command)):
        for each in found:
            failed = 1
            print(each)
    return failed


sys.exit(main())

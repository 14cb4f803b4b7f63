#!/usr/bin/env python3
"""Runs a program of mistakes under layers, and compares what they print and what the program sees with a table.

layers.py PROGRAM FOLDER TABLE      FOLDER has the layers; a line of TABLE: layers | settings | mistake | pattern...
"""

import os
import pathlib
import re
import subprocess
import sys

PLATFORM = "Portable Computing Language"
SKIPPED = 77


def run(program, mistake, layers=(), settings=""):
    environment = dict(os.environ, NQ_FAULTS=settings)
    if layers:
        environment["LD_PRELOAD"] = ":".join(map(str, layers))
        environment["ASAN_OPTIONS"] = environment.get("ASAN_OPTIONS", "") + ":verify_asan_link_order=0"
    done = subprocess.run([program, PLATFORM, mistake], env=environment, capture_output=True, text=True, timeout=100)
    return done.returncode, done.stdout, [line for line in done.stderr.splitlines() if line.startswith("nq-")]


def breaches(program, folder, line):
    layers, settings, mistake, *patterns = (part.strip() for part in line.split(" |"))
    layers = [folder / f"libnq-{layer}.so" for layer in layers.split()]
    status, output, printed = run(program, mistake, layers, settings)
    seen = [output.strip().replace("\n", " ")] if settings else []
    if not settings:
        plain, unwatched = run(program, mistake)[:2]
        found = any(printed) and "leaks" in line.split(" |")[0]
        if (status, output) != (1 if found else plain, unwatched):
            yield f"exit status {status}, and the program sees: {output}"
    printed = seen + printed
    if len(printed) != len(patterns):
        yield f"{len(printed)} lines in place of {len(patterns)}"
    for text, pattern in zip(printed, patterns):
        if not re.search(pattern, text):
            yield f"no {pattern}"
    if status not in (0, 1, 2):
        yield f"exit status {status}"


def main():
    program, folder, table = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
    if run(program, "none")[0] == SKIPPED:
        print(f"no platform {PLATFORM}: scripts/implementations adds one")
        return SKIPPED
    failed = 0
    for line in filter(lambda each: each and each[0] != "#", table.read_text().splitlines()):
        found = list(breaches(program, folder, line))
        failed += bool(found)
        print("failed:" if found else "ok:", line, *found, sep="\n  " if found else " ")
    return 1 if failed else 0


sys.exit(main())

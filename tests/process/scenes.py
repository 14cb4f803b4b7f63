#!/usr/bin/env python3
"""Runs each scene of a table in a process of its own on each OpenCL implementation, and judges how it ends.

scenes.py TABLE PROGRAM PLUGIN...

A line of TABLE: scene | environment | pattern of all that is printed | implementation: why it does not hold there...
Every scene must end with 0, in time, without another word.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

LIMIT = 60  # seconds
# what implementations print of wrong programs, and AddressSanitizer when a forked child exits
NOISE = re.compile(r"^(\d+ errors? generated\.|==\d+==Running thread \d+ was not suspended.*|)$")


def implementations():
    """Their names, and the environment that leaves only this one."""
    vendors = pathlib.Path(os.environ.get("OCL_ICD_VENDORS", "/etc/OpenCL/vendors"))
    return {each.stem: {"OCL_ICD_VENDORS": str(each)} for each in sorted(vendors.glob("*.icd"))}


def breach(command, environment, pattern):
    with tempfile.TemporaryDirectory() as folder:
        try:
            done = subprocess.run(command, env=os.environ | environment, cwd=folder, stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT, text=True, errors="replace", timeout=LIMIT)
        except subprocess.TimeoutExpired as hung:
            return f"does not end in {LIMIT} s: {(hung.stdout or b'')[-300:]!r}"
    printed = " ".join(line for line in done.stdout.splitlines() if not NOISE.match(line))
    if done.returncode != 0 or not re.fullmatch(pattern, printed):
        return f"ends with {done.returncode} after: {printed[-1000:]}"
    return ""


def main():
    table, program, plugins = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3:]
    found = implementations()
    failed, lines = 0, [line for line in table.read_text().splitlines() if line and line[0] != "#"]
    for line in lines:
        scene, environment, pattern, *known = (part.strip() for part in line.split(" |"))
        variables = dict(each.split("=") for each in environment.split())
        reasons = dict(each.split(": ") for each in known)
        for name, of_vendor in found.items():
            reason = reasons.get(name, "")
            result = reason or breach([program, scene, *plugins], of_vendor | variables, pattern)
            failed += bool(result) and not reason
            print("not run:" if reason else "FAILED:" if result else "ok:", scene, environment, "on", name, result, flush=True)
    wanted = set(subprocess.run([program], capture_output=True, text=True).stdout.split())
    if wanted != {line.split(" |")[0].strip() for line in lines} or not found:
        sys.exit(f"{table} does not have the scenes {wanted}, or there is no implementation")
    return 1 if failed else 0


sys.exit(main())

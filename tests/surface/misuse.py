#!/usr/bin/env python3
"""Compiles every program of misuse.txt and sees it refused for the reason that it names. Warnings are errors.

misuse.py COMPILER INCLUDE-DIRECTORY SCRATCH-DIRECTORY
"""

import concurrent.futures
import configparser
import os
import pathlib
import re
import subprocess
import sys


def compiler(command, include, scratch):
    """A function that checks a source and gives the exit status and what was said; headers are compiled once."""
    clang = b"clang" in subprocess.run([command, "--version"], capture_output=True, check=True).stdout
    scratch.mkdir(parents=True, exist_ok=True)
    header = scratch / "all.hpp"
    header.write_text("#include <nq/commands.hpp>\n#include <vorn/mero/easy.hpp>\n"
                      "#include <vorn/mero/easy/borders.hpp>\n#include <vorn/mero/easy/shared.hpp>\n")
    flags = [command, "-std=c++20", "-Werror", f"-I{include}"]
    compiled = scratch / ("all.pch" if clang else "all.hpp.gch")
    subprocess.run([*flags, "-x", "c++-header", str(header), "-o", str(compiled)], check=True)
    flags += ["-include-pch", str(compiled)] if clang else ["-include", str(header)]

    def check(source):
        done = subprocess.run([*flags, "-fsyntax-only", "-x", "c++", "-"], input=source, text=True, capture_output=True,
                              env={**os.environ, "LC_ALL": "C"})
        return done.returncode, done.stderr

    return check, "clang" if clang else "gcc"


def program(number, case, line):
    return (f"namespace program_{number} {{ namespace ez = vorn::mero::easy; namespace cl = vorn::mero::{case['version']};\n"
            f"[[maybe_unused]] void run({case['given']}) {{\n{case[line]}\n}} }}\n")


def main():
    command, include, scratch = sys.argv[1:]
    check, family = compiler(command, include, pathlib.Path(scratch))
    cases = configparser.ConfigParser(interpolation=None, delimiters="=", comment_prefixes="#")
    cases.read(pathlib.Path(__file__).parent / "misuse.txt")
    names = [name for name in cases.sections() if cases[name].get("compiler", family) == family]
    faults = []

    accepted, said = check("".join(program(number, cases[name], "right") for number, name in enumerate(names)))
    if accepted != 0:
        faults.append(f"a right program does not compile:\n{said}")

    def wrong(number, name):
        status, said = check(program(number, cases[name], "wrong"))
        errors = " ".join(re.findall(r"error: .*", said))
        if status == 0:
            return f"{name}: compiles"
        if not re.search(cases[name]["says"].replace("no member named", "(?:no member named|has no member named)"), errors):
            return f"{name}: says\n{said}"
        return None

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        faults += filter(None, pool.map(wrong, *zip(*enumerate(names))))
    print(*faults, f"{len(names)} programs, {len(faults)} faults with {command}", sep="\n")
    return 1 if faults else 0


sys.exit(main())

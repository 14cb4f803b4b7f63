#!/usr/bin/env python3
"""Compiles the installed headers together and beside OpenCL's, with g++ each alone, and measures the largest of OpenCL.

headers.py COMPILER INCLUDE-FOLDER
"""

import concurrent.futures
import os
import pathlib
import re
import resource
import subprocess
import sys

STANDARDS = ("c++17", "gnu++17", "c++20", "c++2b")
STRICT = ("-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Wold-style-cast", "-Werror")
ALL, LARGEST = "vorn/mero/opencl.hpp", "vorn/mero/opencl_2_2.hpp"
DEPENDENCIES = "vorn/mero/opencl/dependencies.hpp"
NEED_OTHERS = ("vorn/mero/internal/logger.hpp", "vorn/mero/easy/borders.hpp")
OPENCL = ("#define CL_TARGET_OPENCL_VERSION 300", "#define CL_HPP_TARGET_OPENCL_VERSION 300", "CL/opencl.hpp")
VERSIONS = ("1_0", "1_1", "1_2", "2_0", "2_1", "2_2")
BUDGET_S = 0.15
GENEROUS = 4  # the machine may be busy


class Headers:
    def __init__(self, command, include):
        self.command, self.include = command, pathlib.Path(include)
        self.names = sorted(str(path.relative_to(include)) for path in self.include.glob("**/*.hpp"))
        self.parts = [name for name in self.names if "/opencl/" in name and name != DEPENDENCIES]  # headers of one class

    def run(self, lines, standard, *flags):
        """Each line is a header or code."""
        source = "".join(f"#include <{line}>\n" if line.endswith(".hpp") else f"{line}\n" for line in lines)
        return subprocess.run([self.command, f"-std={standard}", f"-I{self.include}", *flags, "-x", "c++", "-"], input=source,
                              text=True, capture_output=True)

    def sources(self):
        """What must compile without a warning."""
        device = [f"using device_{version} = vorn::mero::opencl_{version}::device;" for version in VERSIONS]
        extensions = re.findall(r"^namespace (cl_\w+) \{", (self.include / "vorn/mero/opencl/extension.hpp").read_text(), re.M)
        second_names = [f"namespace a{version} = vorn::mero::opencl_{version}::extension::amd_kernel_info;" for version in VERSIONS]
        whole = [name for name in self.names if name not in self.parts]
        if "clang" in self.command:  # both compilers use one standard library, so that one tells what a header lacks
            yield "all headers", whole, STANDARDS[0]
        else:
            yield from ((name, [name], STANDARDS[0]) for name in whole)
        yield from ((ALL, [ALL], standard) for standard in STANDARDS[1:])
        yield "parts before and after the whole", [*self.parts, *device, ALL, *reversed(self.parts)], STANDARDS[0]
        # OpenCL's headers define names of extensions as macros, which programs keep
        yield "before OpenCL's", [ALL, *OPENCL, *second_names, "static_assert(cl_khr_il_program == 1);"], STANDARDS[0]
        yield "after OpenCL's", [*OPENCL, ALL, *second_names, "static_assert(cl_khr_il_program == 1);"], STANDARDS[0]
        yield "after macros of the extensions' names", [*(f"#define {name} 7" for name in extensions), ALL, *second_names, *(
            f"static_assert({name} == 7);" for name in extensions)], STANDARDS[0]

    def compile(self, what, lines, standard):
        done = self.run(lines, standard, *STRICT)
        return [f"{what} in {standard}:\n{done.stderr}"] if done.returncode else []

    def files(self, *names):
        return set(self.run(names, STANDARDS[0], "-M").stdout.split())

    def includes(self):
        """Part headers give all versions; few headers need other packages."""
        faults = [f"{part} gives no versions" for part in self.parts if not any(each.endswith(LARGEST) for each in self.files(part))]
        listed = self.files(*(name for name in self.names if name not in NEED_OTHERS))
        return faults + [f"a header includes {path}" for path in sorted(listed) if re.search(r"/(CL|spdlog|fmt)/", path)]

    def standard_headers(self, name):
        """The standard headers that a header includes, through others of ours too."""
        found, seen, left = set(), set(), [name]
        while left:
            path = self.include / left.pop()
            if path not in seen and path.exists():
                seen.add(path)
                included = re.findall(r"#include <([^>]+)>", path.read_text())
                left += included
                found.update(each for each in included if "/" not in each)
        return [f"#include <{each}>" for each in sorted(found)]

    def seconds(self, lines):
        """Processor time of the compiler, the least of some runs."""
        def once():
            before = resource.getrusage(resource.RUSAGE_CHILDREN)
            self.run(lines, "c++20", "-S", "-O0", "-o", os.devnull)
            after = resource.getrusage(resource.RUSAGE_CHILDREN)
            return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime

        return min(once() for _ in range(3))


def main():
    headers = Headers(*sys.argv[1:])
    work = list(headers.sources())
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        faults = sum(pool.map(headers.compile, *zip(*work)), headers.includes())
    cost = headers.seconds([LARGEST]) - headers.seconds(headers.standard_headers(LARGEST))
    print(f"{len(work)} sources with {headers.command}; {LARGEST} costs {cost:.3f} s more than the standard headers that it "
          f"includes (budget {BUDGET_S} s)")
    if cost > GENEROUS * BUDGET_S:
        faults.append(f"{LARGEST} costs more than {GENEROUS} times its budget")
    print(*faults, f"{len(faults)} faults", sep="\n")
    return 1 if faults else 0


sys.exit(main())

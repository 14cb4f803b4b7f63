#!/usr/bin/env python3
"""Compiles every installed header alone, and measures what the umbrella headers cost over the standard library's.

headers.py COMPILER INCLUDE-DIRECTORY
"""

import concurrent.futures
import os
import pathlib
import re
import resource
import subprocess
import sys

BUDGET_S = 0.15
GENEROUS = 4  # the machine may be busy
FORBIDDEN = re.compile(r"/(CL|spdlog|fmt)/")
ALL = "vorn/mero/opencl.hpp"
OPENCL = "CL/opencl.hpp"
LARGEST = "vorn/mero/opencl_2_2.hpp"
EXTENSIONS = {
    "1_0": "amd_kernel_info altera_device_temperature altera_live_object_tracking arm_printf amd_device_topology",
    "1_1": "amd_kernel_info arm_printf amd_device_topology",
    "1_2": "amd_kernel_info amd_device_topology khr_il_program khr_spir intel_subgroups",
    "2_0": "amd_kernel_info amd_device_topology khr_il_program khr_spir intel_subgroups khr_sub_groups "
           "khr_terminate_context khr_initialize_memory",
    "2_1": "amd_kernel_info khr_il_program khr_spir",
    "2_2": "amd_kernel_info khr_il_program khr_spir",
}
DISCARDS = ("d.name()", "d.hash()", "c.create_user_event()", "k.clone()", "q.enqueue_command(a)", "q.enqueue_marker(0, nullptr)",
            "cl::get_all_devices()", "cl::raw::refcount(d)", "vorn::mero::api<220>::create_context(d)")
STRICT = ["-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Wold-style-cast", "-Werror"]


class Headers:
    def __init__(self, command, include):
        self.command, self.include = command, pathlib.Path(include)
        self.names = sorted(str(path.relative_to(include)) for path in self.include.glob("**/*.hpp"))
        self.parts = [name for name in self.names if "/opencl/" in name]
        self.umbrellas = [name for name in self.names if re.fullmatch(r"vorn/mero/opencl(_\d_\d)?\.hpp", name)]

    def compile(self, source, *flags):
        return subprocess.run([self.command, f"-I{self.include}", *flags, "-x", "c++", "-"], input=source, text=True,
                              capture_output=True)

    def alone(self, standard, name):
        done = self.compile(f"#include <{name}>\n", f"-std={standard}", "-fsyntax-only", *STRICT)
        return f"{name} in {standard}:\n{done.stderr}" if done.returncode else None

    def parts_among_wholes(self):
        """A header of one class gives all versions, whatever was included before and after it."""
        uses = "".join(f"using device_{version} = vorn::mero::opencl_{version}::device;\n" for version in EXTENSIONS)
        order = (*self.parts, uses, ALL, *reversed(self.parts))
        done = self.compile("".join(line if line is uses else f"#include <{line}>\n" for line in order), "-std=c++17",
                            "-fsyntax-only", *STRICT)
        return [f"parts before and after {ALL}:\n{done.stderr}"] if done.returncode else []

    def discards(self):
        """What is made or asked for nothing is warned of; the event of a barrier may be ignored."""
        calls = "".join(f"{call};\n" for call in DISCARDS)
        source = (f"#include <{ALL}>\nnamespace cl = vorn::mero::opencl_2_2;\nvoid f(cl::device& d, cl::context& c, cl::kernel& k, "
                  f"cl::host_command_queue& q, cl::command& a) {{\n{calls}q.barrier(0, nullptr);\n}}\n")
        said = self.compile(source, "-std=c++17", "-fsyntax-only").stderr
        lines = {int(line) for line in re.findall(r"<stdin>:(\d+):\d+: warning", said)}
        return [] if lines == set(range(4, 4 + len(DISCARDS))) else [f"not exactly each discarded result is warned of:\n{said}"]

    def beside_opencl(self, first, second):
        """OpenCL's own headers define names of extensions as macros, whose values programs keep."""
        uses = "".join(f"using vorn::mero::opencl_{version}::extension::{name}::extension_available;\n"
                       for version, names in EXTENSIONS.items() for name in names.split())
        source = f"#include <{first}>\n#include <{second}>\nnamespace uses {{\n{uses}}}\nstatic_assert(cl_khr_il_program == 1);\n"
        done = self.compile(source, "-std=c++17", "-fsyntax-only", *STRICT, "-DCL_TARGET_OPENCL_VERSION=300",
                            "-DCL_HPP_TARGET_OPENCL_VERSION=300")
        return [f"{first} before {second}:\n{done.stderr}"] if done.returncode else []

    def forbidden(self, name):
        listed = self.compile(f"#include <{name}>\n", "-std=c++17", "-M").stdout
        return [f"{name} includes {path}" for path in sorted(set(listed.split())) if FORBIDDEN.search(path)]

    def standards(self):
        usable = []
        for standard in ("c++17", "gnu++17", "c++20", "c++23", "c++2b"):
            if not (standard == "c++2b" and "c++23" in usable) and self.compile("", f"-std={standard}", "-fsyntax-only").returncode == 0:
                usable.append(standard)
        return usable

    def standard_headers(self, name):
        """The standard headers that a header includes, through others of ours too."""
        found, seen, left = set(), set(), [name]
        while left:
            path = self.include / left.pop()
            if path in seen or not path.exists():
                continue
            seen.add(path)
            for included in re.findall(r"#include <([^>]+)>", path.read_text()):
                if "/" in included:
                    left.append(included)
                else:
                    found.add(included)
        return "".join(f"#include <{included}>\n" for included in sorted(found))

    def seconds(self, source, repetitions=3):
        """Processor time of the compiler, the least of some runs."""
        def children():
            usage = resource.getrusage(resource.RUSAGE_CHILDREN)
            return usage.ru_utime + usage.ru_stime

        def once():
            before = children()
            self.compile(source, "-std=c++20", "-S", "-O0", "-o", os.devnull)
            return children() - before

        return min(once() for _ in range(repetitions))

    def lines(self, source):
        return self.compile(source, "-std=c++20", "-E", "-P").stdout.count("\n")


def main():
    headers = Headers(*sys.argv[1:])
    standards = headers.standards()
    work = [(standard, name) for name in headers.names if name not in headers.parts for standard in standards
            if standard == standards[0] or name == ALL]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        faults = [fault for fault in pool.map(headers.alone, *zip(*work)) if fault]
    faults += [fault for name in headers.umbrellas for fault in headers.forbidden(name)]
    faults += headers.parts_among_wholes() + headers.discards()
    for order in ((ALL, OPENCL), (OPENCL, ALL)):
        faults += headers.beside_opencl(*order)
    print(f"{len(work)} compilations of {len(headers.names)} headers in {', '.join(standards)} with {headers.command}")

    for name in (LARGEST, ALL):
        base, ours = headers.standard_headers(name), f"#include <{name}>\n"
        cost = headers.seconds(ours) - headers.seconds(base)
        more = headers.lines(ours) - headers.lines(base)
        print(f"{name}: {cost:+.3f} s and {more:+d} lines over the standard headers that it includes (budget {BUDGET_S} s)")
        if name == LARGEST and cost > GENEROUS * BUDGET_S:
            faults.append(f"{name} costs {cost:.3f} s, more than {GENEROUS} times its budget")
    print(*faults, f"{len(faults)} faults", sep="\n")
    return 1 if faults else 0


sys.exit(main())

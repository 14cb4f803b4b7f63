#!/usr/bin/env python3
"""Holds surface.txt, the headers and the library against each other; clang reads the headers.

surface.py CLANG INCLUDE SOURCES OPENCL [LIBRARY]
    The headers of the folder INCLUDE declare what surface.txt lists, nothing else and nothing otherwise. OpenCL's numbers
    in them and in SOURCES are those of the headers in OPENCL. LIBRARY exports what the headers leave to it, nothing else.
surface.py --update CLANG INCLUDE
    Writes surface.txt as the headers are. What it listed before keeps its place.
"""

import collections
import itertools
import json
import pathlib
import re
import subprocess
import sys

TABLE = pathlib.Path(__file__).with_name("surface.txt")
VERSIONS = ("1.0", "1.1", "1.2", "2.0", "2.1", "2.2")
HEADERS = {"vorn::mero": ("vorn/mero/common/*.hpp", "vorn/mero/internal/*.hpp", "vorn/mero/opencl.hpp"), "nq": ("nq/call_handle.hpp", "nq/error.hpp")}
FUNCTIONS = ("FunctionDecl", "CXXMethodDecl", "CXXConstructorDecl", "CXXDestructorDecl", "CXXConversionDecl")
TYPES = ("CXXRecordDecl", "EnumDecl", "ClassTemplateDecl", "ClassTemplateSpecializationDecl")
NO_NAMES = ("StaticAssertDecl", "EmptyDecl")

# By type of the library, what OpenCL's names begin with.
PREFIXES = {
    "error_code": "", "image_channel_order": "", "image_channel_type": "", "event_execution_status": "",
    "commmand_exec_callback_type": "", "mem_flags": "MEM_", "svm_mem_flags": "MEM_,MEM_SVM_", "map_flags": "MAP_",
    "migration_flags": "MIGRATE_MEM_OBJECT_", "device_type": "DEVICE_TYPE_", "mem_object_type": "MEM_OBJECT_",
    "device_affinity_domain": "DEVICE_AFFINITY_DOMAIN_", "sampler_addressing_mode": "ADDRESS_", "sampler_filter_mode": "FILTER_",
    "program_build_status": "BUILD_", "program_binary_type": "PROGRAM_BINARY_TYPE_", "context_property": "CONTEXT_",
    "device_partition_property": "DEVICE_PARTITION_", "kernel_argument_address_qualifier": "KERNEL_ARG_ADDRESS_",
    "kernel_argument_access_qualifier": "KERNEL_ARG_ACCESS_", "kernel_argument_type_qualifier": "KERNEL_ARG_TYPE_", "cl": ""}
# OpenCL's headers have no name for the first, no number for the second and another one for the third.
OWN = ("event_execution_status::failed", "cl::device_core_temperature_altera", "cl::device_terminate_capability")


def run(*command, text=None):
    done = subprocess.run(command, input=text, capture_output=True, text=True)
    if done.returncode:
        sys.exit(f"{' '.join(command)}:\n{done.stderr}")
    return done.stdout


class Headers:
    def __init__(self, clang, include):
        self.command = (clang, "-std=c++17", f"-I{include}", "-w", "-x", "c++", "-")
        self.rows = collections.defaultdict(list)  # the versions of each declaration: by section and text
        self.constants = []  # full names
        self.ours, self.inline = set(), set()  # the symbols that the library must export, and further ones that it may
        self.source = ""
        for root, patterns in HEADERS.items():
            paths = [path.relative_to(include) for pattern in patterns for path in sorted(pathlib.Path(include).glob(pattern))]
            source = "".join(f"#include <{path}>\n" for path in paths)
            self.source += source
            self.text = run(*self.command, "-E", text=source)  # one text, so that offsets tell what stands where
            dump = run(*self.command, "-fsyntax-only", "-Xclang", "-ast-dump=json", "-Xclang", f"-ast-dump-filter={root}",
                       text=self.text)
            for node in map(json.loads, re.split(r"\n(?=\{)", dump)):
                if node["kind"] == "NamespaceDecl" and root.endswith(node["name"]):
                    self.scope(node, root)
                elif node["kind"] == "ClassTemplateSpecializationDecl":
                    name = self.row(node, root).removeprefix("extern template class ")
                    self.symbols(node["inner"])
                    self.inline.update((f"typeinfo for {name}", f"typeinfo name for {name}"))
            for found in re.finditer(r"template <[^;{}]*>\s+struct std::hash<vorn::mero::[^{]*", self.text):
                self.row({"kind": TYPES[0], "range": {"begin": {"offset": found.start()}, "end": {"offset": found.end(), "tokLen": 0}}}, "std")

    def scope(self, node, name, template=False):
        """Reads what stands in a namespace, class or enumeration."""
        access, slots = "private: " if node.get("tagUsed") == "class" else "", itertools.count()
        for each in node.get("inner", ()):
            kind = each["kind"]
            if kind == "AccessSpecDecl":
                access = "" if each["access"] == "public" else f"{each['access']}: "
            elif kind == "NamespaceDecl":
                self.scope(each, f"{name}::{each['name']}")
            elif kind in TYPES and not each.get("isImplicit"):
                self.type(each, name, access, template)
            elif kind.endswith("Decl") and kind not in NO_NAMES and not each.get("isImplicit"):
                slot = f"#{next(slots)} " if kind == "FieldDecl" or each.get("virtual") else ""
                self.row(each, name, access + slot)
                if kind == "EnumConstantDecl" or kind == "VarDecl" and node["kind"] == "CXXRecordDecl":
                    self.constants.append(f"{name}::{each['name']}")
                if not template:
                    self.symbols([each])

    def type(self, node, scope, access, template):
        inner = node.get("inner", ())
        record = next((part for part in inner if part["kind"] == "CXXRecordDecl"), node) if node["kind"] == TYPES[2] else node
        if "completeDefinition" not in record and node["kind"] == "CXXRecordDecl":
            return  # announced only
        if "name" not in node:  # an anonymous union, whose members are those of the class
            self.scope(node, scope, template)
            return
        template = template or record is not node
        arguments = "".join(f"<{part['value']}>" for part in inner if "value" in part)
        name = f"{scope}::{node['name']}{arguments}"
        self.row(node, name if arguments else scope, access)
        self.scope(record, name, template)
        if record["kind"] == "CXXRecordDecl" and not template:
            data = record["definitionData"]
            # of an abstract class, whose functions are all inline, only the units that need it have a virtual table
            symbols = self.ours if data.get("isPolymorphic") and not data.get("isAbstract") else self.inline
            symbols.update(f"{what} for {name}" for what in ("vtable", "typeinfo", "typeinfo name"))

    def row(self, node, scope, before=""):
        """Adds the text of a declaration, without attributes, body and the versions' numbers; gives it with the numbers."""
        begin, end = node["range"]["begin"]["offset"], node["range"]["end"]["offset"] + node["range"]["end"]["tokLen"]
        parts = node.get("inner", ())
        template = node["kind"] == "FunctionTemplateDecl"
        function = next((part for part in (parts if template else (node,)) if part["kind"] in FUNCTIONS), None)
        body = function and self.body(function)
        text = self.text[begin:body or end]
        if node["kind"] in TYPES:
            text = text.split("{")[0]
        elif function and not body:
            text += re.match("[^;]*", self.text[end:])[0]
        text = " ".join(re.sub(r"__attribute__\(\(.*?\)\)\)| ?\[\[[\w:]+\]\]|^# \d.*$", "", text, flags=re.M).split()).replace("( ", "(")
        if function and function["kind"] == "CXXConstructorDecl":
            text = re.sub(" : .*", "", text)
        section, listed, versions = scope.removeprefix("vorn::mero::"), text, VERSIONS
        if version := re.search(r"opencl_(\d_\d)(?=::)", f"{scope}::{text}") or re.search(r"api<(\d\d)0>", section):
            versions = (re.sub(r"(\d)_?(\d)", r"\1.\2", version[1]),)
            section, listed = (re.sub(r"api<\d+>", "api", part).replace(f"opencl_{versions[0].replace('.', '_')}", "opencl")
                               for part in (section, listed))
        self.rows[section, f"{before}{listed}{' {}' if body else ''}"] += versions
        return text

    @staticmethod
    def body(function):
        if "explicitlyDefaulted" in function:  # clang gives those that are used a body
            return None
        return next((part["range"]["begin"]["offset"] for part in function.get("inner", ()) if part["kind"] == "CompoundStmt"), None)

    def hidden(self, node):
        """Whether a declaration is the library's own, whatever its class is."""
        place = node["range"]
        return "offset" in place["begin"] and "offset" in place["end"] and \
            'visibility("hidden")' in self.text[place["begin"]["offset"]:place["end"]["offset"]]

    def symbols(self, nodes):
        for node in nodes:
            if "mangledName" in node and not self.hidden(node):
                inline = {"inline", "constexpr", "pure", "explicitlyDefaulted", "explicitlyDeleted"} & set(node)
                outside = node["kind"] in FUNCTIONS and not inline and not self.body(node)
                (self.ours if outside else self.inline).add(node["mangledName"])


def span(versions):
    """`1.0+`, `1.0-1.2`, `2.1`."""
    first, last, whole = versions[0], versions[-1], VERSIONS[VERSIONS.index(versions[0]):]
    if tuple(versions) != whole[:len(versions)]:
        return ",".join(versions)
    return f"{first}+" if tuple(versions) == whole and len(whole) > 1 else first if first == last else f"{first}-{last}"


def read():
    """What surface.txt says of the versions, by section and text."""
    rows, section = {}, ""
    for line in TABLE.read_text().splitlines():
        if line.startswith("  "):
            versions, text = line.split(None, 1)
            rows[section, text] = versions
        elif not line.startswith("#"):
            section = line
    return rows


def update(headers):
    listed = list(read())
    sections = {section: [] for section, _ in listed}
    for section, text in sorted(headers.rows, key=lambda row: listed.index(row) if row in listed else len(listed)):
        sections.setdefault(section, []).append(f"  {span(headers.rows[section, text]):8} {text}\n")
    head = re.match("(#.*\n)*", TABLE.read_text())[0]
    TABLE.write_text(head + "".join(f"\n{section}\n{''.join(rows)}" for section, rows in sections.items() if rows))
    return []


def declarations(headers):
    found, listed = {row: span(versions) for row, versions in headers.rows.items()}, read()
    print(f"{len(found)} declarations")
    return [f"{what} {section}: {versions} {text}"
            for what, these, those in (("not in surface.txt:", found, listed), ("not so in the headers:", listed, found))
            for (section, text), versions in these.items() if those.get((section, text)) != versions]


def lacking(headers):
    """What `raw` has and `api` lacks, so that code over all versions can exchange raw handles too."""
    def functions(section):
        return {(re.search(r"(\w+)\(", text)[1], version) for (where, text), versions in headers.rows.items()
                if where == section for version in versions if "(" in text}

    there = functions("api")
    return [f"api lacks {name} of {version}" for name, version in sorted(functions("opencl::raw"))
            if (re.sub("create_(host_)?command_queue", "create_host_queue", name), version) not in there]


def numbers(headers, sources, opencl):
    """What does not compile where each number is asserted to be that of OpenCL's headers."""
    opencl_headers = "#define CL_TARGET_OPENCL_VERSION 300\n#include <CL/cl.h>\n#include <CL/cl_ext.h>\n"
    macros = run(*headers.command, f"-I{opencl}", "-E", "-dM", text=opencl_headers)
    names = {name.upper(): name for name in re.findall(r"#define (CL_\w+)", macros)}
    values = re.findall(r"inline constexpr \S+ (\w+) =", (pathlib.Path(sources) / "internal/opencl_values.hpp").read_text())
    constants = [f"vorn::mero::internal::cl::{value}" for value in values] + headers.constants
    lines = [f'#include "internal/opencl_values.hpp"\n{headers.source}{opencl_headers}']
    for constant in constants:
        _, kind, name = constant.rsplit("::", 2)
        if kind in ("capability", "api") or f"{kind}::{name}" in OWN:
            continue
        known = [f"CL_{prefix}{name.rstrip('_')}{suffix}".upper() for prefix in PREFIXES.get(kind, "?").split(",") for suffix in ("", "_KHR")]
        theirs = next((names[each] for each in known if each in names), f"no_{known[0]}")
        lines.append(f"static_assert({constant} == decltype({constant})({theirs}), \"{constant}\");\n")
    done = subprocess.run((*headers.command, "-fsyntax-only", f"-I{opencl}", f"-I{sources}"), input="".join(lines),
                          capture_output=True, text=True)
    print(f"{len(lines) - 1} numbers")
    return re.findall("error: .*", done.stderr)


def symbols(headers, library):
    def demangled(names):
        return set(run("c++filt", text="\n".join(names)).splitlines())

    listed = [line.split()[1:] for line in run("nm", "-D", "--defined-only", library).splitlines()]
    found = demangled(name.split("@")[0] for kind, name in listed if kind != "A")
    ours, inline = demangled(headers.ours - headers.inline), demangled(headers.inline)
    print(f"{len(found)} symbols")
    return [f"not exported: {name}" for name in sorted(ours - found)] + [
        f"exported, but nothing of the headers: {name}" for name in sorted(found - ours - inline)]


def main():
    if sys.argv[1] == "--update":
        return update(Headers(*sys.argv[2:]))
    clang, include, sources, opencl, *library = sys.argv[1:]
    headers = Headers(clang, include)
    faults = declarations(headers) + lacking(headers) + numbers(headers, sources, opencl)
    for each in library:
        faults += symbols(headers, each)
    if faults:
        faults.append(f"where that is intended: {sys.argv[0]} --update {clang} {include}")
    return faults


faults = main()
print(*faults, sep="\n")
sys.exit(1 if faults else 0)

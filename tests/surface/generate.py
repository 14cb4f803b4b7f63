#!/usr/bin/env python3
"""Writes the checks of the surface, one source for each OpenCL version and one for OpenCL's numbers.

generate.py VERSION|values FILE
"""

import pathlib
import re
import sys

sys.dont_write_bytecode = True
import table

WORD = re.compile(r"[A-Za-z_]\w*")


class Version:
    """One version's view of the table, and the checks that it must pass."""

    def __init__(self, sections, index):
        self.sections, self.index = sections, index
        self.lines = []
        classes = [section for section in sections if section.kind in ("class", "value", "enum")]
        self.absent_types = {section.name for section in classes if index not in section.versions}
        self.present_types = {section.name for section in classes if index in section.versions}

    def check(self, condition):
        self.lines.append(f"static_assert({condition});")

    def exists(self, pointer, name):
        self.check(f"requires {{ has<{pointer}>(&{name}); }}")

    def sayable(self, row):
        """Whether every type of a declaration exists in this version."""
        return not self.absent_types & set(WORD.findall(" ".join((row.result, *row.parameters))))

    def functions(self, section):
        for row in section.rows:
            if row.kind != "function":
                continue
            place = f"{row.scope}::" if row.scope else ""
            pointer = f"{row.result} (*)({', '.join(row.parameters)})"
            if self.index in row.versions:
                self.exists(pointer, f"{place}{row.name}")
            elif self.overloaded(row) and self.sayable(row):
                self.check(f"!([]<class T>(T) {{ return requires {{ has<typename dependent<{pointer}, T>::type>"
                           f"(&{place}{row.name}); }}; }}(0))")

    def overloaded(self, row):
        """Whether this version has another function of the name in the same namespace."""
        return any(other.scope == row.scope and other.name == row.name and self.index in other.versions
                   for section in self.sections for other in section.rows if section.kind != "errors")

    def missing_names(self):
        """Names of namespaces that this version lacks: found in none but the fallback."""
        names = {}
        extensions = {row.scope for section in self.sections if section.kind == "functions" for row in section.rows
                      if self.index in row.versions}
        for section in self.sections:
            if section.kind in ("class", "value", "enum"):
                names.setdefault("", {}).setdefault(section.name.split("<")[0], []).append(self.index in section.versions)
            for row in section.rows if section.kind != "errors" else ():
                if row.kind == "function" and row.scope == "raw" or section.kind in ("functions", "names"):
                    scope, name = row.scope, row.name
                    if scope.startswith("extension::") and scope not in extensions:
                        scope, name = "extension", scope.removeprefix("extension::")
                    names.setdefault(scope, {}).setdefault(name, []).append(self.index in row.versions)
        for number, (scope, found) in enumerate(names.items()):
            absent = sorted(name for name, present in found.items() if not any(present))
            if not absent:
                continue
            version = f"opencl_{table.VERSIONS[self.index]}"
            self.lines.append(f"namespace fallback_{number} {{")
            self.lines += [f"using {name} = missing;" for name in absent]
            self.lines.append("}")
            self.lines.append(f"namespace probe_{number} {{ using namespace {version}{'::' + scope if scope else ''}; "
                              f"using namespace fallback_{number}; }}")
            for name in absent:
                self.check(f"std::is_same_v<probe_{number}::{name}, missing>")

    def constructor(self, section, row):
        name, present = section.name, self.index in row.versions
        if row.parameters in ((f"{name} const&",), (f"{name}&&",)):
            return
        check = f"constructs<{', '.join((name, *row.parameters))}>"
        if present:
            self.check(check)
            if row.explicit:
                self.check(f"!std::is_convertible_v<{row.parameters[0]}, {name}>")
        elif self.sayable(row):
            self.check("!" + check)

    def special_members(self, section):
        """Copies and moves: exactly those that the table lists."""
        name = section.name
        listed = {row.text for row in section.rows if self.index in row.versions}
        traits = {f"{name}({name} const&)": "std::is_copy_constructible_v", f"{name}({name}&&)": "std::is_move_constructible_v",
                  f"{name}& operator=({name} const&)": "copy_assigns", f"{name}& operator=({name}&&)": "move_assigns",
                  f"bool operator==({name} const&) const": "compares", f"bool operator<({name} const&) const": "orders"}
        for text, trait in traits.items():
            self.check(f"{'' if text in listed else '!'}{trait}<{name}>")

    def missing_member(self, section, row):
        if row.name not in {other.name for other in section.rows if self.index in other.versions}:
            self.check(f"std::is_same_v<decltype(&probe_{self.identifier(section)}::{row.name}), "
                       f"int fallback_{self.identifier(section)}::*>")
        elif self.sayable(row):
            pointer = self.pointer(row, "T")
            self.check(f"!([]<class T>(T*) {{ return requires {{ has<{pointer}>(&T::{row.name}); }}; }}"
                       f"(static_cast<{section.name}*>(nullptr)))")

    @staticmethod
    def identifier(section):
        return re.sub(r"\W", "_", section.name)

    @staticmethod
    def pointer(row, owner):
        parameters = ", ".join(row.parameters)
        if row.static:
            return f"{row.result} (*)({parameters})"
        return f"{row.result} ({owner}::*)({parameters}){' const' if row.const else ''}"

    def member(self, section, row):
        name = section.name
        if row.kind == "function":
            self.exists(self.pointer(row, name), f"{name}::{row.name}")
        elif row.kind == "conversion":
            target = row.name.removeprefix("operator ")
            self.check(f"std::is_convertible_v<{name}, {target}> && sizeof({name}) == sizeof({target})")
        elif row.kind == "data":
            self.check(f"std::is_same_v<decltype({name}::{row.name}), {row.result}>")
        elif row.kind == "constant":
            self.check(f"{name}::{row.name} == {row.result}")
        elif row.kind == "using":
            self.check(f"std::is_same_v<{name}::{row.name}, {row.result}>")

    def one_class(self, section):
        self.lines.append(f"// {section.name}")
        members = [row for row in section.rows if row.kind not in ("constructor", "operator") and row.scope != "raw"]
        present = {row.name for row in members if self.index in row.versions}
        lacking = sorted({row.name for row in members} - present)
        if lacking:
            identifier = self.identifier(section)
            self.lines.append(f"struct fallback_{identifier} {{ int {', '.join(lacking)}; }};")
            self.lines.append(f"struct probe_{identifier} : {section.name}, fallback_{identifier} {{}};")
        for row in section.rows:
            if row.kind == "constructor":
                self.constructor(section, row)
        for row in members:
            if self.index in row.versions:
                self.member(section, row)
            else:
                self.missing_member(section, row)
        self.functions_of_class(section)
        if section.kind == "class" and section.pattern:
            raw = tuple(argument for argument in section.arguments if argument.startswith("_nq_cl_"))
            self.check(f"surface::{section.pattern}<{', '.join((section.name, *raw))}>")
            self.special_members(section)
        if section.base:
            self.check(f"std::is_base_of_v<{section.base}, {section.name}> && std::is_convertible_v<{section.name}*, {section.base}*>")

    def functions_of_class(self, section):
        rows = [row for row in section.rows if row.scope == "raw"]
        self.functions(type(section)("functions", "raw", section.versions, rows=rows))

    def enumeration(self, section):
        name = section.name
        self.check(f"value_type<{name}, {section.underlying}>")
        self.check(f"{'computes' if section.bits else '!bit_field'}<{name}>{'()' if section.bits else ''}")
        for row in section.rows:
            if self.index in row.versions:
                self.check(f"{name}::{row.name} == {name}({row.result})")
            else:
                self.check(f"!([]<class T>(T*) {{ return requires {{ T::{row.name}; }}; }}(static_cast<{name}*>(nullptr)))")

    def errors(self, section):
        for number, name, base in section.rows:
            self.check(f"common::error_code::{name} == common::error_code({number}) && "
                       f"failure<common::{name}, common::{base}>")

    def source(self):
        for section in self.sections:
            if section.kind == "functions":
                self.functions(section)
            elif section.kind == "enum" and self.index in section.versions:
                self.enumeration(section)
            elif section.kind in ("class", "value") and self.index in section.versions:
                self.one_class(section)
            elif section.kind == "errors" and self.index + 1 == len(table.VERSIONS):
                self.errors(section)
        self.missing_names()
        version = f"opencl_{table.VERSIONS[self.index]}"
        return "\n".join(('#include "surface.hpp"', f"#include <vorn/mero/{version}.hpp>",
                          f"namespace vorn::mero::{version}::surface_of_version {{", "using namespace mero::surface;",
                          f"using api = mero::api<{version[-3::2]}0>;", *self.lines, "}", ""))


def values(sections):
    """The library's numbers against those of the OpenCL headers; the names are OpenCL's in lower case."""
    # the headers have another number for the one, none for the other, and the rest with a suffix
    own = ("device_terminate_capability", "device_core_temperature_altera")
    suffix = {"kernel_max_sub_group_size_for_ndrange": "_KHR", "kernel_sub_group_count_for_ndrange": "_KHR"}
    header = pathlib.Path(__file__).resolve().parents[2] / "src/internal/opencl_values.hpp"
    lines = ['#include "internal/opencl_values.hpp"', "#include <vorn/mero/opencl.hpp>", "#define CL_TARGET_OPENCL_VERSION 300",
             "#include <CL/cl.h>", "#include <CL/cl_ext.h>", "using namespace vorn::mero;", "namespace cl = internal::cl;"]
    for name in re.findall(r"inline constexpr \S+ (\w+) =", header.read_text()):
        if name not in own:
            lines.append(f"static_assert(cl::{name} == (CL_{name.upper()}{suffix.get(name, '')}));")
    for section in sections:
        if section.kind == "errors":
            lines += [f"static_assert(common::error_code::{name} == common::error_code(CL_{name.upper()}));"
                      for _, name, _ in section.rows]
            continue
        for row in section.rows:
            if row.opencl and row.opencl != "own":
                kind = f"opencl_{table.VERSIONS[row.versions[-1]]}::{row.scope}"
                lines.append(f"static_assert({kind}::{row.name} == {kind}({row.opencl}));")
    return "\n".join((*lines, ""))


def main():
    what, path = sys.argv[1:]
    sections = table.read()
    text = values(sections) if what == "values" else Version(sections, table.VERSIONS.index(what)).source()
    pathlib.Path(path).write_text(text)


main()

#!/usr/bin/env python3
"""Compares what the headers declare with the table, as clang reads them: a version declares nothing that its table lacks.

declared.py CLANG INCLUDE-DIRECTORY
"""

import collections
import json
import subprocess
import sys

sys.dont_write_bytecode = True
import table

FUNCTIONS = ("FunctionDecl", "FunctionTemplateDecl", "CXXMethodDecl", "CXXConversionDecl")
TYPES = ("CXXRecordDecl", "ClassTemplateDecl", "EnumDecl", "TypeAliasDecl", "TypeAliasTemplateDecl", "TypedefDecl")


def documents(text):
    decoder, position = json.JSONDecoder(), 0
    while position < len(text.rstrip()):
        found, position = decoder.raw_decode(text, position)
        yield found
        while position < len(text) and text[position].isspace():
            position += 1


class Declared:
    """Counts the public declarations of a namespace by scope and name."""

    def __init__(self, command, include, header, namespace, opaque):
        self.count, self.opaque = collections.Counter(), opaque
        source = f"#include <vorn/mero/{header}.hpp>\n"
        text = subprocess.run([command, "-std=c++20", f"-I{include}", "-fsyntax-only", "-x", "c++", "-Xclang", "-ast-dump=json",
                               "-Xclang", f"-ast-dump-filter=vorn::mero::{namespace}", "-"],
                              input=source, capture_output=True, text=True, check=True).stdout
        for found in documents(text):
            if found["kind"] == "NamespaceDecl" and found["name"] == namespace:
                self.namespace(found, "")

    def namespace(self, node, scope):
        for inner in node.get("inner", ()):
            name = inner.get("name", "")
            if inner["kind"] == "NamespaceDecl":
                self.namespace(inner, f"{scope}::{name}" if scope else name)
            elif inner["kind"] in TYPES:
                self.type(inner, scope)
            elif inner["kind"] in FUNCTIONS or inner["kind"] == "VarDecl":
                if "previousDecl" not in inner:
                    self.count[scope, "operator" if name.startswith("operator") else name] += 1

    def type(self, node, scope):
        record = node
        if node["kind"] == "ClassTemplateDecl":
            record = next(inner for inner in node["inner"] if inner["kind"] == "CXXRecordDecl")
        if "completeDefinition" in record or node["kind"] not in ("CXXRecordDecl", "ClassTemplateDecl"):
            self.count[scope, node["name"]] += 1
            if (scope, node["name"]) not in self.opaque:
                self.members(record, node["name"])

    def members(self, record, scope):
        access = "public" if record.get("tagUsed") == "struct" or record["kind"] == "EnumDecl" else "private"
        inherits = any(inner["kind"] == "ConstructorUsingShadowDecl" for inner in record.get("inner", ()))
        for inner in record.get("inner", ()):
            access = inner.get("access", access) if inner["kind"] == "AccessSpecDecl" else access
            if access != "public" or inner.get("isImplicit") or "explicitlyDeleted" in inner:
                continue
            if inner["kind"] == "CXXConstructorDecl":
                own = inner["type"]["qualType"].split("(", 1)[1]
                if scope not in own and not inherits:
                    self.count[scope, "constructor"] += 1
            elif inner["kind"] in (*FUNCTIONS, *TYPES, "FieldDecl", "VarDecl", "EnumConstantDecl"):
                name = inner["name"]
                self.count[scope, "operator" if name.startswith("operator") else name] += name != "operator="


def expected(sections, index):
    """The same count from the table, for one version."""
    count = collections.Counter()
    for section in sections:
        name = section.name.split("<")[0]
        if section.kind in ("class", "value", "enum") and index in section.versions:
            count["", name] += 1
            count["", "operator"] += 7 * section.bits
            count["api", name] += 1  # may name every type of its version
        for row in section.rows if section.kind != "errors" else ():
            if index not in row.versions:
                continue
            if row.kind == "constructor":
                own = row.parameters in ((f"{section.name} const&",), (f"{section.name}&&",))
                count[name, "constructor"] += not own
            elif row.kind in ("operator", "conversion"):
                count[name, "operator"] += not row.name.endswith("operator=")
            else:
                count[row.scope.split("<")[0], row.name] += 1
    return count


def shared(sections, namespace):
    """What the table has for a namespace that all versions share."""
    scope = f"mero::{namespace}"
    count = collections.Counter({("", row.name): 1 for section in sections if section.kind in ("functions", "names")
                                 for row in section.rows if row.scope == scope})
    for section in sections:
        if section.kind == "errors" and namespace == "common":
            count.update({("", name): 1 for _, name, _ in section.rows})
            count.update({("error_code", name): 1 for _, name, _ in section.rows})
            count.update({("error_code", "success"): 1, **{(name, "constructor"): 1 for _, name, _ in section.rows}})
    return count


def main():
    command, include = sys.argv[1:]
    sections = table.read()
    opaque = {(row.scope, row.name) for section in sections if section.kind == "names" for row in section.rows}
    surplus, total = [], 0
    for index, version in enumerate(table.VERSIONS):
        found = Declared(command, include, f"opencl_{version}", f"opencl_{version}", opaque).count
        total += found.total()
        surplus += [f"opencl_{version}: {scope or 'namespace'}: {name} ({more} more than the table)"
                    for (scope, name), more in sorted((found - expected(sections, index)).items())]
    for namespace in ("common", "internal"):
        roots = {("", name) for scope, name in opaque if scope == f"mero::{namespace}"} - {("", "error_code")}
        found = Declared(command, include, "opencl_1_0", namespace, roots).count
        total += found.total()
        surplus += [f"{namespace}: {scope or 'namespace'}: {name}" for scope, name in (found - shared(sections, namespace))]
    print(*surplus, f"{total} declarations read, {len(surplus)} that the table lacks", sep="\n")
    return 1 if surplus or total < 3000 else 0


sys.exit(main())

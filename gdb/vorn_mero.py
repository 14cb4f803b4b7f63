"""Shows objects of vorn-mero in gdb: `1.2 buffer 0x5555557a2b10`, or `1.2 buffer, empty` for one that was moved from.

`print $refcount(object)` asks OpenCL for the reference count, with the program's own call.
gdb loads this file with libvorn-mero.so where it is installed; otherwise `source` it.
"""

import re

import gdb
import gdb.printing

CLASS = re.compile(r"vorn::mero::opencl_(\d)_(\d)::(?:internal::)?(\w+)$")


def owner_of(value):
    """The part of an object that has the handles; nothing if it is no object of OpenCL."""
    pending = [value]
    while pending:
        each = pending.pop()
        kind = each.type.strip_typedefs().unqualified()
        if (kind.tag or "").startswith("vorn::mero::internal::owner<"):
            return each
        if kind.code == gdb.TYPE_CODE_STRUCT:
            pending += [each[field] for field in kind.fields() if field.is_base_class]
    return None


def without_reference(value):
    return value.referenced_value() if value.type.code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF) else value


class printer:
    def __init__(self, version, name, owner):
        self.title, self.owner = f"{version} {name.replace('_', ' ')}", owner

    def to_string(self):
        raw = int(self.owner["raw_"])
        return f"{self.title} {raw:#x}" if raw else f"{self.title}, empty"


class lookup(gdb.printing.PrettyPrinter):
    def __init__(self):
        super().__init__("vorn-mero")

    def __call__(self, value):
        if value.type.strip_typedefs().code == gdb.TYPE_CODE_STRUCT:
            value = value.cast(value.dynamic_type)
        match = CLASS.match(value.type.strip_typedefs().unqualified().tag or "")
        owner = owner_of(value) if match else None
        return printer(f"{match[1]}.{match[2]}", match[3], owner) if owner is not None else None


class refcount(gdb.Function):
    """$refcount(object): OpenCL's reference count of an object of vorn-mero. Runs the program for the call."""

    def __init__(self):
        super().__init__("refcount")

    def invoke(self, value):
        value = without_reference(value)
        kinds = [value.type.strip_typedefs().unqualified()]
        if owner_of(value) is None or value.address is None:
            raise gdb.GdbError("$refcount takes an object of vorn-mero that is in memory")
        if not int(owner_of(value)["raw_"]):
            raise gdb.GdbError("the object is empty: it was moved from")
        for kind in kinds:
            scope = (kind.tag or "").rpartition("::")[0]
            function = f"'{scope}::raw::refcount({kind.tag} const&)'"
            try:
                call = gdb.parse_and_eval(f"(unsigned int (*)(void const *)) {function}")
            except gdb.error:
                kinds += [field.type for field in kind.fields() if field.is_base_class]
                continue
            return call.dereference()(value.address)
        raise gdb.GdbError("OpenCL does not count these objects")


gdb.printing.register_pretty_printer(None, lookup(), replace=True)
refcount()

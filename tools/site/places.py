"""Which page each declaration is on, and where."""

import re

from model import EXACT
from render import directory

AREAS = {  # namespace -> folder, title of its part of the reference
    EXACT: ("opencl", "Exact interface"),
    "vorn::mero::easy": ("easy", "Easy layer"),
    "vorn::mero::common": ("common", "Exceptions"),
    "nq": ("nq", "The wire"),
    "vorn::mero": ("internal", "Foundations"),
}
ABOUT = {
    EXACT: "`vorn::mero::opencl_1_0` to `vorn::mero::opencl_2_2`, each with exactly what its OpenCL version defines.",
    "vorn::mero::easy": "`vorn::mero::easy`: devices chosen, arguments checked, commands timed.",
    "vorn::mero::common": "`vorn::mero::common`: one class for each status of OpenCL.",
    "nq": "`nq`: what crosses between the library and `libnq.so`, for tools that stand between the two.",
    "vorn::mero": "`vorn::mero` and `vorn::mero::internal`: bases of the classes above, the logger, the version.",
}
PARTS = ["Objects", "Commands", "Values", "Functions"]  # of the exact interface
LISTED = {  # headers whose classes share a page
    "vorn/mero/common/error.hpp": ("status_exceptions", "Exceptions of the statuses"),
    "vorn/mero/easy/pixel.hpp": ("pixels", "Pixels"),
}
SCOPES = {  # namespaces whose functions have a page of another name than "functions"
    f"{EXACT}::raw": ("raw", "Raw handles"),
    f"{EXACT}::extension": ("extensions", "Extensions"),
    "nq::values": ("values", "Names of values"),
}
SYMBOLS = {"=": "assign", "==": "equal", "!=": "unequal", "<": "less", "()": "call", "[]": "at", "->": "arrow", "*": "star",
           "|": "or", "&": "and", "^": "xor", "~": "not", "|=": "or-assign", "&=": "and-assign", "^=": "xor-assign",
           "++": "next", "+": "plus", "-": "minus"}


def anchor(name):
    found = re.fullmatch(r"operator\s*(\W+)", name)
    if found:
        return "operator-" + SYMBOLS.get(found[1].strip(), "symbol")
    return re.sub(r"\W+", "-", name.replace("~", "destructor-")).strip("-")


def area_of(scope):
    return next(area for area in AREAS if scope == area or scope.startswith(area + "::") or (not scope and area == "nq"))


def shown(each):
    """The name for readers: what has an alias for the default version goes by that."""
    return re.sub(r"^basic_", "", each.name) if each.alias else each.name


class group:
    """What is on one page."""

    def __init__(self, address, title, area, items):
        self.address, self.title, self.area, self.items = address, title, area, items


def sort_out(roots):
    """The pages, in the order of the headers."""
    groups, easy = {}, {each.name: each for each in roots if each.scope == "vorn::mero::easy"}
    for each in roots:
        base = easy.get(each.type.split("<")[0]) if each.kind == "typedef" and each.scope == "vorn::mero::easy" else None
        if base is not None and base.is_class:
            base.alias = (base.alias or []) + [each]
    classes = {each.qualified: each for each in roots if each.is_class or each.kind == "enum"}
    aliases = {id(alias) for each in classes.values() for alias in each.alias or ()}
    for each in roots:
        if id(each) in aliases:
            continue
        area = area_of(each.scope)
        folder, _ = AREAS[area]
        stem, title, alone = "functions", "Functions", False
        if each.is_class or each.kind == "enum":
            stem, title, alone = shown(each), shown(each), True
            if each.file.startswith("nq/blocks/"):
                stem = "blocks_" + each.file.split("/")[-1].removesuffix(".hpp")
                title, alone = "Blocks: " + stem.removeprefix("blocks_").replace("_", ", "), False
            elif each.file in LISTED and each.is_class:
                (stem, title), alone = LISTED[each.file], False
        else:
            owner = operand(each, classes)
            if owner is not None:
                owner.members.append(each)
                continue
            for scope, names in SCOPES.items():
                if each.scope == scope or each.scope.startswith(scope + "::"):
                    stem, title = names
        address = f"reference/{folder}/{stem}.html"
        if alone and address in groups:
            raise SystemExit(f"two pages would be {address}")
        groups.setdefault(address, group(address, title, area, [])).items.append(each)
    return groups


def operand(each, classes):
    """The type that a free operator works on: it is shown there."""
    if not each.name.startswith("operator"):
        return None
    found = re.match(r"\((\w+)", each.arguments)
    return classes.get(f"{each.scope}::{found[1]}") if found else None


def index(groups):
    names = directory()
    for each_group in groups.values():
        scopes = {each.scope for each in each_group.items}
        for each in each_group.items:
            own = len(each_group.items) == 1 and (each.is_class or each.kind == "enum")
            place = anchor(each.name if len(scopes) == 1 else f"{each.scope.rpartition('::')[2]}-{each.name}")
            names.anchors[id(each)] = place
            address = each_group.address if own else f"{each_group.address}#{place}"
            register(names, each, each.qualified, address, each_group.address)
            if each.alias:
                register(names, each, f"{each.scope}::{shown(each)}", address, each_group.address)
                for alias in each.alias:
                    names.add(alias.qualified, address)
    names.add(f"{EXACT}::internal::host_queue", names.find("api::host_queue", "vorn::mero"))
    return names


def register(names, each, qualified, address, path):
    names.add(qualified, address)
    if each.is_class:
        names.classes.setdefault(qualified, each)
    for member in each.members if each.scope != "nq::block" else ():
        if member.exempt:
            continue
        own = "#" not in address
        place = anchor(member.name) if own else f"{address.split('#')[1]}-{anchor(member.name)}"
        names.anchors[id(member)] = place
        if member.is_class:
            register(names, member, f"{qualified}::{member.name}", f"{path}#{place}", path)
        else:  # on a page of several classes the members are below their class
            names.add(f"{qualified}::{member.name}", f"{path}#{place}" if own else address)


def part_of(each):
    first = each.items[0]
    if each.area != EXACT or first.file.endswith("/forward.hpp"):
        return PARTS[0]
    if not (first.is_class or first.kind == "enum"):
        return PARTS[3]
    if first.file.endswith("command.hpp") or first.file.endswith("_commands.hpp"):
        return PARTS[1]
    return PARTS[2] if first.file.endswith("/types.hpp") or first.kind != "class" else PARTS[0]

"""The pages of the reference, as Markdown with HTML in it, for MkDocs."""

import html
import re

from model import ANY, EXACT, ROOT, VERSIONS, joined
from render import directory, first_sentence, page

AREAS = {  # namespace -> folder, title of its part of the reference
    EXACT: ("opencl", "Exact interface"),
    "vorn::mero::easy": ("easy", "Easy layer"),
    "vorn::mero::common": ("common", "Exceptions"),
    "nq": ("nq", "The wire"),
    "vorn::mero": ("internal", "Foundations"),
}
LISTED = {  # headers whose classes share a page
    "vorn/mero/common/error.hpp": ("status_exceptions", "Exceptions of the statuses"),
    "vorn/mero/easy/pixel.hpp": ("pixels", "Pixels"),
}
SCOPES = {  # namespaces whose functions have a page of another name than "functions"
    f"{EXACT}::raw": ("raw", "Raw handles"),
    f"{EXACT}::extension": ("extensions", "Extensions"),
    "nq::values": ("values", "Names of values"),
}
KINDS = {"typedef": "Types", "inherited": "", "variable": "Constants", "function": "Functions", "enum": "Types"}
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


def plain(items):
    return " ".join(joined(element) if element.find(".//programlisting") is None and element.find(".//verbatim") is None
                    else before_listing(element) for element in items)


def before_listing(element):
    return joined(element.find("para") if element.find("para") is not None and element.find("para").text else element)


def badges(versions, outer=None):
    """What tells that some of the versions lack it."""
    all_of = [each for each in VERSIONS if not outer or each in outer]
    have = [each for each in all_of if each in versions]
    if have == all_of or not have:
        return ""
    if len(have) == 1 and have[0] != all_of[-1]:
        return f'<span class="badge until">{have[0]} only</span>'
    out = ""
    if have[0] != all_of[0]:
        out += f'<span class="badge since">since {have[0]}</span>'
    if have[-1] != all_of[-1]:
        out += f'<span class="badge until">until {have[-1]}</span>'
    return out


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
        for each in each_group.items:
            own = len(each_group.items) == 1 and (each.is_class or each.kind == "enum")
            address = each_group.address if own else f"{each_group.address}#{anchor(each.name)}"
            register(names, each, each.qualified, address, each_group.address)
            if each.alias:
                register(names, each, f"{each.scope}::{shown(each)}", address, each_group.address)
                for alias in each.alias:
                    names.add(alias.qualified, address)
    return names


def register(names, each, qualified, address, path):
    names.add(qualified, address)
    if each.is_class:
        names.classes.setdefault(qualified, each)
    for member in each.members:
        if member.is_class:
            register(names, member, f"{qualified}::{member.name}", f"{path}#{anchor(member.name)}", path)
        else:
            inside = anchor(member.name) if "#" not in address else address.split("#")[1]
            names.add(f"{qualified}::{member.name}", f"{path}#{inside}")


def missing(roots):
    """Where a text is missing, and how many were looked at."""
    without, count = [], 0

    def visit(each):
        nonlocal count
        if each.exempt:
            return
        count += 1
        if not each.text:
            without.append(f"include/{each.file}:{each.line}: {each.qualified.replace(ANY, 'opencl_*')} has no text")
        if each.scope != "nq::block":
            for member in each.members:
                visit(member)

    for each in roots:
        visit(each)
    return without, count


def include_of(each):
    if each.file.startswith("vorn/mero/opencl/"):
        later = [version for version in VERSIONS if version in each.versions and version >= "1.2"]
        return f"vorn/mero/opencl_{(later or sorted(each.versions))[0 if later else -1].replace('.', '_')}.hpp"
    if each.file.startswith("vorn/mero/easy/"):
        umbrella = (ROOT / "include/vorn/mero/easy.hpp").read_text()
        return "vorn/mero/easy.hpp" if f"<{each.file}>" in umbrella else each.file
    return each.file


def namespace_of(each):
    if ANY not in each.scope:
        return each.scope or "the global namespace"
    have = [version.replace(".", "_") for version in VERSIONS if version in each.versions]
    span = f"opencl_{have[0]}" + (f" … opencl_{have[-1]}" if len(have) > 1 else "")
    return each.scope.replace(ANY, span)


class writer:
    def __init__(self, each_group, names):
        self.group, self.names = each_group, names
        self.page = page(each_group.address, names)
        self.out = []

    def write(self):
        items = self.group.items
        if len(items) == 1 and (items[0].is_class or items[0].kind == "enum"):
            self.entity(items[0], 1)
        else:
            self.list_of(items)
        return "\n\n".join(self.out) + "\n"

    def list_of(self, items):
        self.out.append(f"---\ntitle: \"{self.group.title}\"\n---\n\n# {self.group.title}")
        merged = {}
        for each in items:
            merged.setdefault((each.scope, each.name) if not each.is_class else id(each), []).append(each)
        self.opening(items[0].file if len({each.file for each in items}) == 1 else None)
        self.out.append(self.table([(each[0], self.page.link(f"{self.group.address}#{anchor(each[0].name)}"),
                                     versions_of(each)) for each in merged.values()]))
        scope = None
        for each in merged.values():
            if each[0].scope != scope and len({one.scope for one in items}) > 1:
                scope = each[0].scope
                self.out.append(f"## {namespace_of(each[0]) if ANY not in scope else scope.rpartition('::')[2]} "
                                f"{{ #in-{anchor(scope)} .plain }}")
            if each[0].is_class:
                self.entity(each[0], 3)
            else:
                self.overloads(each, each[0].scope, None)

    def opening(self, file):
        """What a header of several classes says at its top."""
        if not file:
            return
        text = (ROOT / "include" / file).read_text()
        found = re.search(r"\A(?:#pragma once\n\n)?((?://[^\n]*\n)+)\n?", text)
        if found:
            lines = "\n".join(re.sub(r"^// ?", "", line) for line in found[1].splitlines())
            for part in re.split(r"\n\s*\n", lines):
                if part.startswith("    "):
                    self.out.append(self.page.example(re.sub(r"^    ", "", part, flags=re.MULTILINE)))
                else:
                    self.out.append("<p>" + re.sub(r"`([^`]*)`", lambda code: self.page.code(
                        html.unescape(code[1]), self.group.items[0].scope), html.escape(part, quote=False)) + "</p>")

    def entity(self, each, level):
        name = shown(each)
        if level == 1:
            self.out.append(f"---\ntitle: \"{name}\"\n---\n\n# {name} {{ .name }}")
            self.out.append(f'<p class="kind">{"enum" if each.kind == "enum" else each.kind} in '
                            f"<code>{html.escape(namespace_of(each))}</code>{badges(each.versions)}</p>")
            self.out.append(f'<div class="highlight include"><pre><code><span class="cp">#include</span> '
                            f'<span class="cpf">&lt;{include_of(each)}&gt;</span></code></pre></div>')
        else:
            self.out.append(f"### {each.name} {{ #{anchor(each.name)} .name }}")
        self.out.append(self.declared(each, each.qualified, None))
        for alias in each.alias or ():
            self.out.append(self.declared(alias, each.qualified, None))
        self.out.append(self.page.text(each.text, each.qualified))
        self.inheritance(each)
        self.contents(each, level)

    def declared(self, each, scope, outer):
        mark = badges(each.versions, outer)
        return self.page.declaration(each.declaration(), scope) + (f'<p class="badges">{mark}</p>' if mark else "")

    def inheritance(self, each):
        bases = self.names.bases(each.qualified)
        if bases:
            chain = " → ".join(f"<code>{self.page.name(base.qualified, '', base.name)}</code>" for base in bases)
            self.out.append(f'<p class="inherits">Inherits {chain}</p>')
        derived = [other for name, other in self.names.classes.items()
                   if name == other.qualified and bases_directly(self.names, other, each)]
        if derived and len(derived) < 20:
            self.out.append('<p class="inherits">Inherited by ' + ", ".join(
                f"<code>{self.page.name(other.qualified, '', shown(other))}</code>" for other in derived) + "</p>")

    def contents(self, each, level):
        if each.kind == "enum":
            self.values(each)
        if each.scope == "nq::block":
            self.fields(each)
            return
        merged = {}
        for member in each.members:
            if member.kind not in ("enumvalue", "inherited") and not re.search(r"= (default|delete)$", member.arguments):
                merged.setdefault(member.name, []).append(member)
        if level == 1 and len(merged) > 2 and each.kind != "enum":
            self.out.append("## Summary { .plain }")
            self.out.append(self.table([(list_[0], "#" + anchor(list_[0].name), versions_of(list_)) for list_ in
                                        merged.values()], each.versions))
        sections = {}
        for name, list_ in merged.items():
            title = "Constructors" if name == each.name.split("<")[0] else "Operators" if name.startswith("operator") and \
                each.kind == "enum" else KINDS.get(list_[0].kind, "Nested classes")
            if title == "Constants" and not list_[0].type.startswith("static"):
                title = "Members"
            sections.setdefault(title, []).append(list_)
        for title, lists in sections.items():
            if level == 1:
                self.out.append(f"## {title} {{ .plain }}")
            if title == "Operators":
                self.operators(lists, each)
                continue
            for list_ in lists:
                if list_[0].is_class:
                    self.entity(list_[0], 3)
                else:
                    self.overloads(list_, each.qualified, each.versions, level)
        if level == 1:
            self.inherited(each)

    def overloads(self, list_, scope, outer, level=1):
        if level == 1:
            self.out.append(f"### {list_[0].name} {{ #{anchor(list_[0].name)} .name }}".replace("*", "\\*"))
        for each in list_:
            self.out.append(self.declared(each, scope, outer))
            self.out.append(self.page.text(each.text, scope))
            if each.kind == "enum":
                self.values(each)

    def operators(self, lists, each):
        """Those of a bit field are alike."""
        self.out.append(f'<div id="{anchor(lists[0][0].name)}"></div>')
        for list_ in lists:
            self.out.append(f'<div id="{anchor(list_[0].name)}"></div>' if list_ is not lists[0] else "")
            self.out.append(self.page.declaration(list_[0].declaration(), each.qualified))
        self.out.append(self.page.text(lists[0][0].text, each.qualified))

    def values(self, each):
        rows = "".join(
            f'<tr id="{value.name}"><td><code>{value.name}</code></td><td><code>{html.escape(value.value)}</code></td>'
            f"<td>{self.page.text(value.text, each.qualified)} {badges(value.versions, each.versions)}</td></tr>"
            for value in each.members if value.kind == "enumvalue")
        self.out.append(f'<table class="values"><thead><tr><th>enumerator</th><th>value</th><th></th></tr></thead>'
                        f"<tbody>{rows}</tbody></table>")

    def fields(self, each):
        """The fields of a block, as they lie in memory."""
        lines = ["struct " + each.name + " {", *(f"    {field.type} {field.name};" for field in each.members), "};"]
        self.out[-1 if not self.out[-1].startswith("<p class") else -2] += ""
        self.out.append(self.page.declaration(lines, each.qualified))

    def table(self, rows, outer=None):
        body = "".join(
            f'<tr><td><a href="{link}"><code>{html.escape(each.name)}</code></a></td>'
            f"<td>{self.sentence(each)} {badges(versions, outer)}</td></tr>" for each, link, versions in rows)
        return f'<table class="summary"><tbody>{body}</tbody></table>'

    def sentence(self, each):
        return re.sub(r"`([^`]*)`", r"<code>\1</code>", html.escape(first_sentence(plain(each.text))))

    def inherited(self, each):
        lines = []
        for base in self.names.bases(each.qualified):
            have = dict.fromkeys(member.name for member in base.members if member.name.strip("~") != base.name)
            if have:
                lines.append("<li>from <code>" + self.page.name(base.qualified, "", base.name) + "</code>: " + ", ".join(
                    f"<code>{self.page.name(f'{base.qualified}::{name}', '', name)}</code>" for name in have) + "</li>")
        if lines:
            self.out.append("## Inherited { .plain }")
            self.out.append(f"<ul class=\"inherited\">{''.join(lines)}</ul>")


def versions_of(items):
    return {version for each in items for version in each.versions}


def bases_directly(names, each, base):
    return any(names.resolve(name, each.qualified) is base for name, _ in each.bases)

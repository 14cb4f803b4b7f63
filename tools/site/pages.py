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
    """The first paragraph, code in backticks."""
    paragraph = items[0].find("para") if items else None
    if paragraph is None:
        return ""
    text = paragraph.text or ""
    for each in paragraph:
        if each.tag in ("programlisting", "verbatim", "preformatted", "itemizedlist", "orderedlist"):
            break
        text += (f"`{joined(each)}`" if each.tag == "computeroutput" else joined(each)) + (each.tail or "")
    return text


VERSION_SENTENCE = re.compile(r" ?(?:(?:Since|Until) OpenCL \d\.\d|In OpenCL 1\.0 only)(?:, like [^.]*)?\.")


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
        self.opening(items[0].file if len({each.file for each in items}) == 1 else None)
        scopes = {}
        for each in items:
            scopes.setdefault(each.scope, {}).setdefault(id(each) if each.is_class else each.name, []).append(each)
        for scope, merged in scopes.items():
            if len(scopes) > 1:
                title = scope.rpartition("::")[2] if ANY in scope else scope or "functions of libnq"
                self.out.append(f"## {title} {{ #in-{anchor(scope)} .plain }}")
            self.out.append(self.table([(each[0], "#" + self.names.anchor_of(each[0]), versions_of(each))
                                        for each in merged.values()]))
            for each in merged.values():
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
        if level == 1:  # the search shows the title: some names are there twice
            suffix = "" if self.group.area == EXACT else f" ({AREAS[self.group.area][0]})"
            self.out.append(f"---\ntitle: \"{name}{suffix}\"\nsearch:\n  boost: 3\n---\n\n# {name} {{ .name }}")
            self.out.append(f'<p class="kind">{"enum" if each.kind == "enum" else each.kind} in '
                            f"<code>{html.escape(namespace_of(each))}</code>{badges(each.versions)}</p>")
            self.out.append(f'<div class="highlight include"><pre><code><span class="cp">#include</span> '
                            f'<span class="cpf">&lt;{include_of(each)}&gt;</span></code></pre></div>')
        else:
            self.out.append(f"### {each.name} {{ #{self.names.anchor_of(each)} .name }}")
        aliases = [line for alias in each.alias or () for line in ["", *alias.declaration()]]
        mark = badges(each.versions) if level > 1 else ""
        if each.scope == "nq::block":
            lines = [f"struct {each.name} {{", *(f"    {field.type} {field.name};" for field in each.members), "};"]
            self.out.append(self.page.declarations([(lines, "")], each.qualified))
        else:
            self.out.append(self.page.declarations([(each.declaration() + aliases, mark)], each.qualified))
        self.out.append(self.page.text(each.text, each.qualified))
        self.inheritance(each)
        self.contents(each, level)

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
            return
        merged = {}
        for member in each.members:
            if member.kind != "enumvalue" and not member.exempt:
                merged.setdefault(member.name, []).append(member)
        if level == 1 and sum(list_[0].kind != "typedef" for list_ in merged.values()) > 2 and each.kind != "enum":
            self.out.append("## Summary { .plain }")
            self.out.append(self.table([(list_[0], "#" + self.names.anchor_of(list_[0]), versions_of(list_)) for list_ in
                                        merged.values() if list_[0].kind != "typedef"], each.versions))
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
            if title == "Operators" or lists[0][0].kind == "typedef":
                self.lines(lists, each)
                continue
            for list_ in lists:
                if list_[0].is_class:
                    self.entity(list_[0], 3)
                else:
                    self.overloads(list_, each.qualified, each.versions, level)
        if level == 1:
            self.inherited(each)

    def overloads(self, list_, scope, outer, level=1):
        """All of one name; those of one text share it."""
        name = list_[0].name
        if level == 1:
            self.out.append(f"### {name} {{ #{self.names.anchor_of(list_[0])} .name }}".replace("*", "\\*"))
        alike = []
        for each in list_:
            text = self.page.text(each.text, scope)
            text = VERSION_SENTENCE.sub("", text) if badges(each.versions, outer) else text
            if not alike or alike[-1][1] != text:
                alike.append(([], text))
            alike[-1][0].append(each)
        for same, text in alike:
            self.out.append(self.page.declarations([(each.declaration(), badges(each.versions, outer)) for each in same], scope))
            self.out.append(text)
            if same[0].kind == "enum":
                self.values(same[0])

    def lines(self, lists, each):
        """Types and the operators of bit fields: a line for each is enough."""
        rows, before = [], None
        for member in (member for list_ in lists for member in list_):
            text = self.page.text(member.text, each.qualified)
            code = self.page.marked(member.declaration(), each.qualified)
            rows.append(f'<tr id="{self.names.anchor_of(member)}"><td class="highlight"><code>{code}</code></td>'
                        f"<td>{text if text != before else ''} {badges(member.versions, each.versions)}</td></tr>")
            before = text
        self.out.append(f'<table class="values lines"><tbody>{"".join(rows)}</tbody></table>')

    def values(self, each):
        rows = "".join(
            f'<tr id="{self.names.anchor_of(value)}"><td><code>{value.name}</code></td><td><code>{html.escape(value.value)}</code></td>'
            f"<td>{self.page.text(value.text, each.qualified)} {badges(value.versions, each.versions)}</td></tr>"
            for value in each.members if value.kind == "enumvalue")
        self.out.append(f'<table class="values"><thead><tr><th>enumerator</th><th>value</th><th></th></tr></thead>'
                        f"<tbody>{rows}</tbody></table>")

    def table(self, rows, outer=None):
        body = "".join(
            f'<tr><td><a href="{link}"><code>{html.escape(each.name)}</code></a></td>'
            f"<td>{self.sentence(each)} {badges(versions, outer)}</td></tr>" for each, link, versions in rows)
        return f'<table class="summary"><tbody>{body}</tbody></table>'

    def sentence(self, each):
        text = plain(each.text)
        parts = first_sentence(VERSION_SENTENCE.sub("", text).strip() or text).split("`")
        parts[1::2] = [self.page.code(part, each.qualified if each.is_class else each.scope) for part in parts[1::2]]
        parts[::2] = [html.escape(part) for part in parts[::2]]
        return "".join(parts)

    def inherited(self, each):
        lines = []
        for base in self.names.bases(each.qualified):
            have = dict.fromkeys(member.name for member in base.members
                                 if member.name.strip("~") != base.name and not member.exempt)
            if have:
                lines.append("<li>from <code>" + self.page.name(base.qualified, "", base.name) + "</code>: " + ", ".join(
                    f"<code>{self.page.name(f'{base.qualified}::{name}', '', name)}</code>" for name in have) + "</li>")
        if lines:
            self.out.append("## Inherited { .plain }")
            self.out.append(f"<ul class=\"inherited\">{''.join(lines)}</ul>")


def part_of(each):
    first = each.items[0]
    if each.area != EXACT or first.file.endswith("/forward.hpp"):
        return PARTS[0]
    if not (first.is_class or first.kind == "enum"):
        return PARTS[3]
    if first.file.endswith("command.hpp") or first.file.endswith("_commands.hpp"):
        return PARTS[1]
    return PARTS[2] if first.file.endswith("/types.hpp") or first.kind != "class" else PARTS[0]


def overview(groups, names, address):
    """A table of pages."""
    rows = []
    for each in groups:
        made = writer(each, names)
        made.page = page(address, names)
        first = each.items[0]
        alone = len(each.items) == 1 and (first.is_class or first.kind == "enum")
        text = made.sentence(first) + badges(first.versions) if alone else f"{len(each.items)} declarations"
        rows.append(f'<tr><td><a href="{made.page.link(each.address)}"><code>{html.escape(each.title)}</code></a></td>'
                    f"<td>{text}</td></tr>")
    return f'<table class="summary"><tbody>{"".join(rows)}</tbody></table>'


def versions_of(items):
    return {version for each in items for version in each.versions}


def bases_directly(names, each, base):
    return any(names.resolve(name, each.qualified) is base for name, _ in each.bases)

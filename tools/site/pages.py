"""The pages of the reference, as Markdown with HTML in it, for MkDocs."""

import html
import re

from model import ANY, EXACT, ROOT, VERSIONS, joined
from places import AREAS, anchor, shown
from render import first_sentence, page

KINDS = {"typedef": "Types", "inherited": "", "variable": "Constants", "function": "Functions", "enum": "Types"}
VERSION_SENTENCE = re.compile(r" ?(?:(?:Since|Until) OpenCL \d\.\d|In OpenCL 1\.0 only)(?:, like [^.]*)?\.")


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


def included(header, seen):
    """All headers of the project that one includes."""
    if header not in seen and (ROOT / "include" / header).exists():
        seen.add(header)
        for each in re.findall(r"#include <(vorn/[^>]+)>", (ROOT / "include" / header).read_text()):
            included(each, seen)
    return seen


def include_of(each):
    """What a program includes for it."""
    if each.file.startswith("vorn/mero/opencl/"):
        later = [version for version in VERSIONS if version in each.versions and version >= "1.2"]
        return f"vorn/mero/opencl_{(later or sorted(each.versions))[0 if later else -1].replace('.', '_')}.hpp"
    if each.file.startswith("vorn/mero/easy/") and each.file in included("vorn/mero/easy.hpp", set()):
        return "vorn/mero/easy.hpp"
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
        self.out.append(f"---\ntitle: \"{self.group.title}\"\nsearch:\n  boost: 2\n---\n\n# {self.group.title}")
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
            boost = max(1, round((30 / len(name)) ** 2, 1))  # of all names that begin like a query the shortest is meant
            suffix = "" if self.group.area == EXACT else f" ({AREAS[self.group.area][0]})"
            self.out.append(f"---\ntitle: \"{name}{suffix}\"\nsearch:\n  boost: {boost}\n---\n\n# {name} {{ .name }}")
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
            self.specializations(each)
            self.inherited(each)

    def specializations(self, each):
        """Their members are those of the template."""
        told = [special for special in each.specializations if special.text]
        if told:
            self.out.append("## Specializations { .plain }")
        for special in told:
            self.out.append(self.page.declarations([(special.declaration(), "")], each.qualified))
            self.out.append(self.page.text(special.text, each.qualified))

    def overloads(self, list_, scope, outer, level=1):
        """All of one name; those of one text share it."""
        name = list_[0].name
        if level == 1:
            self.out.append(f"### {name} {{ #{self.names.anchor_of(list_[0])} .name }}".replace("*", "\\*"))
        alike, before = {}, None
        for position, each in enumerate(list_):
            text = self.page.text(each.text, scope)
            text = VERSION_SENTENCE.sub("", text) if badges(each.versions, outer) else text
            if text != before and text.startswith("<p>The same"):  # as the one above it
                text += f"<!-- {position} -->"
            alike.setdefault(text, []).append(each)
            before = text
        for text, same in alike.items():
            declared = [(each.declaration(), badges(each.versions, outer)) for each in same]
            self.out.append(self.page.declarations(declared, scope))
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
            f'<tr id="{self.names.anchor_of(value)}"><td><code>{value.name}</code></td>'
            f"<td><code>{html.escape(value.value)}</code></td>"
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

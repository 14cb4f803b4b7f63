"""Comments and declarations as HTML, with links to the pages of what they name."""

import html
import re

from pygments import highlight
from pygments.formatters import HtmlFormatter
from pygments.lexers import BashLexer, CMakeLexer, CppLexer

from model import ANY, EXACT, joined

WIDTH = 96
ALIASES = {"cl": EXACT, "ez": "vorn::mero::easy"}
KEYWORDS = {"const", "noexcept", "class", "struct", "typename", "template", "using", "static", "explicit", "constexpr",
            "virtual", "override", "final", "enum", "public", "default", "delete", "operator", "auto", "decltype", "inline",
            "sizeof", "union"}
TYPES = {"void", "bool", "int", "unsigned", "char", "float", "double", "long", "short"}


class directory:
    """Where the page of each name is."""

    def __init__(self):
        self.places = {}   # qualified name -> address from the root of the site
        self.classes = {}  # qualified name -> item
        self.anchors = {}  # id of an item -> where it is on its page

    def add(self, qualified, address):
        self.places.setdefault(qualified, address)

    def anchor_of(self, each):
        return self.anchors[id(each)]

    def find(self, name, scope):
        """The address of a name as written within a scope, or None; other texts too name the exact interface."""
        name = re.sub(r"<.*?>|\(.*\)$", "", name).strip().strip(":")
        first, _, rest = name.partition("::")
        name = ALIASES[first] + ("::" + rest if rest else "") if first in ALIASES else name
        name = re.sub(r"\bopencl_[12]_[012]\b", ANY, name)
        return self.within(name, scope) or ("::" in name and self.within(name, EXACT)) or None

    def within(self, name, scope):
        while True:
            full = f"{scope}::{name}" if scope else name
            found = self.places.get(full) or self.inherited(full)
            if found or not scope:
                return found
            scope = scope.rpartition("::")[0]

    def inherited(self, full):
        owner, _, member = full.rpartition("::")
        for base in self.bases(owner):
            if f"{base.qualified}::{member}" in self.places:
                return self.places[f"{base.qualified}::{member}"]
        return None

    def bases(self, qualified):
        """All public bases that have a page, nearest first."""
        found = []
        for name, _ in self.classes[qualified].bases if qualified in self.classes else ():
            base = self.resolve(name, qualified)
            if base:
                found += [base, *self.bases(base.qualified)]
        return found

    def resolve(self, name, scope):
        name = name.split("<")[0].strip()
        while True:
            full = f"{scope}::{name}" if scope else name
            if full in self.classes and full != scope:
                return self.classes[full]
            if not scope:
                return None
            scope = scope.rpartition("::")[0]


class page:
    """Makes HTML for one page, whose links are relative to it."""

    def __init__(self, address, names):
        self.address, self.names = address, names

    def link(self, target):
        path, _, anchor = target.partition("#")
        if path == self.address:
            return "#" + anchor if anchor else path.rpartition("/")[2]
        here, there = self.address.split("/")[:-1], path.split("/")
        while here and len(there) > 1 and here[0] == there[0]:
            here, there = here[1:], there[1:]
        return "/".join([".."] * len(here) + there) + ("#" + anchor if anchor else "")

    def name(self, written, scope, shown=None):
        found = self.names.find(written, scope)
        shown = html.escape(shown or written)
        return f'<a href="{self.link(found)}">{shown}</a>' if found else shown

    def code(self, text, scope):
        """A name or a piece of code within a sentence."""
        plain = re.fullmatch(r"~?[\w:]+(?:<[^<>]*>)?(?:\(\))?|[\w:]*operator\W{1,2}", text)
        return f"<code>{self.name(text, scope) if plain else html.escape(text)}</code>"

    def example(self, text):
        text = text.strip("\n")
        lexer = CppLexer()
        if text.lstrip().startswith(("find_package", "target_")):
            lexer = CMakeLexer()
        elif text.lstrip().startswith("$ "):
            lexer = BashLexer()
        body = highlight(text, lexer, HtmlFormatter(nowrap=True)).rstrip("\n")
        return f'<div class="highlight"><pre><code>{body}</code></pre></div>'

    def text(self, items, scope):
        """The paragraphs of a comment."""
        return "\n".join(self.block(each, scope) for element in items for each in element)

    def block(self, element, scope):
        tag = element.tag
        if tag == "para":
            return self.paragraph(element, scope)
        if tag in ("itemizedlist", "orderedlist"):
            name = "ul" if tag == "itemizedlist" else "ol"
            rows = "".join("<li>" + "".join(self.inline(para, scope) for para in each) + "</li>" for each in element)
            return f"<{name}>{rows}</{name}>"
        raise SystemExit(f"a comment has {tag}, which no page shows: {joined(element)[:80]}")

    def paragraph(self, element, scope):
        """Lists and code within a paragraph stand by themselves."""
        out, run = [], [html.escape(element.text or "")]

        def close():
            text = "".join(run).strip()
            if text:
                out.append(f"<p>{text}</p>")
            run.clear()

        for each in element:
            if each.tag in ("programlisting", "verbatim", "preformatted"):
                close()
                out.append(self.example(code_of(each)))
            elif each.tag in ("itemizedlist", "orderedlist"):
                close()
                out.append(self.block(each, scope))
            else:
                run.append(self.inlined(each, scope))
            run.append(html.escape(each.tail or ""))
        close()
        return "\n".join(out)

    def inline(self, element, scope):
        return html.escape(element.text or "") + "".join(
            self.inlined(each, scope) + html.escape(each.tail or "") for each in element)

    def inlined(self, each, scope):
        if each.tag == "computeroutput":
            return self.code(joined(each), scope)
        if each.tag == "emphasis":
            return f"<em>{self.inline(each, scope)}</em>"
        if each.tag == "bold":
            return f"<strong>{self.inline(each, scope)}</strong>"
        if each.tag in ("ref", "ulink"):
            return self.inline(each, scope)
        if each.tag in ("ndash", "mdash", "sp", "linebreak"):
            return {"ndash": "–", "mdash": "—", "sp": " ", "linebreak": " "}[each.tag]
        raise SystemExit(f"a comment has {each.tag}, which no page shows: {joined(each)[:80]}")

    def declarations(self, declared, scope):
        """Declarations, each wrapped at its arguments, with what tells their versions behind them."""
        marked = [self.marked([wrap(line) for line in lines], scope) + mark for lines, mark in declared]
        gap = "\n\n" if any("\n" in each for each in marked) else "\n"
        return f'<div class="highlight declaration"><pre><code>{gap.join(marked)}</code></pre></div>'

    def marked(self, lines, scope):
        """Code with links, and the name that it declares."""
        wrapped, rest = "\n".join(lines), [line for line in lines if not line.startswith("template")]
        parts = re.split(r"([A-Za-z_~][\w]*(?:::[A-Za-z_~]\w*)*)", wrapped)
        declared = declared_name(rest[0])
        for i in range(1, len(parts), 2):
            word = parts[i]
            if word in KEYWORDS:
                parts[i] = f'<span class="k">{word}</span>'
            elif word in TYPES or word.startswith("std::"):
                parts[i] = f'<span class="kt">{word}</span>'
            elif word == declared:
                parts[i], declared = f'<span class="nf">{word}</span>', None
            else:
                parts[i] = self.name(word, scope)
        parts[::2] = [html.escape(each) for each in parts[::2]]
        return "".join(parts)


def declared_name(line):
    """The name that a declaration is about; None for operators."""
    words = line.split()
    if words[0] in ("class", "struct", "enum"):
        return re.match(r"\w+", words[2 if words[1] == "class" else 1])[0]
    head = re.split(r"\(| : | = ", line.replace("operator()", "operator").replace("(*)", ""))[0]
    head = head if not line.startswith("using ") else line.split(" = ")[0]
    words = re.findall(r"~?\w+", head.split("operator")[0])
    return words[-1] if words and "operator" not in head else None


def code_of(element):
    """The text of a listing; Doxygen writes blanks as elements."""
    if element.tag != "programlisting":
        return joined(element)
    lines = []
    for line in element.iter("codeline"):
        text = ""
        for each in line.iter():
            text += (" " if each.tag == "sp" else "") + (each.text or "") if each is not line else ""
            text += each.tail or "" if each is not line else ""
        lines.append(text.rstrip())
    return "\n".join(lines)


def wrap(line):
    """One argument a line where the declaration is long."""
    start = line.find("(") if not line.startswith(("template", "using")) else -1
    if line.startswith("template") and len(line) > WIDTH:
        start = line.find("<")
    if len(line) <= WIDTH or start < 0:
        return line
    arguments, depth, last = [], 0, start + 1
    for i in range(start, len(line)):
        depth += line[i] in "(<{"
        depth -= line[i] in ")>}" and line[i - 1] != "-"
        if depth == 1 and line[i] == "," or depth == 0:
            arguments.append(line[last:i].strip())
            last = i + 1
        if depth == 0:
            return f"{line[:start + 1]}\n    " + ",\n    ".join(arguments) + line[i:]
    return line


def first_sentence(text):
    """Up to the first full stop of a text without markup."""
    text = re.sub(r"\s+", " ", text).strip()
    found = re.search(r"^(.*?[.:])(?= [A-Z`]|$)", text)
    return (found[1] if found else text).rstrip(":.") + "." if text else ""

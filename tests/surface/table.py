"""Reads surface.txt: every declaration of the public surface, with the versions that have it."""

import dataclasses
import pathlib
import re

VERSIONS = ("1_0", "1_1", "1_2", "2_0", "2_1", "2_2")
NEVER = range(0)


@dataclasses.dataclass
class Row:
    """One declaration. The scope is the class or the namespace that it stands in."""

    scope: str
    kind: str  # constructor function operator conversion data using constant enumerator name
    name: str
    versions: range
    text: str
    result: str = ""
    parameters: tuple = ()
    const: bool = False
    explicit: bool = False
    static: bool = False
    opencl: str = ""


@dataclasses.dataclass
class Section:
    kind: str
    name: str
    versions: range
    pattern: str = ""
    arguments: tuple = ()
    base: str = ""
    underlying: str = ""
    bits: bool = False
    rows: list = dataclasses.field(default_factory=list)


def versions_of(text):
    if text == "never":
        return NEVER
    first, last = re.fullmatch(r"(\d\.\d)(?:-(\d\.\d)|\+)?", text).groups()
    start = VERSIONS.index(first.replace(".", "_"))
    end = VERSIONS.index(last.replace(".", "_")) if last else len(VERSIONS) - 1 if text.endswith("+") else start
    return range(start, end + 1)


def both(a, b):
    return range(max(a.start, b.start), min(a.stop, b.stop)) if a and b else NEVER


def split_parameters(text):
    parts, depth = [""], 0
    for character in text:
        depth += (character in "(<[") - (character in ")>]")
        if character == "," and depth == 0:
            parts.append("")
        else:
            parts[-1] += character
    return tuple(part.strip() for part in parts if part.strip())


def parse_function(scope, versions, text):
    row = Row(scope, "function", "", versions, text)
    declaration = text
    for word in ("explicit", "static"):
        if declaration.startswith(word + " "):
            setattr(row, word, True)
            declaration = declaration[len(word) + 1:]
    row.const = declaration.endswith(" const")
    declaration = declaration.removesuffix(" const")
    depth, begin = 0, len(declaration)
    while begin == len(declaration) or depth:
        begin -= 1
        depth += (declaration[begin] == ")") - (declaration[begin] == "(")
    row.parameters = split_parameters(declaration[begin + 1:-1])
    head = declaration[:begin]
    found = re.fullmatch(r"(?:(.*?) ?)?(operator *(?:==|<|=)|operator [\w:]+|(?:raw::)?\w+(?:<\w+>)?)", head)
    row.result, row.name = (found.group(1) or "").strip(), found.group(2)
    if row.name.startswith("raw::"):
        row.scope, row.name = "raw", row.name.removeprefix("raw::")
    elif row.name.startswith("operator"):
        row.kind = "operator" if re.search(r"[=<]", row.name) else "conversion"
    elif not row.result:
        row.kind = "constructor"
    return row


def parse_row(section, versions, text):
    if section.kind == "enum":
        name, value, *opencl = re.fullmatch(r"(\w+) = (\S+)(?: (\w+))?", text).groups()
        standard = section.arguments[0] + name.rstrip("_").upper()
        return Row(section.name, "enumerator", name, versions, text, value, opencl=opencl[0] or standard)
    if section.kind == "names":
        return Row(section.name, "name", text, versions, text)
    if found := re.fullmatch(r"constant (\w+) = (\S+) (\w+)", text):
        return Row(section.name, "constant", found[1], versions, text, found[2], opencl=found[3])
    if found := re.fullmatch(r"using (\w+) = (\S+)", text):
        return Row(section.name, "using", found[1], versions, text, found[2])
    if "(" not in text:
        result, name = text.rsplit(" ", 1)
        return Row(section.name, "data", name, versions, text, result)
    return parse_function(section.name, versions, text)


def parse_head(line):
    kind, *words = line.split()
    section = Section(kind, "", range(len(VERSIONS)))
    if kind == "pattern":
        section.name, section.arguments = words[0], tuple(words[1:])
    elif kind == "enum":
        section.name, section.underlying, section.versions = words[0], words[1], versions_of(words[2])
        section.arguments, section.bits = (words[3],), "bits" in words
    elif kind in ("class", "value"):
        section.name, section.versions = words[0], versions_of(words[1])
        if "<" in words:
            section.base = words[words.index("<") + 1]
            words = words[:words.index("<")]
        if ":" in words:
            section.pattern, section.arguments = words[3], tuple(words[4:])
    else:
        section.name = words[0] if words else ""
    return section


def fill(text, pattern, arguments):
    for name, argument in zip(pattern.arguments, arguments):
        text = re.sub(re.escape(name) + r"\b", argument, text)
    return text


def read():
    """All sections, the rows of their patterns included; a row's versions lie within those of its section."""
    sections, patterns, current = [], {}, None
    for line in (pathlib.Path(__file__).parent / "surface.txt").read_text().splitlines():
        if not line.strip() or line.startswith("#"):
            continue
        if line[0] != " ":
            current = parse_head(line)
            if current.kind == "pattern":
                patterns[current.name] = current
                continue
            sections.append(current)
            if current.pattern:
                pattern = patterns[current.pattern]
                for versions, text in pattern.rows:
                    text = fill(text, pattern, (current.name, *current.arguments))
                    current.rows.append(parse_row(current, both(versions_of(versions), current.versions), text))
            continue
        versions, text = line.split(None, 1)
        if current.kind == "pattern":
            current.rows.append((versions, text))
        elif current.kind == "errors":
            current.rows.append((int(versions), *text.split()))
        else:
            listed = versions_of(versions)
            if listed and listed.start < current.versions.start:
                raise ValueError(f"{current.name} has a member before it exists: {line}")
            current.rows.append(parse_row(current, both(listed, current.versions), text))
    return sections

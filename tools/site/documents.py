"""README.md, docs/ and the sources that they name, as pages."""

import re

from model import ROOT

FENCE = re.compile(r"(^ *```.*?^ *```$)", re.MULTILINE | re.DOTALL)
SOURCES = ("cookbook", "examples")
START = "index.md"


def pages(names):
    """Text of each page by its path in the site; code that `names` knows links to the reference."""
    made = {START: page("README.md", "", names)}
    for path in sorted((ROOT / "docs").glob("*.md")):
        made[path.name] = page(f"docs/{path.name}", "docs/", names)
    made["changelog.md"] = page("CHANGELOG.md", "", names)
    made["security.md"] = page("SECURITY.md", "", names)
    made["contributing.md"] = page("CONTRIBUTING.md", "", names)
    made["license.md"] = f"# Licence\n\n```text\n{(ROOT / 'LICENSE').read_text()}```\n"
    for folder in SOURCES:
        for path in sorted((ROOT / folder).glob("*.[ch]pp")):
            made[f"{folder}/{path.name.replace('.', '_')}.md"] = (
                f"---\ntitle: {path.name}\nsearch:\n  exclude: true\n---\n\n# {folder}/{path.name} {{ .name }}\n\n"
                f"```cpp\n{path.read_text()}```\n")
    return made


def title_of(text):
    found = re.search(r"^# (.*?)(?: \{.*\})?$", text, re.MULTILINE)
    return found[1]


def page(name, folder, names):
    parts = FENCE.split((ROOT / name).read_text())
    for i in range(0, len(parts), 2):
        parts[i] = named(prose(parts[i], folder), names, name)
    for i in range(1, len(parts), 2):
        parts[i] = re.sub(r"\A( *```\w+).*", r"\1", parts[i], count=1) if "title=" in parts[i] else parts[i]
    text = "".join(parts)
    heads = [found.start() for found in re.finditer(r"^# ", without_fences(text), re.MULTILINE)]
    return demoted(text) if len(heads) > 1 else text


def without_fences(text):
    return FENCE.sub(lambda found: " " * len(found[0]), text)


def demoted(text):
    """One title a page: what follows the first goes a level down."""
    parts, seen = FENCE.split(text), False
    for i in range(0, len(parts), 2):
        lines = parts[i].split("\n")
        for j, line in enumerate(lines):
            if re.match(r"#+ ", line):
                lines[j] = "#" + line if seen else line
                seen = True
        parts[i] = "\n".join(lines)
    return "".join(parts)


def prose(text, folder):
    text = re.sub(r"<!--.*?-->\n*", "", text, flags=re.DOTALL)
    text = re.sub(r"\[([^][]*)\]\(([^)\s]+)\)", lambda found: link(found[1], found[2], folder), text)
    return re.sub(r"(?m)^((?![-*|>#]|\d+\. | *$).*\n)(?=(?:[-*]|\d+\.) )", r"\1\n", text)


def named(text, names, name):
    """Links the names of the reference, and on the page of a folder of sources those of its programs."""
    folder = name.removeprefix("docs/").removesuffix(".md")

    def linked(found):
        code = found[0].strip("`")
        source = re.match(r"\w+", code)
        if folder in SOURCES and source and (ROOT / folder / f"{source[0]}.cpp").exists():
            return f"[{found[0]}]({folder}/{source[0]}_cpp.md)"
        target = names.find(code, "vorn::mero") if re.fullmatch(r"(?:\w+::)+~?\w+(?:\(\))?", code) else None
        return f"[{found[0]}]({target.replace('.html', '.md')})" if target else found[0]

    return re.sub(r"(?<![\[`\w])`[^`\n]+`(?![`\]])", linked, text)


def link(label, target, folder):
    """Targets of the tree as those of the site."""
    if re.match(r"[a-z]+:|#", target):
        return f"[{label}]({target})"
    path, mark, anchor = target.partition("#")
    path = re.sub(r"^\.\./", "", path) if folder and path.startswith("../") else folder + path
    if label == target and path.startswith("docs/"):
        label = title_of((ROOT / path).read_text())
    known = {"CHANGELOG.md": "changelog.md", "SECURITY.md": "security.md", "CONTRIBUTING.md": "contributing.md", "LICENSE": "license.md",
             "README.md": START}
    if path.startswith(SOURCES) and path.endswith("pp"):
        path = re.sub(r"\.([ch]pp)$", r"_\1.md", path)
    return f"[{label}]({known.get(path, path.removeprefix('docs/'))}{mark}{anchor})"

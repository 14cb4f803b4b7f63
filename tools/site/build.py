"""Makes the pages of the site in a folder; MkDocs, which scripts/docs runs next, makes HTML of them."""

import json
import pathlib
import shutil
import sys

import yaml

import documents
import model
import pages
import places

HERE = pathlib.Path(__file__).resolve().parent


INTRODUCTION = """Made from the headers. Each declaration is here once: a badge such as
<span class="badge since">since 1.2</span> or <span class="badge until">until 1.1</span> tells which of the six namespaces
have it; without a badge all have it. The search finds each name.
"""


def write(folder, name, text):
    path = folder / name
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text)


def reference(folder, roots):
    """Writes the pages of the reference; their part of the navigation."""
    groups = places.sort_out(roots)
    names, areas = places.index(groups), {}
    classes = [(places.shown(each), each_group.address) for each_group in groups.values() for each in each_group.items
               if each.is_class or each.kind == "enum"]
    (folder.parent / "classes.json").write_text(json.dumps(classes))
    for each in sorted(groups.values(), key=lambda group: group.title):
        path = each.address.replace(".html", ".md")
        write(folder, path, pages.writer(each, names).write())
        areas.setdefault(each.area, []).append(each)
    index, nav = "reference/index.md", []
    lines = ["# Reference\n", INTRODUCTION]
    for area, (_, title) in places.AREAS.items():
        lines.append(f"## {title}\n\n{places.ABOUT[area]}\n")
        parts = {}
        for each in areas[area]:
            parts.setdefault(places.part_of(each), []).append(each)
        entries = []
        for part in sorted(parts, key=places.PARTS.index):
            here = [{each.title: each.address.replace(".html", ".md")} for each in parts[part]]
            lines += [f"### {part}\n"] * (len(parts) > 1)
            lines.append(pages.overview(parts[part], names, "reference/index.html") + "\n")
            entries += [{part: here}] if len(parts) > 1 else here
        nav.append({title: entries})
    write(folder, index, "\n".join(lines))
    return [index, *nav], names


def expanded(nav, parts):
    """The navigation, with the parts that are made in place of their names."""
    if isinstance(nav, list):
        return [expanded(each, parts) for each in nav]
    if isinstance(nav, dict):
        return {title: expanded(each, parts) for title, each in nav.items()}
    return parts.get(nav, nav)


def main():
    out = pathlib.Path(sys.argv[1])
    folder = out / "pages"
    shutil.rmtree(folder, ignore_errors=True)
    roots = model.read(out / "xml")
    nav, names = reference(folder, roots)
    parts = {"reference": nav}
    written = documents.pages(names)
    for name, text in written.items():
        write(folder, name, text)
    for source in documents.SOURCES:
        parts[source] = [{documents.title_of(text).split("/")[-1]: name} for name, text in written.items()
                         if name.startswith(source + "/")]
    shutil.copytree(model.ROOT / "docs/images", folder / "images")
    for name in ("style.css", "iframe-worker.js"):
        shutil.copy(HERE / name, folder)
    configuration = yaml.safe_load((HERE / "mkdocs.yml").read_text())
    configuration["nav"] = expanded(configuration["nav"], parts)
    (out / "mkdocs.yml").write_text(yaml.safe_dump(configuration, sort_keys=False, allow_unicode=True))
    without, count = model.missing(roots)
    print(*without, sep="\n", end="\n" if without else "")
    print(f"{len(list(folder.rglob('*.md')))} pages; {count} declarations, {len(without)} of them without a text")
    return 1 if without else 0


sys.exit(main())

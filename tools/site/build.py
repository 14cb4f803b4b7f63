"""Makes the pages of the site in a folder; MkDocs, which scripts/docs runs next, makes HTML of them."""

import pathlib
import shutil
import sys

import yaml

import documents
import model
import pages

HERE = pathlib.Path(__file__).resolve().parent


def write(folder, name, text):
    path = folder / name
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text)


def reference(folder, roots):
    """Writes the pages of the reference; their part of the navigation."""
    groups = pages.sort_out(roots)
    names, areas = pages.index(groups), {}
    for each in sorted(groups.values(), key=lambda group: group.title):
        path = each.address.replace(".html", ".md")
        write(folder, path, pages.writer(each, names).write())
        areas.setdefault(each.area, []).append({each.title: path})
    index, nav = "reference/index.md", []
    lines = ["# Reference\n"]
    for area, (_, title) in pages.AREAS.items():
        nav.append({title: areas[area]})
        lines.append(f"## {title}\n\n`{area}`\n")
        lines += [f"- [{name}]({path.removeprefix('reference/')})" for entry in areas[area] for name, path in entry.items()]
        lines.append("")
    write(folder, index, "\n".join(lines))
    return [index, *nav]


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
    parts = {"reference": reference(folder, roots)}
    written = documents.pages()
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
    without, count = pages.missing(roots)
    print(*without, sep="\n")
    print(f"{len(list(folder.rglob('*.md')))} pages; {count} declarations, {len(without)} of them without a text")
    return 1 if without else 0


sys.exit(main())

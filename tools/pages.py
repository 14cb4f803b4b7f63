"""Pages of the documentation whose figures a tool writes, between marks."""

import os
import pathlib
import re
import subprocess


def machine(build):
    """What the figures depend on."""
    cpu = re.search(r"^model name\s*:\s*(.*)$", pathlib.Path("/proc/cpuinfo").read_text(), re.MULTILINE)
    cache = (build / "CMakeCache.txt").read_text()
    compiler = re.search(r"^CMAKE_CXX_COMPILER:\w+=(.*)$", cache, re.MULTILINE).group(1)
    version = subprocess.run([compiler, "--version"], stdout=subprocess.PIPE, check=True, text=True).stdout
    return {"cpu": cpu.group(1) if cpu else "unknown", "cores": len(os.sched_getaffinity(0)),
            "compiler": version.splitlines()[0]}


def table(columns, rows):
    """A first column of text, and columns of figures."""
    lines = [columns, ["---"] + ["---:"] * (len(columns) - 1), *rows]
    return "\n".join("| " + " | ".join(cells) + " |" for cells in lines)


def fill(page, kind, write):
    """Replaces what is between each <!-- KIND: WORDS --> and <!-- end of KIND --> by `write(words)`; which words there were."""
    text, seen = page.read_text(), []

    def written(found):
        seen.append(found[2].split())
        return f"{found[1]}\n{write(*seen[-1])}\n\n{found[3]}"

    mark = re.compile(rf"(<!-- {kind}: (.*?) -->\n).*?(<!-- end of {kind} -->)", re.DOTALL)
    page.write_text(mark.sub(written, text))
    return seen

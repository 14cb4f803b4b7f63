"""Draws what tools/soak has measured, as an SVG for light and dark pages: a row for each implementation and kind of load,
with memory and what the program holds over the operations on the left, the times of each operation on the right."""

import math

from svg import style, text

COLOURS = {"library": ("#0969da", "#58a6ff"), "c": ("#bc4c00", "#f0883e")}  # on light and on dark pages
WIDTH, HEAD, PANEL, GAP = 960, 60, 150, 66
LEFT, MIDDLE = (84, 430), (600, 930)
MEMORY, STRIP, BETWEEN = 90, 13, 7  # heights within a panel: of memory, of each count below it, of the gaps
COUNTS = {"references": "references", "call_handles": "call handles", "files": "open files"}
MIB = 1 << 20


def line(x1, y1, x2, y2, kind="grid", width=1):
    return f'<line class="{kind}" stroke-width="{width}" x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}"/>'


def draw_course(samples, key, end, bottom, scale):
    """The points of what develops over the operations; `scale`: units of the drawing for one."""
    return " ".join(f"{LEFT[0] + (LEFT[1] - LEFT[0]) * each['operations'] / end:.1f},{bottom - each[key] * scale:.1f}"
                    for each in samples)


def draw_memory(run, top, end):
    """Resident memory and heap from zero, so that what looks flat is flat."""
    most = max(each["resident"] for load in COLOURS for each in run[load]["samples"])
    bottom, scale = top + MEMORY, MEMORY / 1.1 / most
    for share in (0, 0.5, 1):
        y = bottom - most * share * scale
        yield line(LEFT[0], y, LEFT[1], y)
        yield text(LEFT[0] - 8, y + 4, f"{most * share / MIB:.0f} MiB", "end", "faint", 11)
    for load in ("c", "library"):
        dashes = ' stroke-dasharray="4 3"' if load == "c" else ""
        for key, width in (("resident", 1.5), ("heap", 1)):
            points = draw_course(run[load]["samples"], key, end, bottom, scale)
            yield f'<polyline class="of-{load}" style="fill:none" stroke-width="{width}"{dashes} points="{points}"/>'
    last = run["library"]["samples"][-1]
    for key in ("resident", "heap"):
        yield text(LEFT[1] + 6, bottom - last[key] * scale + 4, key, kind="faint", size=11)


def draw_counts(run, top, end):
    """What the program holds by the library: a strip from zero for each, with the last number."""
    samples = run["library"]["samples"]
    left, right = (LEFT[0] + (LEFT[1] - LEFT[0]) * samples[i]["operations"] / end for i in (0, -1))
    for i, (key, name) in enumerate(COUNTS.items()):
        bottom = top + MEMORY + (i + 1) * (STRIP + BETWEEN)
        points = draw_course(samples, key, end, bottom, STRIP / max(1, *(each[key] for each in samples)))
        yield line(LEFT[0], bottom, LEFT[1], bottom)
        yield (f'<polygon class="of-library" style="fill-opacity:.2;stroke:none" '
               f'points="{left:.1f},{bottom} {points} {right:.1f},{bottom}"/>')
        yield f'<polyline class="of-library" style="fill:none" points="{points}"/>'
        yield text(LEFT[0] - 8, bottom - 2, name, "end", "faint", 11)
        yield text(LEFT[1] + 6, bottom - 2, str(samples[-1][key]), size=11)


def draw_developments(run, top):
    end = max(run[load]["samples"][-1]["operations"] for load in COLOURS)
    yield from draw_memory(run, top, end)
    yield from draw_counts(run, top, end)
    yield text(LEFT[1], top + PANEL + 16, f"{end:,} operations".replace(",", " "), "end", "faint", 11)


def draw_times(run, top):
    """From the median to the longest, with a mark at 99 of 100; logarithmic, 10 ns to 10 s."""
    def at(nanoseconds):
        return MIDDLE[0] + (MIDDLE[1] - MIDDLE[0]) * max(0.0, math.log10(max(1, nanoseconds) / 10)) / 9
    for power, name in ((2, "100 ns"), (4, "10 µs"), (6, "1 ms"), (8, "100 ms"), (10, "10 s")):
        yield line(at(10 ** power), top, at(10 ** power), top + PANEL)
        yield text(at(10 ** power), top + PANEL + 16, name, "middle", "faint", 11)
    names = list(run["library"]["nanoseconds"])
    for i, name in enumerate(names):
        y = top + PANEL * (i + 0.5) / len(names)
        yield text(MIDDLE[0] - 8, y + 4, name, "end", size=11)
        for beside, load in ((-2.5, "library"), (2.5, "c")):
            times = run[load]["nanoseconds"].get(name)
            if times:
                yield line(at(times["p50"]), y + beside, at(times["max"]), y + beside, f"of-{load}")
                yield f'<circle class="of-{load}" cx="{at(times["p50"]):.1f}" cy="{y + beside:.1f}" r="2.5"/>'
                yield line(at(times["p99"]), y + beside - 2.5, at(times["p99"]), y + beside + 2.5, f"of-{load}", 2)


def draw(runs):
    height = HEAD + len(runs) * (PANEL + GAP)
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" width="{WIDTH}" height="{height}" '
             'font-family="sans-serif" role="img">', "<title>Memory, handles and times of a mixed load</title>", style({f"of-{name}": colour for name, colour in COLOURS.items()}),
             text(16, 24, "Memory and what is held, from zero; the time of each operation: ● median, | 99 of 100, line to the longest", size=14)]
    x = 16
    for load, name in (("library", "library"), ("c", "the same load by OpenCL's own functions")):
        parts += [f'<circle class="of-{load}" cx="{x + 5}" cy="40" r="4"/>', text(x + 16, 44, name, size=12)]
        x += 110
    for i, run in enumerate(runs):
        top = HEAD + i * (PANEL + GAP) + 24
        kind = "all operations" if run["kind"] == "all" else "without commands and builds"
        verdict = "; ".join(run["wrong"] + run["own"]) or "flat"
        parts += [text(16, top - 10, f"{run['implementation']}, {kind}: {verdict}", size=13),
                  *draw_developments(run, top), *draw_times(run, top)]
    return "\n".join([*parts, "</svg>"]) + "\n"

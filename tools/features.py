"""What a run of the tests saw of each OpenCL implementation."""

import dataclasses
import re
import xml.etree.ElementTree as xml

ROW = re.compile(r"^\[ (DEVICE|FEATURE) +\] (.*)$", re.MULTILINE)


@dataclasses.dataclass(frozen=True)
class outcome:
    """`what`: works, differs, skipped, FAILED or refused (STATUS); `versions`: 1.2, or 1.2-2.2."""
    what: str
    versions: str
    why: str


def read(output, devices, features):
    """Adds the rows of an output to {device: its cells} and {feature: {device: [outcome, ...]}}."""
    for kind, line in ROW.findall(output):
        cells = line.split(" | ")
        if kind == "DEVICE":
            devices[cells[0]] = cells[1:]
        else:
            seen = features.setdefault(cells[0], {}).setdefault(cells[1], [])
            seen.append(outcome(cells[2], cells[3], " | ".join(cells[4:])))


def summary(outcomes):
    """One cell: what a device does with a feature. Versions are told where they differ."""
    whats = {}
    for each in outcomes:
        whats.setdefault(each.what, []).append(each.versions)
    if whats.keys() == {"works", "differs"}:
        return "differs"
    if len(whats) == 1:
        return next(iter(whats))
    return "; ".join(f"{what} {', '.join(dict.fromkeys(versions))}" for what, versions in sorted(whats.items()))


def outputs(path):
    """The outputs of the tests of a JUnit file of ctest."""
    return [case.findtext("system-out", "") for case in xml.parse(path).getroot().iter("testcase")]

#!/usr/bin/env python3
"""Writes one trace in each format, and reads it again as its users do: as Perfetto's protobuf, and as a page in a browser.

formats.py perfetto|page COMMAND PROGRAM FOLDER      COMMAND is vorn-mero, PROGRAM makes mistakes; FOLDER is for what is made

The JSON is what the others are compared with. 77 as exit status if what reads a format is missing.
"""

import collections
import json
import os
import pathlib
import subprocess
import sys

PLATFORM = "Portable Computing Language"
HERE = pathlib.Path(__file__).parent
SKIPPED = 77
DEBIAN = "/usr/bin/python3"


def skip(why):
    print(f"skipped: {why}")
    sys.exit(SKIPPED)


def record(command, program, folder):
    """The recordings of two ranks of a program: one does what a trace shows, the other fails and leaks."""
    for rank, mistake in enumerate(("profile", "leak", "name")):
        environment = dict(os.environ, OMPI_COMM_WORLD_RANK=str(rank))
        done = subprocess.run([command, "trace", "--profile", "-o", folder / "%r.part", "--", program, PLATFORM, mistake],
                              env=environment, capture_output=True, text=True, timeout=100)
        if done.returncode == SKIPPED:
            skip(done.stdout)
    for suffix in ("json", "pftrace", "html"):
        subprocess.run([command, "convert", "-o", folder / f"trace.{suffix}", *(folder / f"{i}.part" for i in (1, 0, 2))],
                       check=True, timeout=100)
    return json.loads((folder / "trace.json").read_text())


def read_json(trace):
    """Slices as (process, row, name, begin, end in ns, arguments), and arrows as pairs of the first four."""
    names, slices, ends = {}, [], collections.defaultdict(dict)
    for event in trace["traceEvents"]:
        row = event["pid"], event["tid"]
        if event["ph"] == "M":
            names[event["name"], *(row if event["name"] == "thread_name" else row[:1])] = event["args"]["name"]
        elif event["ph"] == "X":
            begin, length = (round(event[key] * 1000) for key in ("ts", "dur"))
            slices.append((names["process_name", event["pid"]], names["thread_name", *row], event["name"], begin,
                           begin + length, tuple(sorted(event["args"].items()))))
        else:
            ends[event["id"]][event["ph"]] = slices[-1][:4]
    return collections.Counter(slices), collections.Counter((each["s"], each["f"]) for each in ends.values())


def read_perfetto(path):
    """The same of Perfetto's protobuf."""
    from perfetto.protos.perfetto.trace.perfetto_trace_pb2 import Trace, TrackEvent
    trace = Trace()
    trace.ParseFromString(path.read_bytes())
    tracks, slices, open_slices = {}, [], collections.defaultdict(list)
    ends = collections.defaultdict(dict)
    for packet in trace.packet:
        track = packet.track_descriptor
        if track.HasField("process"):
            tracks[track.uuid] = track.process.process_name, None
        elif packet.HasField("track_descriptor"):
            tracks[track.uuid] = tracks[track.parent_uuid][0], track.thread.thread_name or track.name
    for packet in sorted((each for each in trace.packet if each.HasField("track_event")), key=lambda each: each.timestamp):
        event = packet.track_event
        if event.type == TrackEvent.TYPE_SLICE_END:
            slices.append((lambda begun: (*begun[:4], packet.timestamp, begun[4]))(open_slices[event.track_uuid].pop()))
            continue
        begun = *tracks[event.track_uuid], event.name, packet.timestamp
        arguments = {each.name: each.string_value for each in event.debug_annotations}
        open_slices[event.track_uuid].append((*begun, tuple(sorted(arguments.items()))))
        for numbers, end in ((event.flow_ids, "s"), (event.terminating_flow_ids, "f")):
            for number in numbers:
                ends[number][end] = begun
    assert not any(open_slices.values()), "a slice without an end"
    return collections.Counter(slices), collections.Counter((each["s"], each["f"]) for each in ends.values())


def breaches_of_perfetto(trace, folder):
    wanted, found = read_json(trace), read_perfetto(folder / "trace.pftrace")
    for name, one, other in zip(("slices", "arrows"), wanted, found):
        if one != other or not one:
            yield f"{name}: {one.total()} in JSON, {other.total()} in the protobuf; differ: {list((one - other) + (other - one))[:4]}"
    processes = sorted({each[0].split(" (")[0] for each in wanted[0]})
    if processes != [f"rank {i}: layers_mistakes" for i in range(3)]:
        yield f"processes {processes}"
    if max(each[4] for each in wanted[0]) - min(each[3] for each in wanted[0]) > 60e9:
        yield "the ranks are not at one time"


def begins(folder, command, *parts):
    """When the first call of each process began, in ns, in one timeline of recordings."""
    subprocess.run([command, "convert", "-o", folder / "begins.json", *(folder / part for part in parts)], check=True)
    found = {}
    for process, _, _, begin, *_ in read_json(json.loads((folder / "begins.json").read_text()))[0]:
        found[process.split(":")[0]] = min(begin, found.get(process.split(":")[0], begin))
    return found


def breaches_of_clocks(command, folder):
    """A process of another machine is placed by the clocks of the wall; recordings that are none are refused."""
    second = 10**9
    recording = (folder / "1.part").read_bytes()
    wall = int.from_bytes(recording[24:32], "little") + 5 * second
    moved = recording[:24] + wall.to_bytes(8, "little") + b"elsewhere".ljust(40, b"\0") + recording[72:]
    (folder / "moved.part").write_bytes(moved)
    plain, placed = begins(folder, command, "0.part", "1.part"), begins(folder, command, "0.part", "moved.part")
    if plain["rank 0"] != placed["rank 0"] or abs(placed["rank 1"] - plain["rank 1"] - 5 * second) > second / 1000:
        yield f"another machine is placed at {placed} in place of {plain}"
    for why, content in (("another version wrote it", b"nqtrace1" + moved[8:]), ("no recording", moved[:90]), ("no recording", b"")):
        (folder / "damaged.part").write_bytes(content)
        done = subprocess.run([command, "convert", folder / "damaged.part", "-o", folder / "none.json"], capture_output=True, text=True)
        if done.returncode != 2 or why not in done.stderr:
            yield f"{why}: exit status {done.returncode}, {done.stderr}"


def browser():
    try:
        from selenium import webdriver
    except ImportError:
        if sys.executable != DEBIAN and os.path.exists(DEBIAN): # whose package selenium is
            os.execv(DEBIAN, [DEBIAN, __file__, *sys.argv[1:]])
        skip("the page needs selenium and chromium: scripts/install-packages test")
    options = webdriver.ChromeOptions()
    for argument in ("--headless=new", "--no-sandbox", "--hide-scrollbars"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    try:
        return webdriver.Chrome(options=options)
    except Exception as failure:
        skip(f"the page needs selenium and chromium: scripts/install-packages test ({failure.__class__.__name__})")


def breaches_of_page(trace, folder):
    driver = browser()
    driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [{"name": "prefers-color-scheme", "value": "dark"}]})
    slices = [each for each in trace["traceEvents"] if each["ph"] == "X"]
    commands = [each for each in slices if any("waited" in name for name in each["args"])]
    for width in (1400, 500):
        driver.set_window_size(width, 1000)
        driver.get((folder / "trace.html").as_uri())
        run = driver.execute_script
        text = lambda where: [each.strip() for each in run(f"return [...document.querySelectorAll('{where}')].map(e => e.innerText)")]
        facts = " ".join(text("#facts"))
        for fact in (f"{len(slices) - len(commands)} calls", f"{len(commands)} commands", "2 failed calls", "5 not released"):
            if fact not in facts:
                yield f"no {fact} in {facts}"
        if text("#errors td .link") != ["clGetEventProfilingInfo", "clCreateKernel"] or "CL_INVALID_KERNEL_NAME" not in text("#errors td"):
            yield f"errors: {text('#errors td')}"
        if sum(int(each) for each in text("#calls td:nth-child(2)")) != len(slices) - len(commands):
            yield f"calls: {text('#calls td')}"
        if "clCreateSubBuffer" not in text("#kept td") or "scale" not in text("#commands td"):
            yield "a table lacks its row"
        run("[...document.querySelectorAll('#commands .link')].find(each => each.innerText.includes('scale')).click()")
        if f"enqueued by\n{'clEnqueueNDRangeKernel'}" not in "\n".join(text("#details dl")):
            yield f"details: {text('#details')}"
        zoomed = run("return view.to - view.from")
        run("""const place = timeline.getBoundingClientRect();
               timeline.dispatchEvent(new WheelEvent('wheel', {ctrlKey: true, deltaY: 300, clientX: place.right - 9, cancelable: true}));
               for (const key of ['ArrowRight', '-']) timeline.dispatchEvent(new KeyboardEvent('keydown', {key}));""")
        if not 2.9 < run("return view.to - view.from") / zoomed < 3.5:
            yield "Ctrl and wheel, and the key -, do not zoom"
        run("document.querySelector('[data-zoom=all]').click()")
        run("return new Promise(done => setTimeout(done, 200))")
        if not run("return view.to - view.from > trace.end && layout.filter(e => e.row).length === new Set(trace.slices.map(e => e.row)).size"):
            yield "not all is shown"
        colours = run("""const pen = timeline.getContext('2d'), {row} = layout.find(e => e.row), longest = row.slices.reduce((a, b) => a.end - a.begin > b.end - b.begin ? a : b);
                         const p = pen.getImageData(x((longest.begin + longest.end) / 2) * devicePixelRatio, (row.y + 2) * devicePixelRatio, 1, 1).data;
                         return [[...p.slice(0, 3)].map(v => v.toString(16).padStart(2, '0')).join(''), colour(longest).slice(1)]""")
        if colours[0] != colours[1]:
            yield f"the longest call is drawn as {colours}"
        if run("return document.documentElement.scrollWidth > innerWidth"):
            yield f"wider than a window of {width}"
        driver.save_screenshot(str(folder / f"page-{width}.png"))
    for entry in driver.get_log("browser"):
        yield f"the browser says {entry['message']}"
    asked = {json.loads(each["message"])["message"].get("params", {}).get("request", {}).get("url", "file:") for each in driver.get_log("performance")}
    yield from (f"asks for {each}" for each in asked if not each.startswith(("file:", "data:")))
    driver.quit()


def main():
    what, command, program, place = sys.argv[1:]
    folder = pathlib.Path(place) / what
    folder.mkdir(parents=True, exist_ok=True)
    if what == "perfetto" and "venv" not in sys.prefix:
        venv, wanted = pathlib.Path(place) / "venv", HERE / "requirements.txt"
        if not (venv / "done").exists() or (venv / "done").read_text() != wanted.read_text():
            subprocess.run([sys.executable, "-m", "venv", "--clear", venv], check=True)
            done = subprocess.run([venv / "bin/python", "-m", "pip", "install", "-q", "--disable-pip-version-check", "-r", wanted],
                                  capture_output=True, text=True)
            if done.returncode != 0:
                skip(f"perfetto of PyPI cannot be installed: {done.stderr.strip().splitlines()[-1:]}")
            (venv / "done").write_text(wanted.read_text())
        os.execv(venv / "bin/python", [venv / "bin/python", __file__, *sys.argv[1:]])
    trace = record(command, program, folder)
    found = list((breaches_of_perfetto if what == "perfetto" else breaches_of_page)(trace, folder))
    found += breaches_of_clocks(command, folder) if what == "perfetto" else []
    print(*(found or ["ok"]), sep="\n")
    return 1 if found else 0


sys.exit(main())

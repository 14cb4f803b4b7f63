#!/usr/bin/env python3
"""Runs a program of mistakes under layers, and compares what they print and what the program sees with a table.

layers.py PROGRAM FOLDER TABLE [COMMAND]      FOLDER has the layers, COMMAND is vorn-mero

A line of TABLE: layers | settings of the last one | mistake | pattern...
"""

import collections
import json
import os
import pathlib
import pty
import re
import subprocess
import sys
import tempfile

PLATFORM = "Portable Computing Language"
SKIPPED = 77


def run(program, mistake, layers=(), settings=""):
    environment = dict(os.environ)
    if layers:
        environment["NQ_" + layers[-1].stem.removeprefix("libnq-").upper()] = settings
        environment["LD_PRELOAD"] = ":".join(map(str, layers))
    done = subprocess.run([program, PLATFORM, mistake], env=environment, capture_output=True, text=True, timeout=100)
    return done.returncode, done.stdout, [line for line in done.stderr.splitlines() if line.startswith("nq-")]


def breaches(program, folder, line):
    layers, settings, mistake, *patterns = (part.strip() for part in line.split(" |"))
    layers = [folder / f"libnq-{layer}.so" for layer in layers.split()]
    status, output, printed = run(program, mistake, layers, settings)
    seen = [output.strip().replace("\n", " ")] if settings else []
    if not settings:
        plain, unwatched = run(program, mistake)[:2]
        found = any(printed) and not {"leaks", "check"}.isdisjoint(line.split(" |")[0].split())
        if (status, output) != (1 if found else plain, unwatched):
            yield f"exit status {status}, and the program sees: {output}"
    printed = seen + printed
    if len(printed) != len(patterns):
        yield f"{len(printed)} lines in place of {len(patterns)}"
    for text, pattern in zip(printed, patterns):
        if not re.search(pattern, text):
            yield f"no {pattern}"
    if status not in (0, 1, 2, 3):
        yield f"exit status {status}"


def breaches_of_trace(program, folder):
    """A trace has every call, a slice of each command, and arrows that begin and end at slices."""
    with tempfile.TemporaryDirectory() as place:
        settings = f"output={place}/trace-%p.json,summary,profile"
        status, text, printed = run(program, "profile", [folder / "libnq-trace.so"], settings)
        if (status, text) != run(program, "profile")[:2]:
            yield f"exit status {status}, and the program sees: {text}"
        output, *left = pathlib.Path(place).iterdir()
        events = json.loads(output.read_text())["traceEvents"]
        if not re.fullmatch(r"trace-\d+\.json", output.name):
            yield f"the trace is {output.name}"
    slices = [each for each in events if each["ph"] == "X"]
    commands = [each for each in slices if "waited in the queue, ns" in each["args"]]
    count = collections.Counter(each["name"] for each in commands)
    if count != {"WriteBuffer": 1, "scale": 2, "ReadBuffer": 1}:
        yield f"commands: {count}"
    if not any(each["args"].get("kernel_name") == '"scale"' for each in slices):
        yield "no decoded call"
    starts = {(each["tid"], each["ts"]) for each in slices}
    arrows = [each for each in events if each["ph"] in "sf"]
    if any((each["tid"], each["ts"]) not in starts for each in arrows):
        yield "an arrow does not begin or end at a slice"
    if collections.Counter(each["name"] for each in arrows) != {"enqueue": 8, "wait": 2}:
        yield f"{len(arrows)} ends of arrows"
    calls = {each["name"]: each for each in slices if each not in commands}
    for each in commands:
        if each["ts"] < calls["clEnqueueWriteBuffer"]["ts"]:
            yield f"{each['name']} begins before it is enqueued"
    table = "\n".join(printed)
    if not re.search(r"^nq-trace: scale +2( +\d+\.\d{3}){4}$", table, re.M) or "entry point" not in table:
        yield f"the summary is {table}"
    if left:
        yield f"left behind: {left}"
    for mistake, line in ("newer", r"nq-trace: one +1 "), ("profile_first", "nq-trace: clSetCommandQueueProperty +1 "):
        status, text, printed = run(program, mistake, [folder / "libnq-trace.so"], "output=/dev/null,summary,profile")
        if (status, text) != run(program, mistake)[:2] or not any(re.match(line, each) for each in printed):
            yield f"{mistake}: exit status {status}, the program sees {text}, the summary is {printed}"


def breaches_of_stripped(program, folder):
    """Without debug information the lines of `leaks` have addresses and functions."""
    with tempfile.TemporaryDirectory() as place:
        stripped = pathlib.Path(place) / "stripped"
        subprocess.run(["objcopy", "--strip-debug", program, stripped], check=True)
        printed = run(stripped, "leak", [folder / "libnq-leaks.so"])[2]
    if not any(re.search(r" clCreateBuffer at stripped\+0x[0-9a-f]+ main: 2 references$", each) for each in printed):
        yield f"printed: {printed}"


def breaches_of_command(command, program):
    """The command passes on the program's status, and says what it cannot run."""
    with tempfile.TemporaryDirectory() as place:
        output = pathlib.Path(place) / "trace.json"
        static, raised = pathlib.Path(place) / "static", pathlib.Path(place) / "raised"
        static.write_bytes(b"\x7fELF\x02\x01\x01" + bytes(57))
        static.chmod(0o755)
        raised.write_bytes(pathlib.Path(program).read_bytes())
        if os.geteuid() == 0:
            os.chown(raised, 65534, 65534)
        else:
            print("not root: no program with another user's rights can be made")
        raised.chmod(0o4755)
        script = pathlib.Path(place) / "script"
        script.write_text("true\n")
        script.chmod(0o755)
        gone = pathlib.Path(place) / "gone"
        gone.symlink_to("nowhere")
        link = pathlib.Path(place) / "link"
        link.symlink_to("aim")
        link.write_text("of before")
        table = (
            (("trace", "-o", output, "--", program, PLATFORM, "abandon"), 7, "did not come to its end"),
            (("errors", "--", program, PLATFORM, "name"), 0, "^nq-errors: clCreateKernel"),
            (("leaks", "--exit-status", "3", "--", program, PLATFORM, "leak"), 3, "^nq-leaks: 5 objects"),
            (("check", "--exit-status", "3", "--", program, PLATFORM, "never_unmapped"), 3, "^nq-check: clReleaseMem"),
            (("faults", "-r", "entry=clCreateBuffer:-4", "--", program, PLATFORM, "none"), 0, "^$"),
            (("trace", "-o", f"{place}/%r.part", "--", program, PLATFORM, "none"), 0, "calls in .*/0.part$"),
            (("convert", f"{place}/0.part", "-o", f"{place}/t.html"), 0, "^$"),
            (("convert", f"{place}/0.part", "-o", "/none/t.json"), 2, "^vorn-mero: cannot write /none/t.json: No such"),
            (("trace", "-o", f"{place}/none", "--", "true"), 0, "^vorn-mero: true made no call through libnq"),
            (("trace", "-o", "/none/t.json", "--", "true"), 2, "^vorn-mero: cannot write /none/t.json: No such file"),
            (("trace", "-o", link, "--", program, PLATFORM, "none"), 0, "calls in .*/aim$"),
            (("trace", "-o", "/dev/stdout", "--", program, PLATFORM, "none"), 0, "calls in /dev/stdout$"),
            (("record", "-o", f"{place}/%p", "--", program, PLATFORM, "none"), 0, r"\Anq-record: .* calls in .*/\d+\n\Z"),
            (("record", "-o", gone, "--", "true"), 0, "^vorn-mero: true made no call through libnq"),
            (("convert", f"{place}/0.part", "-o", f"{place}/0.part"), 2, "^vorn-mero: convert makes a timeline of"),
            (("trace", "-o", "", "--", "true"), 2, "^--output: give the name of a file, not ''$"),
            (("faults", "-r", "", "--", "true"), 2, "^--rule: give a rule such as entry=clCreateBuffer:call=2:-4, not"),
            (("errors", "true", "--x"), 2, "^A program with options follows --"),
            (("error", "--", "true"), 2, "^vorn-mero: there is no command 'error'"),
            (("sweep", "--except", "clNone", "--", "true"), 2, "^vorn-mero: --except: give the name of an OpenCL entry"),
            (("sweep", "--timeout", "nan", "--", "true"), 2, "^--timeout: give seconds from"),
            (("replay", program, "--nth", "2"), 2, "^--nth requires --kernel$"),
            (("replay", program, "--device", "-1"), 2, "^--device: Value -1 not in range"),
            (("check", "--", static), 2, r"\Avorn-mero: .*/static is linked statically.*\n\Z"),
            *([(("check", "--", raised), 2, r"\Avorn-mero: .*/raised runs with another user's rights.*\n\Z")]
              if os.geteuid() == 0 else []),
            (("leaks", "--", "/none"), 2, "^vorn-mero: cannot run /none: No such file"),
            (("leaks", "--", script), 2, "^vorn-mero: cannot run .*/script: it is no program; let a script"),
            (("trace", "-o", place, "--", "true"), 2, "^vorn-mero: cannot write .*: Is a directory"),
            (("leaks", "--", "no-such-program"), 2, "^vorn-mero: there is no program no-such-program"),
            (("convert", program), 2, "^vorn-mero: cannot read .*: it is no recording of calls$"),
        )
        for arguments, status, pattern in table:
            done = subprocess.run([command, *arguments], capture_output=True, text=True, timeout=100)
            if done.returncode != status or not re.search(pattern, done.stderr, re.M):
                yield f"{arguments}: exit status {done.returncode}, {done.stderr}"
        both = f"'{program}' '{PLATFORM}' none & '{program}' '{PLATFORM}' none; wait; '{program}' '{PLATFORM}' none"
        for name in ("several.json", "several.part"):
            subprocess.run([command, "trace", "-o", f"{place}/{name}", "--", "sh", "-c", both], capture_output=True, timeout=100)
        left = collections.Counter(each.suffix for each in pathlib.Path(place).glob("several*"))
        if left != {".json": 3, ".part": 3}:
            yield f"three processes leave {left}"
        if not any(each["name"] == "clFinish" for each in json.loads(output.read_text())["traceEvents"]):
            yield "the trace of a program that did not come to its end is not whole"


def breaches_of_doctor(command):
    """Each thing that can be wrong has an exit status and a remedy, as text and as JSON."""
    with tempfile.TemporaryDirectory() as place:
        vendors = pathlib.Path(place) / "vendors"
        vendors.mkdir()
        (vendors / "empty.icd").write_text("")
        for variable, value, status in (
            ("NQ_BRIDGE_OPENCL", "libnone.so", 10),
            ("OCL_ICD_VENDORS", "/none", 11),
            ("OCL_ICD_VENDORS", "libnone.so", 12),
            ("OCL_ICD_VENDORS", vendors, 16),
            ("OCL_ICD_VENDORS", "libm.so.6", 17),
            ("NQ_BRIDGE_VERBOSE", "0", 0),
        ):
            text, json_text = (subprocess.run([command, "doctor", *more], env=dict(os.environ, **{variable: str(value)}),
                                              capture_output=True, text=True, timeout=100) for more in ([], ["--json"]))
            told = json.loads(json_text.stdout)
            if (text.returncode, json_text.returncode, told["status"]) != (status, status, status) or not re.search(
                    r"^\d+ devices?$", text.stdout, re.M) or bool(told["devices"]) != (status == 0):
                yield f"{variable}={value}: exit status {text.returncode}, {text.stdout}{json_text.stdout}"
            yield from (f"{variable}={value}: no remedy for {each}" for each in told["problems"]
                        if not each["remedy"] or each["remedy"] not in text.stdout)


def breaches_of_info(command):
    """What is written as JSON is read again, and each change is told."""
    def info(*arguments):
        done = subprocess.run([command, "info", *arguments], capture_output=True, text=True, timeout=100)
        return done.returncode, done.stdout, done.stderr

    with tempfile.TemporaryDirectory() as place:
        one, other = pathlib.Path(place) / "one.json", pathlib.Path(place) / "other.json"
        one.write_text(info("--json")[1])
        about = json.loads(one.read_text())
        platform = next(each for each in about["platforms"] if each["name"] == PLATFORM)
        device = platform["devices"][0]
        if device["namespaces"] != ["1.0", "1.1", "1.2", "2.0", "2.1", "2.2"] or device["type"] != "CPU":
            yield f"the device of {PLATFORM} is {device}"
        if device["name"] not in info()[1] or info("--diff", one, one) != (0, "", ""):
            yield "info, or a file beside itself"
        path, was = f"{PLATFORM}, {device['name']}", device["clock in MHz"]
        device["clock in MHz"] = was + 1
        gone = device["extensions"].pop()
        platform["devices"].append(dict(device))
        other.write_text(json.dumps(about))
        status, text, _ = info("--diff", one, other)
        wanted = {f"- {path}, clock in MHz: {was}", f"+ {path}, clock in MHz: {was + 1}", f"- {path}, extensions, {gone}",
                  f"+ {path} #2"}
        if status != 1 or not wanted <= set(text.splitlines()):
            yield f"--diff: exit status {status}, {text}"
        named = pathlib.Path(place) / "named.json"
        named.write_text('{"platforms": [{"name": 3}]}')
        for wrong, why in (named, "is not what vorn-mero info"), (place, "cannot read .*: Is a directory"), (command, "is not what vorn-mero info --json writes"):
            status, _, text = info("--diff", one, wrong)
            if status != 2 or not re.search(why, text) or len(text.splitlines()) != 1:
                yield f"--diff {wrong}: exit status {status}, {text}"


def breaches_of_completion(command):
    """Both shells ask the command, and leave files and the program's own words to themselves."""
    folder = pathlib.Path(__file__).parents[2] / "command/completion"
    shells = {
        "bash": 'source {folder}/vorn-mero.bash; COMP_WORDS=({words}); COMP_CWORD=$((${{#COMP_WORDS[@]}} - 1)); '
                '_vorn_mero; printf "%s\n" "${{COMPREPLY[@]}}"',
        "zsh": 'compadd() {{ shift; print -l -- "$@" }}; _files() {{ }}; _normal() {{ }}; words=({words}); '
               'CURRENT=$#words; () {{ source {folder}/_vorn-mero }}',
    }
    for words, wanted in (("'d'", "doctor"), ("'errors' '-'", "-h --help"), ("'info' '--d'", "--diff"),
                          ("'leaks' '--ex'", "--exit-status"), ("'trace' '-o' 'sw'", ""), ("'trace' '--' '--'", "")):
        for shell, script in shells.items():
            done = subprocess.run([shell, "-c", script.format(folder=folder, words=f"'{command}' {words}")],
                                  capture_output=True, text=True, timeout=100)
            if done.stdout.split() != wanted.split() or done.stderr:
                yield f"{shell}, {words}: {done.stdout}{done.stderr}"


def breaches_of_sweep(command, program):
    """Each call fails once; what a program does badly then is a line with the call."""
    terminal, end = pty.openpty()
    subprocess.run([command, "sweep", "-f", "-6", "--step", "4", "--", program, PLATFORM, "none"], stdout=subprocess.DEVNULL,
                   stderr=end, timeout=200)
    drawn = os.read(terminal, 1 << 16).decode()
    if not re.search(r"\[#+ +\] \d+ of \d+ runs", drawn) or not drawn.endswith("\r\033[K"):
        yield f"the bar on a terminal: {drawn!r}"
    careless = (r"^\d+ calls, \d+ runs$", r"^call=\d+:-6 +clCreateUserEvent +1 object not released$",
                r"^call=\d+:-6 +clFlush +ends by SIGABRT$", r"^call=\d+:-6 +clFinish +hangs$", "^3 broke;")
    for options, words, status, patterns in (
        (["--timeout", "5"], [program, PLATFORM, "careless"], 1, careless),
        (["--except", "clCreateBuffer"], [program, PLATFORM, "leak"], 1,
         ("^without a failing call: 5 objects not released$", r"^[1-9]\d* do not count$")),
        (["--step", "9"], [program, "Nobody", "none"], 77, ("^without a failing call: exit status 77$",)),
        ([], ["true"], 2, ("the program made no call through libnq",)),
        (["-f", "CL_SOMETHING"], [program, PLATFORM, "none"], 2, ("not 'CL_SOMETHING'",)),
    ):
        done = subprocess.run([command, "sweep", "-f", "-6", *options, "--", *words], capture_output=True, text=True, timeout=200)
        printed = done.stdout + done.stderr
        if done.returncode != status or any(not re.search(each, printed, re.M) for each in patterns):
            yield f"{options} {words}: exit status {done.returncode}, {printed}"


def breaches_of_manual(command):
    """The manual page has the options that the command has."""
    page = (pathlib.Path(__file__).parents[2] / "command/vorn-mero.1").read_text().replace("\\-", "-")
    subcommands = re.findall(r"^  (\w+)  ", subprocess.run([command, "--help"], capture_output=True, text=True).stdout, re.M)
    helps = [subprocess.run([command, *each], capture_output=True, text=True).stdout
             for each in (["--help"], *([subcommand, "--help"] for subcommand in subcommands))]
    options = {option for each in helps for option in re.findall(r"(?<!\S)(?:-\w,)?(--[a-z-]+)", each)}
    if set(re.findall(r"--[a-z-]+", page)) != options or not options or not subcommands:
        yield f"the manual page and --help differ: {set(re.findall(r'--[a-z-]+', page)) ^ options}"
    yield from (f"no {each} in the manual page" for each in subcommands if f"vorn-mero {each}" not in page)


def main():
    program, folder, table = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
    os.environ["ASAN_OPTIONS"] = os.environ.get("ASAN_OPTIONS", "") + ":detect_leaks=0"  # the mistakes leak
    if run(program, "none")[0] == SKIPPED:
        print(f"no platform {PLATFORM}: scripts/implementations adds one")
        return SKIPPED
    failed = 0
    for line in filter(lambda each: each and each[0] != "#", table.read_text().splitlines()):
        found = list(breaches(program, folder, line))
        failed += bool(found)
        print("failed:" if found else "ok:", line, *found, sep="\n  " if found else " ")
    wholes = {"trace": breaches_of_trace(program, folder), "stripped": breaches_of_stripped(program, folder)}
    if len(sys.argv) > 4:
        wholes["command"] = breaches_of_command(sys.argv[4], program)
        wholes["sweep"] = breaches_of_sweep(sys.argv[4], program)
        wholes["doctor"] = breaches_of_doctor(sys.argv[4])
        wholes["info"] = breaches_of_info(sys.argv[4])
        wholes["completion"] = breaches_of_completion(sys.argv[4])
        wholes["manual"] = breaches_of_manual(sys.argv[4])
    for name, breaches_found in wholes.items():
        found = list(breaches_found)
        failed += bool(found)
        print("failed:" if found else "ok:", name, *found, sep="\n  " if found else " ")
    return 1 if failed else 0


sys.exit(main())

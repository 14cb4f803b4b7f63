#!/usr/bin/env python3
"""Records programs on one implementation, replays them on others, and compares what the replays print with a table.

sessions.py COMMAND TABLE PICTURE COMPILE PROGRAM...      COMMAND is vorn-mero, COMPILE makes a program with the library

A line of TABLE: program and arguments | recorded on | replayed on, ... | exit status | pattern...
"""

import pathlib
import re
import subprocess
import sys
import tempfile

SKIPPED = 77


def run(*arguments):
    done = subprocess.run(list(map(str, arguments)), capture_output=True, text=True, timeout=200)
    return done.returncode, done.stdout + done.stderr


def record(command, programs, line, picture, place):
    """The recording, or None where there is no such platform, or why it failed."""
    name, *arguments = line[0].replace("PICTURE", str(picture)).replace("OUTPUT", str(place / "o.png")).split()
    platform = [line[1]] if name == "sessions" else ["--platform", line[1]]
    arguments = platform + arguments if name == "sessions" else arguments + platform
    session = place / "s.nqr"
    status, seen = run(command, "record", "-o", session, "--", programs[name], *arguments)
    if status == SKIPPED:
        return None, ""
    if status != 0 or not session.exists() or not re.search(r"^nq-record: \d+ calls in ", seen, re.M):
        return session, f"recording: exit status {status}, {seen}"
    return session, ""


def breaches(command, programs, line, picture, place, platforms):
    session, why = record(command, programs, line, picture, place)
    if session is None:
        print(f"skipped: no platform {line[1]}: scripts/implementations adds it")
        return
    if why:
        yield why
        return
    for platform in line[2].split(", "):
        if not any(platform in each for each in platforms):
            print(f"skipped: no platform {platform}: scripts/implementations adds it")
            continue
        status, printed = run(command, "replay", session, "--platform", platform)
        if status != int(line[3]) or any(not re.search(each, printed, re.M) for each in line[4:]):
            yield f"on {platform}: exit status {status}, {printed}"


def breaches_of_launches(compile_program, command, programs, place, platforms):
    """A launch that was taken out of a session does the same alone, with arguments of each kind; or why it cannot be taken."""
    session, launch, built = place / "launches.nqr", place / "launch", place / "built"
    for program, kernel, refused in (
        (("sessions", "Portable", "read"), "twice", ""),
        (("sessions", "Portable", "map"), "add", ""),
        (("sessions", "Portable", "others"), "invert", ""),
        (("sessions", "Portable", "shared"), "follow", "the launch cannot be extracted: it has shared memory as an argument"),
    ):
        name, *arguments = program
        run(command, "record", "-o", session, "--", programs[name], *arguments)
        status, printed = run(command, "replay", session, "--platform", "Portable", "--kernel", kernel, "--extract", launch)
        if status != (2 if refused else 0) or refused not in printed:
            yield f"{kernel}: exit status {status}, {printed}"
        if refused or status:
            continue
        compiler, *flags = compile_program.split()
        status, printed = run(compiler, f'-DLAUNCH_FOLDER="{launch}"', launch / "main.cpp", *flags, "-o", built)
        for platform in ("Portable", "Intel", "rusticl") if status == 0 else ():
            if any(platform in each for each in platforms):
                status, printed = run(built, platform)
                if status != 0 or not re.search(r"^argument-0: 0 of \d+ bytes differ$", printed, re.M):
                    yield f"{kernel} on {platform}: exit status {status}, {printed}"
        if status != 0:
            yield f"{kernel}: {printed}"


def breaches_of_bad_input(command, program, place):
    """One line says what is wrong with a recording, and what to do."""
    session = place / "good.nqr"
    run(command, "record", "-o", session, "--", program, "Portable", "image")
    good = session.read_bytes()
    table = (
        (good[: len(good) // 2], "the recording was cut off; record it again"),
        (good[:-1], "the recording was cut off; record it again"),
        (good[:16], "the recording was cut off; record it again"),
        (good[:300] + bytes([good[300] ^ 1]) + good[301:], "the recording is damaged: .*; copy it or record it again"),
        (good + b"more", "the recording is damaged: .*; copy it or record it again"),
        (good[:8] + b"\7" + good[9:], "is of version 7, and this program reads version 1; replay it with"),
        (b"something else", "it cannot be read: vorn-mero record did not write it"),
        (b"", "it cannot be read: vorn-mero record did not write it"),
    )
    bad = place / "bad.nqr"
    for content, pattern in table:
        bad.write_bytes(content)
        status, printed = run(command, "replay", bad)
        if status != 2 or not re.match(f"vorn-mero: {re.escape(str(bad))}: .*{pattern}", printed) or printed.count("\n") != 1:
            yield f"{pattern}: exit status {status}, {printed}"
    for arguments, pattern in (
        (("replay", place / "none.nqr"), "none.nqr: it cannot be read: No such file"),
        (("replay", session, "--platform", "Nobody"), "no platform's name has Nobody in it"),
        (("replay", session, "--device", "99"), r"there is no device 99; there are \d"),
        (("replay", session, "--kernel", "invert", "--nth", "2", "--extract", place / "launch"),
         "the session has no launch 2 of invert; it has 1 of invert"),
        (("replay", session, "--kernel", "invert", "--extract", "/proc/none"), "cannot write /proc/none/main.cpp"),
        (("replay", session, "--kernel", "invert"), "--kernel requires --extract"),
        (("record", "-o", "/none/s.nqr", "--", program, "Portable", "image"), "cannot write /none/s.nqr: No such file"),
        (("record", "-o", "/dev/full", "--", program, "Portable", "image"), "cannot write /dev/full: No space left"),
    ):
        status, printed = run(command, *arguments)
        if status != 2 or not re.search(pattern, printed):
            yield f"{arguments}: exit status {status}, {printed}"


def main():
    command, table, picture = map(pathlib.Path, sys.argv[1:4])
    programs = {pathlib.Path(each).name.removeprefix("layers_"): each for each in sys.argv[5:]}
    platforms = run(command, "doctor")[1].splitlines()
    failed = 0
    with tempfile.TemporaryDirectory() as folder:
        place = pathlib.Path(folder)
        if run(programs["sessions"], "Portable", "read")[0] == SKIPPED:
            print("no platform Portable Computing Language: scripts/implementations adds it")
            return SKIPPED
        lines = [line.split(" | ") for line in table.read_text().splitlines() if line[0] != "#"]
        checks = [(line[0], breaches(command, programs, line, picture, place, platforms)) for line in lines]
        checks.append(("launches", breaches_of_launches(sys.argv[4], command, programs, place, platforms)))
        checks.append(("bad input", breaches_of_bad_input(command, programs["sessions"], place)))
        for name, found in checks:
            found = list(found)
            failed += bool(found)
            print("failed:" if found else "ok:", name, *found, sep="\n  " if found else " ")
    return 1 if failed else 0


sys.exit(main())

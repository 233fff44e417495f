#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Times `havrel captureprefs show` on one file beside a program that makes a core application object and ends, and on
10,000 files beside `getfattr` on the same list. The peers take turns; figures are wall-clock medians.

usage: bench/tool_bench.py HAVREL EMPTY_PROGRAM [FOLDER]     FOLDER: where the files are made and removed
"""
import os
import plistlib
import statistics
import subprocess
import sys
import tempfile
import time

ATTRIBUTE = "user.com.havrel.prefs"
FILES = 10_000


def seconds_for(command, nowhere):
    start = time.perf_counter()
    child = os.posix_spawnp(command[0], command, os.environ, file_actions=[(os.POSIX_SPAWN_DUP2, nowhere, 1)])
    status = os.waitpid(child, 0)[1]
    taken = time.perf_counter() - start
    if status != 0:
        sys.exit(f"{command[0]} ended with {status}")
    return taken


def medians(commands, rounds):
    samples = {name: [] for name in commands}
    with open(os.devnull, "w", encoding="ascii") as nowhere:
        for _ in range(rounds):
            for name, command in commands.items():
                samples[name].append(seconds_for(command, nowhere.fileno()))
    return {name: statistics.median(taken) * 1000 for name, taken in samples.items()}


def report(title, figures):
    (peer, peer_time), *others = figures.items()
    print(f"{title}: {peer} {peer_time:.2f} ms")
    for name, taken in others:
        print(f"    {name:28} {taken:8.2f} ms   ratio {taken / peer_time:.2f}")


def make_files(folder, record):
    paths = []
    for number in range(FILES):
        path = os.path.join(folder, f"file{number:05}")
        with open(path, "w", encoding="ascii"):
            pass
        if (value := record(number)) is not None:
            os.setxattr(path, ATTRIBUTE, plistlib.dumps(value, fmt=plistlib.FMT_BINARY))
        paths.append(path)
    return paths


RECORDS = {
    "one record": lambda number: {"capture": "exclude", "patterns": ["//*.tmp"]},
    "each its own record": lambda number: {"capture": "ignore", "duration": number % 50 + 1, "scale": 1,
                                           "patterns": ["//*.tmp", f"Library//Caches{number}"]},
}


def main():
    havrel, empty = sys.argv[1:3]
    where = sys.argv[3] if len(sys.argv) > 3 else None
    show = [havrel, "captureprefs", "show"]
    for title, record in RECORDS.items():
        with tempfile.TemporaryDirectory(prefix="havrel-bench-", dir=where) as folder:
            paths = make_files(folder, record)
            one = medians({"empty program": [empty], "show": show + paths[:1]}, 51)
            report("one file", one)
            many = medians({"getfattr": ["getfattr", "-h", "--absolute-names", "-n", ATTRIBUTE] + paths,
                            "show": show + paths, "show --json": show + ["--json"] + paths}, 7)
            report(f"{FILES} files, {title}", many)


main()

#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Times `havrel capture --to` of 10,000 small files, from the command through switchboard, scheduler and engine to its
end, beside restic called by hand with the same files; then tells what the components take while they rest.

The peers take turns, each with a repository of its own that is made anew for each first capture; a second one follows
in which nothing has changed. Figures are wall-clock medians.

usage: bench/components_bench.py BUILD_FOLDER [ROUNDS]     in a session of its own, which it makes itself
"""
import os
import pathlib
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

BUILD = pathlib.Path(sys.argv[1]).resolve()
ROUNDS = int(sys.argv[2]) if len(sys.argv) > 2 else 7
HAVREL = BUILD / "cli/havrel"
FILES, FILES_IN_FOLDER = 10_000, 250
PROGRAMS = ("switchboard", "monitor", "scheduler")


def run(*command, environment=None):
    done = subprocess.run([str(each) for each in command], env=environment, capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"{command[0]} ended with {done.returncode}: {done.stderr}")


def make_files(folder):
    for number in range(FILES):
        place = folder / str(number // FILES_IN_FOLDER)
        place.mkdir(parents=True, exist_ok=True)
        (place / str(number)).write_text(f"file {number}" + "x" * (number % 2000))


class ByHand:
    title = "restic by hand"

    def __init__(self, folder):
        self.repository, key = folder / "hand", folder / "key"
        key.write_text("a key\n")
        self.common = ["restic", "--repo", self.repository, "--password-file", key]

    def prepare(self):
        shutil.rmtree(self.repository, ignore_errors=True)
        run(*self.common, "init")

    def capture(self, items):
        run(*self.common, "backup", "--json", items)


class Quickly:
    title = "havrel capture --to"

    def __init__(self, folder):
        self.archive, self.repository = folder / "a.zephra", folder / "quick"

    def prepare(self):
        shutil.rmtree(self.repository, ignore_errors=True)
        self.archive.unlink(missing_ok=True)
        run(HAVREL, "archive", "create", self.archive, "--repository", self.repository)

    def capture(self, items):
        run(HAVREL, "capture", "--to", self.archive, items)


def seconds_for(peer, items):
    start = time.perf_counter()
    peer.capture(items)
    return time.perf_counter() - start


def compare(folder):
    peers = [ByHand(folder), Quickly(folder)]
    samples = {peer: ([], []) for peer in peers}
    for number in range(ROUNDS):
        for peer in peers if number % 2 == 0 else peers[::-1]:
            peer.prepare()
            for kind in samples[peer]:
                kind.append(seconds_for(peer, folder / "items"))
    for kind, title in enumerate(("first capture", "nothing has changed")):
        hand, ours = (statistics.median(samples[peer][kind]) * 1000 for peer in peers)
        pairs = sorted(two / one for one, two in zip(samples[peers[0]][kind], samples[peers[1]][kind]))
        print(f"{FILES} files, {title:20} by hand {hand:6.0f} ms   {peers[1].title} {ours:6.0f} ms   "
              f"ratio {ours / hand:.2f} (of pairs {pairs[0]:.2f} to {pairs[-1]:.2f})")


def kilobytes(process, file, name):
    return int(re.search(rf"^{name}:\s+(\d+) kB", (process / file).read_text(), re.MULTILINE)[1])


def tell_what_they_take():
    for process in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            name = pathlib.Path(os.readlink(process / "exe")).name.removeprefix("havrel-")
        except OSError:
            continue
        if name not in PROGRAMS or f"DBUS_SESSION_BUS_ADDRESS={os.environ['DBUS_SESSION_BUS_ADDRESS']}".encode() \
                not in (process / "environ").read_bytes().split(b"\0"):
            continue
        print(f"havrel-{name:12} resident {kilobytes(process, 'status', 'VmRSS') / 1000:5.1f} MB   its own memory "
              f"{kilobytes(process, 'status', 'RssAnon') / 1000:4.1f} MB   its share "
              f"{kilobytes(process, 'smaps_rollup', 'Pss') / 1000:4.1f} MB")


def within_a_session(folder):
    make_files(folder / "items")
    run("dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
        "org.freedesktop.DBus.StartServiceByName", "string:com.havrel.Monitor", "uint32:0")
    compare(folder)
    tell_what_they_take()


def serve(folder):
    services = folder / "data/dbus-1/services"
    services.mkdir(parents=True)
    for each in PROGRAMS:
        (services / f"com.havrel.{each.capitalize()}.service").write_text(
            f"[D-BUS Service]\nName=com.havrel.{each.capitalize()}\nExec={BUILD}/components/havrel-{each}\n")


def main():
    if len(sys.argv) > 3:
        return within_a_session(pathlib.Path(sys.argv[3]))
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch).resolve()
        serve(folder)
        places = {f"XDG_{each}_HOME": str(folder / each.lower()) for each in ("DATA", "STATE", "CONFIG", "CACHE")}
        session = subprocess.run(["dbus-run-session", "--", sys.executable, __file__, BUILD, str(ROUNDS), folder],
                                 env={**os.environ, **places, "HOME": str(folder)})
        sys.exit(session.returncode)


main()

#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Speaks to the components from outside, by the message bus alone, and lets them capture for real.

usage: components_test.py HAVREL FOLDER_OF_COMPONENTS
"""
import json
import os
import pathlib
import pty
import select
import shutil
import signal
import stat
import subprocess
import sys
import tempfile
import time

from idle_process import unrest_of
from plain_bus import Bus, Variant

HAVREL, COMPONENTS = sys.argv[1], pathlib.Path(sys.argv[2])
SWITCHBOARD = f"com.havrel.switchboard._{os.geteuid()}"
ROOM = f"/com/havrel/connection/com_havrel_switchboard__{os.geteuid()}"  # paths of connections to it are below


class Peer(Bus):
    """A component of another house: one connection to the switchboard, and whoever connects to it."""

    def __init__(self, path, handler=None):
        self.path, self.heard, self.own = path, [], handler
        super().__init__(self.received)

    def received(self, message):
        if message.member == "forwardToObserver_notification_fromSource_withInfo_" and message.path == self.path:
            self.heard.append(message.values)
            return "", ()
        if message.member == "barrierWithCompletion_":
            return "", ()
        return self.own(message) if self.own else None

    def ask(self, member, signature="", *values, protocol="ZephronSwitchboarding"):
        return self.call(SWITCHBOARD, self.path, f"com.havrel.{protocol}", member, signature, *values)

    def publish(self, identifier, prefix):
        self.ask("publishEndpoint_forIdentifier_", "(so)s", (self.name, prefix), identifier)

    def where(self, identifier):
        return self.ask("queryEndpointForIdentifier_withReply_", "s", identifier)[0]


def check_the_switchboard():
    first, second = Peer(f"{ROOM}/first"), Peer(f"{ROOM}/second")
    first.call_bus("StartServiceByName", "su", "com.havrel.Switchboard", 0)
    assert first.where("com.example.echo") == []
    second.ask("addProxyObserver_forName_source_", "ssas", "me", "SwitchboardEndpointPublished", ["Switchboard"],
               protocol="ZephronSwitchboarding_private")
    second.ask("addProxyObserver_forName_source_", "ssas", "all", "Greeting", [],
               protocol="ZephronSwitchboarding_private")
    first.publish("com.example.echo", "/com/example/echo")
    first.ask("postNotificationName_source_userInfo_", "sasa{sv}", "Greeting", ["first"],
              {"words": Variant("as", ["good", "day"])})
    second.serve(lambda: len(second.heard) == 2)
    assert second.heard == [
        ["me", "SwitchboardEndpointPublished", ["Switchboard"], {"id": "com.example.echo"}],
        ["all", "Greeting", ["first"], {"words": ["good", "day"]}]], second.heard
    assert second.where("com.example.echo") == [(first.name, "/com/example/echo")]
    first.socket.close()
    second.ask("addProxyObserver_forName_source_", "ssas", "end", "SwitchboardEndpointRedacted", [],
               protocol="ZephronSwitchboarding_private")
    while second.where("com.example.echo"):  # until the bus has told that the first one has gone
        pass
    try:
        second.ask("barrierWithCompletion_", "s", "of wrong types", protocol="HVComponentMessaging")
        raise AssertionError("wrong types were taken")
    except RuntimeError as error:
        assert "InvalidArgs" in error.args[0], error
    print("the switchboard knows, relays and forgets")


def check_that_a_stranger_passes_as_scheduler(folder):
    asked, looks, runs = [], [], {}
    action = {"id": Variant("s", "x"), "archive": Variant("ay", bytes(folder / "a.zephra")),
              "items": Variant("aay", [bytes(folder / "items")])}

    def scheduler(message):
        if message.member == "quickCapture_toRepository_":
            asked.append(message.values)
            return "", ()
        if message.member == "queryActionsInfoWithReply_":
            looks.append(message)
        return {"queryActionsInfoWithReply_": ("aa{sv}", ([] if runs else [action],)),
                "queryVolatileInfoWithReply_": ("a{sv}", ({"asked": Variant("s", "x")} if asked else {},)),
                "queryRunSummariesWithReply_": ("a{sv}", (runs,))}.get(message.member)

    peer = Peer(f"{ROOM}/scheduler", scheduler)
    peer.publish("com.havrel.scheduler", "/com/example/scheduler")
    terminal, end = pty.openpty()
    client = subprocess.Popen([HAVREL, "capture", "--to", folder / "a.zephra", folder / "items"], stderr=end,
                              env={**os.environ, "TERM": "xterm"})

    def tell(notice, action="x"):
        peer.ask("postNotificationName_source_userInfo_", "sasa{sv}", notice, ["Scheduler"],
                 {"id": Variant("s", action), "fraction": Variant("d", 0.5), "filesDone": Variant("x", 9)})

    peer.serve(lambda: looks)
    peer.serve(lambda: not unrest_of(client.pid))  # it waits to be told, and for nothing else
    assert len(looks) == 1 and client.poll() is None, looks
    tell("SchedulerActionEnded", "of somebody else")
    deadline = time.monotonic() + 60
    while not select.select([terminal], [], [], 0)[0]:  # the bar shows itself when it has taken a moment
        tell("SchedulerActionProgressed")
        assert time.monotonic() < deadline
    assert b"50%  9 items" in os.read(terminal, 1000)
    runs["x"] = Variant("a{sv}", {**action, "outcome": Variant("s", "done")})
    tell("SchedulerActionEnded")
    peer.serve(lambda: client.poll() is not None)
    assert client.returncode == 0 and len(looks) == 2, (client.returncode, looks)
    assert asked == [[[bytes(folder / "items")], bytes(folder / "a.zephra")]], asked
    peer.ask("redactEndpointForIdentifier_", "s", "com.havrel.scheduler")
    peer.socket.close()
    print("a stranger passes as scheduler")


def described(root):
    """What there is to compare of each item: everything that the system tells, but numbers that it gives out itself."""
    result, first = {}, {}
    for folder, folders, files in os.walk(os.fsencode(root)):
        for name in [b"."] + sorted(folders + files):
            path = os.path.join(folder, name)
            place, facts = os.path.relpath(path, os.fsencode(root)), os.lstat(path)
            content = b""
            if stat.S_ISLNK(facts.st_mode):
                content = os.readlink(path)
            elif stat.S_ISREG(facts.st_mode):
                content = pathlib.Path(os.fsdecode(path)).read_bytes()
            attributes = {each: os.getxattr(path, each, follow_symlinks=False) for each in
                          os.listxattr(path, follow_symlinks=False)}
            same = first.setdefault(facts.st_ino, place)
            is_sparse = facts.st_size > 1_000_000 and facts.st_blocks * 512 < facts.st_size // 2
            result[place] = (facts.st_mode, facts.st_uid, facts.st_gid, facts.st_mtime_ns, same, is_sparse, content,
                             attributes)
    return result


def fill(folder):
    folder.mkdir()
    (folder / "text.txt").write_text("one\n")
    (folder / "empty").touch()
    (folder / "private").write_bytes(os.urandom(200_000))
    (folder / "private").chmod(0o600)
    (folder / "below").mkdir()
    os.symlink("../text.txt", folder / "below/link")
    pathlib.Path(os.fsdecode(bytes(folder) + b"/below/caf\xe9 \n")).write_text("a name of any bytes\n")
    with open(folder / "sparse", "wb") as file:
        file.write(b"begins")
        file.truncate(5_000_000)
    os.link(folder / "text.txt", folder / "below/same text")
    os.symlink(b"to bytes \xfe", bytes(folder) + b"/below/l\xff")
    os.mkfifo(folder / "pipe", 0o620)
    (folder / "read-only").write_text("kept\n")
    for name, note in (("empty", b""), ("read-only", b"\0\xff"), ("below", b"of a folder")):
        os.setxattr(folder / name, "user.note", note)
    (folder / "read-only").chmod(0o444)
    for each, seconds in (("text.txt", 1_234_567_890), ("below/link", 1_000_000_000), ("pipe", 3), ("below", -5),
                          (".", 946_684_800)):
        os.utime(folder / each, ns=(1, seconds * 10**9 + 123_456_789), follow_symlinks=False)


def change(folder):
    (folder / "text.txt").write_text("two\n")
    (folder / "empty").unlink()
    (folder / "new").write_text("new\n")
    (folder / "private").chmod(0o640)
    (folder / "pipe").rename(folder / "renamed")
    os.setxattr(folder / "below", "user.note", b"changed")
    os.removexattr(folder / "read-only", "user.note")
    os.utime(folder / "below", ns=(1, 7))


def havrel(*words):
    done = subprocess.run([HAVREL, *words], capture_output=True, text=True, errors="surrogateescape", timeout=300)
    assert done.returncode == 0, (words, done.returncode, done.stdout, done.stderr)
    return done.stdout


def check_a_capture(folder):
    items, archive = folder / "items", folder / "a.zephra"
    for step, changes in enumerate((lambda _: None, change)):
        changes(items)
        havrel("capture", "--to", archive, items)
        havrel("archive", "restore", archive, items, "--into", folder / f"back{step}")
        assert described(folder / f"back{step}/items") == described(items)
    print("what was captured comes back, before and after a change")

    peer = Peer(f"{ROOM}/asking")
    (owner, prefix), = peer.where("com.havrel.monitor")
    holding, = peer.call(owner, f"{prefix}/x", "com.havrel.ZephronMonitoring", "queryRepositoriesForItems_withReply_",
                         "aay", [bytes(items / "text.txt")])
    assert [each["path"] for each in holding] == [bytes(archive)], holding
    (owner, prefix), = peer.where("com.havrel.scheduler")
    runs, = peer.call(owner, f"{prefix}/x", "com.havrel.ZephronScheduling", "queryRunSummariesWithReply_")
    assert [each["outcome"] for each in runs.values()] == ["done", "done"], runs
    second = runs[max(runs, key=int)]
    assert second["filesNew"] == 1 and second["filesUnmodified"] >= 2, second
    missing = subprocess.run([HAVREL, "capture", "--to", folder / "none.zephra", items], capture_output=True)
    assert missing.returncode == 1 and b"none.zephra" in missing.stderr, missing
    print("monitor and scheduler know of it")


class Hold:
    """Keeps the next run of the engine's program waiting from its beginning on."""

    def __init__(self, folder):
        self.pipe = folder / "hold"
        os.mkfifo(self.pipe)

    def wait_until_reached(self):
        """Only this one is held: the next one goes its way."""
        self.end = os.open(self.pipe, os.O_WRONLY)
        self.pipe.unlink()

    def let_go(self):
        os.write(self.end, b"\n")
        os.close(self.end)

    def give_up(self):
        os.close(self.end)


def install_engine_that_can_be_held(folder):
    engine = shutil.which("restic")
    assert engine, "restic is not installed (scripts/setup installs it)"
    (folder / "bin").mkdir()
    program = folder / "bin/restic"
    program.write_text(f"#!/bin/sh\nif [ -p '{folder}/hold' ]; then read -r _ <'{folder}/hold' || exit 1; fi\n"
                       f"exec '{engine}' \"$@\"\n")
    program.chmod(0o755)
    return f"{folder}/bin:{os.environ['PATH']}"


def process_of(peer, name):
    return peer.call_bus("GetConnectionUnixProcessID", "s", name)[0]


def capture_meanwhile(folder, happens):
    """What happens while a capture is under way, and the client waits for it."""
    hold = Hold(folder)
    client = subprocess.Popen([HAVREL, "capture", "--to", folder / "a.zephra", folder / "items"],
                              stderr=subprocess.PIPE, text=True)
    hold.wait_until_reached()
    happens(hold)
    _, errors = client.communicate(timeout=60)
    return client.returncode, errors


def check_deaths_during_a_capture(folder):
    peer = Peer(f"{ROOM}/during")

    def captures():
        info = json.loads(havrel("archive", "info", "--json", folder / "a.zephra"))
        return len(info["captures"])

    def end_of(name, number):
        def happens(hold):
            owner, = peer.call_bus("GetNameOwner", "s", name)
            os.kill(process_of(peer, name), number)
            while peer.call_bus("NameHasOwner", "s", owner)[0]:
                pass
            if name == SWITCHBOARD:
                hold.let_go()
            else:
                hold.give_up()
        return happens

    for name, number in (("com.havrel.Scheduler", signal.SIGKILL), ("com.havrel.Scheduler", signal.SIGTERM),
                         (SWITCHBOARD, signal.SIGKILL)):
        before = captures()
        status, errors = capture_meanwhile(folder, end_of(name, number))
        assert status == 0 and "havrel:" not in errors, (name, number, status, errors)
        assert captures() == before + 1, (name, number)
        print("a capture survives that", name, "gets", number.name)


def check_that_a_capture_does_not_need_its_client(folder):
    peer = Peer(f"{ROOM}/watching")
    peer.ask("addProxyObserver_forName_source_", "ssas", "me", "SchedulerActionEnded", ["Scheduler"],
             protocol="ZephronSwitchboarding_private")
    hold = Hold(folder)
    client = subprocess.Popen([HAVREL, "capture", "--to", folder / "a.zephra", folder / "items"])
    hold.wait_until_reached()
    client.kill()
    client.wait()
    hold.let_go()
    peer.serve(lambda: peer.heard)
    (owner, prefix), = peer.where("com.havrel.scheduler")
    runs, = peer.call(owner, f"{prefix}/y", "com.havrel.ZephronScheduling", "queryRunSummariesWithReply_")
    assert runs[peer.heard[0][3]["id"]]["outcome"] == "done", (peer.heard, runs)
    print("a capture does not need its client")


def check_that_the_queue_and_the_log_survive(folder):
    peer = Peer(f"{ROOM}/surviving")

    def ask(member, signature="", *values):
        (owner, prefix), = peer.where("com.havrel.scheduler")
        return peer.call(owner, f"{prefix}/z{peer.serial}", "com.havrel.ZephronScheduling", member, signature, *values)

    ask("setHoldTime_", "d", 4e9)
    ask("quickCapture_toRepository_", "aayay", [bytes(folder / "items")], bytes(folder / "a.zephra"))
    before = ask("queryActionsInfoWithReply_"), ask("queryRunSummariesWithReply_")
    assert len(before[0][0]) == 1 and len(before[1][0]) > 2, before
    process = process_of(peer, "com.havrel.Scheduler")
    os.kill(process, signal.SIGKILL)
    while "com.havrel.Scheduler" in peer.call_bus("ListNames")[0]:
        pass
    assert (ask("queryActionsInfoWithReply_"), ask("queryRunSummariesWithReply_")) == before
    assert process_of(peer, "com.havrel.Scheduler") != process
    assert ask("queryHoldTimeWithReply_") == [4e9]
    ask("setHoldTime_", "d", 0.0)
    while ask("queryActionsInfoWithReply_")[0]:
        pass
    print("the queue and the log survive the scheduler")


def check_that_they_rest():
    sleeping = subprocess.Popen(["sleep", "600"])
    while "running" in pathlib.Path(f"/proc/{sleeping.pid}/syscall").read_text():
        pass
    assert unrest_of(sleeping.pid), "a process that waits for a time is not at rest"
    sleeping.kill()
    sleeping.wait()
    peer = Peer(f"{ROOM}/resting")
    for each in ("Switchboard", "Monitor", "Scheduler"):
        process = process_of(peer, f"com.havrel.{each}")
        try:
            peer.serve(lambda: not unrest_of(process))  # threads that have answered end some seconds later
        except TimeoutError as error:
            raise AssertionError(each, unrest_of(process)) from error
    print("nothing wakes them while nothing happens")


def check_deaths(folder):
    peer = Peer(f"{ROOM}/deaths")

    hanging = process_of(peer, "com.havrel.Monitor")
    os.kill(hanging, signal.SIGSTOP)
    havrel("capture", "--to", folder / "a.zephra", folder / "items")
    os.kill(hanging, signal.SIGCONT)
    before = peer.where("com.havrel.scheduler")
    os.kill(process_of(peer, "com.havrel.Scheduler"), signal.SIGKILL)
    while peer.where("com.havrel.scheduler") == before:  # until the bus has told that it has gone
        pass
    havrel("capture", "--to", folder / "a.zephra", folder / "items")
    switchboard = process_of(peer, SWITCHBOARD)
    os.kill(switchboard, signal.SIGKILL)
    while SWITCHBOARD in peer.call_bus("ListNames")[0]:
        pass
    havrel("capture", "--to", folder / "a.zephra", folder / "items")
    assert process_of(peer, SWITCHBOARD) != switchboard
    print("they survive each other")


def check_all_in_one_process():
    process = subprocess.Popen([HAVREL, "components", "run"])
    peer = Peer(f"{ROOM}/all")
    names = {SWITCHBOARD, "com.havrel.Switchboard", "com.havrel.Monitor", "com.havrel.Scheduler"}
    while not names <= set(peer.call_bus("ListNames")[0]):
        assert process.poll() is None
    owners = {peer.call_bus("GetNameOwner", "s", each)[0] for each in names}
    assert len(owners) == 1, owners
    assert {peer.where(f"com.havrel.{each}")[0][0] for each in ("monitor", "scheduler")} == owners
    process.send_signal(signal.SIGTERM)
    assert process.wait(60) == 0
    print("all of them in one process")


def serve(folder):
    services = folder / "data/dbus-1/services"
    services.mkdir(parents=True)
    for each in ("Switchboard", "Monitor", "Scheduler"):
        (services / f"com.havrel.{each}.service").write_text(
            f"[D-BUS Service]\nName=com.havrel.{each}\nExec={COMPONENTS}/havrel-{each.lower()}\n")


def within_a_session(folder):
    fill(folder / "items")
    havrel("archive", "create", folder / "a.zephra", "--repository", folder / "repository")
    check_all_in_one_process()
    check_the_switchboard()
    check_that_a_stranger_passes_as_scheduler(folder)
    check_a_capture(folder)
    check_deaths(folder)
    check_deaths_during_a_capture(folder)
    check_that_a_capture_does_not_need_its_client(folder)
    check_that_the_queue_and_the_log_survive(folder)
    check_that_they_rest()


def main():
    if len(sys.argv) > 3:
        return within_a_session(pathlib.Path(sys.argv[3]))
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch).resolve()
        serve(folder)
        path = install_engine_that_can_be_held(folder)
        places = {f"XDG_{each}_HOME": str(folder / each.lower()) for each in ("DATA", "STATE", "CONFIG", "CACHE")}
        session = subprocess.run(["dbus-run-session", "--", sys.executable, __file__, *sys.argv[1:3], folder],
                                 env={**os.environ, **places, "HOME": str(folder), "PATH": path})
        sys.exit(session.returncode)


main()

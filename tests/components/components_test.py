#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Speaks to the components from outside, by the message bus alone, and lets them capture for real.

usage: components_test.py HAVREL FOLDER_OF_COMPONENTS
"""
import os
import pathlib
import signal
import subprocess
import sys
import tempfile

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
    asked = []

    def scheduler(message):
        if message.member == "quickCapture_toRepository_":
            asked.append(message.values)
            return "", ()
        runs = {"x": Variant("a{sv}", {"id": Variant("s", "x"), "archive": Variant("ay", archive),
                                       "items": Variant("aay", items), "outcome": Variant("s", "done")})
                for items, archive in asked}
        return {"queryActionsInfoWithReply_": ("aa{sv}", ([],)),
                "queryVolatileInfoWithReply_": ("a{sv}", ({},)),
                "queryRunSummariesWithReply_": ("a{sv}", (runs,))}.get(message.member)

    peer = Peer(f"{ROOM}/scheduler", scheduler)
    peer.publish("com.havrel.scheduler", "/com/example/scheduler")
    client = subprocess.Popen([HAVREL, "capture", "--to", folder / "a.zephra", folder / "items"])
    peer.serve(lambda: client.poll() is not None)
    assert client.returncode == 0, client.returncode
    assert asked == [[[bytes(folder / "items")], bytes(folder / "a.zephra")]], asked
    peer.ask("redactEndpointForIdentifier_", "s", "com.havrel.scheduler")
    peer.socket.close()
    print("a stranger passes as scheduler")


def described(root):
    """What there is to compare of each item."""
    result = {}
    for folder, folders, files in os.walk(os.fsencode(root)):
        for name in [b"."] + folders + files:
            path = os.path.join(folder, name)
            facts = os.lstat(path)
            link = os.path.islink(path)
            content = os.readlink(path) if link else pathlib.Path(os.fsdecode(path)).read_bytes() \
                if name in files else b""
            attributes = {each: os.getxattr(path, each, follow_symlinks=False) for each in
                          os.listxattr(path, follow_symlinks=False)}
            result[os.path.relpath(path, os.fsencode(root))] = (
                facts.st_mode, facts.st_mtime_ns if not link else 0, content, attributes)
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
        file.truncate(5_000_000)
    os.utime(folder / "text.txt", ns=(1, 1_234_567_890_123_456_789))
    try:
        os.setxattr(folder / "empty", "user.note", b"kept")
    except OSError:
        print("no attributes here")


def change(folder):
    (folder / "text.txt").write_text("two\n")
    (folder / "empty").unlink()
    (folder / "new").write_text("new\n")


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
    missing = subprocess.run([HAVREL, "capture", "--to", folder / "none.zephra", items], capture_output=True)
    assert missing.returncode == 1 and b"none.zephra" in missing.stderr, missing
    print("monitor and scheduler know of it")


def check_deaths(folder):
    peer = Peer(f"{ROOM}/deaths")

    def process_of(name):
        return peer.call_bus("GetConnectionUnixProcessID", "s", name)[0]

    hanging = process_of("com.havrel.Monitor")
    os.kill(hanging, signal.SIGSTOP)
    havrel("capture", "--to", folder / "a.zephra", folder / "items")
    os.kill(hanging, signal.SIGCONT)
    before = peer.where("com.havrel.scheduler")
    os.kill(process_of("com.havrel.Scheduler"), signal.SIGKILL)
    while peer.where("com.havrel.scheduler") == before:  # until the bus has told that it has gone
        pass
    havrel("capture", "--to", folder / "a.zephra", folder / "items")
    switchboard = process_of(SWITCHBOARD)
    os.kill(switchboard, signal.SIGKILL)
    while SWITCHBOARD in peer.call_bus("ListNames")[0]:
        pass
    havrel("capture", "--to", folder / "a.zephra", folder / "items")
    assert process_of(SWITCHBOARD) != switchboard
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


def main():
    if len(sys.argv) > 3:
        return within_a_session(pathlib.Path(sys.argv[3]))
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch).resolve()
        serve(folder)
        places = {f"XDG_{each}_HOME": str(folder / each.lower()) for each in ("DATA", "STATE", "CONFIG", "CACHE")}
        session = subprocess.run(["dbus-run-session", "--", sys.executable, __file__, *sys.argv[1:3], folder],
                                 env={**os.environ, **places, "HOME": str(folder)})
        sys.exit(session.returncode)


main()

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
import subprocess
import sys
import tempfile
import time

from bus_peer import ROOM, SWITCHBOARD, Peer
from bus_session import components, output_of, run_again_within, serve
import described_interfaces
from described_items import change, described, fill
from idle_process import unrest_of
import other_users
from plain_bus import Variant

HAVREL, COMPONENTS = sys.argv[1], pathlib.Path(sys.argv[2])


def check_the_switchboard():
    first, second = Peer(f"{ROOM}/first"), Peer(f"{ROOM}/second")
    first.call_bus("StartServiceByName", "su", "com.havrel.Switchboard", 0)
    assert first.where("com.example.echo") == []
    second.ask("addProxyObserver_forName_source_", "ssas", "me", "SwitchboardEndpointPublished", ["Switchboard"],
               protocol="ZephronSwitchboarding_private")
    second.ask("addProxyObserver_forName_source_", "ssas", "all", "Greeting", [],
               protocol="ZephronSwitchboarding_private")
    sent = {"words": ("as", ["good", "day"]), "bytes": ("ay", b"\0\xff"), "most": ("t", 2**64 - 1),
            "least": ("x", -2**63), "half": ("d", 0.5), "yes": ("b", True), "text": ("s", "\u20ac"), "none": ("av", [])}
    first.publish("com.example.echo", "/com/example/echo")
    first.ask("postNotificationName_source_userInfo_", "sasa{sv}", "Greeting", ["first"],
              {key: Variant(*value) for key, value in sent.items()})
    second.serve(lambda: len(second.heard) == 2)
    assert second.heard == [
        ["me", "SwitchboardEndpointPublished", ["Switchboard"], {"id": "com.example.echo"}],
        ["all", "Greeting", ["first"], {key: value for key, (_, value) in sent.items()}]], second.heard
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
    calls = [each for each in peer.calls if each.path.startswith("/com/example/scheduler/")]
    assert [calls[0].interface, calls[0].member] == ["com.havrel.HVComponentMessaging", "barrierWithCompletion_"], calls
    assert {each.interface for each in calls if each.member == "quickCapture_toRepository_"} == {
        "com.havrel.ZephronScheduling"}
    peer.ask("redactEndpointForIdentifier_", "s", "com.havrel.scheduler")
    peer.socket.close()
    print("a stranger passes as scheduler")


def havrel(*words):
    return output_of(HAVREL, *words)


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


def capture_meanwhile(peer, folder, happens):
    """What happens while a capture is under way, and the client waits for it, knowing which one it is."""
    hold = Hold(folder)
    client = subprocess.Popen([HAVREL, "capture", "--to", folder / "a.zephra", folder / "items"],
                              stderr=subprocess.PIPE, text=True)
    hold.wait_until_reached()
    peer.serve(lambda: not unrest_of(client.pid))
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
        status, errors = capture_meanwhile(peer, folder, end_of(name, number))
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


def check_that_all_is_as_described():
    """At the end: to the scheduler the least of everything is a capture of nothing."""
    every = ["com.havrel.HVComponentMessaging", "com.havrel.HVComponentInstalling", "com.havrel.HVComponentServing"]
    both = ["com.havrel.HVComponentPreferencing", "com.havrel.CommandListenerServiceProvider"]
    peer = Peer(f"{ROOM}/describing")
    for identifier, own in (("scheduler", "com.havrel.ZephronScheduling"), ("monitor", "com.havrel.ZephronMonitoring")):
        (owner, prefix), = peer.where(f"com.havrel.{identifier}")
        peer.call(owner, f"{prefix}/x", every[0], "barrierWithCompletion_")  # begins the connection
        described_interfaces.check(peer, owner, f"{prefix}/x", every + both + [own])
    described_interfaces.check(peer, SWITCHBOARD, peer.path, every + [
        "com.havrel.ZephronSwitchboarding", "com.havrel.ZephronSwitchboarding_private"])


def check_deaths(folder):
    peer = Peer(f"{ROOM}/deaths")
    peer.call_bus("AddMatch", "s", "type='signal',interface='com.havrel.Notifications',member='posted'")

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
    peer.serve(lambda: peer.notifications())
    assert peer.notifications()[0][:2] == [
        "com.havrel.switchboard.started", [f"com.havrel.switchboard.{os.geteuid()}"]], peer.notifications()
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


def within_a_session(folder):
    fill(folder / "items")
    havrel("archive", "create", folder / "a.zephra", "--repository", folder / "repository")
    check_all_in_one_process()
    check_the_switchboard()
    other_users.check_that_they_are_not_heard()
    check_that_a_stranger_passes_as_scheduler(folder)
    check_a_capture(folder)
    check_deaths(folder)
    check_deaths_during_a_capture(folder)
    check_that_a_capture_does_not_need_its_client(folder)
    check_that_the_queue_and_the_log_survive(folder)
    check_that_they_rest()
    check_that_all_is_as_described()


def main():
    if len(sys.argv) > 3:
        return within_a_session(pathlib.Path(sys.argv[3]))
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch).resolve()
        serve(folder, components(COMPONENTS))
        sys.exit(run_again_within(folder, PATH=install_engine_that_can_be_held(folder)))


main()

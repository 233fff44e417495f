# SPDX-License-Identifier: MIT
"""Whether a process can wake by itself: asked of the kernel, not measured.

A process rests when each of its threads waits in a call without a time limit, and no timer of it is armed.
"""
import os
import pathlib
import platform

# The calls that wait, by their numbers, and which argument limits the time: none is a null pointer or -1.
# \source the kernel's syscall tables; futex(2), poll(2), ppoll(2), epoll_wait(2)
CALLS = {
    "x86_64": {7: ("poll", 2), 271: ("ppoll", 2), 202: ("futex", 3), 232: ("epoll_wait", 3), 281: ("epoll_pwait", 3),
               0: ("read", None), 47: ("recvmsg", None), 61: ("wait4", None)},
    "aarch64": {73: ("ppoll", 2), 98: ("futex", 3), 22: ("epoll_pwait", 3), 63: ("read", None), 212: ("recvmsg", None),
                260: ("wait4", None)},
}.get(platform.machine(), {})
# What goes on after the process was stopped and continued, with the arguments of the call that it was.
RESTARTED = {"x86_64": 219, "aarch64": 128}.get(platform.machine())
NO_LIMIT = {0: "ppoll futex", 0xFFFFFFFF: "poll epoll_wait epoll_pwait", 0xFFFFFFFFFFFFFFFF: "poll epoll_wait epoll_pwait"}


def unrest_of_thread(task):
    words = (task / "syscall").read_text().split()
    if words[0] == "running":
        return "it runs"
    name, limit = CALLS.get(int(words[0]), (f"call {words[0]}", -1))
    if int(words[0]) == RESTARTED and "poll" in (task / "wchan").read_text():
        name, limit = "poll", 2
    if limit is None:
        return None
    if limit < 0 or name not in NO_LIMIT.get(int(words[1 + limit], 16), "").split():
        return f"{name} with {words[1:]}"
    return None


def armed_timers_of(process):
    yield from (line for line in (process / "timers").read_text().splitlines() if line.startswith("ID:"))
    for each in (process / "fd").iterdir():
        try:
            if os.readlink(each) != "anon_inode:[timerfd]":
                continue
            facts = (process / "fdinfo" / each.name).read_text()
        except FileNotFoundError:  # closed meanwhile
            continue
        if "it_value: (0, 0)" not in facts:
            yield facts


def unrest_of(pid):
    """What keeps the process from resting, in words; empty when nothing does."""
    assert CALLS, f"the calls of {platform.machine()} are not known here"
    process = pathlib.Path(f"/proc/{pid}")
    unrest = {}
    for task in (process / "task").iterdir():
        try:
            if (why := unrest_of_thread(task)):
                unrest[(task / "comm").read_text().strip()] = why
        except (FileNotFoundError, ProcessLookupError):  # ended meanwhile
            unrest[task.name] = "it ends"
    if (timers := list(armed_timers_of(process))):
        unrest["timers"] = timers
    return unrest

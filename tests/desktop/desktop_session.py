# SPDX-License-Identifier: MIT
"""An X server with a window manager, and looking at programs through the accessibility bus."""
import os
import subprocess
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, Gio, GLib  # noqa: E402


class TookTooLong(Exception):
    pass


def until(condition, what, seconds=90):
    """Asks again and again until there is an answer; gives up at the deadline."""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        try:
            answer = condition()
        except GLib.Error:  # what was looked at has gone meanwhile
            answer = None
        if answer:
            return answer
        GLib.MainContext.default().iteration(False)
        time.sleep(0.02)
    raise TookTooLong(what)


class Session:
    """Everything that is started in it ends with it."""

    def __enter__(self):
        self.processes = []
        try:
            self.begin()
        except BaseException:
            self.__exit__()
            raise
        return self

    def begin(self):
        self.start_server()
        self.start(["openbox"])
        until(self.has_window_manager, "the window manager")
        bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                      "UpdateActivationEnvironment", GLib.Variant("(a{ss})", ({"DISPLAY": os.environ["DISPLAY"]},)),
                      None, Gio.DBusCallFlags.NONE, 30000, None)
        bus.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Set",
                      GLib.Variant("(ssv)", ("org.a11y.Status", "IsEnabled", GLib.Variant("b", True))),
                      None, Gio.DBusCallFlags.NONE, 30000, None)
        Atspi.init()

    def __exit__(self, *_):
        for process in reversed(self.processes):
            process.terminate()
        for process in reversed(self.processes):
            try:
                process.wait(30)
            except subprocess.TimeoutExpired:
                process.kill()

    def start_server(self):
        reading, writing = os.pipe()
        self.start(["Xvfb", "-displayfd", str(writing), "-screen", "0", "1280x900x24", "-nolisten", "tcp",
                    "-noreset"],  # else the end of the first client to come ends the others
                   pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as display:
            os.environ["DISPLAY"] = ":" + display.readline().strip()

    def start(self, command, **more):
        self.processes.append(subprocess.Popen(command, **more))
        return self.processes[-1]

    @staticmethod
    def take_picture(name):
        """Of everything on the screen, where pictures are asked for."""
        if folder := os.environ.get("HAVREL_PICTURES"):
            subprocess.run(["import", "-window", "root", "-trim", "+repage", os.path.join(folder, name + ".png")],
                           check=True, timeout=60)

    @staticmethod
    def has_window_manager():
        answer = subprocess.run(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], capture_output=True, text=True,
                                timeout=30)
        return "window id" in answer.stdout

    @staticmethod
    def key_tool(*arguments, quiet=False):
        done = subprocess.run(["xdotool", *arguments], capture_output=True, text=True)
        if done.returncode != 0 and not quiet:
            sys.exit("xdotool " + " ".join(arguments) + ": " + done.stderr)
        return done.stdout.strip()


def programs():
    desktop = Atspi.get_desktop(0)
    return [desktop.get_child_at_index(number) for number in range(desktop.get_child_count())]


def everything_below(thing, deepest=40):
    yield thing
    if deepest == 0:
        return
    for number in range(min(thing.get_child_count(), 500)):
        child = thing.get_child_at_index(number)
        if child is not None:
            yield from everything_below(child, deepest - 1)


def find(name, roles=None, program=None, fits=lambda thing: True):
    """The first thing of that name; of any, when none is given."""
    for root in programs():
        if root is None or (program and program not in (root.get_name() or "").lower()):
            continue
        for thing in everything_below(root):
            if name in (None, thing.get_name()) and (roles is None or thing.get_role() in roles) and fits(thing):
                return thing
    return None


def centre(thing):
    """On the screen; none when it is not shown, as menus that are there before they are opened."""
    area = Atspi.Component.get_extents(thing, Atspi.CoordType.SCREEN)
    return [str(area.x + area.width // 2), str(area.y + area.height // 2)] if area.width > 0 and area.x > 0 else None


class Focus:
    """What the keyboard is at, as programs tell the accessibility bus: the menus of Qt 5 are seen in no other way."""

    def __init__(self):
        self.names = []
        self.listener = Atspi.EventListener.new(self.hear)
        self.listener.register("object:state-changed:focused")

    def hear(self, event):
        if event.detail1:  # it came, and did not go
            self.names.append(event.source.get_name())

    def after_key(self, session, key):
        """The name of what the key leads to."""
        self.names.clear()
        session.key_tool("key", key)
        until(lambda: self.names, f"something to have the keyboard after {key}")
        return self.names[-1]


def press(thing):
    Atspi.Action.do_action(thing, 0)

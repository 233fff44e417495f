#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Times, from the first call on a message bus that has to start the program to the window on the screen, the service
with its preferences window beside a program that shows an empty window; and the second call to either. Then compares
the memory of both. The peers take turns; figures are medians.

usage: scripts/with-display bench/service_bench.py HAVREL_SERVICE EMPTY_WINDOW [ROUNDS]
"""
import ctypes
import os
import select
import socket
import statistics
import struct
import subprocess
import sys
import tempfile
import time

CONFIGURATION = """<busconfig><type>session</type><listen>unix:path={0}/bus</listen><auth>EXTERNAL</auth>
<servicedir>{0}/services</servicedir><policy context='default'><allow send_destination='*' eavesdrop='true'/>
<allow eavesdrop='true'/><allow own='*'/></policy>
</busconfig>"""
DEADLINE = 30


class Windows:
    """The moments at which windows come to the screen."""

    STRUCTURE, SUBSTRUCTURE, MAPPED, VIEWABLE = 1 << 17, 1 << 19, 19, 2

    def __init__(self):
        self.x11 = ctypes.CDLL("libX11.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.x11.XDefaultRootWindow.restype = ctypes.c_ulong
        self.display = ctypes.c_void_p(self.x11.XOpenDisplay(None))
        if not self.display:
            sys.exit("no display: run it by scripts/with-display")
        root = ctypes.c_ulong(self.x11.XDefaultRootWindow(self.display))
        self.x11.XSelectInput(self.display, root, ctypes.c_long(self.SUBSTRUCTURE))
        self.x11.XSync(self.display, 0)

    def forget(self):
        self.x11.XSync(self.display, 1)

    def wait(self):
        """Until a window below the root is mapped: the frame of the window manager, with the window in it."""
        event = (ctypes.c_long * 24)()
        end = time.monotonic() + DEADLINE
        while time.monotonic() < end:
            while self.x11.XPending(self.display):
                self.x11.XNextEvent(self.display, ctypes.byref(event))
                if event[0] & 0xFFFFFFFF == self.MAPPED:
                    return
            select.select([self.x11.XConnectionNumber(self.display)], [], [], 1)
        sys.exit("no window came")


class Client:
    """As much of the bus's protocol as a call needs."""

    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(path)
        user = str(os.getuid()).encode().hex().encode()
        self.socket.sendall(b"\0AUTH EXTERNAL " + user + b"\r\n")
        self.socket.recv(1000)
        self.socket.sendall(b"BEGIN\r\n")
        self.serial = 0
        self.call("org.freedesktop.DBus", "Hello", "org.freedesktop.DBus", b"", b"")

    def call(self, name, member, interface, signature, body):
        """Sends a call and waits for something to come back."""
        self.serial += 1
        path = "/" + name.replace(".", "/")
        fields = b""
        for code, kind, value in ((1, b"o", path), (2, b"s", interface), (3, b"s", member), (6, b"s", name)):
            fields += b"\0" * (-len(fields) % 8) + bytes([code]) + b"\1" + kind + b"\0"
            fields += struct.pack("<I", len(value)) + value.encode() + b"\0"
        if signature:
            fields += b"\0" * (-len(fields) % 8) + b"\x08\1g\0" + bytes([len(signature)]) + signature + b"\0"
        header = b"l\1\0\1" + struct.pack("<III", len(body), self.serial, len(fields)) + fields
        self.socket.sendall(header + b"\0" * (-len(header) % 8) + body)
        return self.answer()

    def answer(self):
        """The body of the answer to the last call; other messages are passed over."""
        while True:
            head = self.take(16)
            length, fields = struct.unpack("<I", head[4:8])[0], struct.unpack("<I", head[12:16])[0]
            rest = self.take(fields + -fields % 8 + length)
            if head[1] in (2, 3) and b"\x05\1u\0" + struct.pack("<I", self.serial) in rest:
                if head[1] == 3:
                    sys.exit(f"the call failed: {rest!r}")
                return rest[len(rest) - length:]

    def take(self, count):
        data = b""
        while len(data) < count:
            if not (more := self.socket.recv(count - len(data))):
                sys.exit("the bus has gone")
            data += more
        return data

    def process_of(self, name):
        body = struct.pack("<I", len(name)) + name.encode() + b"\0"
        bus = "org.freedesktop.DBus"
        return struct.unpack("<I", self.call(bus, "GetConnectionUnixProcessID", bus, b"s", body))[0]


def pasteboard(uri):
    kind, data = b"text/uri-list", uri.encode() + b"\r\n"
    entry = struct.pack("<I", len(kind)) + kind + b"\0"
    entry += b"\0" * (-len(entry) % 4) + struct.pack("<I", len(data)) + data
    return struct.pack("<I", len(entry)) + b"\0" * 4 + entry


def memory_of(process):
    """The proportional share of memory, in KiB."""
    with open(f"/proc/{process}/smaps_rollup", encoding="ascii") as lines:
        return next(int(line.split()[1]) for line in lines if line.startswith("Pss:"))


PEERS = {  # name on the bus, interface, member
    "empty window": ("com.havrel.EmptyWindow", "com.havrel.EmptyWindow", "show"),
    "preferences": ("com.havrel.Service", "com.havrel.Services", "setCapturePreferences"),
}


def measure(folder, peer, windows, body):
    """Starts a bus of its own: the milliseconds of the first and of the second call, and the memory after both."""
    name, interface, member = PEERS[peer]
    bus = os.path.join(folder, "bus")
    daemon = subprocess.Popen(["dbus-daemon", "--nofork", "--nopidfile", "--print-address=1", "--config-file",
                               os.path.join(folder, "bus.conf")], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                              env={**os.environ, "DBUS_SESSION_BUS_ADDRESS": f"unix:path={bus}"})
    daemon.stdout.readline()
    client = Client(bus)
    taken = []
    for _ in range(2):
        windows.forget()
        start = time.perf_counter()
        client.call(name, member, interface, b"a{say}", body)
        windows.wait()
        taken.append((time.perf_counter() - start) * 1000)
    process = client.process_of(name)
    taken.append(memory_of(process))
    os.kill(process, 15)
    daemon.terminate()
    daemon.wait()
    return taken


def main():
    programs = dict(zip(PEERS, (sys.argv[2], sys.argv[1])))
    rounds = int(sys.argv[3]) if len(sys.argv) > 3 else 15
    windows = Windows()
    samples = {peer: [] for peer in PEERS}
    with tempfile.TemporaryDirectory(prefix="havrel-bench-") as folder:
        os.environ.update(HOME=folder, XDG_STATE_HOME=folder, XDG_CONFIG_HOME=folder, XDG_RUNTIME_DIR=folder)
        os.mkdir(os.path.join(folder, "services"))
        with open(os.path.join(folder, "bus.conf"), "w", encoding="ascii") as file:
            file.write(CONFIGURATION.format(folder))
        for peer, program in programs.items():
            name = PEERS[peer][0]
            with open(os.path.join(folder, "services", name + ".service"), "w", encoding="utf-8") as file:
                file.write(f"[D-BUS Service]\nName={name}\nExec={os.path.abspath(program)}\n")
        os.mkdir(os.path.join(folder, "item"))
        body = pasteboard(f"file://{folder}/item")
        for number in range(rounds + 1):
            for peer in PEERS:
                taken = measure(folder, peer, windows, body)
                if number > 0:  # the first round only warms up
                    samples[peer].append(taken)
    medians = {peer: [statistics.median(column) for column in zip(*rows)] for peer, rows in samples.items()}
    for place, title in enumerate(("first call, ms", "second call, ms", "memory after two windows, KiB")):
        empty, full = (medians[peer][place] for peer in PEERS)
        print(f"{title:32} empty window {empty:9.1f}   preferences {full:9.1f}   ratio {full / empty:.2f}")


main()

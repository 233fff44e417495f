# SPDX-License-Identifier: MIT
"""A client of the message bus that shares no code with the product: as little as its specification asks for."""
import os
import re
import select
import socket
import struct
import time

FIXED = {"y": "B", "b": "I", "n": "h", "q": "H", "i": "i", "u": "I", "x": "q", "t": "Q", "d": "d"}
SIZES = {code: struct.calcsize(kind) for code, kind in FIXED.items()}
ALIGNMENT = {**SIZES, "s": 4, "o": 4, "g": 1, "a": 4, "v": 1, "(": 8, "{": 8}
CALL, RETURN, ERROR, SIGNAL = 1, 2, 3, 4
PATH, INTERFACE, MEMBER, ERROR_NAME, REPLY_SERIAL, DESTINATION, SENDER, SIGNATURE = range(1, 9)
FIELD_TYPES = {PATH: "o", INTERFACE: "s", MEMBER: "s", ERROR_NAME: "s", REPLY_SERIAL: "u", DESTINATION: "s",
               SENDER: "s", SIGNATURE: "g"}


def complete_types(signature):
    """Each complete type of a signature."""
    while signature:
        length = 0
        while signature[length] == "a":
            length += 1
        if signature[length] in "({":
            depth = 0
            for length, each in enumerate(signature[length:], length):
                depth += (each in "({") - (each in ")}")
                if depth == 0:
                    break
        yield signature[:length + 1]
        signature = signature[length + 1:]


class Variant:
    def __init__(self, signature, value):
        self.signature, self.value = signature, value


class Writer:
    def __init__(self):
        self.bytes = bytearray()

    def align(self, size):
        self.bytes += bytes(-len(self.bytes) % size)

    def put(self, kind, value):
        self.align(ALIGNMENT[kind[0]])
        if kind in FIXED:
            self.bytes += struct.pack("<" + FIXED[kind], value)
        elif kind in ("s", "o", "g"):
            text = value.encode()
            self.bytes += struct.pack("<B" if kind == "g" else "<I", len(text)) + text + b"\0"
        elif kind == "v":
            self.put("g", value.signature)
            self.put(value.signature, value.value)
        elif kind[0] == "a":
            self.put_array(kind[1:], value)
        else:
            for member, each in zip(complete_types(kind[1:-1]), value, strict=True):
                self.put(member, each)

    def put_array(self, kind, value):
        length_at = len(self.bytes)
        self.bytes += bytes(4)
        self.align(ALIGNMENT[kind[0]])
        start = len(self.bytes)
        for each in value.items() if isinstance(value, dict) else value:
            self.put(kind, each)
        self.bytes[length_at:length_at + 4] = struct.pack("<I", len(self.bytes) - start)


class Reader:
    def __init__(self, data, order):
        self.data, self.order, self.at = data, order, 0

    def align(self, size):
        self.at += -self.at % size

    def take(self, kind):
        self.align(ALIGNMENT[kind[0]])
        if kind in FIXED:
            self.at += SIZES[kind]
            value = struct.unpack(self.order + FIXED[kind], self.data[self.at - SIZES[kind]:self.at])[0]
            return bool(value) if kind == "b" else value
        if kind in ("s", "o", "g"):
            length = self.take("y" if kind == "g" else "u")
            self.at += length + 1
            return self.data[self.at - length - 1:self.at - 1].decode()
        if kind == "v":
            return self.take(self.take("g"))
        if kind[0] == "a":
            return self.take_array(kind[1:])
        return tuple(self.take(each) for each in complete_types(kind[1:-1]))

    def take_array(self, kind):
        length = self.take("u")
        self.align(ALIGNMENT[kind[0]])
        end = self.at + length
        values = []
        while self.at < end:
            values.append(self.take(kind))
        if kind == "y":
            return bytes(values)
        return dict(values) if kind[0] == "{" else values


class Message:
    def __init__(self, kind, serial, fields, values):
        self.kind, self.serial, self.fields, self.values = kind, serial, fields, values
        self.path, self.interface, self.member = fields.get(PATH), fields.get(INTERFACE), fields.get(MEMBER)


class Bus:
    """One connection. `handler` gets each call and answers (signature, values), or None for an unknown one. Signals are
    kept."""

    def __init__(self, handler=lambda message: None):
        self.handler, self.serial, self.data, self.replies, self.signals = handler, 0, b"", {}, []
        address = os.environ["DBUS_SESSION_BUS_ADDRESS"]
        place = re.search(r"unix:(path|abstract)=([^,;]+)", address)
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(("\0" if place[1] == "abstract" else "") + place[2])
        self.socket.sendall(b"\0AUTH EXTERNAL " + str(os.geteuid()).encode().hex().encode() + b"\r\n")
        assert self.socket.recv(4096).startswith(b"OK")
        self.socket.sendall(b"BEGIN\r\n")
        self.name = self.call_bus("Hello")[0]

    def call_bus(self, member, signature="", *values):
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", member, signature,
                         *values)

    def send(self, kind, fields, signature, values, flags=0):
        self.serial += 1
        body = Writer()
        for each, value in zip(complete_types(signature), values, strict=True):
            body.put(each, value)
        if signature:
            fields = {**fields, SIGNATURE: signature}
        head = Writer()
        for each, value in ((b"l"[0], "y"), (kind, "y"), (flags, "y"), (1, "y"), (len(body.bytes), "u"),
                            (self.serial, "u")):
            head.put(value, each)
        head.put("a(yv)", [(key, Variant(FIELD_TYPES[key], value)) for key, value in fields.items()])
        head.align(8)
        self.socket.sendall(head.bytes + body.bytes)
        return self.serial

    def tell(self, destination, path, interface, member, signature="", *values):
        """A message without a reply."""
        self.send(CALL, {PATH: path, INTERFACE: interface, MEMBER: member, DESTINATION: destination}, signature, values,
                  flags=1)

    def call(self, *message):
        return self.call_for_reply(*message).values

    def call_for_reply(self, destination, path, interface, member, signature="", *values):
        serial = self.send(CALL, {PATH: path, INTERFACE: interface, MEMBER: member, DESTINATION: destination},
                           signature, values)
        self.serve(lambda: serial in self.replies)
        reply = self.replies.pop(serial)
        if reply.kind == ERROR:
            raise RuntimeError(reply.fields[ERROR_NAME], reply.values)
        return reply

    def serve(self, is_over, seconds=60):
        """Handles what comes, until it is over."""
        deadline = time.monotonic() + seconds
        while not is_over():
            if time.monotonic() > deadline:
                raise TimeoutError
            if select.select([self.socket], [], [], 0.05)[0]:
                self.data += self.socket.recv(65536)
                while message := self.next_message():
                    self.handle(message)

    def handle(self, message):
        if message.kind in (RETURN, ERROR):
            self.replies[message.fields[REPLY_SERIAL]] = message
        elif message.kind == SIGNAL:
            self.signals.append(message)
        elif message.kind == CALL:
            answer = self.handler(message)
            back = {REPLY_SERIAL: message.serial, DESTINATION: message.fields[SENDER]}
            if answer:
                self.send(RETURN, back, *answer)
            else:
                self.send(ERROR, {**back, ERROR_NAME: "org.freedesktop.DBus.Error.UnknownMethod"}, "", ())

    def next_message(self):
        if len(self.data) < 16:
            return None
        order = "<" if self.data[:1] == b"l" else ">"
        body_length, serial, fields_length = struct.unpack(order + "III", self.data[4:16])
        head_length = 16 + fields_length + -fields_length % 8
        if len(self.data) < head_length + body_length:
            return None
        head = Reader(self.data[:head_length], order)
        head.at = 12
        fields = dict(head.take("a(yv)"))
        body = Reader(self.data[head_length:head_length + body_length], order)
        values = [body.take(each) for each in complete_types(fields.get(SIGNATURE, ""))]
        kind, self.data = self.data[1], self.data[head_length + body_length:]
        return Message(kind, serial, fields, values)

# SPDX-License-Identifier: MIT
"""Holds a component against the descriptions of its interfaces (resources/bus), by the message bus alone."""
import pathlib
import xml.etree.ElementTree

from plain_bus import SIGNATURE, Variant, complete_types

DESCRIPTIONS = pathlib.Path(__file__).resolve().parents[2] / "resources/bus"


class Method:
    def __init__(self, element):
        self.name = element.get("name")
        arguments = element.findall("arg")
        self.takes = "".join(each.get("type") for each in arguments if each.get("direction") == "in")
        self.answers = "".join(each.get("type") for each in arguments if each.get("direction") == "out")


def methods_in(text):
    """The methods of each interface that a description tells of."""
    root = xml.etree.ElementTree.fromstring(text)
    return {each.get("name"): [Method(method) for method in each.findall("method")] for each in root}


def described(interface):
    return methods_in((DESCRIPTIONS / f"{interface}.xml").read_text())[interface]


def some_value(kind):
    """The least that there is of a type."""
    if kind[0] == "a":
        return b"" if kind == "ay" else {} if kind[1] == "{" else ()
    if kind[0] == "(":
        return tuple(some_value(each) for each in complete_types(kind[1:-1]))
    return {"s": "", "o": "/", "b": False, "d": 0.0, "v": Variant("s", "")}.get(kind, 0)


def error_of(call):
    """The name of the error that comes back; empty when there is none."""
    try:
        call()
    except RuntimeError as error:
        return error.args[0]
    return ""


def check(bus, destination, path, interfaces):
    """Sends every message of the interfaces, as it should be and as it should not."""
    shown = methods_in(bus.call(destination, path, "org.freedesktop.DBus.Introspectable", "Introspect")[0])
    for interface in interfaces:
        methods = described(interface)
        assert [vars(each) for each in shown[interface]] == [vars(each) for each in methods], interface
        for each in methods:
            values = [some_value(kind) for kind in complete_types(each.takes)]
            reply = bus.call_for_reply(destination, path, interface, each.name, each.takes, *values)
            assert reply.fields.get(SIGNATURE, "") == each.answers, (each.name, reply.fields)
            assert "InvalidArgs" in error_of(
                lambda: bus.call(destination, path, interface, each.name, each.takes + "y", *values, 0)), each.name
        assert "UnknownMethod" in error_of(lambda: bus.call(destination, path, interface, "nothing")), interface
    assert "UnknownMethod" in error_of(lambda: bus.call(destination, path, "com.havrel.Nothing", "nothing"))
    print(f"{len(interfaces)} interfaces are as they are described")

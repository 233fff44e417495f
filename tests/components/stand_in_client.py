#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Stands in for the client application on the message bus: writes down what it is asked to open, and ends.

usage: stand_in_client.py RECORD     a JSON object: "uris", "number", and "items", whose bytes are lone surrogates where
                                     they are not UTF-8
"""
import json
import os
import sys

from plain_bus import Bus

NAME, PLACE = "com.havrel.client", "/com/havrel/client"


def main():
    record = sys.argv[1]
    opened = []

    def application(message):
        if message.path != PLACE or message.member != "Open":
            return None
        opened.append(message.values)
        return "", ()

    bus = Bus(application)
    bus.call_bus("RequestName", "su", NAME, 4)
    bus.serve(lambda: opened)
    uris, data = opened[0]
    number, items = data["com.havrel.parameters"]
    with open(record + ".new", "w", encoding="ascii") as file:
        json.dump({"uris": uris, "number": number, "items": [os.fsdecode(each) for each in items]}, file)
    os.rename(record + ".new", record)


main()

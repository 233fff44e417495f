#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Stands in for `havrel`: writes its arguments, and the items that it is given, to $HAVREL_RECORD.

The record is NUL-separated: the number of arguments, the arguments, then the items from standard input.
"""
import os
import sys

arguments = [os.fsencode(each) for each in sys.argv[1:]]
items = sys.stdin.buffer.read().split(b"\0")[:-1] if arguments[-2:] == [b"--items-from", b"-"] else []
record = os.environb[b"HAVREL_RECORD"]
with open(record + b".new", "wb") as file:
    file.write(b"\0".join([b"%d" % len(arguments), *arguments, *items]))
os.rename(record + b".new", record)

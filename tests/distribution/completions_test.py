#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Types the beginning of commands into the shells, presses the tabulator, and looks at what they make of it.

usage: completions_test.py SHELL PROGRAM     SHELL: bash, zsh, fish
"""
import fcntl
import os
import pathlib
import pty
import re
import select
import shutil
import struct
import subprocess
import sys
import tempfile
import termios
import time

COMPLETIONS = pathlib.Path(__file__).resolve().parents[2] / "resources/completions"
# What is typed, and what it becomes.
TABLE = [
    ("havrel pat", "havrel pattern"),
    ("havrel rev", "havrel reveal"),
    ("havrel arc", "havrel archive"),
    ("havrel archive res", "havrel archive restore"),
    ("havrel archive create --rep", "havrel archive create --repository"),
    ("havrel archive restore a-file a-fi", "havrel archive restore a-file a-file"),
    ("havrel archive restore --in", "havrel archive restore --into"),
    ("havrel archive items --capt", "havrel archive items --capture"),
    ("havrel capture --t", "havrel capture --to"),
    ("havrel comp", "havrel components"),
    ("havrel components r", "havrel components run"),
    ("havrel captur", "havrel capture"),
    ("havrel capture --items", "havrel capture --items-from"),
    ("havrel reveal a-fi", "havrel reveal a-file"),
    ("havrel captureprefs ed", "havrel captureprefs edit"),
    ("havrel captureprefs sh", "havrel captureprefs show"),
    ("havrel captureprefs show --items", "havrel captureprefs show --items-from"),
    ("havrel pattern check --root", "havrel pattern check --rooted"),
    ("havrel --vers", "havrel --version"),
    ("havrel integrations rem", "havrel integrations remove"),
    ("havrel integrations add thu", "havrel integrations add thunar"),
    ("havrel captureprefs show a-fi", "havrel captureprefs show a-file"),
]
SHELLS = {
    "bash": (["bash", "--norc", "--noprofile", "-i"], f"PS1='REA''DY> '; source '{COMPLETIONS}/havrel.bash'"),
    "zsh": (["zsh", "-f", "-i"], f"PS1='REA''DY> '; fpath=('{COMPLETIONS}' $fpath); autoload -Uz compinit; compinit -u -D"),
}


class Terminal:
    def __init__(self, command, folder, environment):
        self.child, self.terminal = pty.fork()
        if self.child == 0:
            os.chdir(folder)
            os.execvpe(command[0], command, environment)
        fcntl.ioctl(self.terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 500, 0, 0))  # nothing is wrapped
        self.text = ""

    def type(self, text):
        os.write(self.terminal, text.encode())

    def wait_for(self, expression, seconds=60):
        """The text up to the match; what follows it is kept."""
        deadline = time.monotonic() + seconds
        while not (found := re.search(expression, self.text)):
            ready, _, _ = select.select([self.terminal], [], [], max(0, deadline - time.monotonic()))
            if not ready:
                sys.exit(f"no {expression!r} in {self.text!r}")
            self.text += os.read(self.terminal, 65536).decode(errors="replace")
        before, self.text = self.text[:found.start()], self.text[found.end():]
        return before

    def close(self):
        os.close(self.terminal)
        os.waitpid(self.child, 0)


def complete_in_terminal(shell, folder, environment):
    command, preparation = SHELLS[shell]
    terminal = Terminal(command, folder, environment)
    terminal.type(preparation + "\n")
    terminal.wait_for("READY> ")
    for typed, expected in TABLE:
        terminal.type(typed + "\t")
        rest = expected[len(typed):]
        terminal.wait_for(re.escape(typed) + r"\x07?" + re.escape(rest))
        terminal.type("\x15")  # the line away again
        print(f"{shell}: {typed} -> {expected}")
    terminal.type("exit\n")
    terminal.close()


def complete_in_fish(folder, environment):
    for typed, expected in TABLE:
        done = subprocess.run(["fish", "--no-config", "-c", f"source '{COMPLETIONS}/havrel.fish'; complete -C '{typed}'"],
                              cwd=folder, env=environment, capture_output=True, text=True, check=True, timeout=60)
        words = [line.split("\t")[0] for line in done.stdout.splitlines()]
        if expected.split()[-1] not in words:
            sys.exit(f"{typed}: {words} {done.stderr}")
        print(f"fish: {typed} -> {expected}")


def main():
    shell, program = sys.argv[1:]
    if not shutil.which(shell):
        sys.exit(f"{shell} is not installed (scripts/setup installs it)")
    with tempfile.TemporaryDirectory() as folder:
        pathlib.Path(folder, "a-file").touch()
        environment = {"PATH": f"{os.path.dirname(program)}:{os.environ['PATH']}", "HOME": folder, "TERM": "dumb",
                       "LANG": "C.UTF-8", "XDG_CONFIG_HOME": folder, "XDG_DATA_HOME": folder}
        if shell == "fish":
            complete_in_fish(folder, environment)
        else:
            complete_in_terminal(shell, folder, environment)


main()

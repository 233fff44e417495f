# SPDX-License-Identifier: MIT
"""A message bus of a test's own, which starts programs, and in which nobody sees what is the user's."""
import os
import subprocess
import sys

# Other users may connect, as they may not to the bus of a session: the components must not rely on that. The limits are
# those of a session's bus.
BUS = """<busconfig><type>session</type><listen>unix:path={folder}/bus</listen><auth>EXTERNAL</auth>
<standard_session_servicedirs/><policy context="default"><allow user="*"/><allow own="*"/>
<allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/></policy>
<limit name="max_incoming_bytes">1000000000</limit><limit name="max_outgoing_bytes">1000000000</limit>
<limit name="max_message_size">1000000000</limit><limit name="max_replies_per_connection">50000</limit></busconfig>
"""


def serve(folder, commands):
    """Lets the bus start a command for each name."""
    services = folder / "data/dbus-1/services"
    services.mkdir(parents=True)
    for name, command in commands.items():
        (services / f"{name}.service").write_text(f"[D-BUS Service]\nName={name}\nExec={command}\n")


def components(place):
    """The commands that start them from their folder."""
    return {f"com.havrel.{each}": f"{place}/havrel-{each.lower()}" for each in ("Switchboard", "Monitor", "Scheduler")}


def run_again_within(folder, **environment):
    """Runs the program with its arguments and the folder once more, on such a bus; answers how that ended."""
    places = {f"XDG_{each}_HOME": str(folder / each.lower()) for each in ("DATA", "STATE", "CONFIG", "CACHE")}
    configuration = folder / "bus.conf"
    configuration.write_text(BUS.format(folder=folder))
    folder.chmod(0o711)  # other users reach the bus
    command = ["dbus-run-session", f"--config-file={configuration}", "--", sys.executable, *sys.argv, folder]
    return subprocess.run(command, env={**os.environ, **places, "HOME": str(folder), **environment}).returncode


def output_of(*command):
    done = subprocess.run(command, capture_output=True, text=True, errors="surrogateescape", timeout=300)
    assert done.returncode == 0, (command, done.returncode, done.stdout, done.stderr)
    return done.stdout

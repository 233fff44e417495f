#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes the Debian packages and looks into them.

usage: packages_test.py BUILD_FOLDER
"""
import pathlib
import re
import subprocess
import sys
import tempfile

# What each package must hold, and what its control fields must say.
PACKAGES = {
    "havrel": (["usr/bin/havrel", "usr/share/applications/com.havrel.Service.desktop",
                "usr/share/metainfo/com.havrel.Service.metainfo.xml", "usr/share/kio/servicemenus/havrel.desktop",
                "usr/share/nemo/actions/havrel-capture.nemo_action", "usr/share/file-manager/actions/havrel-menu.desktop",
                "usr/share/icons/hicolor/scalable/apps/com.havrel.Service.svg",
                "usr/share/icons/hicolor/symbolic/apps/com.havrel.Service-symbolic.svg",
                "usr/share/icons/hicolor/scalable/mimetypes/application-x-zephra.svg",
                "usr/share/mime/packages/com.havrel.Service.xml",
                "usr/share/dbus-1/services/com.havrel.Service.service", "usr/share/systemd/user/havrel-service.service",
                *(f"usr/share/dbus-1/services/com.havrel.{each}.service" for each in ("Switchboard", "Monitor", "Scheduler")),
                *(f"{place}/havrel-{each}{ending}" for each in ("switchboard", "monitor", "scheduler")
                  for place, ending in (("usr/bin", ""), ("usr/share/systemd/user", ".service"),
                                        ("usr/share/man/man1", ".1"))),
                "usr/share/man/man1/havrel.1", "usr/share/man/man1/havrel-service.1", "usr/share/bash-completion/completions/havrel",
                "usr/share/dbus-1/interfaces/com.havrel.Service.xml",
                "usr/share/dbus-1/interfaces/com.havrel.ZephronSwitchboarding.xml",
                "usr/share/zsh/vendor-completions/_havrel", "usr/share/fish/vendor_completions.d/havrel.fish",
                "usr/share/doc/havrel/copyright"],
               {"Depends": ["libqt6core6", "dbus-session-bus"], "Suggests": ["havrel-nautilus"]}),
    "havrel-nautilus": (["usr/share/nautilus-python/extensions/havrel_nautilus_menu.py"],
                        {"Depends": ["havrel (>=", "python3-nautilus"], "Enhances": ["nautilus"],
                         "Architecture": ["all"]}),
    "havrel-nemo": (["usr/share/nemo-python/extensions/havrel_nemo_menu.py"],
                    {"Depends": ["havrel (>=", "nemo-python"], "Enhances": ["nemo"], "Architecture": ["all"]}),
    "havrel-caja": (["usr/share/caja-python/extensions/havrel_caja_menu.py"],
                    {"Depends": ["havrel (>=", "python3-caja"], "Enhances": ["caja"], "Architecture": ["all"]}),
    "havrel-thunar": (["usr/share/thunarx-python/extensions/havrel_thunarx_menu.py"],
                      {"Depends": ["havrel (>=", "thunarx-python", "gir1.2-thunarx-3.0"], "Enhances": ["thunar"], "Architecture": ["all"]}),
}


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def problems(package, files, fields):
    name = output_of("dpkg-deb", "--field", package, "Package").strip()
    listing = [line.split()[5] for line in output_of("dpkg-deb", "--contents", package).splitlines()]
    held = {entry.removeprefix("./") for entry in listing if not entry.endswith("/")}
    yield from (f"{name} lacks {each}" for each in files if each not in held)
    if len(files) == 1:
        yield from (f"{name} has {each}, too" for each in sorted(held - set(files)))
    for field, texts in fields.items():
        value = output_of("dpkg-deb", "--field", package, field).strip()
        yield from (f"{name}: {field}: {value}: lacks {text}" for text in texts if text not in value)
    yield from (f"{name} has {each}, which belongs to the machine" for each in held
                if each.startswith("usr/share/mime/") and "/packages/" not in each)
    print(f"{name}: {len(held)} files")


def commands_in(package):
    """The programs that the bus and systemd are told to start."""
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(["dpkg-deb", "--extract", package, folder], check=True)
        share = pathlib.Path(folder, "usr/share")
        for file in (*share.glob("dbus-1/services/*.service"), *share.glob("systemd/user/*.service")):
            yield from re.findall(r"^Exec(?:Start)?=(.*)$", file.read_text(), re.MULTILINE)


def main():
    with tempfile.TemporaryDirectory() as folder:
        made = subprocess.run(["cpack", "-G", "DEB", "-B", folder], cwd=sys.argv[1], capture_output=True, text=True)
        if made.returncode != 0:
            sys.exit(made.stdout + made.stderr)
        found = {output_of("dpkg-deb", "--field", each, "Package").strip(): each
                 for each in pathlib.Path(folder).glob("*.deb")}
        wrong = [f"packages: {sorted(found)}"] if set(found) != set(PACKAGES) else []
        for name, (files, fields) in PACKAGES.items():
            wrong += problems(found[name], files, fields) if name in found else []
        commands = list(commands_in(found["havrel"]))
        programs = ("havrel-monitor", "havrel-scheduler", "havrel-service", "havrel-switchboard")
        if sorted(commands) != sorted([f'"/usr/bin/{each}"' for each in programs] * 2):
            wrong.append(f"started would be: {commands}")
    sys.exit("\n".join(wrong) or 0)


main()

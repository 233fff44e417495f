#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Installs the product into a scratch folder and chooses a command from the menu of a real file manager.

usage: file_manager_test.py WAY BUILD_FOLDER [names|many|window|archives]

names:  the items with difficult names arrive exactly, at a stand-in for the program that writes down what it gets
many:   a selection of 20,000 items arrives whole, at the same stand-in
window: the preferences window appears, what is chosen in it is on the item when it was closed. With HAVREL_PICTURES
        naming a folder, pictures of the menu and of the window are left there.
archives: the window in which one chooses an archive appears for both other commands: what is captured comes back from the
        archive, and what is revealed arrives at a stand-in for the client application

Runs as an ordinary user, on an X server, a message bus and an accessibility bus of its own. Answers 77 where packages
are missing; `scripts/setup desktop` installs them.
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
NOBODY = 65534
DEADLINE = 280  # seconds, after which nothing that was started is left
SKIPPED = 77

# What each way of showing the commands needs: programs, modules of packages, and the folders of the installed data.
WAYS = {
    "caja": (["caja"], ["python3-caja"], ["caja-python"]),
    "nemo-extension": (["nemo"], ["nemo-python"], ["nemo-python"]),
    "nemo-actions": (["nemo"], [], ["nemo"]),
    "pcmanfm-qt": (["pcmanfm-qt"], [], ["file-manager"]),
    "thunar-extension": (["thunar"], ["thunarx-python", "gir1.2-thunarx-3.0"], ["thunarx-python"]),
    "thunar-actions": (["thunar"], [], []),
}
MANAGERS = {way: way.removesuffix("-extension").removesuffix("-actions") for way in WAYS}
TOOLS = ["Xvfb", "openbox", "xdotool", "xprop", "dbus-run-session"]
PACKAGES = ["at-spi2-core", "gir1.2-atspi-2.0", "python3-gi"]
FOLDERS = [b"a dir", b"Projects"]
NAMES = [b"a dir", b"--dash.txt", b"bad\xff.txt", b"dollar$HOME.txt", b"link", b"new\nline.txt", b"per%cent.txt",
         b"plain.txt", b"quo'te\".txt", b"sp ace.txt"]

ITEMS = {
    "names": NAMES,
    "many": [b"item %05d" % number for number in range(20000)],
    "window": [b"Projects", b"accounts.ods", b"letter.odt", b"notes.txt"],
}
ITEMS["archives"] = ITEMS["window"]
WINDOWS = {"window", "archives"}  # with the real product, of which the others only see what it is called with


def is_installed(package):
    status = subprocess.run(["dpkg-query", "-W", "-f", "${Status}", package], capture_output=True, text=True)
    return status.stdout == "install ok installed"


def what_is_missing(way):
    programs, packages, _folders = WAYS[way]
    missing = [name for name in [*programs, *TOOLS, "restic"] if not shutil.which(name)]
    return missing + [name for name in packages + PACKAGES if not is_installed(name)]


def make_items(folder, what):
    os.mkdir(folder)
    for name in ITEMS[what]:
        path = os.path.join(os.fsencode(folder), name)
        if name in FOLDERS:
            os.mkdir(path)
        elif name == b"link":
            os.symlink(b"plain.txt", path)
        else:
            open(path, "x").close()


def install(way, build, what, scratch, environment):
    prefix = scratch / "prefix"
    subprocess.run(["cmake", "--install", build, "--prefix", prefix], check=True, stdout=subprocess.DEVNULL)
    if what in WINDOWS or way == "thunar-actions":  # as a person does
        subprocess.run([prefix / "bin/havrel", "integrations", "add", MANAGERS[way]], check=True, env=environment)
    else:
        for folder in WAYS[way][2]:
            shutil.copytree(prefix / "share" / folder, scratch / "data" / folder)


def prepare_thunar(config):
    """Shows lists: the icons of its other view have no names on the accessibility bus."""
    folder = config / "xfce4/xfconf/xfce-perchannel-xml"
    folder.mkdir(parents=True)
    (folder / "thunar.xml").write_text(
        '<?xml version="1.0" encoding="UTF-8"?>\n<channel name="thunar" version="1.0">\n'
        '  <property name="last-view" type="string" value="ThunarDetailsView"/>\n'
        '  <property name="default-view" type="string" value="ThunarDetailsView"/>\n</channel>\n')


def environment_for(scratch, what):
    """The real product is found in its own prefix; entries that only call the stand-in are copied to the user's."""
    if what in WINDOWS:
        programs, data = scratch / "prefix/bin", f"{scratch}/prefix/share:"
    else:
        programs, data = scratch / "stand_in", ""
    folders = {name: scratch / name for name in ("home", "data", "config", "cache", "state", "runtime")}
    for folder in folders.values():
        folder.mkdir(mode=0o700)
    return {
        "HOME": str(folders["home"]),
        "PATH": f"{programs}:/usr/local/bin:/usr/bin:/bin",
        "XDG_DATA_HOME": str(folders["data"]),
        "XDG_DATA_DIRS": f"{data}/usr/local/share:/usr/share",
        "XDG_CONFIG_HOME": str(folders["config"]),
        "XDG_CACHE_HOME": str(folders["cache"]),
        "XDG_STATE_HOME": str(folders["state"]),
        "XDG_RUNTIME_DIR": str(folders["runtime"]),
        "HAVREL_RECORD": str(scratch / "home/record"),
        "GSETTINGS_BACKEND": "memory",
        "GDK_BACKEND": "x11",
        "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
        "LANG": "C.UTF-8",
        "PYTHONDONTWRITEBYTECODE": "1",
    }


def give_away(folder):
    """To the ordinary user that the file manager runs as, when this runs as root."""
    for path in [folder, *folder.rglob("*")]:
        os.chown(path, NOBODY, NOBODY, follow_symlinks=False)


def add_stand_in(folder):
    folder.mkdir()
    shutil.copy(HERE / "record_items.py", folder / "havrel")
    (folder / "havrel").chmod(0o755)


def add_client(scratch):
    """A stand-in for the client application, which the bus starts."""
    programs = scratch / "client"
    programs.mkdir()
    for name in ("plain_bus.py", "stand_in_client.py"):
        shutil.copy(HERE.parent / "components" / name, programs)
    services = scratch / "data/dbus-1/services"
    services.mkdir(parents=True)
    (services / "com.havrel.client.service").write_text(
        "[D-BUS Service]\nName=com.havrel.client\n"
        f"Exec=/usr/bin/python3 {programs}/stand_in_client.py {scratch}/home/opened.json\n")


def run(way, build, what, scratch):
    environment = environment_for(scratch, what)
    add_stand_in(scratch / "stand_in")
    add_client(scratch)
    install(way, build, what, scratch, environment)
    prepare_thunar(scratch / "config")
    make_items(scratch / "items", what)
    pictures = scratch / "pictures"
    if "HAVREL_PICTURES" in os.environ:
        pictures.mkdir()
        environment["HAVREL_PICTURES"] = str(pictures)
    as_user = {}
    if os.geteuid() == 0:
        give_away(scratch)
        as_user = {"user": NOBODY, "group": NOBODY, "extra_groups": []}
    shutil.copytree(HERE, scratch / "tests", ignore=shutil.ignore_patterns("__pycache__"))
    command = ["timeout", "--kill-after=5", str(DEADLINE), "dbus-run-session", "--",
               "/usr/bin/python3", scratch / "tests/drive.py", way, what, scratch / "items"]
    status = subprocess.run(command, env=environment, cwd=scratch, **as_user).returncode
    for picture in pictures.glob("*.png"):
        name = MANAGERS[way] + "-" + picture.name
        shutil.copyfile(picture, os.path.join(os.environ["HAVREL_PICTURES"], name))
    return status


def main():
    way, build, what = sys.argv[1], sys.argv[2], sys.argv[3] if len(sys.argv) > 3 else "names"
    missing = what_is_missing(way)
    if missing:
        print("SKIPPED: not installed:", ", ".join(missing), "(scripts/setup desktop installs it)")
        return SKIPPED
    with tempfile.TemporaryDirectory(prefix="havrel-desktop-") as scratch:
        os.chmod(scratch, 0o755)
        return run(way, build, what, pathlib.Path(scratch))


if __name__ == "__main__":
    sys.exit(main())

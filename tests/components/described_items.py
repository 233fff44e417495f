# SPDX-License-Identifier: MIT
"""A folder with all kinds of items, and what there is to compare of them."""
import os
import pathlib
import stat


def described(root):
    """What there is to compare of each item: everything that the system tells, but numbers that it gives out itself."""
    result, first = {}, {}
    for folder, folders, files in os.walk(os.fsencode(root)):
        for name in [b"."] + sorted(folders + files):
            path = os.path.join(folder, name)
            place, facts = os.path.relpath(path, os.fsencode(root)), os.lstat(path)
            content = b""
            if stat.S_ISLNK(facts.st_mode):
                content = os.readlink(path)
            elif stat.S_ISREG(facts.st_mode):
                content = pathlib.Path(os.fsdecode(path)).read_bytes()
            attributes = {each: os.getxattr(path, each, follow_symlinks=False) for each in
                          os.listxattr(path, follow_symlinks=False)}
            same = first.setdefault(facts.st_ino, place)
            is_sparse = facts.st_size > 1_000_000 and facts.st_blocks * 512 < facts.st_size // 2
            result[place] = (facts.st_mode, facts.st_uid, facts.st_gid, facts.st_mtime_ns, same, is_sparse, content,
                             attributes)
    return result


def fill(folder):
    folder.mkdir()
    (folder / "text.txt").write_text("one\n")
    (folder / "empty").touch()
    (folder / "private").write_bytes(os.urandom(200_000))
    (folder / "private").chmod(0o600)
    (folder / "below").mkdir()
    os.symlink("../text.txt", folder / "below/link")
    pathlib.Path(os.fsdecode(bytes(folder) + b"/below/caf\xe9 \n")).write_text("a name of any bytes\n")
    with open(folder / "sparse", "wb") as file:
        file.write(b"begins")
        file.truncate(5_000_000)
    os.link(folder / "text.txt", folder / "below/same text")
    os.symlink(b"to bytes \xfe", bytes(folder) + b"/below/l\xff")
    os.mkfifo(folder / "pipe", 0o620)
    (folder / "read-only").write_text("kept\n")
    for name, note in (("empty", b""), ("read-only", b"\0\xff"), ("below", b"of a folder")):
        os.setxattr(folder / name, "user.note", note)
    (folder / "read-only").chmod(0o444)
    for each, seconds in (("text.txt", 1_234_567_890), ("below/link", 1_000_000_000), ("pipe", 3), ("below", -5),
                          (".", 946_684_800)):
        os.utime(folder / each, ns=(1, seconds * 10**9 + 123_456_789), follow_symlinks=False)


def change(folder):
    (folder / "text.txt").write_text("two\n")
    (folder / "empty").unlink()
    (folder / "new").write_text("new\n")
    (folder / "private").chmod(0o640)
    (folder / "pipe").rename(folder / "renamed")
    os.setxattr(folder / "below", "user.note", b"changed")
    os.removexattr(folder / "read-only", "user.note")
    os.utime(folder / "below", ns=(1, 7))

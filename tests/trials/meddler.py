#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Stands in a tool's place: runs the real one, then changes a byte of sound in a file that it has made.

Beside it lies `<name>.meddler`, a JSON object: the real tool, the folders to watch, the extensions of
what it changes, the log of what was changed, where in the sound (0 to 1) and the bits to turn.
"""

import json
import os
import pathlib
import signal
import stat
import subprocess
import sys

sys.dont_write_bytecode = True


def looks(orders):
    """What the files that may be changed look like now."""
    found = {}
    suffixes = [f".{extension}" for extension in orders["extensions"]] + [".part", ".tmp"]
    for folder in orders["folders"]:
        for place, _, names in os.walk(folder):
            for path in (pathlib.Path(place) / name for name in names):
                try:
                    facts = path.lstat()
                except FileNotFoundError:
                    continue
                if path.suffix.lower() in suffixes and stat.S_ISREG(facts.st_mode):
                    found[path] = (facts.st_ino, facts.st_size, facts.st_mtime_ns)
    return found


def is_own(path, words):
    """Whether the tool of these arguments has made the file, and no other job beside it."""
    if str(path) in words:
        return True
    named = [pathlib.Path(word) for word in words]
    is_near = any(path.parent in (word, word.parent) for word in named)
    return is_near and any(path.stem in (word.stem, word.name) for word in named)


def change(path, orders):
    sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
    from damages import flipped, sound_place  # only now: a tool is started often, and changes a file rarely
    from decoding import kind_of

    data = path.read_bytes()
    kind = kind_of(path)
    if kind is None:
        return
    start, end = sound_place(kind, data)
    if end - start < 16:
        return
    at = start + int((end - start) * orders["place"])
    path.write_bytes(flipped(data, at, orders["mask"]))
    with open(orders["log"], "a", encoding="utf-8") as log:
        log.write(json.dumps({"path": str(path), "byte": at}) + "\n")


def main():
    name = pathlib.Path(sys.argv[0])
    orders = json.loads(name.with_name(name.name + ".meddler").read_text(encoding="utf-8"))
    before = looks(orders)
    child = subprocess.Popen([orders["tool"], *sys.argv[1:]], executable=orders["tool"])
    for number in (signal.SIGTERM, signal.SIGINT):
        signal.signal(number, lambda got, _frame: child.send_signal(got))
    status = child.wait()
    for path, facts in looks(orders).items():
        if before.get(path) != facts and is_own(path, sys.argv[1:]):
            change(path, orders)
    sys.exit(status if status >= 0 else 128 - status)


if __name__ == "__main__":
    main()

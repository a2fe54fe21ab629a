#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails when the tree tracks build products, or a script lacks its SPDX head.

usage: check_repository.py ROOT
"""

import fnmatch
import pathlib
import shutil
import subprocess
import sys
import xml.etree.ElementTree

SKIPPED = 77  # what ctest takes for "skipped"
PRODUCTS = ("build/*", "*/build/*", "*.o", "*.a", "*.so", "*.so.*", "*.pyc", "*__pycache__*", "*.moc",
            "*_autogen/*", "*CMakeCache.txt", "*CMakeFiles/*", "*compile_commands.json", "*.gcda", "*.gcno",
            "*.orig", "*.rej", "core", "*/core")
MAX_BYTES = 2 * 1024 * 1024
HASH_SUFFIXES = (".cmake", ".py", ".sh")
SPDX = ("SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers",
        "SPDX-License-Identifier: GPL-3.0-or-later")


def is_script(name, contents):
    return name.endswith(HASH_SUFFIXES) or name.endswith("CMakeLists.txt") or contents.startswith(b"#!")


def check_file(root, name):
    """The faults of one tracked file."""
    if any(fnmatch.fnmatch(name, pattern) for pattern in PRODUCTS):
        yield f"{name}: a build product is tracked"
        return
    path = root / name
    if path.is_symlink() or not path.is_file():
        return
    contents = path.read_bytes()
    if contents.startswith(b"\x7fELF"):
        yield f"{name}: a binary is tracked"
    if len(contents) > MAX_BYTES:
        yield f"{name}: {len(contents)} bytes, more than {MAX_BYTES}"
    if is_script(name, contents):
        head = b"\n".join(contents.split(b"\n")[:4]).decode("utf-8", "replace")
        if not all(line in head for line in SPDX):
            yield f"{name}: the SPDX head is missing"
    if name.endswith((".svg", ".xml")):
        try:
            xml.etree.ElementTree.fromstring(contents)
        except xml.etree.ElementTree.ParseError as error:
            yield f"{name}: {error}"


def check_files(root, names):
    return [fault for name in names for fault in check_file(root, name)]


def main():
    root = pathlib.Path(sys.argv[1])
    if not shutil.which("git"):
        print("git is missing: nothing to look at")
        sys.exit(SKIPPED)
    listing = subprocess.run(["git", "-c", "safe.directory=*", "-C", root, "ls-files", "-z"], capture_output=True, check=False)
    if listing.returncode != 0:
        print("no git checkout: nothing to look at")
        sys.exit(SKIPPED)
    names = listing.stdout.decode("utf-8").split("\0")[:-1]
    faults = check_files(root, names)
    print("\n".join(faults))
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()

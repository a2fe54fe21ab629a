#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads the sources and fails when the picture of docs/architecture.md is broken.

usage: check_sources.py --widgets-headers DIR ROOT
"""

import argparse
import pathlib
import re
import sys

# What a folder under src may include besides itself. A new folder states its
# place here.
ALLOWED = {
    "platform": set(),
    "engine": {"platform"},
    "app": {"platform", "engine"},
    "tags": {"platform", "engine", "app"},
    "checksum": {"platform", "engine", "app", "tags"},
    "convert": {"platform", "engine", "app", "tags", "checksum"},
    "cli": {"platform", "engine", "app", "tags", "checksum", "convert"},
    "ui": {"platform", "engine", "app", "tags", "checksum", "convert"},
}

MAX_LINES = 600
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
DIALOG_CLASS = re.compile(r"\b(QMessageBox|QFileDialog|QInputDialog|QErrorMessage)\b")
DIALOG_EXEC = re.compile(r"\bQDialog::exec\b|\b\w*(?:[dD]ialog|[pP]anel)\w*(?:\.|->)exec\s*\(")
SPDX = (
    "// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers",
    "// SPDX-License-Identifier: GPL-3.0-or-later",
)


def without_comments(text):
    """The text with comments blanked; line numbers stay."""
    def blank(match):
        found = match.group(0)
        if found.startswith(("//", "/*")):
            return re.sub(r"[^\n]", " ", found)
        return found
    return re.sub(r'"(?:\\.|[^"\\\n])*"|//[^\n]*|/\*.*?\*/', blank, text, flags=re.DOTALL)


def source_files(root, top):
    return sorted(path for path in (root / top).rglob("*") if path.suffix in {".h", ".cpp"})


def check_layers(path, folder, lines):
    for number, line in enumerate(lines, 1):
        match = INCLUDE.match(line)
        if not match or match.group(1) == "<":
            continue
        target = match.group(2)
        if target.endswith(".moc"):
            continue
        other = target.split("/")[0]
        if "/" not in target or other not in ALLOWED:
            yield f'{path}:{number}: "{target}" does not name a folder under src'
        elif other != folder and other not in ALLOWED[folder]:
            yield f"{path}:{number}: {folder} must not include {target}"


def check_widgets(path, folder, lines, widgets_headers):
    if folder == "ui":
        return
    for number, line in enumerate(lines, 1):
        match = INCLUDE.match(line)
        if match and (match.group(2).startswith("QtWidgets") or match.group(2) in widgets_headers):
            yield f"{path}:{number}: {match.group(2)} is a widget header, and {folder} stands below ui"


def check_dialogs(path, folder, lines):
    if folder == "ui" and path.stem == "DesktopPrompts":
        return
    for number, line in enumerate(lines, 1):
        match = DIALOG_CLASS.search(line) or DIALOG_EXEC.search(line)
        if match:
            yield f"{path}:{number}: '{match.group(0)}': only DesktopPrompts asks with dialogs"


def check_head(path, lines):
    if tuple(lines[:2]) != SPDX:
        yield f"{path}:1: the SPDX head is missing"
    if path.suffix == ".h" and "#pragma once" not in lines:
        yield f"{path}:1: no #pragma once"
    if len(lines) > MAX_LINES:
        yield f"{path}:{len(lines)}: more than {MAX_LINES} lines; split it"


def check_tree(root, widgets_headers):
    """Every fault of the sources below root, as 'file:line: text'."""
    faults = []
    for path in source_files(root, "src"):
        relative = path.relative_to(root)
        text = path.read_text(encoding="utf-8")
        faults += check_head(relative, text.splitlines())
        lines = without_comments(text).splitlines()
        folder = relative.parts[1]
        if folder not in ALLOWED:
            faults.append(f"{relative}:1: {folder} has no place in the picture yet")
            continue
        faults += check_layers(relative, folder, lines)
        faults += check_widgets(relative, folder, lines, widgets_headers)
        faults += check_dialogs(relative, folder, lines)
    for top in ("tests", "tools", "bench"):
        for path in source_files(root, top):
            faults += check_head(path.relative_to(root), path.read_text(encoding="utf-8").splitlines())
    return faults


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--widgets-headers", type=pathlib.Path, required=True)
    parser.add_argument("root", type=pathlib.Path)
    arguments = parser.parse_args()
    widgets_headers = {entry.name for entry in arguments.widgets_headers.iterdir()}
    if "QWidget" not in widgets_headers:
        sys.exit(f"{arguments.widgets_headers} holds no widget headers")
    faults = check_tree(arguments.root, widgets_headers)
    print("\n".join(faults))
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()

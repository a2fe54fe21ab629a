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

# The folders that know nothing of audio work as this application does it, from the lowest.
BASICS = {"base", "text", "files", "process", "settings", "desktop", "audio"}

# What a folder under src may include besides itself. A new folder states its
# place here.
ALLOWED = {
    "base": set(),
    "text": {"base"},
    "files": {"base", "text"},
    "process": {"base", "files"},
    "settings": {"base", "text", "files"},
    "desktop": set(),
    "audio": {"base", "files"},
    "programs": {"base", "text", "process"},
    "engine": BASICS | {"programs"},
    "app": BASICS | {"programs", "engine"},
    "samples": {"base", "files", "audio"},
    "journal": {"base", "files", "process", "engine", "app", "samples"},
    "tags": BASICS | {"programs", "engine", "app", "samples", "journal"},
    "originals": {"base", "files", "programs", "engine", "app", "samples", "journal", "tags"},
    "checksum": BASICS | {"programs", "engine", "app", "tags"},
    "fix": BASICS | {"programs", "engine", "app", "samples", "journal", "tags", "originals", "checksum"},
    "convert": BASICS | {"programs", "engine", "app", "samples", "journal", "tags", "originals", "checksum"},
    "lossy": BASICS | {"programs", "engine", "app", "samples", "journal", "tags", "originals", "convert"},
    "shntool": BASICS | {"programs", "engine", "app", "samples", "journal", "originals"},
    "tagging": BASICS | {"programs", "engine", "app", "journal", "tags"},
    "util": BASICS | {"programs", "engine", "app", "samples", "journal", "tags", "originals"},
    "toolbox": {"settings", "app", "checksum", "fix", "convert", "lossy", "shntool", "tagging", "util"},
    "preferences": {"base", "settings", "app", "shntool", "toolbox"},
    "cli": BASICS | {"programs", "engine", "app", "samples", "journal", "tags", "originals", "checksum", "fix", "convert", "lossy", "shntool", "tagging", "util", "toolbox"},
    "ui": BASICS | {"programs", "engine", "app", "samples", "journal", "tags", "originals", "checksum", "fix", "convert", "lossy", "shntool", "tagging", "util", "toolbox", "preferences"},
}

# The same of the folders under tools, whose programs use no Qt.
ALLOWED_TOOLS = {
    "support": set(),
    "shorten": {"support"},
    "tta": {"support"},
    "ape": {"support"},
    "sound": {"support"},
    "shntool": {"support", "sound", "shorten", "tta", "ape"},
    "dvda": {"support", "sound"},
    "mkisofs": {"support", "dvda"},
}
# What of src the tools may include: headers that need neither Qt nor a library.
SHARED_WITH_TOOLS = {
    "files/FileDescriptor.h",
    "files/PrivateFolderName.h",
    "process/SearchPath.h",
    "files/UnnamedFile.h",
    "text/VisibleText.h",
}

# The codecs that a folder under src may include: the libraries of the bundled programs.
CODECS = {"samples": {"ape", "shorten", "support"}}

MAX_LINES = 600
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
QT_HEADER = re.compile(r"Q[A-Z]|Qt|qt|q[a-z]+\.h$")
TOOL_PROGRAM = re.compile(r"^\s*nurv_tool\((\S+)", re.MULTILINE)
TYPE_DEFINITION = re.compile(r"^(?:template <[^>]*>\s*)?(?:class|struct|enum class|union) (\w+)(?: final)?(?: *:[^:;]*)? *\{", re.MULTILINE)
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
        if other in CODECS.get(folder, set()):
            continue
        if "/" not in target or other not in ALLOWED:
            yield f'{path}:{number}: "{target}" does not name a folder under src'
        elif other != folder and other not in ALLOWED[folder]:
            yield f"{path}:{number}: {folder} must not include {target}"


def check_tool_includes(path, folder, lines):
    allowed = ALLOWED_TOOLS[folder] | {folder}
    for number, line in enumerate(lines, 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        target = match.group(2)
        if QT_HEADER.match(target):
            yield f"{path}:{number}: {target}: the bundled programs use no Qt"
        elif match.group(1) == '"' and target.split("/")[0] not in allowed and target not in SHARED_WITH_TOOLS:
            yield f"{path}:{number}: {folder} must not include {target}"


def check_fuzzer_includes(path, lines):
    """The fuzzers stand above all that reads foreign bytes, and have headers of their own."""
    allowed = ALLOWED.keys() | ALLOWED_TOOLS.keys()
    for number, line in enumerate(lines, 1):
        match = INCLUDE.match(line)
        if not match or match.group(1) == "<":
            continue
        target = match.group(2)
        if target.startswith("ui/") or ("/" in target and target.split("/")[0] not in allowed):
            yield f"{path}:{number}: fuzz must not include {target}"


def check_manual_pages(root):
    for path in sorted((root / "tools").rglob("CMakeLists.txt")):
        for program in TOOL_PROGRAM.findall(path.read_text(encoding="utf-8")):
            page = f"data/man/nurv-{program}.1"
            if not (root / page).is_file():
                yield f"{path.relative_to(root)}:1: {program} has no manual page {page}"


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


def check_names(root):
    """Whoever looks a name up finds one thing: no two types of one name, no two headers."""
    types, headers = {}, {}
    for path in source_files(root, "src") + source_files(root, "tools"):
        relative = path.relative_to(root)
        for match in TYPE_DEFINITION.finditer(without_comments(path.read_text(encoding="utf-8"))):
            first = types.setdefault(match.group(1), relative)
            if first != relative:
                yield f"{relative}:1: {match.group(1)} is the name of a type in {first} too"
        if path.suffix == ".h":
            first = headers.setdefault(path.name, relative)
            if first != relative:
                yield f"{relative}:1: {first} has that name too"


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
    for top in ("tests", "tools", "fuzz", "bench"):
        for path in source_files(root, top):
            faults += check_head(path.relative_to(root), path.read_text(encoding="utf-8").splitlines())
    for path in source_files(root, "fuzz"):
        lines = without_comments(path.read_text(encoding="utf-8")).splitlines()
        faults += check_fuzzer_includes(path.relative_to(root), lines)
    for path in source_files(root, "tools"):
        relative = path.relative_to(root)
        folder = relative.parts[1]
        if folder not in ALLOWED_TOOLS:
            faults.append(f"{relative}:1: {folder} has no place among the tools yet")
            continue
        faults += check_tool_includes(relative, folder, without_comments(path.read_text(encoding="utf-8")).splitlines())
    faults += check_manual_pages(root)
    faults += check_names(root)
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

#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Adds a tool to a copy of the sources: a tab with a job that makes no output, its page, and a command of two words.

Not more than five files that exist may change for that, the sources must still pass check_sources.py, and what was added
and changed must compile as the build would compile it.

usage: new_tool_test.py SOURCE_FOLDER BUILD_FOLDER
"""
import json
import pathlib
import shlex
import shutil
import subprocess
import sys
import tempfile

MOST_CHANGED = 5

# What a developer adds to files that exist: file, the line behind which it stands, the new text.
CHANGES = [
    ("src/toolbox/Toolbox.cpp", '#include "toolbox/Toolbox.h"\n', '\n#include "checksum/PresenceTab.h"\n'),
    (
        "src/toolbox/Toolbox.cpp",
        "static const std::vector<Tool> tools{\n",
        '        {.label = u"presence"_s, .title = QT_TRANSLATE_NOOP("Tool", "Presence"), .makeTab = make<PresenceTab>},\n',
    ),
    ("src/cli/Commands.cpp", '#include "cli/Commands.h"\n', '\n#include "cli/PresenceCommand.h"\n'),
    ("src/cli/Commands.cpp", "static const DecodeCommand decode;\n", "    static const PresenceCommand presence;\n"),
    ("src/cli/Commands.cpp", "&encode, &decode, ", "&presence, "),
    ("src/ui/Pages.cpp", '#include "ui/Pages.h"\n', '\n#include "checksum/PresenceTab.h"\n#include "ui/PresencePage.h"\n'),
    ("src/ui/Pages.cpp", "makeFor<EncodeTab, EncodePage>", ", makeFor<PresenceTab, PresencePage>"),
    ("data/man/nurv.1.in", "@options decode@\n", ".SH OPTIONS OF CHECKSUM PRESENCE\n@options checksum presence@\n"),
]


def change(root):
    """Applies the changes; returns the files that were changed."""
    for name, behind, new in CHANGES:
        path = root / name
        text = path.read_text(encoding="utf-8")
        if text.count(behind) != 1:
            raise SystemExit(f"{name}: there is no single {behind!r}")
        path.write_text(text.replace(behind, behind + new), encoding="utf-8")
    return sorted({name for name, _, _ in CHANGES})


def compile_command(commands, source, build, root, path):
    """The command of a file of the same folder, for the new or changed file, without an output."""
    own = str(source / path)
    neighbour = commands.get(own) or next(
        command for file, command in sorted(commands.items()) if pathlib.Path(file).parent == pathlib.Path(own).parent)
    words = [word for word in shlex.split(neighbour["command"]) if not word.endswith("ccache")]
    words = words[: words.index("-o")] + ["-fsyntax-only", str(root / path)]
    return [word.replace(f"{source}/src", f"{root}/src") for word in words]


def main():
    source, build = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
    added_folder = source / "tests/lint/new_tool"
    commands = {entry["file"]: entry for entry in json.loads((build / "compile_commands.json").read_text())}
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for name in ("src", "tools", "fuzz", "data"):
            shutil.copytree(source / name, root / name)
        added = sorted(path.relative_to(added_folder) for path in added_folder.rglob("*") if path.is_file())
        for path in added:
            if (root / path).exists():
                raise SystemExit(f"{path} exists already")
            shutil.copyfile(added_folder / path, root / path)
        changed = change(root)
        print("files that changed:", ", ".join(changed))
        if len(changed) > MOST_CHANGED:
            raise SystemExit(f"{len(changed)} files had to change, not {MOST_CHANGED} at most")
        subprocess.run([sys.executable, source / "tests/lint/check_sources.py", *sys.argv[3:], root], check=True)
        to_compile = [path for path in map(pathlib.Path, [*changed, *map(str, added)]) if path.suffix == ".cpp"]
        for path in to_compile:
            command = compile_command(commands, source, build, root, path)
            subprocess.run(command, check=True, cwd=build)
        print("compiled:", ", ".join(map(str, to_compile)))


if __name__ == "__main__":
    main()

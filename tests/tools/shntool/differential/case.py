# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""One case: a command line, the files that it finds, and what is typed."""

import dataclasses
import os
import shlex

from fixtures import is_fixture


@dataclasses.dataclass(frozen=True)
class Link:
    """A symbolic link, in the place of a fixture."""
    target: str


PIPE = object()  # a named pipe, in the place of a fixture


@dataclasses.dataclass(frozen=True)
class Case:
    name: str
    words: tuple  # str or bytes, without the program
    files: tuple = ()  # of (name in the folder, name of the fixture; None makes a folder, bytes are contents)
    typed: bytes = b""  # on standard input, which is a pipe
    terminal: bool = False  # standard input is a terminal, where `typed` is typed
    environment: tuple = ()  # of (name, value)
    program: str = "shntool"  # as it is called
    merged: bool = False  # both streams go into one pipe
    stranger: bool = False  # run as a user who owns nothing of the folder, where the suite runs as root
    passing: bytes = b""  # what of the texts depends on the moment, as a pattern; it is not compared
    modes: tuple = ()  # of (name in the folder, permissions)


def file_pairs(text):
    """`a.wav b.flac=cd1.flac out/ list=:text` means: the fixture of that name, another under a name, a folder."""
    pairs = []
    for word in text.split():
        name, _, fixture = word.partition("=")
        pairs.append((name.rstrip("/"), None) if name.endswith("/") else (name, fixture or name))
    return pairs


def case(line, files=None, *, name=None, more=(), **facts):
    """The case of a command line, as a text that is split at blanks like a shell's or as a list of words. Its name is
    the text unless it is given. The files are those words that name a fixture unless `files` says others. `more` are
    files with odd names or given contents, as pairs."""
    words = tuple(shlex.split(line)) if isinstance(line, str) else tuple(line)
    if name is None:
        name = line if isinstance(line, str) else " ".join(os.fsdecode(word) for word in words)
    if files is None:
        files = " ".join(dict.fromkeys(word for word in words if is_fixture(word)))
    typed = facts.pop("typed", b"")
    return Case(name, words, (*file_pairs(files), *more), typed.encode() if isinstance(typed, str) else typed, **facts)

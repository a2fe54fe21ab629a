# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs a program on a case in a fresh folder, and looks at what it did."""

import dataclasses
import os
import pathlib
import pty
import pwd
import re
import shutil
import signal
import stat
import subprocess
import tempfile
import termios

from case import PIPE, Link

LIMIT_SECONDS = 60
STRANGER = "nobody"

# What differs from run to run, and what stands in its place: process numbers in messages, and the time of writing in the
# comment that sox puts into AIFF files.
PASSING_WORDS = (re.compile(rb"(child encoder process )\d+( had)"), rb"\1PID\2")
PASSING_BYTES = (re.compile(rb"(COMT....\x00\x01)....(....Processed by SoX)", re.DOTALL), rb"\1TIME\2")


@dataclasses.dataclass(frozen=True)
class Result:
    """What a run left: `files` says by path (bytes) the kind, the permissions and the contents."""
    status: int
    output: bytes
    errors: bytes
    files: dict


def steady(text, case):
    pattern, words = PASSING_WORDS
    return re.sub(case.passing, b"", pattern.sub(words, text)) if case.passing else pattern.sub(words, text)


class Runner:
    """Runs programs on cases, with one environment for all. Every run has the folder `here` of its workplace, so that
    paths in texts are the same. A workplace serves one thread."""

    def __init__(self, fixtures, environment):
        self.fixtures = fixtures
        self.environment = environment

    def run(self, program, case, workplace):
        """Raises subprocess.TimeoutExpired when it takes too long."""
        folder = pathlib.Path(workplace) / "here"
        try:
            self.furnish(folder, case)
            status, output, errors = self.start(program, case, folder)
            return Result(status, output, errors, snapshot(folder))
        finally:
            remove(folder)

    def furnish(self, folder, case):
        folder.mkdir(mode=0o755)
        for name, fixture in case.files:
            path = os.path.join(os.fsencode(folder), os.fsencode(name))
            if fixture is None:
                os.mkdir(path)
            elif fixture is PIPE:
                os.mkfifo(path, 0o644)
            elif isinstance(fixture, Link):
                os.symlink(fixture.target, path)
            elif isinstance(fixture, bytes):
                pathlib.Path(os.fsdecode(path)).write_bytes(fixture)
            else:
                shutil.copyfile(self.fixtures.path(fixture), path)
        for name, mode in case.modes:
            os.chmod(folder / name, mode)

    def given(self, case, workplace):
        """What lies there before a program starts."""
        folder = pathlib.Path(workplace) / "here"
        try:
            self.furnish(folder, case)
            return snapshot(folder)
        finally:
            remove(folder)

    def start(self, program, case, folder):
        environment = {**self.environment, **dict(case.environment), "PWD": str(folder)}
        words = [case.program, *(word.replace("{folder}", str(folder)) if isinstance(word, str) else word
                                 for word in case.words)]
        with Streams(case) as streams:
            process = subprocess.Popen(words, executable=program, cwd=folder, env=environment, stdin=streams.input,
                                       stdout=streams.output, stderr=streams.errors, umask=0o022,
                                       start_new_session=True, **credentials(case))
            streams.type()
            try:
                return process.wait(LIMIT_SECONDS), *(steady(text, case) for text in streams.texts())
            finally:
                if process.poll() is None:
                    os.killpg(process.pid, signal.SIGKILL)
                    process.wait()


class Streams:
    """The standard streams of a run. What is typed and what is told lies in files: whatever the size, nobody waits."""

    def __init__(self, case):
        self.case = case
        self.output = tempfile.TemporaryFile()
        self.errors = subprocess.STDOUT if case.merged else tempfile.TemporaryFile()
        self.master = None
        if case.terminal:
            self.master, self.input = pty.openpty()
            settings = termios.tcgetattr(self.input)
            settings[3] &= ~termios.ECHO
            termios.tcsetattr(self.input, termios.TCSANOW, settings)
        else:
            self.input = tempfile.TemporaryFile()
            self.input.write(case.typed)
            self.input.seek(0)
        if case.merged:
            os.set_inheritable(self.output.fileno(), True)

    def type(self):
        if self.master is not None:
            os.write(self.master, self.case.typed)

    def texts(self):
        texts = []
        for stream in (self.output, self.errors):
            if stream is subprocess.STDOUT:
                texts.append(b"")
                continue
            stream.seek(0)
            texts.append(stream.read())
        return texts

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for stream in (self.output, self.errors, None if self.case.terminal else self.input):
            if hasattr(stream, "close"):
                stream.close()
        if self.case.terminal:
            os.close(self.input)
            os.close(self.master)


def can_everybody_run(program):
    """Whether also those may start it who own nothing of its folders."""
    path = pathlib.Path(program).resolve()
    return all(each.stat().st_mode & stat.S_IXOTH for each in (path, *path.parents))


def credentials(case):
    """Root may do everything, so that what is forbidden has to be tried by somebody else."""
    if not case.stranger or os.geteuid() != 0:
        return {}
    user = pwd.getpwnam(STRANGER)
    return {"user": user.pw_uid, "group": user.pw_gid, "extra_groups": []}


def snapshot(folder):
    """What lies in and under the folder: by path, the kind, the permissions and the contents."""
    found = {}
    top = os.fsencode(folder)
    for root, folders, names in os.walk(top):
        for name in folders + names:
            path = os.path.join(root, name)
            facts = os.lstat(path)
            contents = b""
            if stat.S_ISREG(facts.st_mode):
                if not os.access(path, os.R_OK):
                    os.chmod(path, 0o600)
                with open(path, "rb") as file:
                    contents = PASSING_BYTES[0].sub(PASSING_BYTES[1], file.read(), count=1)
            elif stat.S_ISLNK(facts.st_mode):
                contents = os.readlink(path)
            found[os.path.relpath(path, top)] = (oct(facts.st_mode), contents)
    return found


def remove(folder):
    os.chmod(folder, 0o755)
    for root, folders, _ in os.walk(folder):
        for name in folders:
            os.chmod(os.path.join(root, name), 0o755)
    shutil.rmtree(os.fsencode(folder), ignore_errors=True)

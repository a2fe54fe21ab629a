# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs the program under test."""

import os
import pathlib
import resource
import socket
import subprocess
import tempfile
import unittest


class ProgramTest(unittest.TestCase):
    """A folder of its own, and the program that the command line names."""

    program = ""

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name).resolve()

    def run_program(self, *arguments, **options):
        return subprocess.run([self.program, *arguments], capture_output=True, check=False, timeout=120, cwd=self.folder,
                              **options)

    def names(self, folder=None):
        """All that is below, hidden things and folders too."""
        folder = self.folder if folder is None else folder
        return sorted(str(path.relative_to(folder)) for path in folder.rglob("*"))

    def write(self, name, contents):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        # A file that is cut and written again is flushed by some file systems.
        path.unlink(missing_ok=True)
        path.write_bytes(contents)
        return path

    def writes_of(self, arguments, **options):
        """Each write to either stream, apart: a socket keeps them so. And the status."""
        ours, theirs = socket.socketpair(socket.AF_UNIX, socket.SOCK_SEQPACKET)
        with ours:
            with theirs:
                process = subprocess.Popen([self.program, *arguments], stdout=theirs, stderr=theirs, cwd=self.folder, **options)
            writes = []
            while True:
                text = ours.recv(65536)
                if not text:
                    break
                writes.append(text)
        return writes, process.wait()


def with_limit(kind, most):
    """For preexec_fn: the child and what it starts."""
    return lambda: resource.setrlimit(kind, (most, most))


def is_sanitized(program):
    contents = pathlib.Path(program).read_bytes()
    return b"__asan_init" in contents or b"__tsan_init" in contents


def ended(process_id):
    """Whether that process is gone, or waits for nothing but its parent."""
    try:
        return pathlib.Path(f"/proc/{process_id}/stat").read_text().rsplit(")", 1)[1].split()[0] in "ZX"
    except (FileNotFoundError, ProcessLookupError):
        return True


def run_tests(argv, modules_tests):
    """Takes the program from the command line."""
    ProgramTest.program = os.path.abspath(argv.pop(1))
    modules_tests()

#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Plants one fault at a time and expects check_repository to name it."""

import pathlib
import tempfile
import unittest

import check_repository

HEAD = "".join(f"# {line}\n" for line in check_repository.SPDX)


class CheckRepository(unittest.TestCase):
    def faults(self, name, contents):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(contents)
            return check_repository.check_files(pathlib.Path(folder), [name])

    def test_clean_files_pass(self):
        self.assertEqual(self.faults("run", ("#!/usr/bin/env bash\n" + HEAD).encode()), [])
        self.assertEqual(self.faults("cmake/A.cmake", HEAD.encode()), [])
        self.assertEqual(self.faults("docs/build.md", b"text"), [])
        self.assertEqual(self.faults("data/a.svg", b"<svg/>"), [])

    def test_planted_faults(self):
        self.assertEqual(len(self.faults("build/a.txt", b"x")), 1)
        self.assertEqual(len(self.faults("src/a.o", b"x")), 1)
        self.assertEqual(len(self.faults("tests/__pycache__/a.pyc", b"x")), 1)
        self.assertEqual(len(self.faults("tool", b"\x7fELF\x02")), 1)
        self.assertEqual(len(self.faults("big.wav", b"x" * (check_repository.MAX_BYTES + 1))), 1)
        self.assertEqual(len(self.faults("run", b"#!/bin/sh\necho\n")), 1)
        self.assertEqual(len(self.faults("src/CMakeLists.txt", b"project()\n")), 1)
        self.assertEqual(len(self.faults("data/a.svg", b"<svg>")), 1)


if __name__ == "__main__":
    unittest.main()

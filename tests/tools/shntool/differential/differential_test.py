#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Lets a candidate commit one sin at a time, and expects the comparison to name it.

usage: differential_test.py TOOLS
"""

import dataclasses
import pathlib
import subprocess
import sys
import tempfile
import unittest

from cases import CASES
from deviations import DEVIATIONS, LATER_DEVIATIONS, Deviation, deviation_of, without_cases
from running import Result

HERE = pathlib.Path(__file__).parent
REFERENCE = "/usr/bin/shntool"

# Hands everything on; a test adds a line.
CANDIDATE = """#!/usr/bin/env python3
import os, pathlib, signal, subprocess, sys
run = subprocess.run(["shntool", *sys.argv[1:]], executable="/usr/bin/shntool", capture_output=True)
status, output, errors = run.returncode, bytearray(run.stdout), bytearray(run.stderr)
# SIN
sys.stdout.buffer.write(output)
sys.stderr.buffer.write(errors)
sys.stdout.flush()
sys.stderr.flush()
if status < 0:
    os.kill(os.getpid(), -status)
sys.exit(status)
"""


@unittest.skipUnless(pathlib.Path(REFERENCE).exists(), "there is nothing to compare with")
class Candidates(unittest.TestCase):
    tools = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.candidate = pathlib.Path(folder.name) / "candidate"

    def compare(self, sin, case, *options):
        """The exit status and what is told."""
        self.candidate.write_text(CANDIDATE.replace("# SIN", sin), encoding="utf-8")
        self.candidate.chmod(0o755)
        run = subprocess.run([sys.executable, HERE / "differential.py", self.candidate, "--tools", self.tools, "--only", case,
                              *options], capture_output=True, text=True, errors="replace", check=False)
        return run.returncode, run.stdout + run.stderr

    def assert_fault(self, text, sin, case="conv -o flac cd1.wav text cd2.wav"):
        status, told = self.compare(sin, case)
        self.assertEqual(status, 1, told)
        self.assertIn(text, told)

    def test_honest_candidate(self):
        for case in ("conv -o flac cd1.wav text cd2.wav", "len cd1.wav text nothere cd2.flac empty", "split at a sheet"):
            status, told = self.compare("", case)
            self.assertEqual(status, 0, told)
            self.assertIn("1 cases, 0 failed", told)

    def test_one_bit_of_standard_output(self):
        self.assert_fault("standard output differs at byte 100", "output[100] ^= 1", "len cd1.wav cd2.wav")

    def test_one_bit_of_standard_error(self):
        self.assert_fault("standard error differs at byte 40", "errors[40] ^= 1")

    def test_one_byte_more_of_standard_error(self):
        self.assert_fault("standard error differs", "errors += b' '")

    def test_exit_status(self):
        self.assert_fault("exit status 0, not 1", "status = 0")

    def test_death_by_a_signal(self):
        self.assert_fault("exit status -11, not 1", "status = -signal.SIGSEGV")

    def test_one_bit_of_an_output(self):
        self.assert_fault("b'cd2.flac' differs at byte 5000", "path = pathlib.Path('cd2.flac'); data = bytearray("
                          "path.read_bytes()); data[5000] ^= 1; path.write_bytes(data)")

    def test_one_byte_less_of_an_output(self):
        self.assert_fault("b'cd2.flac' differs at byte", "path = pathlib.Path('cd2.flac'); path.write_bytes("
                          "path.read_bytes()[:-1])")

    def test_missing_output(self):
        self.assert_fault("b'cd1.flac' is missing", "os.unlink('cd1.flac')")

    def test_renamed_output(self):
        self.assert_fault("b'CD1.flac' should not be there", "os.rename('cd1.flac', 'CD1.flac')")

    def test_file_left_behind(self):
        self.assert_fault("b'.part' should not be there", "pathlib.Path('.part').write_bytes(b'')")

    def test_folder_left_behind(self):
        self.assert_fault("b'temporary' should not be there", "os.mkdir('temporary')")

    def test_temporary_file_left_behind(self):
        self.assert_fault("FAILED to leave nothing behind in the folder for temporary files: private",
                          "pathlib.Path(os.environ['TMPDIR'], 'private').write_bytes(b'')")

    def test_permissions_of_an_output(self):
        self.assert_fault("b'cd1.flac' has mode 0o100600", "os.chmod('cd1.flac', 0o600)")

    def test_changed_source(self):
        self.assert_fault("b'text' differs at byte 0", "pathlib.Path('text').write_bytes(b'')")

    def test_refusal_of_what_the_reference_refuses(self):
        self.assert_fault("standard output differs", "", "hash cd1.wv")

    def test_crash_where_the_reference_crashes(self):
        self.assert_fault("exit status -8, not 1", "", "len zerorate.wav")

    def test_no_case_is_no_success(self):
        status, told = self.compare("", "no such case")
        self.assertEqual(status, 1, told)

    def test_reference_is_no_excuse_in_a_self_check(self):
        status, told = self.compare("", "len zerorate.wav", "--self-check")
        self.assertEqual(status, 0, told)


class Tables(unittest.TestCase):
    def test_every_deviation_has_its_cases(self):
        self.assertEqual(without_cases([case.name for case in CASES]), [])

    def test_no_case_has_two_deviations(self):
        for deviations in (DEVIATIONS, LATER_DEVIATIONS):
            twice = [case.name for case in CASES if sum(each.fits(case.name) for each in deviations) > 1]
            self.assertEqual(twice, [])

    def test_deviations_are_few(self):
        deviating = sum(deviation_of(case.name, is_later=True) is not None for case in CASES)
        self.assertLess(deviating, len(CASES) / 10)

    def test_deviation_replaces_only_what_it_names(self):
        reference = Result(-8, b"told", b"moaned", {b"a": ("0o100644", b"made")})
        deviation = Deviation(("x",), "it dies", status=1, errors=b"error: [^\\n]*\\n", only_given_files=True)
        wanted = deviation.expected(reference, {b"g": ("0o100644", b"given")}, None)
        self.assertEqual((wanted.status, wanted.output, wanted.files), (1, b"told", {b"g": ("0o100644", b"given")}))
        for errors in (b"", b"error: no", b"error: no\nmore\n", b"warning: no\n", b"moaned"):
            self.assertNotEqual(deviation.evened(dataclasses.replace(wanted, errors=errors)), wanted)
        self.assertEqual(deviation.evened(dataclasses.replace(wanted, errors=b"error: no\n")), wanted)

    def test_deviations_of_the_same_sound_take_over_the_outputs(self):
        other = Result(0, b"told", b"", {b"in": ("0o100644", b"plain"), b"out": ("0o100644", b"made")})
        deviation = Deviation(("x",), "it cannot read it", like="the other")
        wanted = deviation.expected(Result(1, b"", b"no", {}), {b"in": ("0o100644", b"wrapped")}, lambda case: other)
        self.assertEqual(wanted.files, {b"in": ("0o100644", b"wrapped"), b"out": ("0o100644", b"made")})
        self.assertEqual((wanted.status, wanted.output), (0, b"told"))


if __name__ == "__main__":
    Candidates.tools = pathlib.Path(sys.argv.pop(1)).resolve()
    unittest.main()

#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Lets a program commit one sin at a time, and expects the checks to name it."""

import dataclasses
import pathlib
import random
import tempfile
import unittest
import unittest.mock

import running
from batch import Batch
from checking import DiskCheck
from decoding import Decoder
from running import Interference, Runner
from sound import aiff_bytes, make_sound, wav_bytes
from sources import Source
from statuses import faults_of

# Does everything right; a test replaces a line of it, or adds some.
PROGRAM = """#!/usr/bin/env python3
import json, os, pathlib, shutil, signal, subprocess, sys, time
source = pathlib.Path(sys.argv[-1])
output = source.parent.parent / "out" / (source.stem + ".aiff")
outside = source.parent.parent / "outside"
job = {"type": "job", "title": source.name, "source": str(source), "status": "complete", "report": "",
       "output": str(output), "original": "deleted", "reason": "", "proof": "proven"}
batch = {"type": "batch", "complete": 1, "failed": 0, "canceled": 0, "exitStatus": 0}
status = 0
if sys.argv[1] == "recover":
    sys.exit(0)
shutil.copy(source.parent.parent / "trial" / "whole.aiff", output)
# MAKE
source.unlink()
# DELETE
print(json.dumps(job))
print(json.dumps(batch), flush=True)
sys.exit(status)
"""


class Checks(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.decoder = Decoder(self.folder, self.folder)
        self.batch = Batch(self.folder / "batch", "encode", "aiff", ["--delete-originals", "--yes", "--json"])
        self.sound = make_sound(random.Random(1), 8000, 2, 16, 0.1)
        self.source = Source("wav", wav_bytes(self.sound, 16, [(b"bext", b"precious")]), self.sound, 16)
        self.batch.add(self.source, "a.wav")
        self.batch.given = [self.source.path]
        self.output = self.batch.output_folder / "a.aiff"
        (self.batch.root / "trial" / "whole.aiff").write_bytes(aiff_bytes(self.sound, 16))
        shorter = dataclasses.replace(self.sound, samples=self.sound.samples[:-8])
        (self.batch.root / "trial" / "shorter.aiff").write_bytes(aiff_bytes(shorter, 16))
        (self.batch.root / "outside" / "bystander").write_bytes(b"there")

    def faults(self, make="", delete="", interference=Interference(), keeps=False):
        program = self.folder / "program"
        text = PROGRAM.replace("# MAKE", make).replace("# DELETE", delete)
        program.write_text(text.replace("source.unlink()\n", "") if keeps else text, encoding="utf-8")
        program.chmod(0o755)
        before = self.batch.look()
        run = Runner(program, self.folder).run(self.batch, interference)
        return faults_of(DiskCheck(self.batch, before, self.decoder, run), run, interference)

    def assert_fault(self, text, *arguments, **words):
        faults = self.faults(*arguments, **words)
        self.assertTrue(any(text in fault for fault in faults), faults)

    def test_honest_program(self):
        self.assertEqual(self.faults(), [])

    def test_honest_failure(self):
        told = "job.update(status='error', original='kept', output=None, proof='notProven', reason='it is damaged')\n" \
               "batch.update(complete=0, failed=1, exitStatus=1); status = 1; output.unlink()"
        self.assertEqual(self.faults(delete=told, keeps=True), [])

    def test_source_without_output(self):
        self.assert_fault("LOST: a.wav is gone; a.aiff is not there", "output.unlink()")

    def test_shorter_output(self):
        make = "shutil.copy(source.parent.parent / 'trial' / 'shorter.aiff', output)"
        self.assert_fault("LOST: a.wav is gone; a.aiff has 799 frames", make)
        self.setUp()
        self.assert_fault("LESS SOUND: a.wav", make, keeps=True)

    def test_other_sound(self):
        make = "data = bytearray(output.read_bytes()); data[100] ^= 1; output.write_bytes(data)"
        self.assert_fault("differs from frame 11", make)

    def test_altered_source(self):
        self.assert_fault("LOST: a.wav was altered", delete="source.write_bytes(b'nothing')")

    def test_deletion_without_a_wish(self):
        self.batch.options.remove("--delete-originals")
        self.assert_fault("although nobody asked for that")

    def test_lost_chunk(self):
        self.source.markers = frozenset((b"precious",))
        self.assert_fault("a.aiff lacks b'precious'")
        self.setUp()
        self.source.markers = frozenset((b"precious",))
        self.batch.options.append("--drop-metadata")
        self.assertEqual(self.faults(), [])

    def test_trash_stands_for_an_output(self):
        self.batch.settings["trashOrDelete"] = 1
        make = "trash = pathlib.Path(os.environ['XDG_DATA_HOME']) / 'Trash' / 'files'; trash.mkdir(parents=True)\n" \
               "shutil.copy(source, trash); job['original'] = 'trashed'"
        self.assertEqual(self.faults(make), [])
        self.setUp()
        self.assert_fault("is told trashed, but is not in the trash", "job['original'] = 'trashed'")

    def test_replaced_file(self):
        self.output.write_bytes(b"of somebody")
        self.assert_fault("REPLACED: out/a.aiff")

    def test_asked_for_replacement(self):
        self.batch.options.append("--overwrite")
        self.output.write_bytes(b"of somebody")
        self.assertEqual(self.faults(), [])
        self.setUp()
        self.batch.options.append("--overwrite")
        self.output.write_bytes(b"of somebody")
        self.assert_fault("made way for less", "output.write_bytes(b'half')", keeps=True)

    def test_bystanders(self):
        self.assert_fault("REPLACED: outside/bystander", "(outside / 'bystander').write_bytes(b'changed')")
        self.setUp()
        self.assert_fault("REPLACED: outside/bystander was file, is gone", "(outside / 'bystander').unlink()")

    def test_written_through_a_link(self):
        self.output.symlink_to(self.batch.root / "outside" / "bystander")
        self.assert_fault("REPLACED: outside/bystander")
        self.setUp()
        self.output.symlink_to(self.batch.root / "outside" / "nowhere")
        self.assert_fault("STRAY: outside/nowhere")

    def test_strays(self):
        for name in ("out/Nurv-1234.wav", "in/.nurv-1.part", "out/a.tmp,fl-ac+en'c", "state/1.journal", "tmp/x"):
            with self.subTest(name):
                self.setUp()
                self.assert_fault(f"STRAY: {name}", f"""(source.parent.parent / "{name}").write_bytes(b'x')""")
        self.setUp()
        self.assert_fault("STRAY: tmp/folder", "(source.parent.parent / 'tmp' / 'folder').mkdir()")

    def test_half_made_output_that_nobody_told_of(self):
        make = "output.write_bytes(output.read_bytes()[:900]); print('killed', file=sys.stderr)\n" \
               "os.kill(os.getpid(), signal.SIGKILL)"
        self.assert_fault("UNFINISHED: out/a.aiff", make)

    def test_untrue_words(self):
        for change, text in (
                ("original='kept', reason='x'", "is told kept, but is gone"),
                ("original='untouched'", "is told untouched, but is gone"),
                ("proof='notNeeded'", "was deleted without a proof"),
                ("status='error', reason='x'", "by a job that is not complete"),
                ("output=None", "is complete and names no output"),
                ("output='/nowhere/a.aiff'", "names an output that is not there"),
                ("proof='perhaps'", "a job's proof is 'perhaps'"),
                ("status='done'", "a job's status is 'done'")):
            with self.subTest(change):
                self.setUp()
                self.assert_fault(text, delete=f"job.update({change})")

    def test_untrue_words_about_a_source_that_stays(self):
        for change, text in (
                ("original='deleted'", "is told deleted, but is still there"),
                ("original='kept', reason=''", "was kept without a reason"),
                ("original='kept', reason='x'", "exit status 0, but 'a.wav' is complete, original kept"),
                ("original='untouched'", "nothing is told about the deletion"),
                ("status='error'", "has failed without a reason")):
            with self.subTest(change):
                self.setUp()
                self.assert_fault(text, delete=f"job.update({change})", keeps=True)

    def test_untrue_exit_status(self):
        self.assert_fault("the batch tells exit status 0, it is 1", delete="status = 1")
        self.setUp()
        self.assert_fault("nothing is told that was not done", delete="status = 1; batch['exitStatus'] = 1")
        self.setUp()
        self.assert_fault("UNTRUE: exit status 7", delete="status = 7")
        self.setUp()
        self.assert_fault("exit status 0, but a.wav has no output", delete="job.clear(); output.unlink()", keeps=True)
        self.setUp()
        self.assert_fault("the batch tells 3 complete, 1 jobs do", delete="batch['complete'] = 3")

    def test_usage_error_that_did_something(self):
        self.batch.options.remove("--yes")
        self.assert_fault("exit status 2, but something was done", delete="status = 2")

    def test_no_json(self):
        self.assert_fault("NO JSON on standard output: 'hello'", "print('hello')")

    def test_crash(self):
        self.assert_fault("CRASH: ended by signal 11", "os.kill(os.getpid(), signal.SIGSEGV)")

    def test_hang(self):
        with unittest.mock.patch.object(running, "LIMIT_SECONDS", 1):
            self.assert_fault("HANG", "time.sleep(1000)")

    def test_child_left_over(self):
        with unittest.mock.patch.object(running, "GRACE_SECONDS", 0.1):
            self.assert_fault("CHILD LEFT OVER: sleep", "subprocess.Popen(['sleep', '1000'])")


if __name__ == "__main__":
    unittest.main()

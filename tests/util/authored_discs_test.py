#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Discs that `nurv util dvda` makes, read back sample by sample from their images; kills and full disks meanwhile.

usage: authored_discs_test.py NURV
"""

import os
import pathlib
import random
import resource
import shutil
import signal
import subprocess
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tools" / "dvda"))

import audio_disc
import waves
from running import ProgramTest, run_tests, with_limit

ARCHIVER = shutil.which("7zz") or shutil.which("7z")


class AuthoredDiscs(ProgramTest):
    def setUp(self):
        super().setUp()
        self.out = self.folder / "out"
        self.out.mkdir()
        self.environment = os.environ | {"NURV_STATE": str(self.folder / "state"), "HOME": str(self.folder)}

    def make_sounds(self, shape, lengths):
        sounds = [waves.samples(shape, frames, i) for i, frames in enumerate(lengths)]
        for i, pcm in enumerate(sounds):
            name = f"in/{i + 1:02} track.wav"
            if i % 3 == 1:
                (self.folder / "in").mkdir(exist_ok=True)
                waves.flac((self.folder / name).with_suffix(".flac"), shape, pcm)
            else:
                self.write(name, waves.wav(shape, pcm, extensible=shape.bits > 16 or shape.channels > 2))
        return sounds

    def arguments(self):
        return ["util", "dvda", "--output-dir", self.out, self.folder / "in"]

    def author(self, **options):
        return self.run_program(*self.arguments(), env=self.environment, **options)

    def read_image(self):
        """The disc, by another program's reading of UDF."""
        subprocess.run([ARCHIVER, "x", "-tudf", f"-o{self.folder / 'read'}", self.out / "image.iso"], check=True,
                       capture_output=True)
        files = {path.name: path.read_bytes() for path in (self.folder / "read" / "AUDIO_TS").iterdir()}
        listing = subprocess.run(["isoinfo", "-l", "-i", self.out / "image.iso"], check=True, capture_output=True,
                                 text=True).stdout
        start = next(int(line.split("[")[1].split()[0]) for line in listing.splitlines() if "AUDIO_PP.IFO" in line)
        return audio_disc.read(files, start)

    def expect_disc(self, shape, sounds):
        disc = self.read_image()
        self.assertEqual((disc.rate, disc.bits, disc.channels), (shape.rate, shape.bits, shape.channels))
        self.assertEqual(len(disc.tracks), len(sounds))
        for track, pcm in zip(disc.tracks, sounds):
            audio_disc.check_track(disc, track, pcm)

    def test_hold_each_sample_of_each_track_in_the_order_of_names(self):
        for shape, count in ((waves.Shape(), 1), (waves.Shape(96000, 24, 2), 2), (waves.Shape(48000, 24, 6), 5),
                             (waves.Shape(192000, 24, 1), 99)):
            with self.subTest(shape=shape, tracks=count):
                sounds = self.make_sounds(shape, [2000 + 37 * i for i in range(count)])
                result = self.author()
                self.assertEqual(result.returncode, 0, result.stderr)
                self.assertEqual(self.names(self.out), ["image.iso", "log.txt"])
                self.expect_disc(shape, sounds)
                for folder in ("in", "read", "out"):
                    shutil.rmtree(self.folder / folder)
                self.out.mkdir()

    def test_that_are_refused_leave_nothing(self):
        self.make_sounds(waves.Shape(96000, 24, 2), [1000])
        self.write("in/02 more.wav", waves.wav(waves.Shape(96000, 24, 4), waves.samples(waves.Shape(96000, 24, 4), 500)))
        self.assertEqual(self.author().returncode, 1)
        shutil.rmtree(self.folder / "in")
        self.write("in/four.wav", waves.wav(waves.Shape(96000, 24, 4), waves.samples(waves.Shape(96000, 24, 4), 500)))
        result = self.author()
        self.assertEqual(result.returncode, 1)
        self.assertIn(b"channels", result.stderr)
        self.assertEqual(self.names(self.out), ["log.txt"])

    def test_that_do_not_fit_are_no_discs(self):
        sounds = self.make_sounds(waves.Shape(96000, 24, 2), [100_000])
        # Of each file, as on a disk that fills up: in the folder, then in the image.
        for limit in (300_000, len(sounds[0]) + 200_000):
            with self.subTest(limit=limit):
                result = self.author(preexec_fn=with_limit(resource.RLIMIT_FSIZE, limit))
                self.assertEqual(result.returncode, 1, result.stderr)
                self.assertFalse((self.out / "image.iso").exists())
                self.assertNotIn(b"Complete", result.stderr)
                shutil.rmtree(self.out)
                self.out.mkdir()

    def test_after_a_kill_there_is_a_whole_image_or_none(self):
        shape = waves.Shape(96000, 24, 2)
        sounds = self.make_sounds(shape, [60_000, 40_000, 50_000])
        before = {path.name: path.read_bytes() for path in (self.folder / "in").iterdir()}
        number = random.Random(20261)
        begin = time.monotonic()
        self.assertEqual(self.author().returncode, 0)
        duration = time.monotonic() - begin
        for trial in range(12):
            # Of its own: a program of the one before may be about to die.
            self.out = self.folder / f"out {trial}"
            self.out.mkdir()
            process = subprocess.Popen([self.program, *self.arguments()], env=self.environment, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL, start_new_session=True)
            time.sleep(number.uniform(0, 1.1 * duration))
            kind = number.choice([signal.SIGKILL, signal.SIGTERM, signal.SIGINT])
            process.send_signal(kind)
            status = process.wait(timeout=60)
            with self.subTest(trial=trial, signal=kind, status=status):
                self.assertEqual({path.name: path.read_bytes() for path in (self.folder / "in").iterdir()}, before)
                if (self.out / "image.iso").exists():
                    shutil.rmtree(self.folder / "read", ignore_errors=True)
                    self.expect_disc(shape, sounds)
                else:
                    self.assertNotEqual(status, 0)


if __name__ == "__main__":
    run_tests(sys.argv, unittest.main)

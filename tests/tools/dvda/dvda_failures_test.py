#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""What is refused, what goes wrong, and what is not the program's to touch.

usage: dvda_failures_test.py DVDA
"""

import fcntl
import os
import resource
import shutil
import signal
import struct
import subprocess
import sys
import time
import unittest

import audio_disc
import waves
from running import ProgramTest, run_tests, with_limit

CD = waves.Shape()
SECOND = waves.samples(CD, 44100)


def flac_with(contents, at, replaced):
    return contents[:at] + replaced + contents[at + len(replaced):]


class FailureTest(ProgramTest):
    def author(self, *inputs, **options):
        return self.run_program("-l", "log.txt", "-P0", "-S", "-f", "-o", "disc", "-g", *inputs, **options)

    def good(self, name="good.wav", shape=CD, frames=3000):
        return self.write(name, waves.wav(shape, waves.samples(shape, frames)))

    def expect_failure(self, result, *parts):
        """It tells why, on standard error and in the log, and there is no disc."""
        self.assertEqual(result.returncode, 1, result)
        text = result.stderr.decode()
        log = (self.folder / "log.txt").read_text()
        for part in parts:
            self.assertIn(part, text)
            self.assertIn(part, log)
        self.assertTrue(text.startswith("dvda: "), text)
        self.assertIn("\nFailed: ", log)
        self.assertFalse((self.folder / "disc").exists(), self.names())
        self.assertEqual([name for name in self.names() if ".nurv" in name], [])


class RefusedInputs(FailureTest):
    def test_sound_that_a_disc_cannot_hold(self):
        def wav(shape, **options):
            return waves.wav(shape, waves.samples(shape, 1000), **options)
        for contents, part in [
                (wav(waves.Shape(bits=8)), "8 bits per sample"),
                (wav(waves.Shape(bits=32)), "32 bits per sample"),
                (wav(waves.Shape(bits=32), tag=3), "no whole numbers"),
                (wav(waves.Shape(bits=32), extensible=True, tag=3), "no whole numbers"),
                (wav(waves.Shape(rate=22050)), "22050 Hz"),
                (wav(waves.Shape(rate=352800)), "352800 Hz"),
                (wav(waves.Shape(channels=3)), "3 channels"),
                (wav(waves.Shape(channels=5)), "5 channels"),
                (wav(waves.Shape(channels=8)), "8 channels"),
                (wav(waves.Shape(96000, 24, 6)), "13824000 bits a second"),
                (wav(waves.Shape(176400, 16, 6)), "bits a second"),
                (wav(waves.Shape(channels=6), extensible=True, mask=0x137), "5.1"),
                (waves.wav(CD, b""), "no sound"),
                (b"FORM" + bytes(50), "neither a WAV nor a FLAC file"),
                (b"", "neither a WAV nor a FLAC file"),
                (b"RIFF" + bytes(50), "no WAV file"),
                (b"fLaC" + bytes(50), "damaged"),
                (b"RIFX" + bytes(50), "neither a WAV")]:
            with self.subTest(part=part):
                bad = self.write("bad.wav", contents)
                self.expect_failure(self.author(self.good(), bad), str(bad), part)
        self.expect_failure(self.author(self.write("bad.FLAC", b"no such thing")), "does not begin as a FLAC file")

    def test_six_channels_of_any_surround(self):
        for mask in (0x3F, 0x60F, 0):
            shape = waves.Shape(channels=6)
            path = self.write("six.wav", waves.wav(shape, waves.samples(shape, 100), extensible=True, mask=mask))
            self.assertEqual(self.author(path).returncode, 0)
            shutil.rmtree(self.folder / "disc")

    def test_flac_of_other_bits(self):
        path = waves.flac(self.folder / "8.flac", waves.Shape(bits=8), bytes(8000))
        self.expect_failure(self.author(path), str(path), "8 bits per sample")

    def test_what_is_no_file(self):
        os.mkfifo(self.folder / "pipe.wav")
        (self.folder / "folder.wav").mkdir()
        for name, part in [("pipe.wav", "no regular file"), ("folder.wav", "Is a directory"),
                           ("missing.wav", "No such file"), ("-", "No such file")]:
            with self.subTest(name=name):
                # Opening a pipe waits for whoever writes into it.
                holder = os.open(self.folder / "pipe.wav", os.O_RDWR)
                self.expect_failure(self.author(self.good(), name), name, part)
                os.close(holder)

    def test_files_that_do_not_match(self):
        for shape in (waves.Shape(48000), waves.Shape(bits=24), waves.Shape(channels=1)):
            other = self.good("other.wav", shape)
            self.expect_failure(self.author(self.good(), other), str(other), "do not match", "good.wav")

    def test_more_than_99_files(self):
        result = self.author(*[self.good()] * 100)
        self.assertEqual(result.returncode, 1)
        self.assertIn(b"100 files are given, and a disc has at most 99 tracks", result.stderr)
        self.assertEqual(self.names(), ["good.wav"])

    def test_more_than_a_disc_holds(self):
        with open(self.folder / "long.wav", "wb") as file:
            shape = waves.Shape(192000, 24, 2)
            head = waves.rf64(shape, b"")
            size = 10 << 30
            at = head.index(b"ds64") + 16
            file.write(head[:at] + struct.pack("<Q", size) + head[at + 8:])
            file.truncate(len(head) + size)
        self.expect_failure(self.author("long.wav"), "long.wav", "more sound than a disc can hold")

    def test_wrong_arguments(self):
        good = str(self.good())
        for arguments, part in [([], "-o"), (["-o", "disc"], "-g"), (["-g", good], "-o"), (["-o", "disc", "-g"], "no files"),
                                (["-o"], "needs the name"), (["-o", "", "-g", good], "needs the name"),
                                (["-o", "a", "-o", "b", "-g", good], "more than once"), (["-x", "-o", "disc", "-g", good], "-x"),
                                (["-P1", "-o", "disc", "-g", good], "-P1"), ([good], "good.wav"),
                                (["-o", "disc", "-g", ""], "empty")]:
            with self.subTest(arguments=arguments):
                result = self.run_program(*arguments)
                self.assertEqual((result.returncode, result.stdout), (1, b""))
                self.assertIn(part, result.stderr.decode())
                self.assertIn("Try 'dvda --help'", result.stderr.decode())
                self.assertEqual(self.names(), ["good.wav"])


class DamagedInputs(FailureTest):
    def test_wav_files_that_end_too_early(self):
        whole = waves.wav(CD, SECOND)
        for size in (44, 45, 44 + 4 * 20000, len(whole) - 1):
            cut = self.write("cut.wav", whole[:size])
            self.expect_failure(self.author(cut), str(cut), "promises 44100 samples", f"holds {(size - 44) // 4}")
        wide = waves.rf64(CD, SECOND)
        self.expect_failure(self.author(self.write("cut.wav", wide[:-400])), "promises 44100 samples", "holds 44000")

    def test_flac_files_that_end_too_early_or_are_damaged(self):
        whole = waves.flac(self.folder / "whole.flac", CD, SECOND).read_bytes()
        middle = len(whole) // 2
        promises = struct.pack(">I", 44101)
        no_md5 = flac_with(whole, 26, bytes(16))
        for contents, part in [(whole[:middle], "flac"), (no_md5[:middle], "flac"),
                               (flac_with(whole, middle, bytes([whole[middle] ^ 1])), "damaged"),
                               (flac_with(whole, 26, bytes([whole[26] ^ 1])), "damaged"),
                               (flac_with(no_md5, 22, promises), "promises 44101 samples, the file holds 44100"),
                               (whole[:100], "damaged"), (whole[:42], "damaged")]:
            bad = self.write("bad.flac", contents)
            result = self.author(self.good(), bad)
            self.expect_failure(result, str(bad), part)
        # A sound that was seen to the end is good: what stands behind it is not read.
        self.assertEqual(self.author(self.write("behind.flac", whole + b"TAG" + bytes(125))).returncode, 0)


class Places(FailureTest):
    """Folders, logs and links."""

    def expect_kept(self, before, result, part):
        self.assertEqual(result.returncode, 1, result)
        self.assertIn(part, result.stderr.decode())
        after = {name: self.look(name) for name in self.names() if name != "log.txt"}
        self.assertEqual({name: look for name, look in before.items() if name != "log.txt"}, after)

    def look(self, name):
        path = self.folder / name
        if path.is_symlink():
            return os.readlink(path)
        return path.read_bytes() if path.is_file() else None

    def everything(self):
        return {name: self.look(name) for name in self.names()}

    def test_takes_the_place_of_its_own_disc_only(self):
        self.assertEqual(self.author(self.good()).returncode, 0)
        # A file of the former disc that the new one does not have.
        shutil.copy(self.folder / "disc/AUDIO_TS/ATS_01_1.AOB", self.folder / "disc/AUDIO_TS/ATS_01_2.AOB")
        self.assertEqual(self.author(self.good(frames=500), self.good("b.wav", frames=7)).returncode, 0)
        self.assertEqual(len(audio_disc.read_folder(self.folder / "disc").tracks), 2)
        self.assertEqual(self.names(self.folder / "disc"), ["AUDIO_TS"] + [f"AUDIO_TS/{name}" for name in (
            "ATS_01_0.BUP", "ATS_01_0.IFO", "ATS_01_1.AOB", "AUDIO_PP.IFO", "AUDIO_TS.BUP", "AUDIO_TS.IFO")] + ["VIDEO_TS"])

    def test_uses_an_empty_folder_and_one_with_empty_folders(self):
        for folders in ([], ["VIDEO_TS"], ["AUDIO_TS"], ["AUDIO_TS", "VIDEO_TS"]):
            (self.folder / "disc").mkdir()
            for name in folders:
                (self.folder / "disc" / name).mkdir()
            self.assertEqual(self.author(self.good()).returncode, 0, folders)
            self.assertEqual(len(audio_disc.read_folder(self.folder / "disc").tracks), 1)
            self.assertEqual(sorted(os.listdir(self.folder / "disc")), ["AUDIO_TS", "VIDEO_TS"])
            shutil.rmtree(self.folder / "disc")

    def test_leaves_what_it_did_not_make(self):
        good = self.good()
        self.assertEqual(self.author(good).returncode, 0)
        shutil.copytree(self.folder / "disc", self.folder / "own")

        def plant(name, contents=b"precious"):
            self.write("disc/" + name, contents)

        def others_disc():
            manager = bytearray((self.folder / "disc/AUDIO_TS/AUDIO_TS.IFO").read_bytes())
            manager[0x40:0x60] = bytes(32)
            plant("AUDIO_TS/AUDIO_TS.IFO", manager)

        def link(name, target):
            (self.folder / "disc" / name).unlink(missing_ok=True)
            (self.folder / "disc" / name).symlink_to(target)

        def whole_link():
            shutil.rmtree(self.folder / "disc")
            (self.folder / "disc").symlink_to("own")

        def folder_link(name):
            shutil.rmtree(self.folder / "disc" / name)
            (self.folder / "disc" / name).symlink_to(self.folder / "own" / name)

        def file_in_place():
            shutil.rmtree(self.folder / "disc")
            self.write("disc", b"precious")

        for sin, part in [(lambda: plant("notes.txt"), "disc/notes.txt"), (lambda: plant("VIDEO_TS/VIDEO_TS.IFO"), "disc/VIDEO_TS"),
                          (lambda: plant("AUDIO_TS/ATS_02_0.IFO"), "ATS_02_0.IFO"), (lambda: plant(".hidden"), ".hidden"),
                          (others_disc, "disc/AUDIO_TS"), (whole_link, "a link"), (file_in_place, "no folder"),
                          (lambda: link("AUDIO_TS/ATS_01_1.AOB", good), "ATS_01_1.AOB"),
                          (lambda: folder_link("AUDIO_TS"), "disc/AUDIO_TS"), (lambda: folder_link("VIDEO_TS"), "disc/VIDEO_TS")]:
            with self.subTest(part=part):
                if (self.folder / "disc").is_dir() and not (self.folder / "disc").is_symlink():
                    shutil.rmtree(self.folder / "disc")
                else:
                    (self.folder / "disc").unlink()
                shutil.copytree(self.folder / "own", self.folder / "disc")
                sin()
                self.expect_kept(self.everything(), self.author(good), part)

    def test_writes_no_log_over_something_else(self):
        good = self.good()
        self.write("list.txt", b"precious")
        (self.folder / "link.txt").symlink_to(self.folder / "list.txt")
        (self.folder / "dangling.txt").symlink_to(self.folder / "nothing")
        log = self.write("twice.txt", b"dvda (Nurv Audio Workbench) 1.0.0\n")
        os.link(log, self.folder / "other name.txt")
        for name in ("list.txt", "link.txt", "dangling.txt", "twice.txt", "good.wav"):
            with self.subTest(name=name):
                before = self.everything()
                self.expect_kept(before, self.run_program("-l", name, "-o", "disc", "-g", good), "no log of this program")
        for name, part in [("/dev/full", "/dev/full"), ("nowhere/log.txt", "No such file")]:
            self.expect_kept(self.everything(), self.run_program("-l", name, "-o", "disc", "-g", good), part)
        # Its own it writes anew.
        for _ in range(2):
            self.assertEqual(self.author(good).returncode, 0)
            self.assertEqual((self.folder / "log.txt").read_text().count("Complete: 1 tracks"), 1)

    def test_needs_the_folder_above(self):
        self.assertIn(b"cannot write", self.run_program("-o", "no/disc", "-g", self.good()).stderr)
        self.assertEqual(self.names(), ["good.wav"])

    def test_names_give_a_terminal_no_orders(self):
        name = b"a\n\tb\x1b[2J\xe2\x80\xae\xff.wav"
        path = os.path.join(os.fsencode(self.folder), name)
        with open(path, "wb") as file:
            file.write(waves.wav(CD, bytes(400)))
        result = self.author(path)
        shown = "a\\x0A\\x09b\\x1B[2J\\u{202E}\\xFF.wav"
        self.assertEqual(result.stdout.decode(), f"[Nurv]  Processing 00 {self.folder}/{shown}\n")
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        with open(path, "wb") as file:
            file.write(b"nothing")
        result = self.run_program("-l", "log.txt", "-o", b"disc\x1b", "-g", path)
        self.assertEqual(result.returncode, 1)
        for text in (result.stderr, (self.folder / "log.txt").read_bytes()):
            self.assertNotIn(b"\x1b", text)
            self.assertIn(b"\\x1B[2J\\u{202E}\\xFF.wav", text)

    def test_names_behind_g_are_names(self):
        for name in ("-o", "-S", "-g"):
            self.write(name, waves.wav(CD, bytes(400)))
        self.assertEqual(self.author("-o", "-S", "-g").returncode, 0)
        self.assertEqual(len(audio_disc.read_folder(self.folder / "disc").tracks), 3)


class BadLuck(FailureTest):
    def test_a_full_disk(self):
        long = self.write("long.wav", waves.wav(CD, SECOND * 8))
        for most in (1000, 500_000):
            result = self.author(self.good(), long, preexec_fn=with_limit(resource.RLIMIT_FSIZE, most))
            self.expect_failure(result, "cannot write disc/AUDIO_TS", "File too large")
        # The former disc stays.
        self.assertEqual(self.author(self.good()).returncode, 0)
        before = {name: (self.folder / name).read_bytes() for name in self.names() if name.startswith("disc/AUDIO_TS/")}
        self.assertEqual(self.author(long, preexec_fn=with_limit(resource.RLIMIT_FSIZE, 500_000)).returncode, 1)
        self.assertEqual(before, {name: (self.folder / name).read_bytes() for name in before})

    def test_a_reader_that_went_away(self):
        reader, writer = os.pipe()
        os.close(reader)
        with os.fdopen(writer, "wb") as output:
            result = subprocess.run([self.program, "-o", "disc", "-g", self.good()], stdout=output, stderr=subprocess.PIPE,
                                    cwd=self.folder, check=False, timeout=60)
        self.assertEqual((result.returncode, result.stderr), (1, b""))
        self.assertEqual(self.names(), ["good.wav"])

    def test_a_file_that_changes_between_the_looks(self):
        """Read a second time, it is longer: the first line waits for its reader so long."""
        path = self.good()
        process, reader = self.start_with_little_room([str(path), str(path)], lines=1)
        with reader:
            self.good(frames=3001)
            os.set_blocking(reader.fileno(), True)
            reader.read()
            self.assertIn(b"it changed while it was read", process.stderr.read())
        process.stderr.close()
        self.assertEqual(process.wait(), 1)
        self.assertEqual(self.names(), ["good.wav"])

    def test_signals_leave_nothing(self):
        path = str(self.good(frames=200_000))
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP, signal.SIGQUIT, signal.SIGXCPU):
            process, reader = self.start_with_little_room([path, path], lines=1)
            with reader:
                process.send_signal(number)
                process.stderr.read()
                process.stderr.close()
                self.assertEqual(process.wait(), -number)
            self.assertEqual(self.names(), ["good.wav"])

    def start_with_little_room(self, inputs, lines):
        """Its output is a pipe that has room for so many lines only: the next one waits."""
        line = f"[Nurv]  Processing 00 {inputs[0]}\n".encode()
        reader, writer = os.pipe()
        room = fcntl.fcntl(writer, fcntl.F_SETPIPE_SZ, 4096)
        self.assertGreater(room, lines * len(line))
        os.write(writer, b"x" * (room - lines * len(line)))
        process = subprocess.Popen([self.program, "-o", "disc", "-g", *inputs], stdout=writer, stderr=subprocess.PIPE,
                                   cwd=self.folder)
        os.close(writer)
        limit = time.monotonic() + 60
        while struct.unpack("i", fcntl.ioctl(reader, 0x541B, bytes(4)))[0] != room:  # FIONREAD
            self.assertLess(time.monotonic(), limit)
            time.sleep(0.005)
        return process, os.fdopen(reader, "rb")


if __name__ == "__main__":
    run_tests(sys.argv, unittest.main)

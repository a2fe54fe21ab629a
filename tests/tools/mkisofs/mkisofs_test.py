#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Images of DVD-Audio folders, read by other programs, and what goes wrong while they are made.

usage: mkisofs_test.py MKISOFS DVDA
"""

import os
import pathlib
import resource
import shutil
import signal
import struct
import subprocess
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "dvda"))

import audio_disc
import waves
from running import ProgramTest, ended, run_tests, with_limit

SECTOR = 2048
DVDA = ""
# Order of the files on a disc.
ORDER = ["AUDIO_PP.IFO", "AUDIO_TS.IFO", "AUDIO_TS.BUP", "ATS_01_0.IFO", *[f"ATS_01_{i}.AOB" for i in range(1, 10)],
         "ATS_01_0.BUP"]
ARCHIVER = shutil.which("7zz") or shutil.which("7z")


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


class ImageTest(ProgramTest):
    def author(self, count=2, shape=waves.Shape(), frames=3000, name="disc"):
        inputs = [self.write(f"sound/{i}.wav", waves.wav(shape, waves.samples(shape, frames + i, i))) for i in range(count)]
        subprocess.run([DVDA, "-o", self.folder / name, "-g", *inputs], check=True, stdout=subprocess.DEVNULL)
        shutil.rmtree(self.folder / "sound")
        return self.folder / name

    def files_of(self, disc):
        return {path.name: path.read_bytes() for path in (disc / "AUDIO_TS").iterdir()}

    def make(self, image="image.iso", folder="disc", **options):
        return self.run_program("-o", image, "-dvd-audio", folder, **options)

    def fake(self, script):
        """An environment in which this script is genisoimage; it may start the real one as $REAL."""
        path = self.write("bin/genisoimage", f"#!/bin/bash\nREAL={shutil.which('genisoimage')}\n{script}\n".encode())
        path.chmod(0o755)
        return os.environ | {"PATH": f"{path.parent}:{os.environ['PATH']}"}

    def places_of(self, image):
        """The first sector of each file in AUDIO_TS, by isoinfo."""
        places = {}
        folder = ""
        for line in output_of("isoinfo", "-l", "-i", image).splitlines():
            if line.startswith("Directory listing of "):
                folder = line.removeprefix("Directory listing of ")
            elif line.startswith("-") and folder == "/AUDIO_TS/":
                places[line.split("]")[1].strip().removesuffix(";1")] = int(line.split("[")[1].split()[0])
        return places

    def check_image(self, image, disc):
        """Each file where it must be, the same through both file systems, and the tracks where the image has them."""
        contents = image.read_bytes()
        files = self.files_of(disc)
        places = self.places_of(image)
        self.assertEqual(places.keys(), files.keys())
        at = places["AUDIO_PP.IFO"]
        found = {}
        for name in [name for name in ORDER if name in files]:
            self.assertEqual(places[name], at, name)
            found[name] = contents[at * SECTOR:at * SECTOR + len(files[name])]
            at += len(files[name]) // SECTOR
            if name != "AUDIO_PP.IFO":
                self.assertEqual(found[name], files[name], name)
        read = audio_disc.read(found, places["AUDIO_PP.IFO"])
        for copy in range(8):
            for i, track in enumerate(read.tracks):
                entry = found["AUDIO_PP.IFO"][copy * 16384 + 16 + 52 * i:]
                first, again, last = struct.unpack_from(">III", entry, 40)
                self.assertEqual((first, again), (places["ATS_01_1.AOB"] + track.first,) * 2)
                # Each track begins and ends with its own pack.
                self.assertEqual(contents[first * SECTOR:first * SECTOR + 4], b"\0\0\1\xba")
                self.assertEqual(last, places["ATS_01_1.AOB"] + track.last)
        for kind in ("udf", "iso"):
            out = self.folder / kind
            output_of(ARCHIVER, "x", f"-t{kind}", f"-o{out}", image)
            self.assertEqual(sorted(path.name for path in out.iterdir()), ["AUDIO_TS", "VIDEO_TS"])
            self.assertEqual(list((out / "VIDEO_TS").iterdir()), [])
            self.assertEqual(self.files_of(out), found)
            shutil.rmtree(out)
        self.assertEqual(image.stat().st_size % SECTOR, 0)
        return read


class Images(ImageTest):
    def test_hold_the_folder_in_its_order(self):
        for count, shape in ((1, waves.Shape()), (2, waves.Shape(96000, 24, 2)), (5, waves.Shape(channels=6)),
                             (99, waves.Shape(192000, 24, 1))):
            with self.subTest(tracks=count):
                disc = self.author(count, shape, name=f"disc{count}")
                before = self.files_of(disc)
                result = self.make(f"{count}.iso", disc.name)
                self.assertEqual((result.returncode, result.stdout, result.stderr), (0, b"", b""))
                read = self.check_image(self.folder / f"{count}.iso", disc)
                self.assertEqual(len(read.tracks), count)
                # The usual place is right without being put right.
                self.assertEqual((self.folder / f"{count}.iso").read_bytes().count(before["AUDIO_PP.IFO"]), 1)
                self.assertEqual(self.files_of(disc), before)

    def test_are_udf_1_02_and_closed(self):
        self.author()
        self.assertEqual(self.make().returncode, 0)
        facts = dict(line.split("=", 1) for line in output_of("udfinfo", self.folder / "image.iso").splitlines() if "=" in line)
        self.assertEqual((facts["udfrev"], facts["integrity"], facts["blocksize"]), ("1.02", "closed", "2048"))
        self.assertEqual(facts["label"], "DVDAUDIO")

    def test_of_several_aobs_get_the_right_sectors(self):
        disc = self.author(3, frames=9000)
        sound = (disc / "AUDIO_TS/ATS_01_1.AOB").read_bytes()
        for count in (2, 9):
            size = -(-len(sound) // SECTOR // count) * SECTOR
            pieces = [sound[at:at + size] for at in range(0, len(sound), size)]
            for i, piece in enumerate(pieces):
                (disc / f"AUDIO_TS/ATS_01_{i + 1}.AOB").write_bytes(piece)
            self.assertEqual(self.make(f"{count}.iso").returncode, 0)
            self.assertEqual(len(pieces), count)
            self.check_image(self.folder / f"{count}.iso", disc)

    def test_of_a_folder_without_video_have_an_empty_one(self):
        disc = self.author()
        (disc / "VIDEO_TS").rmdir()
        for parent in ("plain", "a=b, with blanks"):
            (self.folder / parent).mkdir()
            result = self.make(env=os.environ | {"TMPDIR": str(self.folder / parent)})
            self.assertEqual((result.returncode, result.stderr), (0, b""))
            self.check_image(self.folder / "image.iso", disc)
            self.assertEqual(list((self.folder / parent).iterdir()), [])
        self.assertEqual(os.listdir(disc), ["AUDIO_TS"])

    def test_of_any_name_take_the_place_of_former_ones(self):
        for name in ("a b=c.iso", "-x.iso", "n\new\x1b.iso"):
            disc = self.author(name="d \n=" + name)
            self.write(name, b"former")
            self.assertEqual(self.run_program("-dvd-audio", "-o", name, "--", disc).returncode, 0)
            self.check_image(self.folder / name, disc)
            shutil.rmtree(disc)
            (self.folder / name).unlink()

    def test_take_no_settings_from_a_home_folder(self):
        self.author()
        for name in (".mkisofsrc", ".genisoimagerc"):
            (self.folder / name).write_text("PUBL=STRANGER\n")
        settings = str(self.folder / ".mkisofsrc")
        for variables in ({"HOME": str(self.folder)}, {"GENISOIMAGERC": settings}, {"MKISOFSRC": settings}):
            self.assertEqual(self.make(env=os.environ | variables).returncode, 0)
            facts = output_of("isoinfo", "-d", "-i", self.folder / "image.iso")
            self.assertIn("Volume id: DVDAUDIO\n", facts)
            self.assertNotIn("STRANGER", facts)

    def test_tell_the_progress_of_the_real_program(self):
        self.author(1, waves.Shape(192000, 24, 2), 192000 * 20)
        writes, status = self.writes_of(["-o", "image.iso", "-dvd-audio", "disc"])
        self.assertEqual(status, 0)
        self.assertGreater(len(writes), 1)
        figures = [float(text[:6]) for text in writes]
        for text in writes:
            self.assertRegex(text.decode(), r"\A[ \d]{3}\.\d\d% done, estimate finish .*\n\Z")
        self.assertEqual(figures, sorted(figures))


class Progress(ImageTest):
    def test_is_one_write_a_line_and_nothing_else_is_told(self):
        self.author()
        env = self.fake("""printf 'Warning: something\\n  0.79%% done, estimate' >&2
printf ' finish Mon\\n 10.53%% done, estimate finish Mon\\nno 3%% done, here\\n100.00%% done, estimate finish Mon\\n' >&2
head -c 300000 /dev/zero | tr '\\0' x >&2
exec $REAL "$@" """)
        writes, status = self.writes_of(["-o", "image.iso", "-dvd-audio", "disc"], env=env)
        self.assertEqual(status, 0)
        self.assertEqual(writes, [b"  0.79% done, estimate finish Mon\n", b" 10.53% done, estimate finish Mon\n",
                                  b"100.00% done, estimate finish Mon\n"])


class Failures(ImageTest):
    def expect_failure(self, result, status, *parts):
        self.assertEqual((result.returncode, result.stdout), (status, b""))
        text = result.stderr.decode()
        for part in parts:
            self.assertIn(part, text)
        self.assertEqual([name for name in self.names() if name.endswith((".iso", ".part")) or ".nurv" in name], [])

    def test_of_the_other_program_are_its_text_and_status(self):
        self.author()
        self.expect_failure(self.make(env=self.fake("echo 'no \x1b[2J luck' >&2; exit 7")), 7, "status 7", "no \\x1B[2J luck")
        self.expect_failure(self.make(env=self.fake("kill -KILL $$")), 137, "status 137")
        self.expect_failure(self.make(env=self.fake("$REAL \"$@\"; exit 3")), 3, "status 3", "extents written")

    def test_tell_what_has_to_be_installed(self):
        self.author()
        (self.folder / "empty").mkdir()
        self.expect_failure(self.make(env=os.environ | {"PATH": str(self.folder / "empty")}), 1, "genisoimage is not installed")

    def test_images_that_are_not_what_they_must_be(self):
        self.author(3)
        sound = (self.folder / "disc/AUDIO_TS/ATS_01_1.AOB").read_bytes()
        for script, part in [
                ("true", "no ISO 9660"), ("head -c 100000 /dev/zero", "no ISO 9660"),
                ("$REAL \"$@\" | head -c 700000", "ends too early"),
                ("$REAL \"$@\" | head -c -2048", "ends too early"),
                ("$REAL -input-charset utf-8 -udf -V X .", "does not follow"),
                ("args=(\"$@\"); unset 'args[2]'; $REAL \"${args[@]}\"", "no UDF"),
                ("mkdir ../more; cp -r . ../more; touch ../more/x; cd ../more; $REAL \"$@\"; rm -r ../more", "something else"),
                ("cp -r . ../more; touch ../more/AUDIO_TS/x; cd ../more; $REAL \"$@\"; rm -r ../more", "something else"),
                ("cp -r . ../more; cd ../more; touch VIDEO_TS/x; $REAL \"$@\"; rm -r ../more", "something else"),
                ("cp -r . ../more; cd ../more; rm AUDIO_TS/ATS_01_1.AOB; $REAL \"$@\"; rm -r ../more", "something else"),
                ("cp -r . ../more; cd ../more; truncate -s -2048 AUDIO_TS/ATS_01_1.AOB; $REAL \"$@\"; rm -r ../more",
                 "another size"),
                (f"cp -r . ../more; cd ../more; printf x | dd of=AUDIO_TS/ATS_01_1.AOB bs=1 seek={len(sound) - 1} conv=notrunc "
                 "status=none; $REAL \"$@\"; rm -r ../more", "ATS_01_1.AOB is not what the folder holds")]:
            with self.subTest(script=script):
                self.expect_failure(self.make(env=self.fake(script)), 1, "the image that was made", part)

    def test_of_a_full_disk(self):
        self.author()
        result = self.make(preexec_fn=with_limit(resource.RLIMIT_FSIZE, 400_000))
        self.assertNotEqual(result.returncode, 0)
        self.assertIn(b"genisoimage failed", result.stderr)
        self.write("image.iso", b"former")
        self.assertNotEqual(self.make(preexec_fn=with_limit(resource.RLIMIT_FSIZE, 400_000)).returncode, 0)
        self.assertEqual((self.folder / "image.iso").read_bytes(), b"former")
        self.assertEqual(sorted(os.listdir(self.folder)), ["disc", "image.iso"])

    def test_signals_end_both_programs_and_leave_nothing(self):
        self.author()
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP, signal.SIGQUIT, signal.SIGXCPU, signal.SIGKILL):
            env = self.fake(f"echo x; echo $$ > '{self.folder}/id.new'; mv '{self.folder}/id.new' '{self.folder}/id'; exec sleep 300")
            process = subprocess.Popen([self.program, "-o", "image.iso", "-dvd-audio", "disc"], cwd=self.folder, env=env)
            self.wait_for(lambda: (self.folder / "id").exists())
            other = int((self.folder / "id").read_text())
            self.assertFalse(ended(other))
            process.send_signal(number)
            self.assertEqual(process.wait(), -number)
            self.wait_for(lambda: ended(other))
            (self.folder / "id").unlink()
            self.assertEqual(sorted(os.listdir(self.folder)), ["bin", "disc"])

    def wait_for(self, condition):
        limit = time.monotonic() + 60
        while not condition():
            self.assertLess(time.monotonic(), limit)
            time.sleep(0.005)

    def test_a_reader_that_went_away(self):
        self.author()
        env = self.fake("for i in 1 2 3; do echo ' 10.53% done, estimate finish Mon' >&2; done; exec sleep 300")
        reader, writer = os.pipe()
        os.close(reader)
        with os.fdopen(writer, "wb") as errors:
            process = subprocess.run([self.program, "-o", "image.iso", "-dvd-audio", "disc"], stderr=errors, env=env,
                                     cwd=self.folder, check=False, timeout=60)
        self.assertEqual(process.returncode, 1)
        self.assertEqual(sorted(os.listdir(self.folder)), ["bin", "disc"])


class Refusals(ImageTest):
    def test_folders_that_are_no_disc(self):
        own = self.author(name="own")

        def plant(name, contents=bytes(2048)):
            self.write("disc/" + name, contents)

        def change(name, at, contents):
            for copy in (name, name.replace(".IFO", ".BUP")) if name != "AUDIO_TS/AUDIO_PP.IFO" else (name,):
                file = bytearray((self.folder / "disc" / copy).read_bytes())
                file[at:at + len(contents)] = contents
                (self.folder / "disc" / copy).write_bytes(file)

        def link(name):
            (self.folder / "disc" / name).unlink()
            (self.folder / "disc" / name).symlink_to(own / name)

        def folder_link(name):
            shutil.rmtree(self.folder / "disc" / name)
            (self.folder / "disc" / name).symlink_to(own / name)

        title_set, manager, simple = "AUDIO_TS/ATS_01_0.IFO", "AUDIO_TS/AUDIO_TS.IFO", "AUDIO_TS/AUDIO_PP.IFO"
        record = 2048 + 16
        for sin, part in [
                (lambda: shutil.rmtree(self.folder / "disc/AUDIO_TS"), "AUDIO_TS: it is missing"),
                (lambda: plant("notes.txt"), "notes.txt"), (lambda: plant(".mkisofsrc"), ".mkisofsrc"),
                (lambda: plant("VIDEO_TS/VIDEO_TS.IFO"), "not empty"), (lambda: plant("AUDIO_TS/ATS_02_0.IFO"), "ATS_02_0.IFO"),
                (lambda: plant("AUDIO_TS/ATS_01_3.AOB"), "missing between"), (lambda: plant(manager, b"x" * 100), "whole number"),
                (lambda: plant("AUDIO_TS/ATS_01_1.AOB", b""), "whole number"),
                (lambda: (self.folder / "disc/AUDIO_TS/ATS_01_1.AOB").unlink(), "ATS_01_1.AOB: it is missing"),
                (lambda: (self.folder / "disc/AUDIO_TS/AUDIO_TS.BUP").unlink(), "AUDIO_TS.BUP: it is missing"),
                (lambda: plant("AUDIO_TS/AUDIO_TS.BUP", bytes(6144)), "no copy of AUDIO_TS.IFO"),
                (lambda: plant("AUDIO_TS/ATS_01_0.BUP", bytes(4096)), "no copy of ATS_01_0.IFO"),
                (lambda: link("AUDIO_TS/ATS_01_1.AOB"), "no regular file"), (lambda: folder_link("AUDIO_TS"), "AUDIO_TS"),
                (lambda: folder_link("VIDEO_TS"), "VIDEO_TS"), (lambda: change(title_set, 0, b"X"), "no table of titles"),
                (lambda: change(simple, 0, b"X"), "no table of tracks"), (lambda: plant(simple, bytes(2048)), "no table of tracks"),
                (lambda: change(simple, 12, b"\0\3"), "other tracks"), (lambda: change(title_set, 2048, b"\0\0"), "contradicts"),
                (lambda: change(title_set, 2048 + 12, b"\x7f\xff\xff\xff"), "contradicts"),
                (lambda: change(title_set, record + 2, b"\xff"), "contradicts"),
                (lambda: change(title_set, record + 12, b"\xff\xff"), "contradicts"),
                (lambda: change(title_set, record + 16 + 4, b"\0"), "contradicts"),
                (lambda: change(title_set, record + 16 + 40 + 12 + 8, b"\0\xff\xff\xff"), "contradicts"),
                (lambda: plant("AUDIO_TS/ATS_01_1.AOB", bytes(2048)), "contradicts")]:
            shutil.rmtree(self.folder / "disc", ignore_errors=True)
            shutil.copytree(own, self.folder / "disc")
            sin()
            with self.subTest(part=part):
                result = self.make()
                self.assertEqual((result.returncode, result.stdout), (1, b""), result)
                self.assertIn(part, result.stderr.decode())
                self.assertTrue(result.stderr.startswith(b"mkisofs: "))
                self.assertEqual(sorted(os.listdir(self.folder)), ["disc", "own"])

    def test_images_that_cannot_be_written(self):
        disc = self.author()
        self.write("target.iso", b"precious")
        (self.folder / "link.iso").symlink_to("target.iso")
        (self.folder / "dangling.iso").symlink_to("nothing.iso")
        (self.folder / "folder.iso").mkdir()
        (self.folder / "in").symlink_to(disc)
        before = self.names()
        for image, part in [("link.iso", "no regular file"), ("dangling.iso", "no regular file"), ("folder.iso", "no regular file"),
                            ("/dev/null", "no regular file"), ("no/image.iso", "No such file"), ("disc/image.iso", "cannot lie in"),
                            ("disc/AUDIO_TS/image.iso", "cannot lie in"), ("in/image.iso", "cannot lie in")]:
            with self.subTest(image=image):
                result = self.make(image)
                self.assertEqual((result.returncode, result.stdout), (1, b""))
                self.assertIn(part, result.stderr.decode())
                self.assertEqual(self.names(), before)
        self.assertEqual((self.folder / "target.iso").read_bytes(), b"precious")

    def test_wrong_arguments(self):
        self.author()
        for arguments, part in [([], "-dvd-audio is missing"), (["-o", "a.iso", "disc"], "-dvd-audio is missing"),
                                (["-dvd-audio", "disc"], "no image"), (["-dvd-audio", "-o", "a.iso"], "no folder"),
                                (["-dvd-audio", "-o"], "needs the name"), (["-dvd-audio", "-o", "", "disc"], "needs the name"),
                                (["-dvd-audio", "-o", "a.iso", "-o", "b.iso", "disc"], "given twice"),
                                (["-dvd-audio", "-o", "a.iso", "disc", "disc"], "more than one folder"),
                                (["-dvd-video", "-o", "a.iso", "disc"], "unknown option '-dvd-video'"),
                                (["-dvd-audio", "-o", "a.iso", "-J", "disc"], "unknown option '-J'"),
                                (["-dvd-audio", "-o", "a.iso", ""], "empty")]:
            with self.subTest(arguments=arguments):
                result = self.run_program(*arguments)
                self.assertEqual((result.returncode, result.stdout), (1, b""))
                self.assertIn(part, result.stderr.decode())
                self.assertIn("Try 'mkisofs --help'", result.stderr.decode())
                self.assertEqual(os.listdir(self.folder), ["disc"])

    def test_tells_its_version_as_the_original_does(self):
        for option in ("-version", "--version"):
            self.assertRegex(self.run_program(option).stdout.decode(), r"\Amkisofs \(Nurv Audio Workbench\) \d+\.\d+\.\d+\n\Z")


if __name__ == "__main__":
    DVDA = os.path.abspath(sys.argv.pop(2))
    if ARCHIVER is None:
        sys.exit("7zz or 7z is needed")
    run_tests(sys.argv, unittest.main)

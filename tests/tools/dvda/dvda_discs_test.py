#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Discs of every format and of awkward lengths, read back sample by sample.

usage: dvda_discs_test.py DVDA
"""

import random
import resource
import shutil
import sys
import unittest

import audio_disc
import waves
from running import ProgramTest, is_sanitized, run_tests, with_limit

# Sample frames in the first pack of a title, and in others.
PACKS = {(16, 1): (992, 1000), (16, 2): (496, 500), (16, 6): (164, 166), (24, 1): (660, 668), (24, 2): (330, 334),
         (24, 6): (110, 110)}


def awkward_lengths(shape, count):
    """Around the ends of units, access units and packs, and some at random."""
    first, other = PACKS[shape.bits, shape.channels]
    edges = [first, 1, first + 1, first - 1, 2, first + other, first + other - 1, 3, other, other + 1, other - 1, 39, 40, 41,
             79, 81, 159, 161, 2 * other + 1, 5 * other, 40 * other + 7]
    number = random.Random(repr(shape))
    return (edges + [number.randrange(1, 3 * other) for _ in range(99)])[:count]


class Discs(ProgramTest):
    def author(self, inputs, *options, **run):
        shutil.rmtree(self.folder / "disc", ignore_errors=True)
        result = self.run_program(*options, "-P0", "-S", "-f", "-o", "disc", "-g", *inputs, **run)
        self.assertEqual((result.returncode, result.stderr), (0, b""), result)
        lines = b"".join(b"[Nurv]  Processing %02d %s\n" % (i, str(name).encode()) for i, name in enumerate(inputs))
        self.assertEqual(result.stdout, lines)
        return audio_disc.read_folder(self.folder / "disc")

    def expect(self, disc, shape, sounds):
        self.assertEqual((disc.rate, disc.bits, disc.channels), (shape.rate, shape.bits, shape.channels))
        self.assertEqual(len(disc.tracks), len(sounds))
        for track, pcm in zip(disc.tracks, sounds):
            audio_disc.check_track(disc, track, pcm)

    def test_every_format_with_1_2_5_and_99_tracks_holds_each_sample(self):
        shapes = waves.legal_shapes()
        self.assertEqual(len(shapes), 30)
        for shape in shapes:
            for count in (1, 2, 5, 99):
                with self.subTest(shape=shape, tracks=count):
                    lengths = awkward_lengths(shape, count) if count > 1 else [20 * PACKS[shape.bits, shape.channels][1] + 1]
                    sounds = [waves.samples(shape, frames, i) for i, frames in enumerate(lengths)]
                    inputs = [self.write(f"{i}.wav", waves.wav(shape, pcm, extensible=i % 2 == 1))
                              for i, pcm in enumerate(sounds)]
                    self.expect(self.author(inputs), shape, sounds)

    def test_flac_of_every_kind_and_any_name(self):
        for number, shape in enumerate([waves.Shape(), waves.Shape(192000, 24, 2), waves.Shape(96000, 16, 6),
                                        waves.Shape(48000, 24, 6), waves.Shape(88200, 24, 1)]):
            sounds = [waves.samples(shape, 4097, number), waves.samples(shape, 9999, number + 1)]
            by_name = waves.flac(self.folder / f"{number}.FLaC", shape, sounds[0])
            by_magic = waves.flac(self.folder / f"{number}.wav", shape, sounds[1])
            self.expect(self.author([by_name, by_magic]), shape, sounds)
        # A tag of another program in front, and a length that is not told.
        plain = by_name.read_bytes()
        untold = bytearray(plain)
        untold[21] &= 0xF0
        untold[22:26] = bytes(4)
        tagged = self.write("tagged.flac", b"ID3\x04\0\0\0\0\0\x0a" + bytes(10) + plain)
        self.expect(self.author([tagged, self.write("untold.flac", untold)]), shape, [sounds[0], sounds[0]])

    def test_wav_of_every_kind(self):
        shape = waves.Shape(96000, 24, 2)
        pcm = waves.samples(shape, 3001)
        odd = waves.chunk(b"LIST", b"INFO1") + waves.chunk(b"bext", bytes(603))
        kinds = [waves.rf64(shape, pcm), waves.wav(shape, pcm, extensible=True, before=odd, after=odd),
                 waves.wav(shape, pcm, size=0xFFFFFFFF), waves.wav(shape, pcm, size=0x7FFFF000),
                 waves.wav(shape, pcm)[:4] + bytes(4) + waves.wav(shape, pcm, size=0)[8:],
                 waves.wav(shape, pcm, size=0xFFFFFFFF) + b"abc"[:2],
                 b"ID3\x04\0\0\0\0\0\x0a" + bytes(10) + waves.wav(shape, pcm)]
        for number, contents in enumerate(kinds):
            with self.subTest(kind=number):
                self.expect(self.author([self.write("in.wav", contents)]), shape, [pcm])

    def test_packs_are_those_of_published_discs(self):
        self.author([self.write("in.wav", waves.wav(waves.Shape(), bytes(4 * 4500)))])
        aob = (self.folder / "disc/AUDIO_TS/ATS_01_1.AOB").read_bytes()
        self.assertEqual(aob[:61].hex(" ").upper(),
                         "00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8 00 00 01 BB 00 0C 80 C4 E1 04 A0 7F B8 C0 40 BD E0 0A "
                         "00 00 01 BD 07 DA 81 81 08 21 00 01 04 93 1E 60 0A A0 00 00 0B 00 0A 10 0F 8F 00 01 80")
        self.assertEqual(aob[2048 + 14:2048 + 48].hex(" ").upper(),
                         "00 00 01 BD 07 EC 81 80 05 21 00 01 0C DD A0 01 00 10 00 6F 10 0F 8F 00 01 80 00 00 00 00 00 00 00 00")
        packs = audio_disc.read_folder(self.folder / "disc").packs
        self.assertEqual([pack.scr for pack in packs[:9]],
                         [0, 43885, 87771, 131657, 479173, 785295, 1091418, 1397540, 1703663])
        self.assertEqual([pack.pts for pack in packs[:8]], [585, 1646, 2625, 3687, 4666, 5727, 6707, 7768])
        self.author([self.write("in.wav", waves.wav(waves.Shape(96000, 24, 2), bytes(6 * 700)))])
        aob = (self.folder / "disc/AUDIO_TS/ATS_01_1.AOB").read_bytes()
        self.assertEqual(aob[49:61].hex(), "a000000f000e102f1f000180")
        self.assertEqual(aob[2048 + 28:2048 + 40].hex(), "a001000c01af102f1f000180")

    def test_samples_lie_in_units_of_two_frames(self):
        def first_bytes(shape, pcm, start):
            self.author([self.write("in.wav", waves.wav(shape, pcm))])
            return (self.folder / "disc/AUDIO_TS/ATS_01_1.AOB").read_bytes()[start:start + len(pcm)].hex()
        stereo = bytes.fromhex("030201 131211 232221 333231")
        # A short pack of a title's first kind: H is what its length leaves.
        self.assertEqual(first_bytes(waves.Shape(96000, 24, 2), stereo, 49 + 4 + 10), "01021112212231320313" + "2333")
        mono = bytes.fromhex("ccbbaa ffeedd")
        self.assertEqual(first_bytes(waves.Shape(48000, 24, 1), mono, 49 + 4 + 10), "aabbddeeccff")
        # L R C LFE Ls Rs, twice: centre and LFE come first.
        six = bytes(range(0, 24))
        self.assertEqual(first_bytes(waves.Shape(48000, 16, 6), six, 49 + 4 + 10),
                         "05040706" + "11101312" + "0100030209080b0a" + "0d0c0f0e15141716")

    def test_tells_each_beginning_with_one_write_and_all_else_in_the_log(self):
        inputs = [str(self.write(f"{i}.wav", waves.wav(waves.Shape(), waves.samples(waves.Shape(), 100 + i))))
                  for i in range(3)]
        writes, status = self.writes_of(["-l", "log.txt", "-P0", "-S", "-f", "-o", "disc", "-g", *inputs])
        self.assertEqual(status, 0)
        self.assertEqual(writes, [f"[Nurv]  Processing {i:02} {name}\n".encode() for i, name in enumerate(inputs)])
        log = (self.folder / "log.txt").read_text()
        for part in [*inputs, "44100 Hz, 16 bits, 2 channels, 102 samples", "Complete: 3 tracks"]:
            self.assertIn(part, log)

    def test_needs_no_more_memory_for_long_files(self):
        if is_sanitized(self.program):
            self.skipTest("sanitizers take memory of their own")
        shape = waves.Shape(192000, 24, 2)
        head = waves.wav(shape, b"", size=60 * 192000 * 6)
        path = self.write("long.wav", head)
        with open(path, "r+b") as file:
            file.truncate(len(head) + 60 * 192000 * 6)
        result = self.run_program("-o", "disc", "-g", "long.wav", preexec_fn=with_limit(resource.RLIMIT_AS, 64 << 20))
        self.assertEqual(result.returncode, 0, result.stderr)


if __name__ == "__main__":
    run_tests(sys.argv, unittest.main)

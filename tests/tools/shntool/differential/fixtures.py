# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""The input files of the cases: `cd2.wav` is written here, `cd2.flac` is made of it by the real program."""

import pathlib
import struct
import subprocess
import threading

from waves import SECTOR, aiff, extensible_tail, noise, rf64, wav

ID3 = b"ID3\x03\0\0\0\0\0\x14" + b"TIT2\0\0\0\x0a\0\0\0Some name"
LIST = (b"LIST", b"INFOISFT\x06\0\0\0Maker\0")


def silent(front, sound, back):
    """A sound between stretches of silence, in frames of 16-bit stereo."""
    return bytes(front * 4) + noise(sound * 4, seed=7).replace(b"\0", b"\1") + bytes(back * 4)


def sectors(count, rest=0, seed=1):
    return noise(count * SECTOR + rest, seed=seed)


SHORT = sectors(10)

BLOCKS = (4, 4092, 4096, 4100, 8192, 65536, 262100, 262140, 262144, 262148, 524288, 529200, 529204, 700000)

# By name, the bytes of each WAV file.
WAVES = {
    # Compact-disc quality.
    "cd1": lambda: wav(sectors(30, seed=11)),
    "cd2": lambda: wav(sectors(40, seed=12)),
    "cd3": lambda: wav(sectors(20, seed=13)),
    "burnable": lambda: wav(sectors(310, seed=14)),
    "fourseconds": lambda: wav(sectors(300, seed=15)),
    "minute": lambda: wav(bytes(SECTOR * 75 * 61)),
    "hour": lambda: wav(b"", data_size=SECTOR * 75 * 3661, riff_size=SECTOR * 75 * 3661 + 36),
    "off1": lambda: wav(sectors(30, 400, seed=21)),
    "off2": lambda: wav(sectors(25, 2000, seed=22)),
    "off3": lambda: wav(sectors(12, 1180, seed=23)),
    "onesector": lambda: wav(sectors(1, seed=24)),
    "undersector": lambda: wav(noise(1000, seed=25)),
    "oneframe": lambda: wav(b"\1\0\2\0"),
    "nothing": lambda: wav(b""),
    "quiet": lambda: wav(bytes(SECTOR * 6)),
    "framed": lambda: wav(silent(1000, 6000, 2000)),
    "late": lambda: wav(silent(1234, 5000, 0)),
    "early": lambda: wav(silent(0, 5000, 777)),
    "full": lambda: wav(silent(0, 5000, 0)),
    # Shifted, changed and cut copies of one sound.
    "shifted": lambda: wav(bytes(400) + sectors(30, seed=11)[:-400]),
    "shiftedback": lambda: wav(sectors(30, seed=11)[1200:] + bytes(1200)),
    "changed": lambda: wav(altered(sectors(30, seed=11), 1000, 1001, 50000)),
    "shiftedchanged": lambda: wav(bytes(400) + altered(sectors(30, seed=11), 5000)[:-400]),
    "shorter": lambda: wav(sectors(30, seed=11)[:-SECTOR]),
    # Sizes around those of the blocks in which it reads.
    **{f"size{size}": lambda size=size: wav(noise(size, seed=size)) for size in BLOCKS},
    # Other qualities.
    "mono8": lambda: wav(noise(22051, 8), 22050, 1, 8),
    "mono16": lambda: wav(noise(8000 * 2, 16), 8000, 1, 16),
    "stereo8": lambda: wav(noise(44100, 8), 44100, 2, 8),
    "dat": lambda: wav(noise(48000, 16, seed=31), 48000, 2, 16),
    "dat2": lambda: wav(noise(48002, 16, seed=32), 48000, 2, 16),
    "studio24": lambda: wav(noise(48000 * 6 // 4, 24), 48000, 2, 24),
    "studio96": lambda: wav(noise(96000 * 6 // 8, 24), 96000, 2, 24),
    "cd24": lambda: wav(noise(44100 * 6 // 4, 24), 44100, 2, 24),
    "wide32": lambda: wav(noise(44100 * 8 // 8, 32), 44100, 2, 32),
    "six": lambda: wav(noise(48000 * 12 // 8, 16), 48000, 6, 16),
    "mono44": lambda: wav(noise(44100, 16), 44100, 1, 16),
    # Headers that say more, or something else.
    "listafter": lambda: wav(SHORT, after=[LIST]),
    "listbefore": lambda: wav(SHORT, before=[LIST]),
    "evenbefore": lambda: wav(SHORT, before=[(b"note", b"even")]),
    "oddafter": lambda: wav(SHORT, after=[(b"note", b"odd")]),
    "manychunks": lambda: wav(SHORT, before=[LIST, (b"fact", b"\0\0\0\0")], after=[LIST, (b"note", b"four")]),
    "longfmt": lambda: wav(SHORT, fmt_tail=b"\0\0"),
    "longfmt24": lambda: wav(SHORT, fmt_tail=bytes(24)),
    "longfmt24bits": lambda: wav(noise(30000, 24), 48000, 2, 24, fmt_tail=bytes(24)),
    "floats": lambda: wav(SHORT, 44100, 2, 32, tag=3),
    "adpcm": lambda: wav(SHORT, tag=2),
    "mulaw": lambda: wav(SHORT, 8000, 1, 8, tag=7),
    "strangetag": lambda: wav(SHORT, tag=0x1234),
    "junk": lambda: wav(SHORT) + b"JUNKJUNK1",
    "id3behind": lambda: wav(SHORT) + b"TAG" + bytes(125),
    "id3": lambda: ID3 + wav(SHORT),
    "truncated": lambda: wav(SHORT)[:-1001],
    "truncatedlist": lambda: wav(SHORT, after=[LIST])[:-5],
    "headeronly": lambda: wav(SHORT)[:44],
    "halfheader": lambda: wav(SHORT)[:30],
    "nodata": lambda: wav(SHORT)[:36],
    "zerodata": lambda: wav(SHORT, data_size=0),
    "zeroboth": lambda: wav(SHORT, data_size=0, riff_size=0),
    "onesdata": lambda: wav(SHORT, data_size=0xffffffff),
    "onesboth": lambda: wav(SHORT, data_size=0xffffffff, riff_size=0xffffffff),
    "longriff": lambda: wav(SHORT, riff_size=len(SHORT) + 136),
    "shortriff": lambda: wav(SHORT, riff_size=len(SHORT)),
    "longdata": lambda: wav(SHORT, data_size=len(SHORT) + 1000),
    "shortdata": lambda: wav(SHORT, data_size=len(SHORT) - 1000),
    "odd": lambda: wav(SHORT[:-1]),
    "oddunpadded": lambda: wav(SHORT[:-1], padded=False),
    "oddmono": lambda: wav(noise(10001, 8), 11025, 1, 8),
    "oddmonounpadded": lambda: wav(noise(10001, 8), 11025, 1, 8, padded=False),
    "oddlist": lambda: wav(noise(10001, 8), 11025, 1, 8, after=[LIST]),
    "oddunpaddedlist": lambda: wav(noise(10001, 8), 11025, 1, 8, after=[LIST], padded=False),
    "wrongaverage": lambda: wav(SHORT, average=123456),
    "wrongblock": lambda: wav(SHORT, block=3),
    "zerorate": lambda: wav(SHORT, rate=0),
    "zerochannels": lambda: wav(SHORT, channels=0, block=4),
    "zerobits": lambda: wav(SHORT, bits=0, block=4),
    "zeroblock": lambda: wav(SHORT, block=0, average=0),
    "hugerate": lambda: wav(SHORT, rate=0xfffffff0, average=0xffffffff),
    "shortfmt": lambda: wav(SHORT, fmt_size=14),
    "hugefmt": lambda: wav(SHORT, fmt_size=0x7fffffff),
    "rifx": lambda: wav(SHORT, head=b"RIFX"),
    "notwave": lambda: wav(SHORT, kind=b"WAVX"),
}

# What programs of today write, and the reference refuses.
TODAYS_WAVES = {
    "extensible": lambda: wav(SHORT, tag=0xfffe, fmt_tail=extensible_tail(16)),
    "extensible24": lambda: wav(noise(30000, 24), 48000, 2, 24, tag=0xfffe, fmt_tail=extensible_tail(24)),
    "rf64": lambda: rf64(SHORT),
    "oddbefore": lambda: wav(SHORT, before=[(b"note", b"odd")]),
}
ALL_WAVES = {**WAVES, **TODAYS_WAVES}

# Those that are no sound, or AIFF as our own hand writes it.
OTHERS = {
    "empty": lambda: b"",
    "text": lambda: b"Not a sound, but some words.\n",
    "riff": lambda: b"RIFF",
    "id3only": lambda: ID3,
    "brokenflac": lambda: b"fLaC" + bytes(100),
    "brokenshn": lambda: b"ajkg\2" + bytes(100),
    "brokenape": lambda: b"MAC " + bytes(100),
    "brokentta": lambda: b"TTA1" + bytes(100),
    "brokenwv": lambda: b"wvpk" + bytes(100),
    "plain.aiff": lambda: aiff(SHORT),
    "sowt.aifc": lambda: aiff(SHORT, b"AIFC", b"sowt\0\0"),
    "ima4.aifc": lambda: aiff(SHORT, b"AIFC", b"ima4\0\0"),
    "fewer.aiff": lambda: aiff(SHORT, frames=1000),
    "more.aiff": lambda: aiff(SHORT, frames=10000),
    "none.aiff": lambda: aiff(b""),
    "short.aiff": lambda: aiff(SHORT)[:30],
    "brokenaiff": lambda: b"FORM\0\0\0\x64AIFF" + bytes(100),
}

# How each program makes a file of `{wav}`.
ENCODERS = {
    "flac": ["flac", "-s", "-o", "{output}", "{wav}"],
    "shn": ["shorten", "{wav}", "{output}"],
    "ape": ["mac", "{wav}", "{output}", "-c2000"],
    "tta": ["ttaenc", "-e", "-o", "{output}", "{wav}"],
    "wv": ["wavpack", "-q", "-y", "{wav}", "-o", "{output}"],
    "aiff": ["sox", "-D", "-t", "wav", "{wav}", "-t", "aiff", "{output}"],
    "aifc": ["sox", "-D", "-t", "wav", "{wav}", "-t", "aifc", "{output}"],
    "m4a": ["ffmpeg", "-v", "error", "-bitexact", "-i", "{wav}", "-c:a", "alac", "{output}"],
}

# Further files, made by altering the bytes of others.
DERIVED = {
    "noseek.shn": ("cd1.shn", lambda data: data[:data.rindex(b"SEEK")] if b"SEEK" in data else data),
    "id3.flac": ("cd1.flac", lambda data: ID3 + data),
    "id3.shn": ("cd1.shn", lambda data: ID3 + data),
    "cut.flac": ("cd1.flac", lambda data: data[:len(data) // 2]),
    "cut.shn": ("cd1.shn", lambda data: data[:len(data) // 2]),
    "cut.ape": ("cd1.ape", lambda data: data[:len(data) // 2]),
    "cut.tta": ("cd1.tta", lambda data: data[:len(data) // 2]),
    "cut.aiff": ("cd1.aiff", lambda data: data[:len(data) // 2]),
    "junk.flac": ("cd1.flac", lambda data: data + b"some junk"),
    "stub.flac": ("cd1.flac", lambda data: data[:60]),
}


# Encoders along PATH that fail after all of the sound.
HELPERS = {
    "readsall": b"#!/bin/sh\ncat > /dev/null\nexit 3\n",
    "writes": b"#!/bin/sh\ncat > \"$1\"\nexit 3\n",
    "signals": b"#!/bin/sh\ncat > \"$1\"\nkill -9 $$\n",
}


def write_helpers(folder):
    """To be done before any thread starts a program: it would inherit the open file, which then cannot be run."""
    for name, script in HELPERS.items():
        path = pathlib.Path(folder) / name
        path.write_bytes(script)
        path.chmod(0o755)


def is_fixture(name):
    stem, _, ending = name.rpartition(".") if isinstance(name, str) else ("", "", "")
    return name in OTHERS or name in DERIVED or (stem in ALL_WAVES and (ending in ENCODERS or ending in ("wav", "wv4")))


def altered(data, *places):
    """The bytes at those places are others, by a little."""
    changed = bytearray(data)
    for place in places:
        changed[place] ^= 1
    return bytes(changed)


def as_wavpack4(data):
    """The file as WavPack 4 would have written it: every block of an older version, with its checksum mended."""
    blocks, place = bytearray(data), 0
    while place < len(blocks):
        end = place + 8 + struct.unpack_from("<I", blocks, place + 4)[0]
        struct.pack_into("<H", blocks, place + 8, 0x407)
        if blocks[end - 6:end - 4] == b"\x2f\2":
            total = 0xffffffff
            for word, in struct.iter_unpack("<H", blocks[place:end - 6]):
                total = (total * 3 + word) & 0xffffffff
            struct.pack_into("<I", blocks, end - 4, total)
        place = end
    return bytes(blocks)


class Fixtures:
    """Makes each file once, when a case first asks for it. Any thread may ask."""

    def __init__(self, folder, environment):
        self.folder = pathlib.Path(folder)
        self.folder.mkdir()
        self.environment = environment
        self.lock = threading.RLock()

    def path(self, name):
        """The file of that name, such as `cd1.flac` or `text`. Raises KeyError for a name
        that nobody has described, CalledProcessError when the encoder fails."""
        path = self.folder / name
        with self.lock:
            if not path.exists():
                self.make(name, path)
        return path

    def make(self, name, path):
        stem, _, ending = name.rpartition(".")
        if name in OTHERS:
            path.write_bytes(OTHERS[name]())
        elif name in DERIVED:
            source, change = DERIVED[name]
            path.write_bytes(change(self.path(source).read_bytes()))
        elif ending == "wv4":
            path.write_bytes(as_wavpack4(self.path(stem + ".wv").read_bytes()))
        elif ending == "wav":
            path.write_bytes(ALL_WAVES[stem]())
        else:
            words = [word.format(wav=self.path(stem + ".wav"), output=path) for word in ENCODERS[ending]]
            subprocess.run(words, env=self.environment, stdin=subprocess.DEVNULL, capture_output=True, check=True)

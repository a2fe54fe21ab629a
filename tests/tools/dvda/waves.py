# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Sound files for discs."""

import dataclasses
import os
import pathlib
import struct
import subprocess

NOISE = os.urandom(1 << 20)
RATES = (44100, 48000, 88200, 96000, 176400, 192000)
SUBFORMAT_TAIL = bytes.fromhex("000000001000800000aa00389b71")


@dataclasses.dataclass(frozen=True)
class Shape:
    rate: int = 44100
    bits: int = 16
    channels: int = 2

    @property
    def frame_bytes(self):
        return self.channels * self.bits // 8


def legal_shapes():
    """What a disc takes, after its limit of 9.6 million bits a second."""
    return [Shape(rate, bits, channels) for bits in (16, 24) for rate in RATES for channels in (1, 2, 6)
            if rate * bits * channels <= 9_600_000]


def samples(shape, frames, seed=0):
    """Noise that differs from seed to seed, with the loudest samples in front."""
    count = frames * shape.frame_bytes
    start = (seed * 7919) % (len(NOISE) // 2)
    noise = NOISE[start:start + count]
    while len(noise) < count:
        noise += NOISE[:count - len(noise)]
    return noise


def chunk(name, contents):
    return name + struct.pack("<I", len(contents)) + contents + b"\0" * (len(contents) % 2)


def format_chunk(shape, extensible=False, mask=None, tag=1):
    plain = struct.pack("<HIIHH", shape.channels, shape.rate, shape.rate * shape.frame_bytes, shape.frame_bytes, shape.bits)
    if not extensible:
        return chunk(b"fmt ", struct.pack("<H", tag) + plain)
    mask = {1: 4, 2: 3, 6: 0x3F}.get(shape.channels, 0) if mask is None else mask
    return chunk(b"fmt ", b"\xfe\xff" + plain + struct.pack("<HHIH", 22, shape.bits, mask, tag) + SUBFORMAT_TAIL)


def wav(shape, pcm, extensible=False, mask=None, before=b"", after=b"", size=None, tag=1):
    size = len(pcm) if size is None else size
    body = b"WAVE" + before + format_chunk(shape, extensible, mask, tag) + b"data" + struct.pack("<I", size) + pcm
    body += b"\0" * (len(pcm) % 2) + after
    return b"RIFF" + struct.pack("<I", len(body) & 0xFFFFFFFF) + body


def rf64(shape, pcm):
    sizes = chunk(b"ds64", struct.pack("<QQQI", 0, len(pcm), len(pcm) // shape.frame_bytes, 0))
    return b"RF64\xff\xff\xff\xffWAVE" + sizes + format_chunk(shape) + b"data\xff\xff\xff\xff" + pcm


def flac(path, shape, pcm):
    """By the flac program. Returns the path."""
    run = subprocess.run(["flac", "--silent", "--force", "--lax", "-0", "-o", path, "-"], check=False, capture_output=True,
                         input=wav(shape, pcm, extensible=shape.channels > 2 or shape.bits > 16))
    if run.returncode != 0:
        raise RuntimeError(run.stderr.decode())
    return pathlib.Path(path)

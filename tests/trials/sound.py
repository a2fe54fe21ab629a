# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Samples, and the two containers that hold them bare: WAV and AIFF."""

import dataclasses
import itertools
import struct


@dataclasses.dataclass(frozen=True)
class Sound:
    """Interleaved samples, each left-justified in 32 bits, signed, little-endian."""

    rate_hz: int
    channels: int
    samples: bytes

    @property
    def frames(self):
        return len(self.samples) // (4 * self.channels) if self.channels else 0

    def first_difference(self, other):
        """The number of the first frame that differs, or None when both hold the same."""
        if self == other:
            return None
        if self.channels != other.channels or self.rate_hz != other.rate_hz:
            return 0
        shorter = min(len(self.samples), len(other.samples))
        low, high = 0, shorter  # the first `low` bytes are equal
        while low < high:
            middle = (low + high + 1) // 2
            if self.samples[:middle] == other.samples[:middle]:
                low = middle
            else:
                high = middle - 1
        return low // (4 * self.channels)

    def __str__(self):
        return f"{self.frames} frames, {self.channels} channels, {self.rate_hz} Hz"


def widened(data, byte_width, big_endian=False, unsigned=False):
    """Left-justifies samples of that width in 32 bits; what is no whole sample at the end is left out."""
    count = len(data) // byte_width
    data = data[: count * byte_width]
    if unsigned:
        data = bytes(data).translate(bytes(value ^ 0x80 for value in range(256)))
    wide = bytearray(4 * count)
    for place in range(byte_width):
        source = byte_width - 1 - place if big_endian else place
        wide[4 - byte_width + place :: 4] = data[source::byte_width]
    return bytes(wide)


def narrowed(samples, byte_width, big_endian=False, unsigned=False):
    data = bytearray(len(samples) // 4 * byte_width)
    for place in range(byte_width):
        target = byte_width - 1 - place if big_endian else place
        data[target::byte_width] = samples[4 - byte_width + place :: 4]
    if unsigned:
        data = data.translate(bytes(value ^ 0x80 for value in range(256)))
    return bytes(data)


def make_sound(random, rate_hz, channels, bits, seconds):
    """A noise that wanders: every sample depends on all before it, so none can be missed unseen."""
    frames = max(1, round(rate_hz * seconds))
    steps = random.randbytes(frames * channels)
    wave = list(itertools.accumulate(steps, lambda level, step: (level * 31 >> 5) + (step - 127) * 8))
    shift = 32 - 16
    if bits == 24:
        low = random.randbytes(len(wave))
        values = [(level << shift) | byte << 8 for level, byte in zip(wave, low)]
    elif bits == 8:
        values = [level >> 8 << 24 for level in wave]
    else:
        values = [level << shift for level in wave]
    samples = struct.pack(f"<{len(values)}i", *values)
    return Sound(rate_hz, channels, samples)


CHANNEL_MASKS = {1: 0x4, 2: 0x3, 6: 0x3F}


def wav_bytes(sound, bits, chunks_before=(), chunks_after=(), extensible=None):
    """A WAV file. Chunks are pairs of a name and the bytes in it."""
    width = bits // 8
    data = narrowed(sound.samples, width, unsigned=bits == 8)
    if extensible is None:
        extensible = sound.channels > 2
    block = width * sound.channels
    form = struct.pack("<HHIIHH", 0xFFFE if extensible else 1, sound.channels, sound.rate_hz,
                       sound.rate_hz * block, block, bits)
    if extensible:
        form += struct.pack("<HHI", 22, bits, CHANNEL_MASKS[sound.channels])
        form += b"\x01\x00\x00\x00\x00\x00\x10\x00\x80\x00\x00\xaa\x00\x38\x9b\x71"
    chunks = [(b"fmt ", form), *chunks_before, (b"data", data), *chunks_after]
    body = b"".join(name + struct.pack("<I", len(held)) + held + b"\0" * (len(held) % 2) for name, held in chunks)
    return b"RIFF" + struct.pack("<I", 4 + len(body)) + b"WAVE" + body


def extended_float(value):
    """A whole number as the 80-bit number in which AIFF keeps its sample rate."""
    exponent = value.bit_length() - 1
    return struct.pack(">HQ", 16383 + exponent, value << (63 - exponent))


def aiff_bytes(sound, bits, chunks_after=()):
    width = bits // 8
    data = narrowed(sound.samples, width, big_endian=True)
    common = struct.pack(">hIh", sound.channels, sound.frames, bits) + extended_float(sound.rate_hz)
    chunks = [(b"COMM", common), (b"SSND", struct.pack(">II", 0, 0) + data), *chunks_after]
    body = b"".join(name + struct.pack(">I", len(held)) + held + b"\0" * (len(held) % 2) for name, held in chunks)
    return b"FORM" + struct.pack(">I", 4 + len(body)) + b"AIFF" + body


KNOWN_CHUNKS = frozenset((b"LIST", b"bext", b"id3 ", b"ID3 ", b"cue ", b"JUNK", b"fact", b"PEAK", b"iXML", b"NAME",
                          b"ANNO", b"(c) ", b"AUTH", b"COMT", b"APPL", b"MARK", b"INST", b"PAD ", b"FLLR", b"_PMX"))


def chunk_places(data, big_endian):
    """Name, start and end of what each chunk holds, as far as the sizes make sense."""
    at = 12
    while at + 8 <= len(data):
        size = int.from_bytes(data[at + 4 : at + 8], "big" if big_endian else "little")
        yield data[at : at + 4], at + 8, min(at + 8 + size, len(data)), size
        at += 8 + size + size % 2


def end_of_sound(data, start, promised, big_endian):
    """Where the samples really end: where the size says if known chunks follow there, else at the end of the file."""
    end = start + promised
    for candidate in (end + promised % 2, end):
        if candidate == len(data):
            return end
        follow = [name for name, *_ in chunk_places(b"\0" * 12 + data[candidate:], big_endian)]
        if follow and all(name in KNOWN_CHUNKS for name in follow):
            return end
    return len(data)


def read_wav(data):
    """All sound that is really in the file, or None when it is no such file."""
    if data[:4] not in (b"RIFF", b"RF64") or data[8:12] != b"WAVE":
        return None
    form = None
    for name, start, end, size in chunk_places(data, False):
        if name == b"fmt " and end - start >= 16:
            form = struct.unpack("<HHIIHH", data[start : start + 16])
        elif name == b"data" and form:
            _tag, channels, rate_hz, _speed, block, bits = form
            if not channels or not block or block % channels or not 1 <= block // channels <= 4:
                return None
            width = block // channels
            held = data[start : end_of_sound(data, start, size, False)]
            held = held[: len(held) // block * block]
            return Sound(rate_hz, channels, widened(held, width, unsigned=bits <= 8))
    return None


def read_aiff(data):
    """All sound that is really in the file, or None when it is no such file. AIFF-C only without compression."""
    if data[:4] != b"FORM" or data[8:12] not in (b"AIFF", b"AIFC"):
        return None
    common = sound = None
    little = False
    for name, start, end, size in chunk_places(data, True):
        if name == b"COMM" and end - start >= 18:
            common = data[start:end]
            if data[8:12] == b"AIFC" and common[18:22] not in (b"NONE", b"twos", b"sowt"):
                return None
            little = data[8:12] == b"AIFC" and common[18:22] == b"sowt"
        elif name == b"SSND":
            sound = data[start + 8 : end_of_sound(data, start, size, True)]
    if common is None or sound is None:
        return None
    channels, _frames, bits = struct.unpack(">hIh", common[:8])
    exponent, mantissa = struct.unpack(">HQ", common[8:18])
    width = (bits + 7) // 8
    if channels < 1 or not 1 <= width <= 4 or not 16383 <= exponent < 16383 + 32:
        return None
    rate_hz = mantissa >> (63 - (exponent - 16383))
    sound = sound[: len(sound) // (width * channels) * width * channels]
    return Sound(rate_hz, channels, widened(sound, width, big_endian=not little))

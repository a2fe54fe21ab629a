# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""WAV files byte by byte, also such as no good program writes."""

import random
import struct

SECTOR = 2352  # bytes: 588 frames of 16 bits in stereo, 1/75 s


def chunk(name, body, padded=True):
    """The pad byte after an odd size is part of the format; some writers forget it."""
    return name + struct.pack("<I", len(body)) + body + (b"\0" if padded and len(body) % 2 else b"")


def noise(size, bits=16, seed=1):
    """Quiet noise in little-endian samples: it compresses, and no two places are alike."""
    sound = bytearray(random.Random(seed).randbytes(size))
    if bits > 8:
        width = bits // 8
        tops = sound[width - 1::width]
        sound[width - 1::width] = tops.translate(bytes((0, 1, 254, 255)[byte % 4] for byte in range(256)))
    return bytes(sound)


def wav(data, rate=44100, channels=2, bits=16, **lies):
    """A WAV file. The lies: `tag`, `block`, `average`, `riff_size`, `data_size`, `fmt_size` say something else in the
    header; `fmt_tail` lengthens the format chunk, `before` and `after` are further chunks around the sound,
    `padded` is whether an odd sound has its pad byte, `head` stands in for "RIFF", `kind` for "WAVE"."""
    block = lies.get("block", channels * bits // 8)
    layout = struct.pack("<HHIIHH", lies.get("tag", 1), channels, rate, lies.get("average", rate * block), block, bits)
    layout += lies.get("fmt_tail", b"")
    body = lies.get("kind", b"WAVE") + b"fmt " + struct.pack("<I", lies.get("fmt_size", len(layout))) + layout
    body += b"".join(chunk(*extra) for extra in lies.get("before", ()))
    body += b"data" + struct.pack("<I", lies.get("data_size", len(data))) + data
    body += b"\0" if len(data) % 2 and lies.get("padded", True) else b""
    body += b"".join(chunk(*extra) for extra in lies.get("after", ()))
    return lies.get("head", b"RIFF") + struct.pack("<I", lies.get("riff_size", len(body))) + body


def extensible_tail(bits, mask=3, tag=1):
    """What follows the first 16 bytes of an extensible format chunk."""
    return struct.pack("<HHI", 22, bits, mask) + struct.pack("<H", tag) + bytes.fromhex("000000001000800000aa00389b71")


def rf64(data, rate=44100, channels=2, bits=16):
    """The form for files over 4 GiB: sizes of all ones, and the true ones in a chunk of their own."""
    sizes = struct.pack("<QQQI", len(data) + 72, len(data), len(data) // (channels * bits // 8), 0)
    layout = struct.pack("<HHIIHH", 1, channels, rate, rate * channels * bits // 8, channels * bits // 8, bits)
    body = b"WAVE" + chunk(b"ds64", sizes) + chunk(b"fmt ", layout) + b"data" + b"\xff" * 4 + data
    return b"RF64" + b"\xff" * 4 + body


def header_of(size, rate, channels, bits):
    """A header alone, for modes that look no further."""
    return wav(b"", rate, channels, bits, data_size=size, riff_size=size + 36)


def aiff(data, form=b"AIFF", coding=b"", frames=None):
    """16-bit stereo of 44.1 kHz; `data` is big-endian unless the coding says otherwise."""
    common = struct.pack(">HIH", 2, len(data) // 4 if frames is None else frames, 16) + bytes.fromhex("400eac44000000000000")
    chunks = b"COMM" + struct.pack(">I", len(common + coding)) + common + coding
    chunks += b"SSND" + struct.pack(">III", len(data) + 8, 0, 0) + data
    return b"FORM" + struct.pack(">I", len(chunks) + 4) + form + chunks

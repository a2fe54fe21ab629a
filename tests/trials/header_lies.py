# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the headers of sound files lie about how much sound there is. The sound itself stays as it was."""

import dataclasses
import struct
import subprocess
import zlib

from sound import chunk_places, wav_bytes

UNKNOWN = 0xFFFFFFFF


def lying_number(chance, true, largest=UNKNOWN, frame=1):
    """A wrong number, and what to call it. `frame`: what one frame of samples counts in it."""
    lies = [("0", 0), ("less", true // frame // 2 * frame), ("less by one", max(0, true - frame)),
            ("more", min(largest, true * 2 + frame)), ("all ones", largest)]
    return chance.choice([(word, value) for word, value in lies if value != true])


def put(data, at, layout, value):
    size = struct.calcsize(layout)
    return data[:at] + struct.pack(layout, value) + data[at + size :]


def lie_in_wav(chance, data, frame):
    field = chance.choice(("data", "data", "RIFF"))
    at = 4
    if field == "data":
        at = next(start - 4 for name, start, *_ in chunk_places(data, False) if name == b"data")
    word, value = lying_number(chance, int.from_bytes(data[at : at + 4], "little"), frame=frame)
    return f"wav {field} size {word}", put(data, at, "<I", value)


def lie_in_aiff(chance, data, frame):
    field = chance.choice(("COMM", "COMM", "SSND", "FORM"))
    places = {name: start for name, start, *_ in chunk_places(data, True)}
    at = {"COMM": places[b"COMM"] + 2, "SSND": places[b"SSND"] - 4, "FORM": 4}[field]
    unit = 1 if field == "COMM" else frame
    word, value = lying_number(chance, int.from_bytes(data[at : at + 4], "big"), frame=unit)
    if field == "SSND" and value < 8:
        word, value = "no samples", 8
    return f"aiff {field} {word}", put(data, at, ">I", value)


def lie_in_flac(chance, data, _frame):
    packed = int.from_bytes(data[18:26], "big")
    total = packed & (1 << 36) - 1
    words = []
    if chance.random() < 0.7:
        word, value = lying_number(chance, total, (1 << 36) - 1)
        words.append(f"total {word}")
        data = data[:18] + (packed - total + value).to_bytes(8, "big") + data[26:]
    if not words or chance.random() < 0.5:
        word, digest = chance.choice((("0", bytes(16)), ("0", bytes(16)), ("another", chance.randbytes(16))))
        words.append(f"MD5 {word}")
        data = data[:26] + digest + data[42:]
    return "flac " + ", ".join(words), data


def wavpack_blocks(data):
    at = 0
    while data[at : at + 4] == b"wvpk":
        yield at
        at += 8 + int.from_bytes(data[at + 4 : at + 8], "little")


def lie_in_wv(chance, data, _frame):
    if chance.random() < 0.7:
        word, value = lying_number(chance, int.from_bytes(data[12:16], "little"))
        blocks = list(wavpack_blocks(data))
        for at in blocks if chance.random() < 0.5 else blocks[:1]:
            data = put(data, at + 12, "<I", value)
        return f"wv total {word}", data
    at = chance.choice(list(wavpack_blocks(data)))
    word, value = lying_number(chance, int.from_bytes(data[at + 20 : at + 24], "little"))
    return f"wv block samples {word}", put(data, at + 20, "<I", value)


def lie_in_tta(chance, data, _frame):
    word, value = lying_number(chance, int.from_bytes(data[14:18], "little"))
    data = put(data, 14, "<I", value)
    if chance.random() < 0.8:
        data = put(data, 18, "<I", zlib.crc32(data[:18]))
        return f"tta total {word}", data
    return f"tta total {word}, header CRC wrong", data


def lie_in_ape(chance, data, _frame):
    header = int.from_bytes(data[8:12], "little")
    field, at = chance.choice((("final frame", header + 8), ("final frame", header + 8), ("frames", header + 12)))
    word, value = lying_number(chance, int.from_bytes(data[at : at + 4], "little"))
    data = put(data, at, "<I", value)
    if chance.random() < 0.3:
        data = data[:36] + bytes(16) + data[52:]
        word += ", no MD5"
    return f"ape {field} {word}", data


def box_place(data, *path):
    """Where what a box holds begins."""
    start, end = 0, len(data)
    for name in path:
        at = start
        while True:
            size = int.from_bytes(data[at : at + 4], "big")
            if at + 8 > end or size < 8:
                return None
            if data[at + 4 : at + 8] == name:
                start, end = at + 8, at + size
                break
            at += size
    return start


def lie_in_m4a(chance, data, _frame):
    media = (b"moov", b"trak", b"mdia")
    table = (*media, b"minf", b"stbl")
    fields = {
        "mdhd duration": (box_place(data, *media, b"mdhd"), 16),
        "stts count": (box_place(data, *table, b"stts"), 8),
        "stts delta": (box_place(data, *table, b"stts"), 12),
        "mvhd duration": (box_place(data, b"moov", b"mvhd"), 16),
        "stsz count": (box_place(data, *table, b"stsz"), 8),
    }
    field = chance.choice([name for name, (start, _) in fields.items() if start is not None])
    at = sum(fields[field])
    word, value = lying_number(chance, int.from_bytes(data[at : at + 4], "big"))
    data = put(data, at, ">I", value)
    if field == "stts count" and chance.random() < 0.5:
        start, place = fields["mdhd duration"]
        word += ", mdhd 0"
        data = put(data, start + place, ">I", 0)
    return f"m4a {field} {word}", data


LIES = {"wav": lie_in_wav, "aiff": lie_in_aiff, "flac": lie_in_flac, "wv": lie_in_wv, "tta": lie_in_tta,
        "ape": lie_in_ape, "m4a": lie_in_m4a}


def tell_lie(chance, maker, decoder, source):
    """The source with a header that lies, or None. What was said is the last of its `evils`."""
    frame = source.sound.channels * source.bits // 8
    if source.kind == "shn" or (source.kind in ("wv", "tta", "ape") and chance.random() < 0.3):
        word, wav = lie_in_wav(chance, wav_bytes(source.sound, source.bits), frame)
        made = maker.from_wav(source.kind, wav, source.sound, source.bits)
        if made is not None and decoder.decode_bytes(made.data, source.kind).sound == source.sound:
            made.evils.append(f"lie: {source.kind} with a stored {word}")
            return made
    if source.kind == "shn":
        return None
    word, data = LIES[source.kind](chance, source.data, frame)
    liar = dataclasses.replace(source, data=data, evils=[*source.evils, f"lie: {word}"], accepted=[source.sound])
    if source.kind in ("wav", "aiff"):
        # Without a size that is right, chunks behind the samples may be taken for more of them.
        held = decoder.decode_bytes(data, source.kind).sound
        if held is not None and held.samples.startswith(source.sound.samples):
            liar.accepted.append(held)
    return liar


def piped_flac(source):
    """The same sound as a FLAC encoder writes it that cannot go back to its header."""
    run = subprocess.run(["flac", "-s", "-c", "-"], input=wav_bytes(source.sound, source.bits), capture_output=True,
                         timeout=60, check=True)
    with_sound = dataclasses.replace(source, kind="flac", data=run.stdout, markers=frozenset())
    with_sound.evils = [*source.evils, "lie: flac from a pipe"]
    return with_sound

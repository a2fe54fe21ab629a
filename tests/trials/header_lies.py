# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the headers of sound files lie about how much sound there is. The sound itself stays as it was."""

import dataclasses
import hashlib
import struct
import subprocess
import zlib

from sound import chunk_places, wav_bytes

UNKNOWN = 0xFFFFFFFF


def lying_numbers(true, largest=UNKNOWN, frame=1):
    """Wrong numbers, and what to call them. `frame`: what one frame of samples counts in them."""
    lies = [("0", 0), ("less", true // frame // 2 * frame), ("less by one", max(0, true - frame)),
            ("more", min(largest, true * 2 + frame)), ("all ones", largest)]
    return [(word, value) for word, value in lies if value != true]


def put(data, at, layout, value):
    size = struct.calcsize(layout)
    return data[:at] + struct.pack(layout, value) + data[at + size :]


# Each of these yields all lies that its kind of file can tell: what to call it, and the file.


def lies_in_wav(data, frame):
    start = next(start for name, start, *_ in chunk_places(data, False) if name == b"data")
    for field, at in (("data", start - 4), ("RIFF", 4)):
        for word, value in lying_numbers(int.from_bytes(data[at : at + 4], "little"), frame=frame):
            yield f"wav {field} size {word}", put(data, at, "<I", value)


def lies_in_aiff(data, frame):
    places = {name: start for name, start, *_ in chunk_places(data, True)}
    for field, at, unit in (("COMM", places[b"COMM"] + 2, 1), ("SSND", places[b"SSND"] - 4, frame), ("FORM", 4, frame)):
        for word, value in lying_numbers(int.from_bytes(data[at : at + 4], "big"), frame=unit):
            if field == "SSND" and value < 8:
                word, value = "no samples", 8
            yield f"aiff {field} {word}", put(data, at, ">I", value)


def lies_in_flac(data, _frame):
    packed = int.from_bytes(data[18:26], "big")
    total = packed & (1 << 36) - 1
    for word, value in [("", total), *lying_numbers(total, (1 << 36) - 1)]:
        told = data[:18] + (packed - total + value).to_bytes(8, "big") + data[26:]
        if word:
            yield f"flac total {word}", told
        for digest_word, digest in (("0", bytes(16)), ("another", hashlib.md5(data).digest())):
            yield "flac " + (f"total {word}, " if word else "") + f"MD5 {digest_word}", told[:26] + digest + told[42:]


def wavpack_blocks(data):
    at = 0
    while data[at : at + 4] == b"wvpk":
        yield at
        at += 8 + int.from_bytes(data[at + 4 : at + 8], "little")


def lies_in_wv(data, _frame):
    blocks = list(wavpack_blocks(data))
    for word, value in lying_numbers(int.from_bytes(data[12:16], "little")):
        yield f"wv first total {word}", put(data, blocks[0] + 12, "<I", value)
        told = data
        for at in blocks:
            told = put(told, at + 12, "<I", value)
        yield f"wv total {word}", told
    for at in {blocks[0], blocks[-1]}:
        for word, value in lying_numbers(int.from_bytes(data[at + 20 : at + 24], "little")):
            yield f"wv block samples {word}", put(data, at + 20, "<I", value)


def lies_in_tta(data, _frame):
    for word, value in lying_numbers(int.from_bytes(data[14:18], "little")):
        told = put(data, 14, "<I", value)
        yield f"tta total {word}, header CRC wrong", told
        yield f"tta total {word}", put(told, 18, "<I", zlib.crc32(told[:18]))


def lies_in_ape(data, _frame):
    header = int.from_bytes(data[8:12], "little")
    for field, at in (("final frame", header + 8), ("frames", header + 12)):
        for word, value in lying_numbers(int.from_bytes(data[at : at + 4], "little")):
            told = put(data, at, "<I", value)
            yield f"ape {field} {word}", told
            yield f"ape {field} {word}, no MD5", told[:36] + bytes(16) + told[52:]


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


def lies_in_m4a(data, _frame):
    media = (b"moov", b"trak", b"mdia")
    table = (*media, b"minf", b"stbl")
    fields = {
        "mdhd duration": (box_place(data, *media, b"mdhd"), 16),
        "stts count": (box_place(data, *table, b"stts"), 8),
        "stts delta": (box_place(data, *table, b"stts"), 12),
        "mvhd duration": (box_place(data, b"moov", b"mvhd"), 16),
        "stsz count": (box_place(data, *table, b"stsz"), 8),
    }
    for field, (start, place) in fields.items():
        if start is None:
            continue
        for word, value in lying_numbers(int.from_bytes(data[start + place : start + place + 4], "big")):
            told = put(data, start + place, ">I", value)
            yield f"m4a {field} {word}", told
            if field == "stts count":
                yield f"m4a {field} {word}, mdhd 0", put(told, sum(fields["mdhd duration"]), ">I", 0)


LIES = {"wav": lies_in_wav, "aiff": lies_in_aiff, "flac": lies_in_flac, "wv": lies_in_wv, "tta": lies_in_tta,
        "ape": lies_in_ape, "m4a": lies_in_m4a}


def stored_lies(maker, decoder, source):
    """The source with a WAV header in it that lies, as a recorder left it: all that its encoder takes."""
    frame = source.sound.channels * source.bits // 8
    for word, wav in lies_in_wav(wav_bytes(source.sound, source.bits), frame):
        made = maker.from_wav(source.kind, wav, source.sound, source.bits)
        if made is not None and decoder.decode_bytes(made.data, source.kind).sound == source.sound:
            made.evils.append(f"lie: {source.kind} with a stored {word}")
            yield made


def own_lies(decoder, source):
    """The source with a header of its own kind that lies."""
    frame = source.sound.channels * source.bits // 8
    for word, data in LIES[source.kind](source.data, frame):
        liar = dataclasses.replace(source, data=data, evils=[*source.evils, f"lie: {word}"], accepted=[source.sound])
        if source.kind in ("wav", "aiff"):
            # Without a size that is right, chunks behind the samples may be taken for more of them.
            held = decoder.decode_bytes(data, source.kind).sound
            if held is not None and held.samples.startswith(source.sound.samples):
                liar.accepted.append(held)
        yield liar


def all_lies(maker, decoder, source):
    """The source with each lie that its kind of file can tell. What was said is the last of its `evils`."""
    if source.kind in ("shn", "wv", "tta", "ape"):
        yield from stored_lies(maker, decoder, source)
    if source.kind in LIES:
        yield from own_lies(decoder, source)
    if source.kind == "flac" and source.bits > 8:
        yield piped_flac(source)


def tell_lie(chance, maker, decoder, source):
    """The source with one of those lies; None when there is none."""
    is_stored = source.kind == "shn" or (source.kind in ("wv", "tta", "ape") and chance.random() < 0.3)
    lies = list(stored_lies(maker, decoder, source) if is_stored else own_lies(decoder, source))
    return chance.choice(lies) if lies else None


def piped_flac(source):
    """The same sound as a FLAC encoder writes it that cannot go back to its header."""
    run = subprocess.run(["flac", "-s", "-c", "-"], input=wav_bytes(source.sound, source.bits), capture_output=True,
                         timeout=60, check=True)
    with_sound = dataclasses.replace(source, kind="flac", data=run.stdout, markers=frozenset())
    with_sound.evils = [*source.evils, "lie: flac from a pipe"]
    return with_sound

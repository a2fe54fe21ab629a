# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Damages sound files, and makes files that only look like them."""

import dataclasses
import subprocess

from header_lies import box_place
from sound import chunk_places, wav_bytes
from sources import Source

LOSSY = {"aac": ("aac", "ipod"), "ac3": ("ac3", "mp4"), "eac3": ("eac3", "mp4"), "opus": ("libopus", "mp4")}


def sound_place(kind, data):
    """First byte and end of where a file of that kind keeps its samples, roughly for the compressed ones."""
    if kind in ("wav", "aiff"):
        name = b"data" if kind == "wav" else b"SSND"
        start, end = next((start, end) for found, start, end, _ in chunk_places(data, kind == "aiff") if found == name)
        return (start, end) if kind == "wav" else (start + 8, end)
    if kind == "m4a":
        start = box_place(data, b"mdat")
        return start, start - 8 + int.from_bytes(data[start - 8 : start - 4], "big")
    header = {"flac": 4, "tta": 22, "ape": 76, "wv": 32, "shn": 64}[kind]
    if kind == "flac":
        is_last = False
        while not is_last:
            is_last = data[header] & 0x80 != 0
            header += 4 + int.from_bytes(data[header + 1 : header + 4], "big")
    end = len(data)
    for tag in (b"APETAGEX", b"TAGTitle"):
        if tag in data:
            end = data.index(tag)
    return header, end


def flipped(data, at, mask):
    return data[:at] + bytes((data[at] ^ mask,)) + data[at + 1 :]


def with_flips(chance, source, decoder):
    """The source with some bytes changed. What it holds then is asked of its decoder, if that is sure of it."""
    start, end = sound_place(source.kind, source.data)
    if end - start < 16:
        return None
    data = source.data
    for _ in range(chance.choice((1, 1, 3))):
        data = flipped(data, chance.randrange(start, end), 1 << chance.randrange(8))
    return judged(dataclasses.replace(source, data=data, evils=[*source.evils, "flipped bytes"]), decoder)


def with_header_flip(chance, source):
    """A change among the first bytes: nobody can say what the file is then, so only the rules for files count."""
    at = chance.randrange(min(len(source.data), 200))
    data = flipped(source.data, at, 1 << chance.randrange(8))
    return dataclasses.replace(source, data=data, markers=frozenset(), is_judged=False,
                               evils=[*source.evils, f"flipped header byte: {at}"])


def cut(chance, source, decoder):
    start, end = sound_place(source.kind, source.data)
    left = chance.choice((chance.randrange(start, end), max(start, end - 1 - chance.randrange(40))))
    data = source.data[:left]
    return judged(dataclasses.replace(source, data=data, markers=frozenset(), evils=[*source.evils, "cut"]), decoder)


def judged(source, decoder):
    """Accepts what the decoder reads in the file now, unless it complains or reads less than ever was in it."""
    decoded = decoder.decode_bytes(source.data, source.kind)
    source.accepted = []
    is_bare = source.kind in ("wav", "aiff")
    if decoded.is_whole and (is_bare or len(decoded.sound.samples) >= len(source.sound.samples)):
        source.accepted = [decoded.sound]
    return source


def garbage(chance, kind):
    evil, data = chance.choice((
        ("garbage", chance.randbytes(chance.randrange(1, 5000))),
        ("a text", b"no sound at all\n" * 40),
        ("an empty file", b""),
        ("zeros", bytes(3000)),
    ))
    return nothing_accepted(Source(kind, data, None, 16, evils=[evil]))


def nothing_accepted(source):
    source.accepted = []
    return source


def silent_header(source):
    """A WAV file that is whole and holds no sample."""
    data = wav_bytes(dataclasses.replace(source.sound, samples=b""), source.bits)
    silent = dataclasses.replace(source, kind="wav", data=data, markers=frozenset(), evils=["no samples"])
    return nothing_accepted(silent)


def lossy_m4a(chance, source, folder):
    """Anything but Apple Lossless in a file with its name: it never may go."""
    codec = chance.choice(list(LOSSY))
    encoder, muxer = LOSSY[codec]
    data = _muxed(source, folder, ["-ac", "2", "-ar", "48000", "-c:a", encoder, "-strict", "-2", "-f", muxer])
    lossy = dataclasses.replace(source, kind="m4a", data=data, markers=frozenset(), is_judged=False)
    lossy.evils = [f"{codec} in m4a"]
    return nothing_accepted(lossy)


def two_track_m4a(source, folder):
    data = _muxed(source, folder, ["-map", "0:a", "-map", "0:a", "-filter:a:1", "areverse", "-c:a", "alac", "-f", "ipod"])
    both = dataclasses.replace(source, kind="m4a", data=data, markers=frozenset(), evils=["two tracks"])
    return nothing_accepted(both)


def _muxed(source, folder, words):
    wav, target = folder / "muxed.wav", folder / "muxed.m4a"
    wav.write_bytes(wav_bytes(source.sound, source.bits))
    subprocess.run(["ffmpeg", "-v", "error", "-threads", "1", "-y", "-i", str(wav), *words, str(target)],
                   stdin=subprocess.DEVNULL, capture_output=True, timeout=60, check=True)
    data = target.read_bytes()
    wav.unlink()
    target.unlink()
    return data

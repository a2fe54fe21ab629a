# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads AUDIO_TS as a player does: from the tables to the packs, and checks on the way that all of it fits together.

Written from the format, for the tests of the program that authors it, and shares nothing with that.
"""

import dataclasses
import struct

SECTOR = 2048
SYSTEM_HEADER = bytes.fromhex("000001bb000c80c4e104a07fb8c040bde00a")
RATES = {0: 48000, 1: 96000, 2: 192000, 8: 44100, 9: 88200, 10: 176400}
BITS = {0: 16, 1: 20, 2: 24}
# By channel assignment: the channels of group 1, then those of group 2, as places in the order L R C LFE Ls Rs.
GROUPS = {0: ((0,), ()), 1: ((0, 1), ()), 20: ((0, 1, 4, 5), (2, 3))}

# Bytes of audio and of the private header in a full pack: the first of a title, and any other.
FULL_PACKS = {(16, 1): ((1984, 11), (2000, 16)), (16, 2): ((1984, 11), (2000, 16)), (16, 6): ((1968, 10), (1992, 10)),
              (24, 1): ((1980, 15), (2004, 12)), (24, 2): ((1980, 15), (2004, 12)), (24, 6): ((1980, 15), (1980, 16))}


class Fault(Exception):
    """The disc contradicts itself or the format."""


def need(condition, text):
    if not condition:
        raise Fault(text)


def u16(data, at):
    return struct.unpack_from(">H", data, at)[0]


def u32(data, at):
    return struct.unpack_from(">I", data, at)[0]


@dataclasses.dataclass
class Track:
    start_pts: int
    ticks: int
    first: int
    last: int
    pcm: bytes = b""  # as a WAV file has it


@dataclasses.dataclass
class Disc:
    rate: int
    bits: int
    channels: int
    tracks: list
    packs: list


@dataclasses.dataclass
class Pack:
    scr: int
    pts: int | None
    isrc: int
    header: int  # bytes
    pointer: int
    audio: bytes


def unit_places(bits, assignment):
    """For each byte of a unit on the disc, where it is in a unit of two frames of a WAV file."""
    first, second = GROUPS[assignment]
    width = bits // 8
    channels = len(first) + len(second)
    places = []
    for group in (second, first):
        for frame in (0, 1):
            for channel in group:
                base = (frame * channels + channel) * width
                places += [base + width - 1, base + width - 2]
        if width == 3:
            places += [(frame * channels + channel) * width for frame in (0, 1) for channel in group]
    return places


def wav_order(audio, places):
    size = len(places)
    need(len(audio) % size == 0, "a pack does not hold whole units")
    pcm = bytearray(len(audio))
    for at, place in enumerate(places):
        pcm[place::size] = audio[at::size]
    return bytes(pcm)


def stamp(data):
    """The 33 bits of a PTS."""
    need(data[0] & 0xF1 == 0x21 and data[2] & 1 and data[4] & 1, "a PTS without its markers")
    return (data[0] >> 1 & 7) << 30 | data[1] << 22 | data[2] >> 1 << 15 | data[3] << 7 | data[4] >> 1


def clock(data):
    need(data[0] & 0xC4 == 0x44 and data[2] & 4 and data[4] & 4 and data[5] & 1, "an SCR without its markers")
    base = ((data[0] >> 3 & 7) << 30 | (data[0] & 3) << 28 | data[1] << 20 | data[2] >> 3 << 15 | (data[2] & 3) << 13
            | data[3] << 5 | data[4] >> 3)
    return base * 300 + ((data[4] & 3) << 7 | data[5] >> 1)


def read_pack(data, is_first, sizes, rates, assignment):
    need(data[:4] == b"\0\0\1\xba" and data[10:14] == b"\x01\x89\xc3\xf8", "no pack header")
    at = 14
    if is_first:
        need(data[at:at + 18] == SYSTEM_HEADER, "no system header in the first pack")
        at += 18
    need(data[at:at + 4] == b"\0\0\1\xbd", "no private stream")
    end = at + 6 + u16(data, at + 4)
    need(end <= SECTOR and data[at + 6] == 0x81, "a PES packet goes beyond its pack")
    flags, extension = data[at + 7], 3 if is_first else 0
    need(flags in ((0x81, 1) if is_first else (0x80, 0)) and data[at + 8] == 5 + extension, "a wrong PES header")
    pts = stamp(data[at + 9:at + 14]) if flags & 0x80 else None
    need(pts is not None or data[at + 9:at + 14] == b"\xff" * 5, "no stuffing in place of a PTS")
    at += 14
    if is_first:
        need(data[at:at + 3] == b"\x1e\x60\x0a", "no buffer size in the first pack")
        at += 3
    header = data[at + 3]
    need(data[at] == 0xA0 and header >= 9 and data[at + 2] == 0, "no header of linear PCM")
    wanted = bytes((0x10 if assignment < 2 else 0, sizes, rates, 0, assignment, 0x80))
    need(data[at + 6:at + 12] == wanted, "a pack tells of another format than the table")
    need(not any(data[at + 12:at + 4 + header]), "stuffing that is not zero")
    pack = Pack(clock(data[4:10]), pts, data[at + 1], header, u16(data, at + 4), data[at + 4 + header:end])
    rest = data[end:]
    if rest:
        need(rest[:4] == b"\0\0\1\xbe" and u16(rest, 4) == len(rest) - 6 and rest[6:] == b"\xff" * (len(rest) - 6),
             "what follows the audio is no padding")
    return pack


def check_times(packs, rate, frame_bytes):
    """Each pack comes after the one before, and before it is played; time stamps are those of the access units."""
    unit = {44100: 40, 48000: 40}.get(rate, 80 if rate < 100000 else 160)
    position = 0
    played = []
    for number, pack in enumerate(packs):
        if number < 4:
            need(pack.scr == number * 2048 * 8 * 27_000_000 // 10_080_000, f"pack {number} does not come at full speed")
        else:
            due = 585 * 300 + played[number - 4] * 27_000_000 // rate
            need(pack.scr == max(due, packs[number - 1].scr + 43886), f"pack {number} has a wrong SCR")
        frames = len(pack.audio) // frame_bytes
        start = -(-position // unit) * unit
        if start < position + frames:
            need(pack.pointer == (start - position) * frame_bytes + pack.header - 1, f"pack {number} points elsewhere")
            need(pack.pts == 585 + start * 90000 // rate, f"pack {number} has a wrong PTS")
        else:
            need(pack.pointer == 0 and pack.pts is None, f"pack {number} has a PTS for nothing")
        position += frames
        played.append(position)


def check_division(pack, is_first, is_last, bits, channels):
    """All packs of a track but the last are full; in a short one the private header takes what is no padding."""
    audio, header = FULL_PACKS[bits, channels][0 if is_first else 1]
    rest = (1995 if is_first else 2016) - 10 - len(pack.audio)
    if len(pack.audio) == audio:
        need(pack.header == header, "a full pack is divided otherwise")
    else:
        need(is_last and len(pack.audio) < audio, "a pack within a track is not full")
        need(pack.header == (10 if rest >= 7 else 10 + rest), "a short pack is divided otherwise")


def read_title_set(data, sectors):
    """The format and the tracks of the only title."""
    need(data[:12] == b"DVDAUDIO-ATS" and u16(data, 0x20) == 0x12, "no title set")
    size = len(data) // SECTOR
    need(u32(data, 0x1C) == size - 1 and u32(data, 0xC4) == size, "the title set has another size")
    need(u32(data, 0x0C) == 2 * size + sectors - 1, "the title set ends elsewhere")
    need(u32(data, 0xCC) == 1 and u32(data, 0x80) == 0x7FF and u32(data, 0xC0) == 0, "the title table is elsewhere")
    sizes, rates, assignment = data[0x102:0x105]
    need(data[0x100:0x102] == b"\0\0" and not any(data[0x105:0x180]), "more than one format")
    down_mix = bytes.fromhex("00001effff1e2d2d3cffff3c4b4b00000000")
    count = 16 if assignment > 1 else 1
    need(data[0x180:0x2A0] == (down_mix * count).ljust(288, b"\0"), "wrong down-mix tables")
    table = data[SECTOR:]
    need(u16(table, 0) == 1 and table[8] == 0x81 and table[9] == (1 if assignment > 1 else 0) and table[10] == 0, "no title")
    title = u32(table, 12)
    count = table[title + 2]
    need(title == 16 and table[title + 3] == count and u16(table, title + 10) == 16, "a wrong title record")
    cells = u16(table, title + 12)
    need(cells == 16 + 20 * count and u32(table, 4) + 1 == title + cells + 12 * count, "a title table of another size")
    need(size == 1 + -(-(title + cells + 12 * count) // SECTOR), "the table takes other sectors")
    need(not any(table[title + cells + 12 * count:]), "something behind the title table")
    tracks = []
    for i in range(count):
        entry = table[title + 16 + 20 * i:title + 36 + 20 * i]
        cell = table[title + cells + 12 * i:title + cells + 12 * i + 12]
        need(entry[0] == (0xC0 if i == 0 else 0) and entry[1] == (0 if assignment > 1 else 0x10) and entry[4] == i + 1,
             f"a wrong entry of track {i}")
        need(cell[:4] == b"\1\0\0\0" and u32(entry, 14) == 0, f"a wrong cell of track {i}")
        tracks.append(Track(u32(entry, 6), u32(entry, 10), u32(cell, 4), u32(cell, 8)))
    need(u32(table, title + 4) == sum(track.ticks for track in tracks), "the title is not as long as its tracks")
    return sizes, rates, assignment, tracks


def check_manager(data, tracks):
    need(len(data) == 3 * SECTOR and data[:12] == b"DVDAUDIO-AMG" and u16(data, 0x20) == 0x12, "no manager")
    need(u32(data, 0x0C) == 5 and u32(data, 0x1C) == 2 and u32(data, 0x80) == 0x7FF, "the manager has another size")
    need(data[0x26:0x30] == b"\0\1\0\1\1\0\0\0\0\1" and data[0x3E:0x40] == b"\0\1", "other volumes or title sets")
    need(u32(data, 0xC4) == 1 and u32(data, 0xC8) == 2, "the tables of titles are elsewhere")
    ticks = sum(track.ticks for track in tracks)
    title = struct.pack(">HHBBHIBBI", 1, 17, 0x81, len(tracks), 0, ticks, 1, 1, 6)
    for sector in (1, 2):
        need(data[sector * SECTOR:(sector + 1) * SECTOR] == title.ljust(SECTOR, b"\0"), "a wrong table of titles")


def check_simple_manager(data, tracks, formats, first_sector):
    """`first_sector`: that of the sound in the image."""
    need(len(data) == 131072 and data[:16384] * 8 == data, "the copies of the simple manager differ")
    need(data[:12] == b"DVDAUDIOSAPP" and u16(data, 12) == len(tracks) and u16(data, 14) == 0x12, "no simple manager")
    sizes, rates, assignment = formats
    for i, track in enumerate(tracks):
        flags = (0x80 if i == 0 else 0) | (0x48 if assignment < 2 else 0x40)
        first, last = first_sector + track.first, first_sector + track.last
        entry = struct.pack(">HBBIIIBBBB20xIII", 0, 1, i + 1, track.start_pts, track.ticks, 0, flags, sizes, rates,
                            assignment, first, first, last)
        need(data[16 + 52 * i:68 + 52 * i] == entry, f"a wrong track {i} in the simple manager")
    need(not any(data[16 + 52 * len(tracks):16384]), "something behind the simple manager's tracks")


def read(files, image_start=None):
    """The disc of files by their names in AUDIO_TS. `image_start`: the sector of AUDIO_PP.IFO, the usual one without."""
    aobs = sorted(name for name in files if name.endswith(".AOB"))
    need(aobs == [f"ATS_01_{i + 1}.AOB" for i in range(len(aobs))] and aobs, "the AOBs are not in their order")
    need(set(files) == {"AUDIO_PP.IFO", "AUDIO_TS.IFO", "AUDIO_TS.BUP", "ATS_01_0.IFO", "ATS_01_0.BUP", *aobs}, "other files")
    need(files["AUDIO_TS.IFO"] == files["AUDIO_TS.BUP"] and files["ATS_01_0.IFO"] == files["ATS_01_0.BUP"], "no backups")
    sound = b"".join(files[name] for name in aobs)
    need(len(sound) % SECTOR == 0, "no whole sectors")
    sizes, rates, assignment, tracks = read_title_set(files["ATS_01_0.IFO"], len(sound) // SECTOR)
    check_manager(files["AUDIO_TS.IFO"], tracks)
    image_start = 277 + len(aobs) if image_start is None else image_start
    first_sector = image_start + 64 + 6 + len(files["ATS_01_0.IFO"]) // SECTOR
    check_simple_manager(files["AUDIO_PP.IFO"], tracks, (sizes, rates, assignment), first_sector)
    bits, rate = BITS[sizes >> 4], RATES[rates >> 4]
    groups = GROUPS[assignment]
    need(sizes & 15 == (sizes >> 4 if groups[1] else 15) and rates & 15 == (rates >> 4 if groups[1] else 15), "other groups")
    channels = len(groups[0]) + len(groups[1])
    packs = [read_pack(sound[at:at + SECTOR], at == 0, sizes, rates, assignment) for at in range(0, len(sound), SECTOR)]
    check_times(packs, rate, channels * bits // 8)
    places = unit_places(bits, assignment)
    position = 0
    frames = 0
    unit = {44100: 40, 48000: 40}.get(rate, 80 if rate < 100000 else 160)
    for track in tracks:
        need(track.first == position and track.last >= track.first, "tracks do not follow each other")
        own = packs[track.first:track.last + 1]
        need([pack.isrc for pack in own] == [i % 32 for i in range(len(own))], "ISRC bytes do not run")
        for i, pack in enumerate(own):
            check_division(pack, track.first + i == 0, i == len(own) - 1, bits, channels)
        need(track.start_pts == 585 + -(-frames // unit) * unit * 90000 // rate, "a track starts at another time")
        track.pcm = wav_order(b"".join(pack.audio for pack in own), places)
        frames += len(track.pcm) // (channels * bits // 8)
        position = track.last + 1
    need(position == len(packs), "packs that belong to no track")
    return Disc(rate, bits, channels, tracks, packs)


def read_folder(folder):
    """The disc in a folder with AUDIO_TS."""
    return read({path.name: path.read_bytes() for path in (folder / "AUDIO_TS").iterdir()})


def check_track(disc, track, pcm):
    """The track is that sound, in whole units, and its length is that of the sound."""
    width = disc.channels * disc.bits // 8
    frames = len(pcm) // width
    need(track.pcm == pcm + b"\0" * (frames % 2 * width), "a track has other samples")
    # The largest number of ticks that ends before the middle of the sample behind the last one.
    need(2 * track.ticks * disc.rate < (2 * frames + 1) * 90000 <= 2 * (track.ticks + 1) * disc.rate, "a wrong length")

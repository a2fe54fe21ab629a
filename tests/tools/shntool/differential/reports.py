# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""The modes that only look: len, info, hash, cmp, cue."""

import random

from case import case
from fixtures import BLOCKS, DERIVED, OTHERS, WAVES
from waves import header_of

CODED = ("flac", "shn", "ape", "tta", "aiff", "wv4")
SOUNDS = "cd1.wav off1.wav fourseconds.wav burnable.wav minute.wav mono8.wav dat.wav nothing.wav"


def lengths():
    for stem in WAVES:
        yield case(f"len {stem}.wav")
    for name in (*OTHERS, *DERIVED):
        yield case(f"len {name}")
    for ending in (*CODED, "aifc"):
        yield case(f"len cd1.{ending} off1.{ending}")
        yield case(f"len mono8.{ending}")
    for ending in ("flac", "shn", "aiff", "wv4"):
        yield case(f"len listafter.{ending} oddmono.{ending} dat.{ending}")
    for unit in ("b", "kb", "mb", "gb", "tb", "KB", "xb", ""):
        yield case(f"len -u '{unit}' {SOUNDS}")
        yield case(f"len -U '{unit}' {SOUNDS}")
    yield case(f"len -u kb -U mb -H {SOUNDS}")
    yield case(f"len -u b -u gb -U tb -U kb {SOUNDS}")
    yield case(f"len -c {SOUNDS}")
    yield case(f"len -t {SOUNDS}")
    yield case(f"len -ct {SOUNDS}")
    yield case(f"len -H {SOUNDS} hour.wav")
    yield case("len hour.wav minute.wav")
    yield case("len -c hour.wav dat.wav hour.flac", "hour.wav dat.wav")
    yield case("len cd1.wav cd2.wav")
    yield case("len cd1.wav dat.wav")
    yield case("len cd1.wav text nothere cd2.flac empty")
    yield case("len -t text")
    yield case("len cd1.wav cd1.wav cd1.wav")
    yield case("len -u")
    yield case("len -U")


def roundings():
    """Many lengths, which end on and beside the half of a frame or of a millisecond."""
    chance = random.Random(20090330)
    qualities = ((44100, 2, 16), (44100, 2, 16), (44100, 1, 16), (48000, 2, 16), (48000, 2, 24), (22050, 1, 8), (96000, 6, 24),
                 (11025, 1, 16), (44100, 2, 24), (32000, 2, 16))
    for batch in range(8):
        more = []
        for number in range(40):
            rate, channels, bits = qualities[0] if batch < 4 else chance.choice(qualities)
            sector = rate * channels * bits // 8 // 75
            size = chance.choice((chance.randrange(1 << 14), chance.randrange(1 << 24), chance.randrange((1 << 32) - 100),
                                  sector * chance.randrange(2000) + sector // 2 + chance.randrange(-2, 3)))
            more.append((f"f{number:02}", header_of(max(size, 0), rate, channels, bits)))
        names = [name for name, _ in more]
        for words in ("len", "len -H", "cue", "cue -s"):
            yield case([*words.split(), *names], "", more=more, name=f"{words} of many lengths, {batch}")
        yield case(["info", *names[:6]], "", more=more, name=f"info of many lengths, {batch}")


def infos():
    for stem in WAVES:
        yield case(f"info {stem}.wav")
    for name in ("noseek.shn", "id3.flac", "id3.shn", "cut.shn", "stub.flac", "junk.flac", "cut.aiff"):
        yield case(f"info {name}")
    for ending in CODED:
        yield case(f"info cd1.{ending}")
        yield case(f"info mono8.{ending}")
    yield case("info -H minute.wav hour.wav dat.wav")
    yield case("info cd1.wav text nothere mono8.wav")
    yield case("info text")
    yield case("info -x cd1.wav")


def hashes():
    for stem in WAVES:
        if stem not in ("minute", "hour"):
            yield case(f"hash {stem}.wav")
    for ending in CODED:
        yield case(f"hash cd1.{ending}")
        yield case(f"hash -s mono8.{ending}")
    for name in ("id3.flac", "id3.shn", "cut.flac", "cut.shn", "cut.aiff", "junk.flac", "brokenflac", "brokenshn"):
        yield case(f"hash {name}")
    files = "cd1.wav cd2.flac off1.wav"
    for options in ("-m", "-s", "-c", "-c -s", "-sc", "-m -s", "-s -m", "-q", "-c -q", "-P dot", "-P none -c"):
        yield case(f"hash {options} {files}")
    yield case("hash -c cd1.wav text cd2.wav")
    yield case("hash -c cd1.wav dat.wav mono8.wav")
    yield case("hash -c cd2.wav cd1.wav")
    yield case("hash -r none -c cd2.wav cd1.wav")
    yield case("hash cd1.wav text nothere cd2.wav")
    yield case("hash -c nothere")
    yield case("hash minute.wav", merged=True)
    for name in ("plain.aiff", "sowt.aifc", "ima4.aifc", "fewer.aiff", "more.aiff", "none.aiff", "short.aiff"):
        yield case(f"hash {name}")
        yield case(f"info {name}")
    yield case("hash -c " + " ".join(f"size{size}.wav" for size in BLOCKS))


def comparisons():
    pairs = ("cd1.wav cd1.wav", "cd1.wav cd1.flac", "cd1.shn cd1.ape", "cd1.wav shorter.wav", "shorter.wav cd1.wav",
             "cd1.wav changed.wav", "cd1.wav shifted.wav", "shifted.wav cd1.wav", "cd1.wav shiftedback.wav",
             "cd1.wav shiftedchanged.wav", "cd1.wav cd2.wav", "cd1.wav dat.wav", "cd1.wav cd24.wav",
             "cd1.wav mono44.wav", "cd1.wav nothing.wav", "nothing.wav nothing.wav", "odd.wav odd.wav",
             "stereo8.wav cd1.wav", "quiet.wav quiet.wav", "truncated.wav truncated.wav", "listafter.wav junk.wav",
             "undersector.wav onesector.wav")
    for pair in pairs:
        for options in ("", "-l ", "-s ", "-ls "):
            yield case(f"cmp {options}{pair}")
    for options in ("-s -f 1", "-s -f 0", "-s -f 8", "-f 8", "-s -f -1", "-s -f x", "-s -f 2 -l", "-s -c 1", "-s -c 0",
                    "-s -c -3", "-s -c x", "-s -c 1000", "-c 2", "-s -f", "-c", "-q", "-q -s", "-P spin", "-P face"):
        yield case(f"cmp {options} cd1.wav shiftedchanged.wav")
    for files in ("", "cd1.wav", "cd1.wav cd1.wav cd1.wav", "cd1.wav text", "text cd1.wav", "nothere cd1.wav"):
        yield case(f"cmp {files}")
    for size in BLOCKS:
        yield case(f"cmp size{size}.wav size{size}.wav")
        yield case(f"cmp -s size{size}.wav size{size}.wav")
    yield case("cmp -r none cd2.wav cd1.wav")
    yield case("cmp cd2.wav cd1.wav")


def cue_sheets():
    sets = ("cd1.wav cd2.wav cd3.wav", "cd1.wav", "off1.wav off2.wav off3.wav", "minute.wav cd1.flac minute.wav",
            "hour.wav hour.wav hour.wav cd1.wav", "dat.wav dat2.wav", "mono8.wav mono8.wav", "cd1.wav dat.wav",
            "nothing.wav cd1.wav", "cd1.wav text", "text", "nothere", "", "truncated.wav cd1.wav",
            "odd.wav cd1.wav", "junk.wav listafter.wav")
    for files in sets:
        for options in ("", "-c ", "-s "):
            yield case(f"cue {options}{files}")
    yield case("cue -c -s cd1.wav cd2.wav")
    yield case("cue -s -c cd1.wav cd2.wav")
    yield case("cue -H minute.wav cd1.wav")
    yield case("cue -q off1.wav cd1.wav")
    yield case("cue -w off1.wav text cd1.wav")


# What the reference refuses; the same sound in a form that it takes, under whose bytes it tells the same; the modes for
# which that is so.
TODAYS_RECORDINGS = (
    ("extensible.wav", "longfmt24.wav", ("len", "hash", "hash -s", "cmp", "cue")),
    ("extensible24.wav", "longfmt24bits.wav", ("len", "hash", "hash -s", "cmp", "cue -s")),
    ("oddbefore.wav", "evenbefore.wav", ("len", "info", "hash", "cmp", "strip", "cue", "trim")),
    ("rf64.wav", "listafter.wav", ("hash", "hash -s", "cmp", "cue")),
    ("cd24.flac", "cd24.wav", ("hash", "hash -s", "cmp", "cue -s")),
    ("studio96.flac", "studio96.wav", ("hash", "hash -s", "cmp", "cue -s")),
    ("cd24.aiff", "cd24.wav", ("hash", "hash -s", "cmp", "cue -s")),
    ("cd1.m4a", "cd1.wav", ("hash", "hash -s", "hash -c", "cmp", "cue", "cue -s", "join -a x", "join -a x -o flac", "split")),
    ("cd24.m4a", "cd24.wav", ("hash", "hash -s", "cmp", "cue -s")),
    ("cd24.wv", "cd24.wav", ("hash", "hash -s", "cmp", "cue -s")),
    *((f"{stem}.wv", f"{stem}.wv4", ("len", "info", "hash", "hash -s", "cmp", "cmp -s", "cue", "cue -s", "conv", "conv -o flac",
                                     "pad", "pad -b", "trim", "strip", "join", "join -b -o flac", "fix -z x", "split", "cat"))
      for stem in ("cd1", "off1", "dat", "listafter")),
)


def todays_case(words, name, fixture):
    """The case of a mode on a file of that name. Modes that want two files get it twice."""
    twice = words.startswith(("cmp", "cue -s", "join"))
    return case(f"{words} {name} {name}" if twice else f"{words} {name}", f"{name}={fixture}", typed="11760\n")


def todays_recordings():
    for name, _, modes in TODAYS_RECORDINGS:
        for words in modes:
            yield todays_case(words, name, name)


CASES = [*todays_recordings(), *lengths(), *roundings(), *infos(), *hashes(), *comparisons(), *cue_sheets()]

# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""The modes that write files of the samples of others: conv, trim, pad, strip, join, fix, cat, gen."""

from case import case
from fixtures import BLOCKS, WAVES

FORMATS = ("wav", "aiff", "shn", "flac", "ape", "tta", "wv")
LARGE = ("minute", "hour", "fourseconds", "burnable")
# What is wrong with the file, with the header or around the sound.
ODD = [stem for stem in list(WAVES)[list(WAVES).index("listafter"):]]
SMALL = ["cd1", "off1", "undersector", "oneframe", "nothing", "quiet"]
OTHER_QUALITIES = ["mono8", "mono16", "stereo8", "dat", "studio24", "studio96", "cd24", "wide32", "six", "mono44"]


def conversions():
    for target in FORMATS:
        for source in ("wav", "aiff", "shn", "flac", "ape", "tta", "wv4"):
            yield case(f"conv -o {target} -d out off1.{source}", f"off1.{source} out/")
        for stem in ("mono8", "dat", "nothing", "listafter", "odd"):
            yield case(f"conv -o {target} -d out {stem}.wav", f"{stem}.wav out/")
    for stem in OTHER_QUALITIES + SMALL + ODD:
        yield case(f"conv -d out {stem}.wav", f"{stem}.wav out/")
    for target in ("null", "term", "cust", "alac", "mp3", "lpac", "", "WAV"):
        yield case(f"conv -o '{target}' cd1.wav")
    for name in ("cut.flac", "cut.shn", "cut.ape", "cut.tta", "cut.aiff", "junk.flac", "id3.shn", "text"):
        yield case(f"conv -d out {name}", f"{name} out/")
    yield case("conv cd1.wav")
    yield case("conv cd1.flac")
    yield case("conv -o flac cd1.wav cd2.wav off1.shn")
    yield case("conv -o flac cd1.wav text cd2.wav")
    yield case("conv -o flac nothere cd2.wav")
    yield case("conv -o flac", "cd1.wav")
    for options in ("-t", "-t -o flac", "-t -o null", "-t -a x -z y", "-t cd1.wav"):
        for typed, kind in ((WAVES["off1"](), "sound"), (WAVES["listafter"](), "more"), (b"words", "words"),
                            (WAVES["truncated"](), "cut"), (b"", "nothing"), (WAVES["odd"](), "odd")):
            yield case(f"conv {options}", "cd1.wav", name=f"conv {options} of {kind}", typed=typed)


def trims():
    for stem in ("framed", "late", "early", "full", "quiet", "nothing", "cd1", "off1", "oneframe", *OTHER_QUALITIES):
        for options in ("", "-b ", "-e "):
            yield case(f"trim {options}{stem}.wav")
    for stem in ODD:
        yield case(f"trim {stem}.wav")
    for target in FORMATS:
        yield case(f"trim -o {target} framed.wav late.wav quiet.wav")
    for source in ("aiff", "shn", "flac", "ape", "tta", "wv4"):
        yield case(f"trim framed.{source}")
    yield case("trim -b -e framed.wav")
    yield case("trim -e -b framed.wav")
    yield case("trim framed.wav text nothere quiet.wav full.wav late.flac")
    yield case("trim text")
    yield case("trim", "framed.wav")


def pads():
    for stem in ("off1", "off2", "cd1", "undersector", "oneframe", "nothing", *OTHER_QUALITIES, *ODD):
        yield case(f"pad {stem}.wav")
        if stem in SMALL:
            yield case(f"pad -b {stem}.wav")
            yield case(f"pad -e {stem}.wav")
    for target in FORMATS:
        yield case(f"pad -o {target} off1.wav cd1.wav off3.flac")
    for source in ("aiff", "shn", "flac", "ape", "tta", "wv4"):
        yield case(f"pad -b off1.{source}")
    yield case("pad -b -e off1.wav")
    yield case("pad -e -b off1.wav")
    yield case("pad cd1.wav off1.wav text dat.wav nothere off2.wav")
    yield case("pad text")


def strips():
    for stem in (*SMALL, *OTHER_QUALITIES, *ODD):
        yield case(f"strip {stem}.wav")
        if stem in ODD[:8]:
            yield case(f"strip -c {stem}.wav")
            yield case(f"strip -e {stem}.wav")
    for target in FORMATS:
        yield case(f"strip -o {target} listafter.wav longfmt.wav manychunks.wav")
    for source in ("shn", "wv4", "flac", "ape", "tta"):
        yield case(f"strip listafter.{source} longfmt.{source}")
    yield case("strip -c -e listafter.wav")
    yield case("strip cd1.wav listafter.wav text nothere longfmt.wav")
    yield case("strip text")


def joins():
    sets = ("cd1.wav cd2.wav", "off1.wav off2.wav", "cd1.wav off1.wav", "off1.wav cd1.flac off2.shn", "dat.wav dat2.wav",
            "mono8.wav mono8.wav", "cd1.wav dat.wav", "cd1.wav mono44.wav", "cd1.wav cd24.wav", "cd1.wav text",
            "text nothere", "cd1.wav nothing.wav", "nothing.wav nothing.wav", "odd.wav odd.wav", "truncated.wav cd1.wav",
            "cd1.wav truncated.wav", "junk.wav listafter.wav", "cd1.wav", "", "longfmt.wav cd1.wav", "onesdata.wav cd1.wav",
            "zerodata.wav cd1.wav", "oddmono.wav oddmono.wav", "wide32.wav wide32.wav", "studio24.wav studio24.wav",
            "six.wav six.wav", "cd1.aiff off1.tta off2.ape", "cut.flac cd1.flac", "wrongblock.wav cd1.wav")
    for files in sets:
        for options in ("", "-b ", "-n "):
            yield case(f"join {options}{files}")
    for target in FORMATS:
        yield case(f"join -o {target} cd1.wav off1.wav")
    for options in ("-e", "-b -n", "-n -b", "-n -e", "-a pre", "-z post", "-a pre -z post", "-a '' -z ''", "-d out",
                    "-d nowhere", "-q", "-H", "-P dot", "-P spin", "-P face", "-P none", "-w", "-r none", "-r ascii"):
        yield case(f"join {options} off1.wav cd1.wav", "off1.wav cd1.wav out/")
    yield case("join cd3.wav joined.wav", "cd3.wav joined.wav=cd1.wav")
    yield case("join -O always cd3.wav joined.wav", "cd3.wav joined.wav=cd1.wav")
    yield case("join -O never cd3.wav cd1.wav", "cd3.wav cd1.wav joined.wav=text")
    yield case("join -O always cd3.wav cd1.wav", "cd3.wav cd1.wav joined.wav=text")
    yield case("join cd3.wav cd1.wav", "cd3.wav cd1.wav joined.wav=text", name="join over a file that is there")


def fixes():
    sets = ("off1.wav off2.wav off3.wav", "cd1.wav off1.wav off2.wav", "cd1.wav cd2.wav", "cd1.wav", "off1.wav",
            "off1.wav cd1.wav", "undersector.wav off1.wav", "undersector.wav undersector.wav", "nothing.wav off1.wav",
            "off1.wav dat.wav", "dat.wav dat2.wav", "off1.wav text", "off1.wav nothere", "truncated.wav off1.wav",
            "odd.wav off1.wav", "onesdata.wav off1.wav", "junk.wav off1.wav listafter.wav",
            "off1.flac off2.shn off3.ape", "cd1.wav cd2.wav off3.wav cd3.wav", "text", "cd24.wav cd24.wav")
    for files in sets:
        for options in ("", "-f ", "-u ", "-c "):
            yield case(f"fix {options}{files}")
    for options in ("-b", "-k", "-n", "-nk", "-cf", "-cu", "-bfu", "-a pre", "-z post", "-a pre -z ''", "-d out", "-q",
                    "-q -c", "-H", "-P dot", "-P spin", "-P face", "-P none", "-P pct", "-w", "-r ascii", "-r none"):
        yield case(f"fix {options} cd1.wav off1.wav off2.wav off3.wav", "cd1.wav off1.wav off2.wav off3.wav out/")
    for target in FORMATS:
        yield case(f"fix -o {target} off1.wav off2.wav")
    yield case("fix", "off1.wav")
    yield case("fix -c", "off1.wav")
    yield case("fix -O never off1.wav off2.wav", "off1.wav off2.wav off2-fixed.wav=text")
    yield case("fix -O always off1.wav off2.wav", "off1.wav off2.wav off2-fixed.wav=text")
    yield case("fix off1.wav off2.wav", "off1.wav off2.wav off1-fixed.wav=text", name="fix over a file that is there")
    yield case("fix -z '' off1.wav off2.wav")
    yield case("fix -O always -z '' off1.wav off2.wav")


def blocks():
    """The progress of what is read and written in blocks."""
    for size in BLOCKS:
        for words in ("conv -d out", "pad -d out", "pad -b -d out", "join -d out cd1.wav", "join -b -d out cd1.wav",
                      "fix -d out off1.wav", "trim -d out", "conv -P spin -d out", "conv -P face -d out", "conv -P dot -d out"):
            yield case(f"{words} size{size}.wav", f"cd1.wav off1.wav size{size}.wav out/")
        if size > 4:
            yield case(f"split -l {size // 3 + 1} size{size}.wav")


def catenations():
    for stem in ("cd1", "nothing", "mono8", *ODD):
        yield case(f"cat {stem}.wav")
    for options in ("-c", "-d", "-e", "-n", "-ce", "-de", "-cd", "-cde", "-cn", "-q"):
        yield case(f"cat {options} listafter.wav oddlist.wav cd1.flac")
    yield case("cat cd1.wav text nothere cd1.shn")
    yield case("cat text")


def silences():
    for length in ("0", "1", "2352", "1000000", "0:01", "0:01.10", "0:00.500", "0:00.200", "0:00.001", "1:75", "0:61", "0:01.75",
                   "-5", "x", "", "1:2:3", "0:1", "0:01.1", "0:01.1234", "4294967297x"):
        yield case(["gen", "-l", length])
    for target in FORMATS:
        yield case(f"gen -o {target} -l 0:01")
    for options in ("", "-l", "-l 10 -a pre -z post", "-l 10 -d out", "-q -l 10", "-l 10 words", "-l 10 -l 20"):
        yield case(f"gen {options}", "out/")


CASES = [*conversions(), *trims(), *pads(), *strips(), *joins(), *fixes(), *blocks(), *catenations(), *silences()]

# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""What all modes share: options, names of files, lists of files, overwriting, encoders and decoders by description."""

from case import PIPE, Link, case
from fixtures import HELPERS

MODES = ("len", "fix", "hash", "pad", "join", "split", "cat", "cmp", "cue", "conv", "info", "strip", "gen", "trim")

# How far the sound has got when an encoder dies that has read nothing, or not all.
DYING = rb"  0%( |[^\n]*output file: [^\n]*\n)[\x08\d% ]*(100% OK\n|ERROR\n[^\n]*error while transferring [^\n]*\n)"
# Those of the specifications and prefixes whose encoder cannot write, or not read.
HOPELESS = ("nowhere", "text", "a/b", "nosuchprogram", "-s -o %f", "false", "true", "sh -c", "cat %f", "'", "{", "flac ext",
            "x x")

NAMES = {
    "blank": "two  words.wav", "leading blank": " x.wav", "newline": "a\nb.wav", "tab": "a\tb.wav",
    "double quote": 'a"b.wav', "quote": "a'b.wav", "backslash": "a\\b.wav", "percent": "100%d %s %n.wav",
    "percent f": "%f.wav", "dash": "-x.wav", "double dash": "--.wav", "dollar": "$HOME `id`.wav", "semicolon": "a;b&c|d.wav",
    "star": "a*b?[c].wav", "255 bytes": "n" * 251 + ".wav", "250 bytes": "n" * 246 + ".wav",
    "Latin-1": b"S\xfc\xdf.wav", "UTF-8": "日本語 é.wav",
    "escape": "a\x1b[31mb.wav", "carriage return": "a\rb.wav", "dots": "a.b.c.wav", "no ending": "sound",
    "only an ending": ".wav", "other ending": "sound.flac", "capitals": "SOUND.WAV", "dot at the end": "sound.",
    "folder with a dot": "some.folder/sound", "braces": "{a},[b].wav", "equals": "a=b.wav", "nonbreaking": "a\xa0b.wav",
}


def names():
    for kind, name in NAMES.items():
        folder = [("some.folder", None)] if kind.startswith("folder") else []
        more = [*folder, (name, "off1.wav"), ("out", None)]
        encoding = "conv -o shn" if "bytes" in kind else "conv -o flac"
        for mode in ("len", "info", "hash", "cue", encoding, "conv -d out", "trim", "pad -d out", "cat"):
            yield case([*mode.split(), "--", name], "", more=more, name=f"{mode} of a name with {kind}")
        yield case(["join", "-d", "out", "--", name, "cd1.wav"], "cd1.wav", more=more, name=f"join of a name with {kind}")
        yield case(["fix", "-d", "out", "--", name], "", more=more, name=f"fix of a name with {kind}")
        yield case(["split", "-d", "out", "--", name], "", more=more, typed="0:00.10\n",
                   name=f"split of a name with {kind}")
        yield case(["hash", "--", name], "", name=f"hash of a missing name with {kind}")
    yield case(["len", "-x.wav"], "", more=[("-x.wav", "cd1.wav")], name="len of a leading dash without --")
    yield case(["len", "./-x.wav"], "", more=[("-x.wav", "cd1.wav")])
    yield case(["conv", "-o", "flac", "{folder}/cd1.wav"], "cd1.wav")
    yield case(["len", "{folder}/cd1.wav", "{folder}//cd1.wav", "./cd1.wav"], "cd1.wav")
    yield case(["len", "n" * 300], "", name="len of a name of 300 bytes")
    yield case(["len", ""], "", name="len of an empty name")
    yield case(["conv", "-o", "shn", "x.flac"], "", more=[("x.flac", "cd1.wav")])
    yield case(["conv", "-o", "shn", "x.wave"], "", more=[("x.wave", "cd1.wav")])
    yield case(["conv", "x.flac"], "", more=[("x.flac", "cd1.wav")])
    yield case(["conv", "-o", "flac", "x.wv"], "", more=[("x.wv", "cd1.wv4")])


def order():
    mixed = ("t10.wav", "t2.wav", "T1.wav", "t1.wav", "t02.wav", "t2a.wav", "t 3.wav", "t-4.wav", "a.wav", "10.wav", "9.wav",
             "09.wav", "t2.1.wav", "t2.10.wav", "Z.wav", "_x.wav", "t001.wav", "t1b10.wav", "t1b9.wav")
    more = [(name, "undersector.wav") for name in mixed]
    for kind in ("", "-r natural", "-r ascii", "-r none"):
        for mode in ("len", "hash -q", "cue", "join -a x", "fix"):
            yield case([*mode.split(), *kind.split(), *mixed], "", more=more, name=f"{mode} {kind or 'by default'} in order")
    yield case("len -r ask cd1.wav cd2.wav")
    yield case("len -r words cd1.wav")
    yield case("len -r")
    for typed in ("d\n", "q\n", "s 1 2\nd\n", "m 3 1\nd\n", "b 3\nd\n", "e 1\nd\n", "a\nd\n", "n\nd\n", "x\nd\n",
                  "s 1\nd\n", "s 9 1\nd\n", "\4"):
        yield case("join -r ask cd2.wav cd1.wav cd3.wav", name=f"join -r ask, {typed!r} typed", typed=typed, terminal=True)
    yield case("fix -r ask off2.wav off1.wav", name="fix -r ask on a terminal", typed="s 1 2\nd\n", terminal=True)
    yield case("join -r ask cd2.wav cd1.wav")
    yield case("fix -r ask cd2.wav cd1.wav")
    yield case(["len", "-r", "natural", "x0.wav", "x00.wav", "x.wav", "x1.wav", "x01.wav"], "",
               more=[(name, "onesector.wav") for name in ("x0.wav", "x00.wav", "x.wav", "x1.wav", "x01.wav")])


def lists():
    for kind, text in {"plain": b"cd2.wav\ncd1.wav\n", "no last newline": b"cd2.wav\ncd1.wav", "CR LF": b"cd1.wav\r\n",
                       "blank lines": b"\ncd1.wav\n\n", "nothing": b"", "blanks": b"  cd1.wav \n", "missing": b"nothere\n",
                       "comment": b"# cd1.wav\n", "long": b"n" * 3000 + b"\ncd1.wav\n", "zero": b"cd1.wav\0\ncd2.wav\n"}.items():
        yield case("len -F list", "cd1.wav cd2.wav", more=[("list", text)], name=f"len -F, {kind}")
        yield case("len", "cd1.wav cd2.wav", typed=text, name=f"len of typed names, {kind}")
    yield case("len -F nothere")
    yield case("len -F", "")
    yield case("len -F list cd2.wav", "cd1.wav cd2.wav", more=[("list", b"cd1.wav\n")])
    yield case("hash -F list", "cd1.wav cd2.wav", more=[("list", b"cd2.wav\ncd1.wav\n")])
    yield case("join -F list", "cd1.wav cd2.wav", more=[("list", b"cd2.wav\ncd1.wav\n")])
    yield case("len", "cd1.wav", name="len on a terminal", typed="cd1.wav\n\4", terminal=True)
    for mode in MODES:
        yield case(mode, "cd1.wav", name=f"{mode} of nothing")


def options():
    for mode in MODES:
        yield case(f"{mode} -h")
        yield case(f"{mode} -v")
        yield case(f"{mode} -Y cd1.wav")
        yield case(f"{mode} --help")
        yield case("-h cd1.wav", program=f"shn{mode}", name=f"shn{mode} -h")
        yield case("cd1.wav", program=f"shn{mode}", name=f"shn{mode} cd1.wav", typed="0:00.10\n")
        yield case(f"{mode} -P words cd1.wav")
        yield case(f"{mode} -O words cd1.wav")
        yield case(f"{mode} -d out cd1.wav", "cd1.wav out/", typed="0:00.10\n", name=f"{mode} with a folder for outputs")
        yield case(f"{mode} -qw text cd1.wav", typed="0:00.10\n")
        yield case(f"{mode} -w text off1.wav", typed="0:00.10\n")
    for line in ("", "-h", "-v", "-f", "-m", "-a", "-x", "words", "LEN", "-h -v", "-vh", "len2",
                 "''", "-j", "- len", "-- len"):
        yield case(f"{line}", "", name=f"shntool {line}")
    yield case("len cd1.wav", program="/some/folder/shntool", name="len by a path")
    yield case("len nothere", program="/some/folder/shntool", name="len by a path, with a warning")
    yield case("-h", program="other", name="another name -h")
    yield case("nothere", program="/some/folder/shnlen", name="shnlen by a path")
    for option in "FPirOadoz":
        yield case(f"conv -{option}", "cd1.wav")
        yield case(f"conv cd1.wav -{option}")
    for progress in ("pct", "dot", "spin", "face", "none", "PCT", ""):
        for mode in ("hash", "conv -o flac", "cmp cd1.wav", "trim"):
            yield case(f"{mode} -P '{progress}' minute.wav", "minute.wav cd1.wav", merged=True)
        yield case(f"conv -P '{progress}' -d out cd1.wav off1.flac nothing.wav", "cd1.wav off1.flac nothing.wav out/")
    for mode in ("len", "hash", "hash -c", "conv -o flac", "cmp cd2.wav", "pad", "strip", "info", "cue", "trim", "split -l 0:00.10",
                 "join cd2.wav", "fix cd2.wav"):
        for name in ("off1.wav", "off1.flac", "text"):
            yield case(f"{mode} -D {name}", f"{name} cd2.wav")
    yield case("hash -cD off1.wav cd2.wav onesector.wav text", name="hash -c -D of several, and no sound")
    yield case("hash -cD off1.wav cd2.wav onesector.wav", name="hash -c -D of several")
    yield case("len -D off1.wav", name="len with ST_DEBUG", environment=(("ST_DEBUG", "1"),))
    for mode in ("conv -o flac", "trim", "pad", "hash"):
        yield case(f"{mode} -q off1.wav quiet.wav text")
        yield case(f"{mode} -w off1.wav quiet.wav text")
        yield case(f"{mode} -H off1.wav", merged=True)
    yield case("len -tc -ukb -Umb off1.wav")
    yield case("conv -oflac -Pdot -Oalways -ax -zy -d. off1.wav")
    yield case("len off1.wav -c")
    yield case("len off1.wav -- -c")
    yield case("conv off1.wav -o flac")


def merged_streams():
    for line in ("len cd1.wav text nothere", "info cd1.wav text", "hash cd1.wav text cd2.wav", "cmp cd1.wav changed.wav",
                 "cmp -l cd1.wav changed.wav", "cue off1.wav cd1.wav", "cue -s cd1.wav dat.wav", "fix off1.wav off2.wav",
                 "trim framed.wav quiet.wav", "pad off1.wav cd1.wav text", "strip cd1.wav listafter.wav",
                 "join off1.wav off2.wav", "join cd1.wav dat.wav", "conv -o flac cd1.wav text", "conv -o shn cd1.wav",
                 "conv -o ape cd1.wav", "conv -o tta cd1.wav", "conv -o wv cd1.wav", "hash cut.flac", "len -h", "nothing"):
        yield case(line, merged=True, name=f"{line}, both streams in one")


def overwriting():
    for how in ("", "-O never", "-O always", "-O ask"):
        yield case(f"conv {how} -o flac cd1.wav cd2.wav", "cd1.wav cd2.wav cd1.flac=text")
        yield case(f"trim {how} framed.wav", "framed.wav framed-trimmed.wav=text")
        yield case(f"pad {how} off1.wav", "off1.wav off1-padded.wav=text")
        yield case(f"strip {how} longfmt.wav", "longfmt.wav longfmt-stripped.wav=text")
        yield case(f"gen {how} -l 10", "silence.wav=text")
        yield case(f"conv {how} -o wav cd1.wav", "cd1.wav", name=f"conv {how} onto itself")
        yield case(f"trim {how} -a '' -z '' framed.wav")
        yield case(f"pad {how} -z '' off1.wav")
        yield case(f"conv {how} -o flac cd1.wav", "cd1.wav cd1.flac/", name=f"conv {how} onto a folder", passing=DYING)
    for typed in ("y\n", "n\n", "a\n", "v\n", "r\nother.flac\n", "yes\n", "x\ny\n", "\ny\n", "Y\n", "r\ncd2.flac\ny\n"):
        yield case("conv -o flac cd1.wav cd2.wav", "cd1.wav cd2.wav cd1.flac=text cd2.flac=text", terminal=True,
                   typed=typed + "y\ny\n", name=f"conv asks, {typed!r} typed")


def outputs():
    for options in ("-a pre", "-z post", "-a pre -z post", "-a ''", "-z ''", "-a a/b", "-z a/b", "-a %d", "-a '{x}'",
                    "-d out", "-d out/", "-d ''", "-d nowhere", "-d text", "-d .", "-d out -a pre", "-d out -d nowhere"):
        for mode in ("conv", "trim", "pad"):
            hopeless = any(word in options for word in HOPELESS)
            yield case(f"{mode} {options} -o flac off1.wav", "off1.wav text out/", passing=DYING if hopeless else b"")
    for target in ("flac flac -s -o %f -", "flac ext=fla", "flac ext=fla flac -s -8 -o %f -", "flac ext=", "flac ext",
                   "flac flac -s -o %f", "flac flac -s -", "flac nosuchprogram - %f", "flac false", "flac true %f",
                   "flac sh -c 'exit 3' %f", "cust", "cust ext=raw", "cust ext=raw dd", "cust ext=raw dd status=none of=%f",
                   "cust ext=mp3 lame --quiet - %f", "cust dd of=%f", "cust ext=raw {dd status=none of=%f}",
                   "cust ext=flac flac -8  -V  -s -o %f -", "cust ext=flac flac --lax -s -o %f -",
                   "cust ext={raw} dd status=none of=%f", "cust {ext=raw} dd status=none of=%f",
                   "cust ext=raw dd {status=none} {of=%f}", "cust ext=raw dd 'status=none' of=%f",
                   "cust ext=a/b dd status=none of=%f",
                   "cust ext=raw dd status=none of=%f%f", "cust ext=raw dd status=none of=x.%f.y", "cust ext=raw cat %f",
                   "wav ext=wave",
                   "wav cat %f", "aiff ext=aif", "shn shorten -v2 - %f", "shn shorten -b 128 - %f", "wv wavpack -q -y -h - -o %f",
                   "ape mac - %f -c3000", "null ext=x", "term ext=x", " flac", "flac ", "flac  ext=fla", "ext=fla",
                   "cust ext=raw dd status=none of=%f " + "x " * 300):
        hopeless = any(word in target for word in HOPELESS) and not target.startswith("flac ext=")
        yield case(["conv", "-o", target, "off1.wav"], "off1.wav", passing=DYING if hopeless else b"")
    for helper in HELPERS:
        for mode in ("conv", "trim", "join cd1.wav", "fix", "split"):
            yield case(f"{mode} -o 'cust ext=raw {helper} %f' late.wav", typed="0:00.05\n")
    for source in ("flac", "flac flac", "flac flac -c -d -s %f", "flac nosuchprogram", "flac false", "flac cat other.wav %f",
                   "flac {flac} -c -d -s %f", "flac flac -c -d -s", "shn shorten -x %f -", "wav", "wav cat %f", "words", "",
                   "cust cat %f", "flac -", "flac {flac -c -d -s %f}", "flac flac -c -d -s {%f}"):
        yield case(["hash", "-i", source, "cd1.flac"], "cd1.flac other.wav=cd2.wav")
        yield case(["len", "-i", source, "cd1.flac"], "cd1.flac other.wav=cd2.wav")
    variables = (("ST_FLAC_ENC", "ext=fla"), ("ST_FLAC_ENC", "flac -s -0 -o %f -"), ("ST_FLAC_ENC", "nosuchprogram %f"),
                 ("ST_CUST_ENC", "ext=raw dd status=none of=%f"), ("ST_WAV_ENC", "ext=wave"), ("ST_FLAC_DEC", "nosuchprogram"))
    for name, value in variables:
        yield case(f"conv -o {'cust' if 'CUST' in name else 'wav' if 'WAV' in name else 'flac'} -d out off1.flac",
                   "off1.flac out/", environment=((name, value),), name=f"conv with {name}={value}",
                   passing=DYING if "nosuch" in value or "of=" in value else b"")
    yield case("conv -o flac -o shn off1.wav")
    yield case("hash -i 'flac nosuchprogram' -i 'flac flac' cd1.flac")


def obstacles():
    yield case("len out cd1.wav", "out/ cd1.wav")
    yield case("conv -o flac out", "out/")
    yield case("len cd1.wav cd2.flac", "cd1.wav cd2.flac", stranger=True, modes=(("cd1.wav", 0), ("cd2.flac", 0)),
               name="len of unreadable files")
    for mode in ("info", "hash", "conv -o shn", "cmp", "join", "fix", "trim"):
        yield case(f"{mode} cd1.wav cd2.flac", stranger=True, modes=(("cd1.wav", 0), ("cd2.flac", 0)),
                   name=f"{mode} of unreadable files")
    for mode in ("conv -o flac", "conv -o shn", "trim", "pad", "join cd1.wav", "strip", "fix"):
        yield case(f"{mode} off1.wav", "off1.wav cd1.wav", stranger=True, modes=((".", 0o555),), passing=DYING,
                   name=f"{mode} in a folder of others")
    yield case("conv -o flac -d out cd1.wav", "cd1.wav out/", stranger=True, modes=(("out", 0o500),), passing=DYING,
               name="conv into a folder of others")
    special = [("pipe", PIPE), ("link.wav", Link("cd1.wav")), ("loose", Link("nowhere")), ("round", Link("round"))]
    for mode in ("len", "hash", "conv -o shn", "pad", "info", "join cd1.wav", "fix"):
        for name, _ in special:
            yield case(f"{mode} {name}", "cd1.wav", more=special)
    for how in ("always", "never"):
        yield case(f"conv -O {how} -o flac cd1.wav", "cd1.wav other=text", more=[("cd1.flac", Link("other"))],
                   name=f"conv -O {how} onto a link")
        yield case(f"conv -O {how} -d out one/x.wav two/x.wav", "one/ two/ out/",
                   more=[("one/x.wav", "cd1.wav"), ("two/x.wav", "cd2.wav")])
    for mode in ("conv -o shn", "trim", "pad", "strip", "fix", "join one/off1.wav", "split"):
        for where in ("", "-d out ", "-d . "):
            yield case(f"{mode} {where}one/late.wav", "one/ out/", typed="0:00.02\n",
                       more=[("one/late.wav", "late.wav"), ("one/off1.wav", "off1.wav")])
    yield case("len /dev/null /dev/zero", "")
    yield case("hash /dev/null", "")
    yield case("hash cd1.wav/x", "cd1.wav")


CASES = [*names(), *order(), *lists(), *options(), *merged_streams(), *overwriting(), *outputs(), *obstacles()]

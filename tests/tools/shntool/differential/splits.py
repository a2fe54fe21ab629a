# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""The mode split: points in all their spellings, cue sheets, names, and the parts that are wanted."""

from case import case

SHEET = """PERFORMER "The Band"
TITLE "The Album"
FILE "x.wav" WAVE
  TRACK 01 AUDIO
    TITLE "First Song"
    PERFORMER "Singer One"
    INDEX 01 00:00:00
  TRACK 02 AUDIO
    TITLE "Second Song"
    PERFORMER "Singer Two"
    INDEX 00 00:00:08
    INDEX 01 00:00:10
  TRACK 03 AUDIO
    TITLE "Third: Song / Live * ?"
    INDEX 01 00:00:20
"""

# By a name, what is typed; the file has 30 sectors of 2352 bytes, or a quarter of a second at 48 kHz.
POINTS = {
    "bytes": "23520\n47040\n",
    "minutes": "0:00.10\n0:00.20\n",
    "whole seconds": "0:01\n",
    "milliseconds": "0:00.133\n0:00.267\n",
    "a millisecond": "0:00.001\n",
    "a few milliseconds": "0:00.005\n0:00.100\n",
    "mixed": "0:00.05\n23520\n0:00.200\n",
    "off sectors": "10000\n20000\n",
    "odd bytes": "10001\n20003\n",
    "one byte": "1\n",
    "no point": "",
    "only blank lines": "\n\n\n",
    "blank lines between": "0:00.10\n\n0:00.20\n\n",
    "no newline at the end": "0:00.10\n0:00.20",
    "CR LF": "0:00.10\r\n0:00.20\r\n",
    "blanks around": "  0:00.10  \n\t0:00.20\t\n",
    "words": "words\n",
    "words after": "0:00.10\nwords\n",
    "words on the line": "0:00.10 words\n",
    "zero": "0\n0:00.10\n",
    "zero as a time": "0:00.00\n0:00.10\n",
    "two zeros": "0\n0\n",
    "not increasing": "0:00.20\n0:00.10\n",
    "twice": "0:00.10\n0:00.10\n",
    "past the end": "0:00.40\n",
    "far past the end": "0:00.10\n10:00.00\n",
    "at the end": "70560\n",
    "at the end as a time": "0:00.10\n0:00.30\n",
    "close to the end": "70559\n",
    "negative": "-5\n",
    "many frames": "0:00.75\n",
    "many seconds": "0:60.00\n",
    "one digit": "0:0.1\n",
    "one digit of frames": "0:00.1\n",
    "four digits": "0:00.1000\n",
    "hours": "0:00:00.10\n",
    "hours too many": "1:00:00.10\n",
    "a comma": "0:00,10\n",
    "a colon for frames": "0:00:10\n",
    "a plus": "+23520\n",
    "hexadecimal": "0x5be0\n",
    "huge": "99999999999999999999\n",
    "wraps": "4294967396\n",
    "a point": "0.5\n",
    "percent": "50%\n",
    "a long line": "1" * 5000 + "\n",
    "a zero byte": "0:00.10\0\n0:00.20\n",
    "sectors of one": "".join(f"0:00.{frame:02}\n" for frame in range(1, 30)),
    "a sheet": SHEET,
    "a sheet with CR LF": SHEET.replace("\n", "\r\n"),
    "a sheet in small letters": SHEET.lower(),
    "a sheet with tabs": SHEET.replace("  ", "\t"),
    "a sheet without titles": "\n".join(line for line in SHEET.splitlines() if "TITLE" not in line),
    "a sheet of INDEX 00": SHEET.replace("INDEX 01", "INDEX 00"),
    "a sheet with REM": 'REM GENRE "Rock"\nREM DATE 1999\n' + SHEET,
    "a sheet with flags": SHEET.replace("    TITLE", "    FLAGS DCP\n    ISRC ABCDE1234567\n    TITLE"),
    "a sheet with a catalog": "CATALOG 1234567890123\n" + SHEET,
    "a sheet with unquoted titles": SHEET.replace('"', ""),
    "a sheet past the end": SHEET.replace("00:20", "50:20"),
    "a sheet not increasing": SHEET.replace("00:00:20", "00:00:05"),
    "a sheet with a mark": "\ufeff" + SHEET,
    "only an index": "INDEX 01 00:00:10\nINDEX 01 00:00:20\n",
    "an index without a number": "INDEX 00:00:10\n",
    "an index of nonsense": "INDEX 01 aa:bb:cc\n",
}
# What makes a list of points a sheet is its first line.
FIRST_LINES = ("abc TITLE x", "  TITLE x", " TITLE\tx", "TITLE", "TITLE ", "TRACK 01", "  TRACK 01 AUDIO", "REM", "REM ", "REM x",
               "; TITLE x", "5 TITLE x", "REM TITLE x", "INDEX 01 00:00:03", "FILEx", "FILE x", "PERFORMER x", "CATALOG 5", "ISRC x",
               "FLAGS x", "COMMENT x", "POSTGAP x", "CDTEXTFILE x", "SONGWRITER x", "GENRE x", "DISC_ID x", "title x")
POINTS |= {f"a sheet that starts with {line!r}": f"{line}\nINDEX 00 00:00:05\nINDEX 01 00:00:10\n" for line in FIRST_LINES}
# What the last number of a line is.
LINES = ("0:00,10", "0,10", "a5", "a5b7", "5b7", "5 7", "12-34", "0:00.10,5", "words 100 200", "0:00.10 0:00.20", "1.2.3", "0:00.",
         "0:", "0", ":10", "x0:00:10", "INDEX 02 00:00:10", "  INDEX 01 00:00:10", "INDEX 1 00:00:10", "INDEX 01 00:00:10 x",
         "0:00:10:", "0:00.10.", "0:00.067", "0:00.010", "00000:00.10", "0:0010", "4294967396", "0:00.10\r", "0:00.10\f", "1e3")
POINTS |= {f"the line {line!r}": f"{line}\n" for line in LINES}
NAMING = ("%n %t", "%p - %a - %n - %t", "%t", "%a", "%p", "%n", "%%", "%x %t", "words", "", "%n%", "a/%t")


def spellings():
    for kind, typed in POINTS.items():
        yield case("split cd1.wav", name=f"split at {kind}", typed=typed)
        yield case("split -f points cd1.wav", "cd1.wav", name=f"split -f at {kind}", more=[("points", typed.encode())])
    for kind in ("bytes", "minutes", "milliseconds", "mixed", "one byte", "odd bytes", "a sheet", "a colon for frames",
                 "past the end", "zero"):
        for stem in ("dat", "mono8", "off1", "studio24"):
            yield case(f"split {stem}.wav", name=f"split {stem}.wav at {kind}", typed=POINTS[kind])


def outputs():
    for target in ("wav", "aiff", "shn", "flac", "ape", "tta", "wv", "null", "cust ext=raw dd status=none of=%f"):
        yield case(f"split -o '{target}' cd1.wav", typed=POINTS["minutes"])
    for source in ("flac", "shn", "ape", "tta", "aiff", "wv4"):
        yield case(f"split cd1.{source}", typed=POINTS["minutes"])
    for options in ("-c 0", "-c 5", "-c 99", "-c -1", "-c x", "-c 1000", "-n %d", "-n %03d", "-n %x", "-n words", "-n %s",
                    "-n ''", "-n '%2d'", "-n %%", "-n %n", "-n %05d", "-a pre", "-z post", "-a pre -z post",
                    "-a ''", "-d out", "-d nowhere", "-q", "-H", "-w", "-P dot", "-P spin", "-P face", "-P none",
                    "-e 0:00.02", "-u 0:00.02", "-e 0:00.02 -u 0:00.03", "-e 100", "-u 101", "-e 0:00.50",
                    "-u 0:00.50", "-e x", "-u x", "-e 0", "-x 2", "-x 1,3", "-x 1-2", "-x 2-3,1", "-x 3-1", "-x 4",
                    "-x 0", "-x 1-9", "-x x", "-x ''", "-x 1,,2", "-x 2,2", "-x -2", "-x 2-", "-x '1, 3'",
                    "-x 2 -e 0:00.02 -u 0:00.02", "-O never", "-O always", "-m ab", "-t '%n - %t'"):
        yield case(f"split {options} cd1.wav", "cd1.wav out/", typed=POINTS["minutes"])
    for length in ("0:00.10", "0:00.07", "23520", "10000", "0:00.100", "0", "0:01", "70560", "70561", "1", "x", "", "-5"):
        yield case(["split", "-l", length, "cd1.wav"], "cd1.wav")
    yield case("split -l 0:00.10 -f points cd1.wav", "cd1.wav", more=[("points", b"0:00.05\n")])
    yield case("split -l 0:00.10 off1.wav")
    yield case("split -l 0:00.100 dat.wav")
    yield case("split -l 0:01 burnable.wav")
    yield case("split -l 0:02.05 -n %03d -c 7 -a 'pre ' -o flac burnable.wav")


def sheets():
    for naming in NAMING:
        yield case(["split", "-t", naming, "cd1.wav"], "cd1.wav", typed=SHEET)
    for pairs in (":-", ":-/_", ":-/_*x?.", ":", "", "::", " _", "SZ"):
        yield case(["split", "-t", "%n %t", "-m", pairs, "cd1.wav"], "cd1.wav", typed=SHEET)
    yield case("split -m :- cd1.wav", name="split -m without -t", typed=SHEET)
    yield case("split -t %t -x 2,3 -o flac -d out cd1.wav", "cd1.wav out/", typed=SHEET)
    yield case("split -t %t -a pre -z post cd1.wav", typed=SHEET)
    yield case("split -t '%n %t' -n %d -c 5 cd1.wav", typed=SHEET)
    yield case("split -t %t cd1.wav", name="split -t of a sheet without titles", typed=POINTS["a sheet without titles"])
    yield case("split -t %t cd1.wav", name="split -t of equal titles", typed=SHEET.replace("Second", "First"))
    yield case("split -t %t cd1.wav", name="split -t of unquoted titles", typed=SHEET.replace('"', ""))
    yield case("split -t %t cd1.wav", name="split -t of an empty title", typed=SHEET.replace("Second Song", ""))
    yield case("split -t %t cd1.wav", name="split -t of a quote in a title", typed=SHEET.replace("Second", 'A "B"'))
    yield case("split -t %t cd1.wav", name="split -t of foreign letters", typed=SHEET.replace("Second", "Süß 日本"))
    yield case("split -t %t cd1.wav", name="split -t of Latin-1", typed=SHEET.replace("Second", "S\xfc").encode("latin-1"))
    yield case("split -t %t cd1.wav", name="split -t of dots", typed=SHEET.replace("Second Song", "../up"))
    yield case("split -t '%n %p' cd1.wav", name="split -t of performers", typed=SHEET)
    yield case("split -t %t -f sheet.cue cd1.wav", "cd1.wav", more=[("sheet.cue", SHEET.encode())])
    yield case("split -t %t cd1.wav", name="split -t of CR LF", typed=SHEET.replace("\n", "\r\n"))


def command_lines():
    yield case("split", "cd1.wav")
    yield case("split", "cd1.wav", name="split with typed name", typed="cd1.wav\n0:00.10\n")
    yield case("split -f points", "cd1.wav", more=[("points", b"0:00.10\n")], typed="cd1.wav\n")
    yield case("split -f nothere cd1.wav")
    yield case("split -f '' cd1.wav")
    yield case("split -f out cd1.wav", "cd1.wav out/")
    yield case("split cd1.wav cd2.wav", typed="0:00.10\n")
    yield case("split nothere", typed="0:00.10\n")
    yield case("split text", typed="0:00.10\n")
    yield case("split cd1.wav", name="split on a terminal", typed="0:00.10\n0:00.20\n\4", terminal=True)
    yield case("split -q cd1.wav", name="split -q on a terminal", typed="0:00.10\n\4", terminal=True)
    yield case("split -F list cd1.wav", "cd1.wav cd2.wav", more=[("list", b"cd2.wav\n")], typed="0:00.10\n")
    for option in "cefnlmtux":
        yield case(f"split -{option}", "cd1.wav")
    for stem in ("nothing", "oneframe", "undersector", "odd", "truncated", "onesdata", "longdata", "junk", "listafter",
                 "manychunks", "longfmt", "longriff", "shortriff", "zerodata", "wrongblock", "id3", "headeronly",
                 "oddmono", "oddlist"):
        yield case(f"split {stem}.wav", typed="0:00.05\n")
    for name, there in (("never", "-O never"), ("always", "-O always"), ("ask", "-O ask"), ("nothing said", "")):
        yield case(f"split {there} cd1.wav", "cd1.wav split-track02.wav=text", name=f"split over a file, {name}",
                   typed="0:00.10\n")


CASES = [*spellings(), *outputs(), *sheets(), *command_lines()]

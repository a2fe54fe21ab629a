# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Where the distribution's program is plainly wrong, or refuses what it need not: the cases, the reason, and what is
expected in its place. Everything else has to equal it."""

import dataclasses
import fnmatch
import re

from case import case
from reports import TODAYS_RECORDINGS, todays_case


REFERENCE_VERSION = b"3.0.10"


@dataclasses.dataclass(frozen=True)
class Deviation:
    """Each part that is given stands in for that part of the reference's result."""
    cases: tuple  # their names, as patterns
    reason: str
    status: object = None
    output: object = None  # a pattern for all of the text, as what exactly is said about a failure is free
    errors: object = None  # likewise
    only_given_files: bool = False  # nothing is written, and what was there is as it was
    like: object = None  # a case in which the reference gets the same sound in a form that it knows
    version: bool = False  # all is the same but the version that the first line tells

    def fits(self, name):
        return any(fnmatch.fnmatchcase(name, pattern) for pattern in self.cases)

    def expected(self, reference, given, run):
        """The result that is expected. `reference` is what it makes of the case itself, `given` the files that it had,
        `run` runs the reference on another case."""
        wanted = reference
        if self.like is not None:
            other = run(self.like)
            made = {path: facts for path, facts in other.files.items() if path not in given}
            wanted = dataclasses.replace(other, files={**made, **given})
        return dataclasses.replace(
            wanted,
            status=wanted.status if self.status is None else self.status,
            output=wanted.output if self.output is None else allowed(self.output),
            errors=self.versionless(wanted.errors) if self.errors is None else allowed(self.errors),
            files=given if self.only_given_files else wanted.files)

    def evened(self, result):
        """The result with the expected texts where its own are such as are allowed."""
        def text(pattern, told):
            return allowed(pattern) if pattern is not None and re.fullmatch(pattern, told, re.DOTALL) else told

        own = result.errors if result.errors.startswith(b"shntool " + REFERENCE_VERSION) else self.versionless(result.errors)
        return dataclasses.replace(result, output=text(self.output, result.output), errors=text(self.errors, own))

    def versionless(self, errors):
        return re.sub(rb"^shntool \d+\.\d+\.\d+ ", b"shntool (of some version) ", errors) if self.version else errors


def allowed(pattern):
    return b"(such as " + pattern + b")"


def polite(mode, what=rb"[^\n]+"):
    """At least one line of the mode's own that says what; before it, progress."""
    return rb"(.*\n|[^\n]* )?shntool \[" + mode.encode() + rb"\]: (error|warning): " + what + rb"\n.*"


NO_LENGTHS = (b"    length     expanded size    cdr  WAVE problems  fmt   ratio  filename\n"
              b"     0:00.00              0 B                            0.0000  (0 files)\n")


def crashes():
    for mode in ("len", "info", "hash", "conv -d out", "trim", "pad", "strip", "cat"):
        yield Deviation(tuple(f"{mode} zero{field}.wav" for field in ("rate", "channels", "bits", "block")),
                        "it divides by the zero in the header, and dies", status=1, only_given_files=True,
                        output=re.escape(NO_LENGTHS) if mode == "len" else b"", errors=polite(mode.split()[0]))
    yield Deviation(("split -n %s cd1.wav", "split -n %n cd1.wav"), "it hands the user's words to printf, and dies",
                    status=1, only_given_files=True, errors=polite("split"))


def losses():
    yield Deviation(("join -O always cd3.wav joined.wav",), "it deletes the file that it is to read", status=1,
                    only_given_files=True, errors=polite("join"))
    yield Deviation(("fix -O always -z '' off1.wav off2.wav",), "it deletes the file that it is to read", status=1,
                    only_given_files=True, errors=polite("fix"))
    twice = [("one/x.wav", "cd1.wav"), ("two/x.wav", "cd2.wav")]
    yield Deviation(("conv -O always -d out one/x.wav two/x.wav",), "it writes one output over another of the same run",
                    like=case("conv -O always -d out one/x.wav nothere", "one/ two/ out/", more=twice),
                    errors=polite("conv", rb"output file would overwrite another output of this run: [^\n]+"))
    yield Deviation(("conv -t* of words", "conv -t* of nothing", "conv -t* of cut"),
                    "it takes what is no sound, or not all of it, for sound", status=1, only_given_files=True, output=rb".*",
                    errors=polite("conv", rb"input data [^\n]+"))
    for mode in ("fix", "split"):
        yield Deviation(tuple(f"{mode} -o 'cust ext=raw {helper} %f' late.wav" for helper in ("readsall", "writes")),
                        "the failure of an encoder does not fail the run, and leaves its output", status=1,
                        only_given_files=True, errors=polite(mode))
    for mode in ("conv", "trim", "join", "fix", "split"):
        words = "join cd1.wav" if mode == "join" else mode
        yield Deviation((f"{words} -o 'cust ext=raw signals %f' late.wav",), "an encoder that dies goes unnoticed",
                        status=1, only_given_files=True, errors=polite(mode))
    yield Deviation(("fix -f undersector.wav off1.wav", "fix -f undersector.wav undersector.wav"),
                    "it ends in the middle of a file, and tells of success", status=1, only_given_files=True,
                    errors=polite("fix", rb"track breaks cannot be shifted [^\n]+"))


def halves():
    """A run that fails leaves nothing of what it was making, also not the parts that were complete before."""
    yield Deviation(("split truncated.wav", "split onesdata.wav", "split longdata.wav", "split over a file, nothing said",
                     "split over a file, ask", "split over a file, never",
                     "split -n words cd1.wav", "split -n '' cd1.wav", "split -n %% cd1.wav", "fix -O never off1.wav off2.wav",
                     "fix undersector.wav undersector.wav", "fix -u undersector.wav undersector.wav"),
                    "the parts that were made before a failure stay", only_given_files=True)
    yield Deviation(("conv -[az] a/b -o flac *", "pad -[az] a/b -o flac *", "conv -d text -o flac *", "pad -d text -o flac *",
                     "conv* -d nowhere -o flac *", "pad* -d nowhere -o flac *", "conv into a folder of others",
                     "conv -o flac in a folder of others", "conv -o shn in a folder of others",
                     "conv -O always onto a folder", "conv -o cust ext=a/b *"),
                    "it starts an encoder for a file that cannot be made", status=1, only_given_files=True,
                    errors=rb".*could not open output file -- skipping\.\n")


def readings():
    """What it reads otherwise than it stands there."""
    for kind in ("wraps", "the line '4294967396'"):
        yield Deviation((f"split at {kind}", f"split -f at {kind}"), "it counts bytes modulo 2^32", status=1,
                        only_given_files=True, errors=polite("split"))
    yield Deviation(("split at a long line", "split -f at a long line", "len -F, long", "len of typed names, long"),
                    "it cuts long messages off", errors=rb".*[1n]{1900}\]\n(?!.*nnnn[^\]n]).*")
    yield Deviation(("split -l 0 cd1.wav",), "it counts parts of nothing", errors=rb"shntool \[split\]: error: too many [^\n]+\n")
    yield Deviation(("info hugerate.wav",), "it reckons rates modulo 2^32", output=rb".*17179869120.*")
    yield Deviation(("len -F, no last newline", "len of typed names, no last newline"), "it loses the last name",
                    output=rb".*cd2\.wav\n.*cd1\.wav\n.*\(2 files\)\n")
    yield Deviation(("cmp -s -c -3 *",), "it takes a negative number of seconds",
                    errors=rb"shntool \[cmp\]: error: seconds [^\n]+\n.*")
    yield Deviation(("cmp -s undersector.wav onesector.wav", "cmp -ls undersector.wav onesector.wav"),
                    "it takes two pieces of no sound for the same", status=1, errors=polite("cmp"))
    around = "it takes what stands around %f for a part of the name"
    plain = rb".*--> \[(off1|split-track01)\..*"
    yield Deviation(("split -o 'cust ext=raw dd status=none of=%f' cd1.wav", "conv -o cust ext=raw dd status=none of=%f off1.wav",
                     "conv -o cust ext=raw dd status=none of=%f x *", "conv -o cust dd of=%f *", "conv -o cust ext={raw} dd *",
                     "conv -o cust ext=raw dd {status=none} *", "conv -o cust ext=raw {dd *", "conv -o cust {ext=raw} dd *",
                     "conv -o cust ext=raw dd 'status=none' *"), around, errors=plain)
    yield Deviation(("conv -o cust ext=raw dd status=none of=x.%f.y off1.wav", "conv -o cust ext=raw dd status=none of=%f%f *"),
                    around, status=1, only_given_files=True, errors=polite("conv"))
    yield Deviation(("conv with ST_CUST_ENC=ext=raw dd status=none of=%f",), around,
                    like=case("conv -d out -o 'cust ext=raw tee %f' off1.flac", "off1.flac out/"),
                    errors=rb"Converting [^\n]* --> \[out/off1\.raw\] : [^\n]*\n?")


def silences():
    """What it does not say, or says for nobody."""
    yield Deviation(("len -i flac nosuchprogram *", "len -i flac {flac} *", "len -i flac - *", "len -i flac {flac -c *"),
                    "it does not say that a decoder cannot be started", errors=polite("len"))
    for words, modes in (("-qw text cd1.wav", ("len", "hash", "pad", "cat", "cmp", "cue", "conv", "info", "strip", "trim")),
                         ("-w text off1.wav", ("len", "cmp", "cue", "info")), ("-w off1.wav text cd1.wav", ("cue",)),
                         ("-q off1.wav quiet.wav text", ("conv -o flac", "trim", "pad", "hash"))):
        for mode in modes:
            yield Deviation((f"{mode} {words}",), "it fails without a word",
                            errors=rb"shntool \[" + mode.split()[0].encode() + rb"\]: error: [^\n]+\n")
    yield Deviation(("len with ST_DEBUG",), "it tells of how it reads its own table of programs",
                    errors=rb"((?!parsing).)*")
    yield Deviation(("shntool -j",), "it has a joke", status=1, errors=rb"shntool: invalid option.*")


def refusals():
    """What it refuses, by what it makes of the same sound in a form that it takes."""
    for name, plain, modes in TODAYS_RECORDINGS:
        for words in modes:
            yield Deviation((todays_case(words, name, name).name,), "it does not know what programs of today write",
                            like=todays_case(words, name, plain))


def roundings():
    """Milliseconds that fall on a sector become a split point of zero."""
    for name, file in (("split at mixed", "cd1.wav"), ("split off1.wav at mixed", "off1.wav")):
        yield Deviation((name,), "milliseconds of whole sectors count as none",
                        like=case(f"split {file}", typed="0:00.05\n23520\n0:00.15\n"))
    yield Deviation(("split -f at mixed",), "milliseconds of whole sectors count as none",
                    like=case("split -f points cd1.wav", "cd1.wav", more=[("points", b"0:00.05\n23520\n0:00.15\n")]))
    yield Deviation(("gen -l 0:00.200",), "milliseconds of whole sectors count as none", like=case("gen -l 35280"))


def frames():
    """Those of sound that is not of CD quality, by the bytes that they have there."""
    for stem, frame in (("dat", 2560), ("mono8", 294), ("studio24", 3840)):
        places = {"minutes": (10, 20), "a sheet": (0, 10, 20), "a colon for frames": (10,), "zero": (0, 10)}
        for kind, numbers in places.items():
            yield frames_case(stem, kind, [number * frame for number in numbers])
    yield frames_case("mono8", "past the end", [40 * 294])
    for name in ("oddmono", "oddlist"):
        yield Deviation((f"split {name}.wav",), "it gives frames the bytes that they have on a CD",
                        like=case(f"split {name}.wav", typed="735\n"))
    for stem, frame in (("dat", 2560), ("studio24", 3840)):
        yield frames_case(stem, "mixed", [5 * frame, 23520, "0:00.200"])


def frames_case(stem, kind, places):
    return Deviation((f"split {stem}.wav at {kind}",), "it gives frames the bytes that they have on a CD",
                     like=case(f"split {stem}.wav", typed="".join(f"{place}\n" for place in places)))


def versions():
    """Programs tell their own."""
    yield Deviation(("shntool -f", "shntool -m", "shntool -a"), "its version is its own", version=True)
    yield Deviation(("* -v", "shntool -vh"), "its version is its own",
                    errors=rb"shn[^\n]*(?<!3\.0\.10)\nCopyright [^\n]+\n\nThis is free software\..*\n\n")


def later():
    """Of 3.0.10+git20130108, which Debian 13 has: where it is otherwise than 3.0.10, of Debian 12, which ours equals."""
    words = re.escape(b"error: need two or more files to process\n")
    yield Deviation(("join ", "join -[bn] ", "join of nothing", "join cd1.wav", "join -[bn] cd1.wav",
                     "join with a folder for outputs", "shnjoin cd1.wav"), "it joins a single file", status=1,
                    only_given_files=True, errors=rb"(shntool \[join\]|shnjoin): " + words + rb".*")
    yield Deviation(("split wrongblock.wav", "split * at past the end", "split mono8.wav at mixed"),
                    "it warns of lengths in frames", errors=rb"(?!.*m:ss\.ff).*")
    yield Deviation(("gen -l 0:01.10",), "it takes 10 frames for none of a second", like=case("gen -l 199920"))


DEVIATIONS = (*crashes(), *losses(), *halves(), *readings(), *silences(), *refusals(), *roundings(), *frames(), *versions())

LATER_DEVIATIONS = tuple(later())


def deviation_of(name, is_later=False):
    """`is_later`: of the reference of Debian 13. It has mended some of what the other does wrong."""
    deviations = (*DEVIATIONS, *LATER_DEVIATIONS) if is_later else DEVIATIONS
    return next((deviation for deviation in deviations if deviation.fits(name)), None)


def without_cases(names):
    """The patterns that fit none of the names."""
    return [pattern for deviation in (*DEVIATIONS, *LATER_DEVIATIONS) for pattern in deviation.cases
            if not any(fnmatch.fnmatchcase(name, pattern) for name in names)]

#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Puts one fault at a time into a copy of the tree and tells whether the tests notice it.

usage: mutants.py [--only NAME]... [--jobs N] [--build DIR] [--limit SECONDS] [--wanted PERCENT]
       mutants.py --list
       mutants.py --check

The faults are in mutants.txt, which says how a line is made. The copy, what is built of it, and the log of each
mutant are in DIR (build/mutants), which may be kept: a later run builds only what has changed.

First the unchanged tree must pass all tests that the mutants name. Then each mutant is built and tested:

    killed          a test failed, crashed or came to no end: what was wanted
    survived        all tests passed
    does not apply  its text is not in its file, or more than once
    does not build  the compiler knows better

The status is 0 when at least 95 % were killed and all apply and build. --check builds nothing: it only looks whether
all mutants apply.
"""

import argparse
import ctypes
import os
import re
import shutil
import signal
import subprocess
import sys
import time
from dataclasses import dataclass
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent.parent
LIST = HERE / "mutants.txt"

KILLED, SURVIVED, APPLIES_NOT, BUILDS_NOT = "killed", "survived", "does not apply", "does not build"
NOT_COPIED = {".git", ".cache", "build", "__pycache__"}
PR_SET_CHILD_SUBREAPER = 36
# What a fault leaves unused or lopsided is for the tests to notice, not for the compiler.
SILENCE = "".join(f'#pragma GCC diagnostic ignored "-W{name}"\n' for name in (
    "unused-variable", "unused-parameter", "unused-function", "unused-but-set-variable", "unused-value",
    "misleading-indentation", "empty-body", "dangling-else", "type-limits"))


class BadList(Exception):
    """The list of mutants cannot be understood; the text says where."""


@dataclass(frozen=True)
class Mutant:
    """One fault: a text of a file and what is written instead."""

    name: str
    file: str
    suites: tuple  # of (test program without "_test", expression for the names of its cases)
    find: str
    put: str

    def targets(self):
        return [program + "_test" for program, _ in self.suites]

    def expression(self):
        """What `ctest -R` gets."""
        return "|".join(expression_of(program, cases) for program, cases in self.suites)

    def pattern(self):
        """The text, wherever its lines are broken."""
        return re.compile(r"\s+".join(re.escape(word) for word in self.find.split()))

    def apply(self, text):
        """The text with the fault in it; None unless it can stand in exactly one place."""
        places = list(self.pattern().finditer(text))
        if len(places) != 1:
            return None
        return text[: places[0].start()] + self.put + text[places[0].end():]


def expression_of(program, cases):
    """The names of cases have that of their program and a dot in front."""
    return rf"^{program}\.({cases})"


def parse_line(line, where):
    words = line.split(None, 3)
    if len(words) < 4:
        raise BadList(f"{where}: a mutant has a name, a file, tests and two texts")
    name, file, tests, texts = words
    find, arrow, put = texts.partition(" =>")
    if not arrow or not find.strip():
        raise BadList(f"{where}: there is no ' =>' behind the text that is looked for")
    if put.strip() == find.strip():
        raise BadList(f"{where}: it changes nothing")
    suites = []
    for suite in tests.split(","):
        program, _, cases = suite.partition(":")
        suites.append((program, cases))
    return Mutant(name, file, tuple(suites), find.strip(), put.strip())


def read_list(path):
    mutants = []
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if line.strip() and not line.startswith("#"):
            mutants.append(parse_line(line, f"{path.name}:{number}"))
    names = [mutant.name for mutant in mutants]
    for name in names:
        if names.count(name) > 1:
            raise BadList(f"{path.name}: two mutants are called {name}")
    return mutants


def test_programs(root):
    """The names that the build gives its test programs, without "_test"."""
    found = set()
    for path in (root / "tests").rglob("CMakeLists.txt"):
        found.update(re.findall(r"^\s*nurv_test\((\w+)", path.read_text(encoding="utf-8"), re.MULTILINE))
    return found


def faults_of(mutants, root):
    """Why mutants do not apply to the tree, one line each."""
    programs = test_programs(root)
    for mutant in mutants:
        path = root / mutant.file
        if not path.is_file():
            yield f"{mutant.name}: there is no {mutant.file}"
            continue
        count = len(mutant.pattern().findall(path.read_text(encoding="utf-8")))
        if count != 1:
            yield f"{mutant.name}: {count} times in {mutant.file}: {mutant.find}"
        for program, _ in mutant.suites:
            if program not in programs:
                yield f"{mutant.name}: there is no test program {program}"


def copy_tree(source, target):
    """Makes `target` the same as `source`, and touches no file that is the same already."""
    wanted = set()
    for folder, folders, files in os.walk(source):
        folders[:] = [name for name in folders if name not in NOT_COPIED]
        place = target / Path(folder).relative_to(source)
        place.mkdir(parents=True, exist_ok=True)
        for name in files:
            original, copy = Path(folder) / name, place / name
            wanted.add(copy)
            if original.is_symlink():
                copy.unlink(missing_ok=True)
                copy.symlink_to(os.readlink(original))
            elif not copy.is_file() or copy.read_bytes() != original.read_bytes():
                shutil.copyfile(original, copy)
                shutil.copymode(original, copy)
    for folder, folders, files in os.walk(target):
        folders[:] = [name for name in folders if name not in NOT_COPIED]
        for name in files:
            if Path(folder) / name not in wanted:
                (Path(folder) / name).unlink()


def children():
    """The processes that are ours, or have come to us since their parents are gone."""
    found = []
    for entry in Path("/proc").iterdir():
        if not entry.name.isdigit():
            continue
        try:
            fields = (entry / "stat").read_text(encoding="utf-8", errors="replace").rpartition(")")[2].split()
        except OSError:
            continue
        if int(fields[1]) == os.getpid():
            found.append(int(entry.name))
    return found


def end_children():
    """Programs of a test that did not come to an end lead groups of their own, and may have made others."""
    while left := children():
        for pid in left:
            try:
                os.kill(pid, signal.SIGKILL)
                os.waitpid(pid, 0)
            except (ProcessLookupError, ChildProcessError):
                pass


def run(command, log, limit, **options):
    """The status of a program, or None when it had to be ended after `limit` seconds."""
    log.write("$ " + " ".join(map(str, command)) + "\n")
    log.flush()
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=log, stderr=subprocess.STDOUT, **options)
    try:
        status = process.wait(timeout=limit)
    except subprocess.TimeoutExpired:
        status = None
    if status is None:
        process.kill()
        process.wait()
    end_children()
    return status


class Workshop:
    """The copy of the tree and its build."""

    def __init__(self, folder, jobs, limit):
        self.source, self.logs = folder / "source", folder / "logs"
        # As far below the sources as the presets put theirs: the compiler cache knows their objects then.
        self.build = self.source / "build" / "release"
        self.jobs, self.limit = str(jobs), limit
        self.logs.mkdir(parents=True, exist_ok=True)

    def prepare(self):
        copy_tree(ROOT, self.source)
        return self.run("configure", "cmake", "-S", self.source, "-B", self.build, "-G", "Ninja",
                        "-DCMAKE_BUILD_TYPE=Release", "-DNURV_BUILD_TESTS=ON", "-DNURV_BUILD_BENCH=OFF",
                        "-DNURV_WERROR=ON")

    def run(self, log, *command, limit=None, mode="w"):
        with open(self.logs / f"{log}.log", mode, encoding="utf-8") as file:
            return run(command, file, limit)

    def make(self, log, targets):
        return self.run(log, "cmake", "--build", self.build, "-j", self.jobs, "--target", *sorted(targets)) == 0

    def test(self, log, expression, limit, *options):
        return self.run(log, "ctest", "--test-dir", self.build, "-R", expression, "--no-tests=error", "-j", self.jobs,
                        "--output-on-failure", *options, limit=limit, mode="a")

    def unchanged_passes(self, mutants):
        targets = {target for mutant in mutants for target in mutant.targets()}
        if not self.make("unchanged", targets):
            return False
        # One program at a time: ctest takes no long expressions.
        cases = {}
        for program, expression in {suite for mutant in mutants for suite in mutant.suites}:
            cases.setdefault(program, []).append(expression)
        return all([self.test("unchanged", expression_of(program, "" if "" in found else "|".join(sorted(found))), None) == 0
                    for program, found in sorted(cases.items())])

    def verdict(self, mutant):
        path = self.source / mutant.file
        text = path.read_text(encoding="utf-8") if path.is_file() else ""
        changed = mutant.apply(text)
        if changed is None:
            return APPLIES_NOT
        path.write_text(SILENCE + changed, encoding="utf-8")
        try:
            if not self.make(mutant.name, mutant.targets()):
                return BUILDS_NOT
            passes = self.test(mutant.name, mutant.expression(), self.limit, "--stop-on-failure") == 0
            return SURVIVED if passes else KILLED
        finally:
            path.write_text(text, encoding="utf-8")

    def failed_case(self, mutant):
        """The first case that noticed it, as the log tells."""
        text = (self.logs / f"{mutant.name}.log").read_text(encoding="utf-8", errors="replace")
        found = re.search(r"Test +#\d+: (\S+) \.*.*(?:\*\*\*)", text)
        return found.group(1) if found else "came to no end"


def judge(shop, mutants):
    """Tells the verdict on each, and returns how many there are of each kind."""
    counts = dict.fromkeys((KILLED, SURVIVED, APPLIES_NOT, BUILDS_NOT), 0)
    for mutant in mutants:
        begin = time.monotonic()
        verdict = shop.verdict(mutant)
        counts[verdict] += 1
        remark = f"  by {shop.failed_case(mutant)}" if verdict == KILLED else ""
        print(f"{verdict:14}  {mutant.name}  ({time.monotonic() - begin:.0f} s){remark}", flush=True)
    return counts


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--only", action="append", metavar="NAME", help="an expression; may be given several times")
    parser.add_argument("--list", action="store_true", help="show the names and files")
    parser.add_argument("--check", action="store_true", help="build nothing, look whether all apply")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), metavar="N")
    parser.add_argument("--build", type=Path, default=ROOT / "build" / "mutants", metavar="DIR")
    parser.add_argument("--limit", type=int, default=600, metavar="SECONDS", help="for the tests of one mutant")
    parser.add_argument("--wanted", type=float, default=95, metavar="PERCENT")
    options = parser.parse_args()

    try:
        mutants = read_list(LIST)
    except BadList as fault:
        sys.exit(str(fault))
    if options.only:
        wanted = [re.compile(name) for name in options.only]
        mutants = [mutant for mutant in mutants if any(name.fullmatch(mutant.name) for name in wanted)]
        if not mutants:
            sys.exit("no mutant is called so")
    if options.list:
        for mutant in mutants:
            print(f"{mutant.name:45} {mutant.file}")
        return 0
    if options.check:
        faults = list(faults_of(mutants, ROOT))
        for fault in faults:
            print(fault)
        return 1 if faults else 0

    ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
    shop = Workshop(options.build.resolve(), options.jobs, options.limit)
    if shop.prepare() != 0:
        sys.exit(f"the tree cannot be configured: {shop.logs}/configure.log")
    if not shop.unchanged_passes(mutants):
        sys.exit(f"the unchanged tree does not pass its tests: {shop.logs}/unchanged.log")
    counts = judge(shop, mutants)
    score = 100 * counts[KILLED] / len(mutants)
    print(f"{len(mutants)} mutants: " + ", ".join(f"{count} {kind}" for kind, count in counts.items() if count)
          + f"; score {score:.1f} %")
    all_apply = counts[APPLIES_NOT] + counts[BUILDS_NOT] == 0
    return 0 if all_apply and score >= options.wanted else 1


if __name__ == "__main__":
    sys.exit(main())

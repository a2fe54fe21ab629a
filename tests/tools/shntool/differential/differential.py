#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs a candidate for `shntool` and the distribution's program on the same files, and compares what they tell and
leave: standard output, standard error, exit status, names, permissions and bytes of all files."""

import argparse
import concurrent.futures
import fnmatch
import os
import pathlib
import queue
import resource
import subprocess
import sys
import tempfile
import threading

from cases import CASES
from comparing import differences
from deviations import deviation_of
from fixtures import Fixtures, write_helpers
from running import Runner, can_everybody_run

LIMIT_BYTES = 1 << 28  # of one file, so that no endless output fills the disk
SKIPPED = 77  # what ctest takes for "skipped"


def parse():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("candidate", type=pathlib.Path)
    parser.add_argument("--tools", type=pathlib.Path, required=True, help="the folder of shorten, ttaenc and mac")
    parser.add_argument("--reference", type=pathlib.Path, default=pathlib.Path("/usr/bin/shntool"))
    parser.add_argument("--shard", default="1/1", metavar="N/COUNT", help="only every COUNTth case, from the Nth")
    parser.add_argument("--only", action="append", metavar="PATTERN", help="only cases of such names, as in `len *`")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--list", action="store_true", help="name the cases, and run none")
    parser.add_argument("--show", action="store_true", help="show what the reference does, and compare nothing")
    parser.add_argument("--self-check", action="store_true",
                        help="the candidate is the reference: deviations are no excuse")
    options = parser.parse_args()
    # Each case runs in a folder of its own.
    options.candidate, options.reference = options.candidate.absolute(), options.reference.absolute()
    return options


def chosen_cases(options):
    number, count = (int(word) for word in options.shard.split("/"))
    cases = CASES[number - 1::count]
    if options.only:
        cases = [case for case in cases if any(fnmatch.fnmatchcase(case.name, pattern) for pattern in options.only)]
    return cases


def environment_of(options, helpers, home):
    """Both find the same helper programs, and neither is told of anything by the user's settings."""
    return {"PATH": f"{helpers}:{options.tools.resolve()}:/usr/bin:/bin", "HOME": str(home), "TMPDIR": str(home), "LC_ALL": "C"}


def is_later(reference):
    """Whether it is that of Debian 13, which tells the version of Debian 12: `deviations.later` has what is otherwise."""
    told = subprocess.run([reference, "join"], stdin=subprocess.DEVNULL, capture_output=True, check=False).stderr
    return b"need two or more files" not in told


class Comparison:
    """Compares case by case. Each thread has a workplace of its own."""

    def __init__(self, options, folder):
        self.options = options
        self.is_later = is_later(options.reference)
        self.home = folder / "home"
        self.home.mkdir()
        self.home.chmod(0o1777)
        helpers = folder / "helpers"
        helpers.mkdir(mode=0o755)
        write_helpers(helpers)
        environment = environment_of(options, helpers, self.home)
        self.runner = Runner(Fixtures(folder / "fixtures", environment), environment)
        self.workplaces = queue.SimpleQueue()
        for number in range(options.jobs):
            workplace = folder / f"workplace{number}"
            workplace.mkdir(mode=0o755)
            self.workplaces.put(workplace)

    def faults_of(self, case):
        workplace = self.workplaces.get()
        try:
            return self.compare(case, workplace)
        except subprocess.TimeoutExpired as error:
            return [f"{error.cmd} does not end within {error.timeout} s"]
        finally:
            self.workplaces.put(workplace)

    def compare(self, case, workplace):
        reference = self.runner.run(self.options.reference, case, workplace)
        if self.options.show:
            show(case, reference)
            return []
        candidate = self.runner.run(self.options.candidate, case, workplace)
        deviation = None if self.options.self_check else deviation_of(case.name, self.is_later)
        if deviation is None:
            return differences(reference, candidate)
        wanted = deviation.expected(reference, self.runner.given(case, workplace),
                                    lambda other: self.runner.run(self.options.reference, other, workplace))
        if not self.is_later and not differences(wanted, deviation.evened(reference)):
            return [f"the reference does as expected, although {deviation.reason}"]
        return [f"{fault}\n    expected otherwise than the reference, as {deviation.reason}"
                for fault in differences(wanted, deviation.evened(candidate))]


PRINTING = threading.Lock()


def show(case, result):
    """As text, for people."""
    with PRINTING:
        print(f"=== {case.name}: exit status {result.status}")
        for title, text in (("output", result.output), ("errors", result.errors)):
            if text:
                print(f"--- {title}\n{text.decode('utf-8', 'backslashreplace')}", flush=True)
        given = {os.fsencode(name) for name, _ in case.files}
        for path, (mode, contents) in sorted(result.files.items()):
            mark = "given" if path in given else "new"
            print(f"--- {mark} {mode} {path!r} {len(contents)} {contents[:48]!r}")


def main():
    options = parse()
    os.umask(0o022)  # permissions of files are compared, too
    cases = chosen_cases(options)
    if options.list:
        print("\n".join(case.name for case in cases))
        return 0
    if not options.reference.exists():
        print(f"there is no {options.reference} to compare with")
        return SKIPPED
    resource.setrlimit(resource.RLIMIT_FSIZE, (LIMIT_BYTES, LIMIT_BYTES))
    if not all(can_everybody_run(program) for program in (options.candidate, options.reference, options.tools)):
        cases = [case for case in cases if not case.stranger]
        print("without the cases of another user, who cannot get at the programs here")
    with tempfile.TemporaryDirectory(prefix="shntool-differential-") as name:
        faulty = run(cases, options, pathlib.Path(name))
    print(f"{len(cases)} cases, {faulty} failed")
    return 1 if faulty or not cases else 0


def run(cases, options, folder):
    """Tells the faults, and returns how many cases have some."""
    folder.chmod(0o755)
    comparison = Comparison(options, folder)
    faulty = 0
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for case, faults in zip(cases, pool.map(comparison.faults_of, cases)):
            faulty += bool(faults)
            if faults:
                print(f"FAILED {case.name}")
            for fault in faults:
                print(f"  {fault}", flush=True)
    left = sorted(path.name for path in comparison.home.iterdir())
    if left:
        print(f"FAILED to leave nothing behind in the folder for temporary files: {', '.join(left)}")
    return faulty + bool(left)


if __name__ == "__main__":
    sys.exit(main())

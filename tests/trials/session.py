# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""What all programs of trials share: their options, their workers, and the report."""

import argparse
import collections
import dataclasses
import multiprocessing
import os
import pathlib
import random
import shutil
import sys
import time

from decoding import Decoder
from places import may_mount, may_run_as_nobody, private_folder
from running import Runner
from sources import SourceMaker


@dataclasses.dataclass
class Outcome:
    """What one trial has shown."""

    name: str = ""
    faults: list = dataclasses.field(default_factory=list)
    counts: collections.Counter = dataclasses.field(default_factory=collections.Counter)
    evils: list = dataclasses.field(default_factory=list)
    description: str = ""
    output: str = ""


class Workshop:
    """What the trials of one process work with."""

    def __init__(self, options, folder):
        self.folder = pathlib.Path(folder)
        self.tools = options.tools
        self.runner = Runner(options.program, options.tools)
        self.maker = SourceMaker(self.folder / "library", options.tools)
        self.decoder = Decoder(options.tools, self.maker.folder)
        self.may_mount = options.may_mount
        self.may_run_as_nobody = options.may_run_as_nobody


_workshop = None


def _open_workshop(options, folder):
    global _workshop
    _workshop = Workshop(options, folder)


def _try(task):
    trial, seed, number = task
    name = f"{seed}-{number}"
    outcome = trial(_workshop, random.Random(f"{seed} {number}"), _workshop.folder / f"trial-{name}")
    outcome.name = name
    return outcome


def parse(description, count, arguments=None):
    parser = argparse.ArgumentParser(description=description)
    parser.add_argument("program", type=pathlib.Path, help="the nurv to be tried")
    parser.add_argument("--tools", type=pathlib.Path, help="the folder of its tools (default: as it finds them)")
    parser.add_argument("--seed", type=int, default=1, help="every trial follows from the seed and its number")
    parser.add_argument("--first", type=int, default=0, help="the number of the first trial")
    parser.add_argument("--count", type=int, default=count, help=f"how many trials (default {count})")
    parser.add_argument("--parallel", type=int, default=2, help="how many at a time (default 2)")
    options = parser.parse_args(arguments)
    options.program = options.program.resolve()
    options.tools = (options.tools or options.program.parent.parent / "lib" / "nurv" / "tools").absolute()
    for program in ("ffmpeg", "ffprobe", "flac", "wavpack", "wvunpack"):
        if shutil.which(program) is None:
            parser.error(f"{program} is needed")
    for path in (options.program, options.tools / "shorten", options.tools / "mac", options.tools / "ttaenc"):
        if not os.access(path, os.X_OK):
            parser.error(f"{path} is needed")
    options.may_mount = may_mount()
    options.may_run_as_nobody = may_run_as_nobody(options.program)
    return options


def run_trials(options, trial):
    """Runs them all, tells of each that showed a fault, and returns the sum of what was counted and the faults."""
    folder = private_folder()
    numbers = range(options.first, options.first + options.count)
    tasks = [(trial, options.seed, number) for number in numbers]
    counts, evils = collections.Counter(), collections.Counter()
    faulty = 0
    started = time.monotonic()
    print(f"seed {options.seed}, trials {numbers.start} to {numbers.stop - 1}, in {folder}", flush=True)
    with multiprocessing.Pool(options.parallel, _open_workshop, (options, folder)) as pool:
        for outcome in pool.imap_unordered(_try, tasks):
            counts.update(outcome.counts)
            evils.update(set(outcome.evils))
            if outcome.faults:
                faulty += 1
                report(options, outcome, folder)
    print("evils: " + (", ".join(f"{name} {number}" for name, number in sorted(evils.items())) or "none"))
    print("seen: " + ", ".join(f"{name} {number}" for name, number in sorted(counts.items())))
    print(f"{len(tasks)} trials with seed {options.seed} in {time.monotonic() - started:.0f} s: {faulty} with faults")
    if faulty:
        shutil.rmtree(folder / "library", ignore_errors=True)
    else:
        shutil.rmtree(folder)
    return faulty, counts


def report(options, outcome, folder):
    seed, _, number = outcome.name.rpartition("-")
    print(f"\ntrial {number} of seed {seed}, kept with its output.txt in {folder / f'trial-{outcome.name}'}")
    print(f"  again: {pathlib.Path(sys.argv[0]).name} {options.program} --seed {seed} --first {number} --count 1")
    for line in outcome.description.splitlines():
        print(f"  {line}")
    for fault in outcome.faults:
        print(f"  *** {fault}")
    sys.stdout.flush()
    (folder / f"trial-{outcome.name}" / "output.txt").write_text(outcome.output, encoding="utf-8")


def count_jobs(outcome, run):
    """Adds what the jobs of a run have told."""
    for job in run.jobs:
        outcome.counts[f"jobs {job.get('status')}"] += 1
        if job.get("original") in ("deleted", "trashed", "kept"):
            outcome.counts[f"originals {job['original']}"] += 1
        if job.get("proof") in ("proven", "notProven"):
            outcome.counts[job["proof"]] += 1

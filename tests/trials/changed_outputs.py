#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Conversions in which a byte of the output changes after its program has ended and before anything is deleted.

No source may be deleted.
"""

import sys

from batch import DECODE_FORMATS, ENCODE_FORMATS, Batch
from checking import DiskCheck
from meddling import READERS, WRITERS, meddled_with, tools_with_meddler
from running import Interference
from session import Outcome, count_jobs, parse, run_trials
from sources import KINDS
from statuses import faults_of

ATTEMPTS = 8


def random_batch(workshop, chance, root):
    """One sound file, whole and without tags, and a format that it can be turned into."""
    if chance.random() < 0.7:
        batch = Batch(root, "encode", chance.choice(ENCODE_FORMATS))
        kinds = [kind for kind in KINDS if kind != batch.format]
    else:
        batch = Batch(root, "decode", chance.choice(DECODE_FORMATS))
        kinds = list(READERS)
    source = workshop.maker.random(chance, kinds, (16,), adorned=0, most_channels=2)
    batch.add(source, f"a.{source.kind}")
    batch.given = [source.path]
    batch.options = ["--delete-originals", "--yes", "--json", f"--output-dir={batch.output_folder}"]
    return batch


def trial(workshop, chance, root):
    """One conversion whose output was changed; others are tried when the tool did not run or nothing came of the change."""
    outcome = Outcome(faults=["NOTHING CHANGED: no output was changed in any attempt"])
    for attempt in range(ATTEMPTS):
        batch = random_batch(workshop, chance, root)
        tool = WRITERS.get(batch.format) or READERS[batch.sources[0].kind]
        tools = tools_with_meddler(chance, batch, workshop.tools, tool, [batch.format])
        before = batch.look()
        run = workshop.runner.run(batch, Interference(), tools=tools)
        disk = DiskCheck(batch, before, workshop.decoder, run)
        is_deleted = not disk.is_there(batch.sources[0])
        outcome.description = f"{batch.description()}\n{tool} was the meddler"
        outcome.output = f"exit status {run.status}\n{run.output.decode()}{run.errors.decode('utf-8', 'replace')}"
        if not meddled_with(batch):
            outcome.counts[f"{tool} has made nothing"] += 1
        elif is_deleted and any(disk.holds(path, batch.sources[0]) for path in batch.outputs_of(batch.sources[0])):
            outcome.counts[f"{tool} changed without an effect"] += 1  # the sound is the same
        else:
            outcome.faults = faults_of(disk, run, Interference())
            if is_deleted:
                outcome.faults.append("DELETED: the source is gone, and a byte of its output was changed")
            outcome.evils = [f"{tool} changed"]
            count_jobs(outcome, run)
            if not outcome.faults:
                batch.remove()
            return outcome
        if attempt < ATTEMPTS - 1:
            batch.remove()
    return outcome


def main():
    faulty, _ = run_trials(parse(__doc__, 200), trial)
    sys.exit(1 if faulty else 0)


if __name__ == "__main__":
    main()

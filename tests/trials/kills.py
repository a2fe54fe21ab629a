#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""SIGKILL at random moments of batches of about twenty files, then recovery, then the same batch once more.

Recovery leaves nothing unfinished, removes nothing that is finished, and the second run does the rest.
"""

import signal
import sys

from batch import DECODE_FORMATS, ENCODE_FORMATS, Batch
from checking import DiskCheck
from running import GRACE_SECONDS, Interference
from session import Outcome, count_jobs, parse, run_trials
from sources import COMPRESSED, KINDS
from statuses import faults_of

FILES = 20


def random_batch(workshop, chance, root):
    """Whole files of mixed kinds, each of which the format can hold with nothing left over."""
    if chance.random() < 0.75:
        batch = Batch(root, "encode", chance.choice(ENCODE_FORMATS))
        kinds = [kind for kind in KINDS if kind != batch.format]
    else:
        batch = Batch(root, "decode", chance.choice(DECODE_FORMATS))
        kinds = COMPRESSED
    for number in range(FILES + chance.randint(-4, 4)):
        source = workshop.maker.random(chance, kinds, (16,), adorned=0, most_channels=2)
        batch.add(source, f"Track {number:02}.{source.kind}", chance.choice(("", "", "disc 1")))
    batch.given = [batch.input_folder]
    place = "--beside-source" if chance.random() < 0.5 else f"--output-dir={batch.output_folder}"
    batch.options = ["--yes", "--json", f"--jobs={chance.randint(1, 4)}", place]
    if chance.random() < 0.7:
        batch.options.append("--delete-originals")
    if chance.random() < 0.2:
        batch.settings["trashOrDelete"] = 1
    return batch


def output_faults(disk, run):
    """What was told to be complete must be there still."""
    for job in run.jobs:
        source = next((source for source in disk.batch.sources if str(source.path) == job.get("source")), None)
        if source and job.get("status") == "complete" and \
                not any(disk.holds(path, source) for path in disk.batch.outputs_of(source)):
            yield f"REMOVED: {source.path.name} was told complete, and its output is not there after the recovery"


def finish(workshop, batch, faults):
    """Runs the batch again; at its end every source has its output."""
    batch.options.append("--skip-existing")
    before = batch.look()
    run = workshop.runner.run(batch, Interference())
    sources = batch.sources
    batch.sources = [source for source in sources if source.path in before]
    disk = DiskCheck(batch, before, workshop.decoder, run)
    faults += [f"second run: {fault}" for fault in faults_of(disk, run, Interference())]
    if run.status != 0:
        faults.append(f"second run: NOT DONE: exit status {run.status}: {run.errors.decode('utf-8', 'replace')[-300:]}")
    batch.sources = sources
    for source in sources:
        if not any(disk.holds(path, source) for path in batch.outputs_of(source)):
            faults.append(f"second run: NOT DONE: {source.path.name} has no output")
    return run


def trial(workshop, chance, root):
    batch = random_batch(workshop, chance, root)
    interference = Interference("signal", signal=signal.SIGKILL, after_jobs=chance.randrange(len(batch.sources)),
                                delay_seconds=chance.random() ** 2 * 0.15)
    before = batch.look()
    run = workshop.runner.run(batch, interference, waits_for_orphans=chance.random() < 0.5)
    recovery = workshop.runner.recover(batch)
    left_over = workshop.runner.wait_for_children(run.mark, GRACE_SECONDS)
    disk = DiskCheck(batch, before, workshop.decoder, run)
    faults = faults_of(disk, run, interference) + list(output_faults(disk, run))
    faults += [f"recovery: {fault}" for fault in recovery.faults + left_over]
    if recovery.status != 0:
        faults.append(f"UNTRUE: recovery ended with {recovery.status}: {recovery.errors.decode('utf-8', 'replace')[-300:]}")
    outcome = Outcome(description=f"{batch.description()}\n{interference}, hit: {run.was_hit}")
    parts = [("killed", run), ("recovery", recovery)]
    if any(disk.is_there(source) for source in batch.sources):
        parts.append(("second run", finish(workshop, batch, faults)))
    outcome.faults = faults
    outcome.output = "\n".join(f"--- {name}: {part.status}\n{part.output.decode('utf-8', 'replace')}"
                               f"{part.errors.decode('utf-8', 'replace')}" for name, part in parts)
    outcome.evils = [interference.name if run.was_hit else "came too late"]
    count_jobs(outcome, run)
    outcome.counts["sources"] += len(batch.sources)
    if not faults:
        batch.remove()
    return outcome


def main():
    faulty, _ = run_trials(parse(__doc__, 300), trial)
    sys.exit(1 if faulty else 0)


if __name__ == "__main__":
    main()

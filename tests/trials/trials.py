#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Random batches of files that lie, are damaged or stand in the way, under signals, full disks and killed programs.

Nothing may be lost, replaced or left behind, and nothing untrue may be said.
"""

import sys

from batch_maker import BatchMaker
from checking import DiskCheck
from meddling import READERS, WRITERS, meddled_with, tools_with_meddler
from places import SmallDisk, close_for_nobody, open_again
from running import Interference, random_interference
from session import Outcome, count_jobs, parse, run_trials
from statuses import faults_of


def trial(workshop, chance, root):
    batch = BatchMaker(workshop.maker, workshop.decoder).make(chance, root)
    largest = max(len(source.data) for source in batch.sources)
    interference = random_interference(chance, len(batch.sources), largest)
    if interference.kind == "small disk" and not workshop.may_mount or \
            interference.kind == "unwritable folder" and not workshop.may_run_as_nobody:
        interference = Interference()
    tools = workshop.tools
    disk = None
    is_closed = interference.kind == "unwritable folder"
    if interference.kind == "small disk":
        disk = SmallDisk(batch, interference.limit_bytes)
    elif is_closed:
        close_for_nobody(batch, chance.choice((batch.input_folder, batch.output_folder)))
    elif interference.kind == "meddler":
        tools = prepare_meddler(chance, batch, workshop.tools)
    before = batch.look()
    run = workshop.runner.run(batch, interference, as_nobody=is_closed, tools=tools)
    faults = []
    if run.status is not None and (run.status < 0 or leaves_stages(batch, interference, run)):
        recovery = workshop.runner.recover(batch)
        faults = [f"after recovery: {fault}" for fault in recovery.faults]
        if recovery.status != 0:
            faults.append(f"UNTRUE: recovery ended with {recovery.status}: {recovery.errors.decode()[-300:]}")
    outcome = Outcome(description=f"{batch.description()}\ninterference: {interference}, hit: {run.was_hit}")
    texts = [run.output.decode("utf-8", "replace"), run.errors.decode("utf-8", "replace")]
    outcome.output = "\n".join([f"exit status {run.status}", *texts])
    outcome.faults = faults + faults_of(DiskCheck(batch, before, workshop.decoder, run), run, interference)
    outcome.evils = batch.evil_names() + ([interference.name] if run.was_hit else [])
    count_jobs(outcome, run)
    outcome.counts["sources"] += len(batch.sources)
    outcome.counts["files changed by the meddler"] += len(meddled_with(batch))
    if disk:
        disk.end(keeps_contents=bool(outcome.faults))
    if is_closed:
        open_again(batch)
    if not outcome.faults:
        batch.remove()
    return outcome


def leaves_stages(batch, interference, run):
    """Whether a job may have been cancelled that leaves its temporary WAV for the recovery."""
    return batch.format == "m4a" and interference.kind == "signal" and run.was_hit


def prepare_meddler(chance, batch, tools):
    extensions = [batch.format] + (["wav"] if chance.random() < 0.3 else [])
    tool = WRITERS.get(batch.format)
    if batch.command == "decode" or "wav" in extensions:
        tool = READERS.get(chance.choice(batch.sources).kind) or tool
    if tool is None:
        return tools
    return tools_with_meddler(chance, batch, tools, tool, extensions)


def main():
    faulty, _ = run_trials(parse(__doc__, 100), trial)
    sys.exit(1 if faulty else 0)


if __name__ == "__main__":
    main()

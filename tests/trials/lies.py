#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Every header field that can lie, in every kind of file, wrong in every way, in every conversion of that kind.

The sources are to be deleted, with the proof and without it, or only converted. Nothing may be lost, and nothing
that holds less sound may be called complete.
"""

import sys

from batch import DECODE_FORMATS, ENCODE_FORMATS, Batch
from checking import DiskCheck
from header_lies import all_lies
from running import Interference
from session import Outcome, count_jobs, parse, run_trials
from sources import CHANNELS, COMPRESSED, KINDS, WIDTHS
from statuses import faults_of

# Those that have to do without the proof first: they rest on what the lies are about.
WAYS = (["--delete-originals", "--yes", "--drop-metadata", "--no-proof"],
        ["--delete-originals", "--yes", "--drop-metadata"], [])


def conversions():
    """Each way, kind and target."""
    for way in WAYS:
        for kind in KINDS:
            targets = [("encode", name) for name in ENCODE_FORMATS]
            targets += [("decode", name) for name in DECODE_FORMATS] if kind in COMPRESSED else []
            yield from ((kind, command, name, way) for command, name in targets)


CONVERSIONS = list(conversions())


def trial(workshop, chance, root):
    """All lies of one kind in one batch. The seed chooses the sound that they are told of."""
    kind, command, name, way = CONVERSIONS[int(root.name.rpartition("-")[2]) % len(CONVERSIONS)]
    batch = Batch(root, command, name)
    bits = chance.choice([width for width in (8, 16, 24) if width in WIDTHS[kind]])
    channels = chance.choice([count for count in (1, 2, 6) if count in CHANNELS[kind]])
    honest = workshop.maker.make(kind, bits, channels, chance.randrange(workshop.maker.VARIATIONS), False)
    for number, source in enumerate(all_lies(workshop.maker, workshop.decoder, honest)):
        batch.add(source, f"Track {number:02}.{kind}")
    batch.given = [source.path for source in batch.sources]
    batch.options = [*way, "--json", "--jobs=2", f"--output-dir={batch.output_folder}"]
    before = batch.look()
    run = workshop.runner.run(batch, Interference())
    outcome = Outcome(description=batch.description(), evils=batch.evil_names())
    outcome.output = f"exit status {run.status}\n{run.output.decode()}{run.errors.decode('utf-8', 'replace')}"
    outcome.faults = faults_of(DiskCheck(batch, before, workshop.decoder, run), run, Interference())
    count_jobs(outcome, run)
    outcome.counts["sources"] += len(batch.sources)
    if not outcome.faults:
        batch.remove()
    return outcome


def main():
    faulty, _ = run_trials(parse(__doc__, len(CONVERSIONS)), trial)
    sys.exit(1 if faulty else 0)


if __name__ == "__main__":
    main()

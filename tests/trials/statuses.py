# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Compares what the program says about a run with what is on the disk."""

import pathlib
import signal

OK, FAILED, USAGE, MISSING, INTERRUPTED = 0, 1, 2, 3, 130
STATUSES = ("complete", "error", "canceled")
ORIGINALS = ("deleted", "trashed", "kept", "untouched")
PROOFS = ("proven", "notProven", "notNeeded")


def crashes(run, interference):
    """Ends by signals that nobody has sent."""
    if run.status is None or run.status >= 0:
        return
    number = -run.status
    sent = {interference.signal} if interference.kind == "signal" and run.was_hit else set()
    if interference.kind == "file size limit" and not interference.ignores_limit_signal:
        sent.add(signal.SIGXFSZ)
    if number not in sent:
        yield f"CRASH: ended by signal {number}: {run.errors.decode('utf-8', 'replace')[-300:]}"


class StatusCheck:
    def __init__(self, disk, run, interference):
        self.disk = disk
        self.batch = disk.batch
        self.run = run
        self.interference = interference
        self.sources = {str(source.path): source for source in self.batch.sources}

    def faults(self):
        for job in self.run.jobs:
            yield from self.shape_faults(job)
            source = self.sources.get(job.get("source"))
            if source is not None:
                yield from self.job_faults(job, source)
        if self.run.status is not None and self.run.status >= 0:
            yield from self.exit_faults()

    @staticmethod
    def shape_faults(job):
        for name, words in (("status", STATUSES), ("original", ORIGINALS), ("proof", PROOFS)):
            if job.get(name) not in words:
                yield f"UNTRUE: a job's {name} is {job.get(name)!r}"
        if job.get("type") != "job" or not isinstance(job.get("reason"), str):
            yield f"UNTRUE: no job object with a reason: {str(job)[:200]}"

    def job_faults(self, job, source):
        name = source.path.name
        output = pathlib.Path(job["output"]) if job.get("output") else None
        is_complete = job.get("status") == "complete"
        if output is not None and self.disk.after.get(output) is None:
            yield f"UNTRUE: {name}: names an output that is not there: {output.name}"
        if is_complete and output is None:
            yield f"UNTRUE: {name}: is complete and names no output"
        if job.get("status") == "error" and not job.get("reason"):
            yield f"UNTRUE: {name}: has failed without a reason"
        if is_complete and output is not None and self.is_less(job, source, output):
            yield f"LESS SOUND: {name}: is complete, but {self.disk.difference(output, source)}"
        yield from self.original_faults(job, source, name)

    def is_less(self, job, source, output):
        """Whether an output that was called complete lacks sound, and nobody was warned."""
        if not source.is_judged or self.disk.holds(output, source):
            return False
        is_proven = job.get("proof") == "proven"
        if self.batch.has("--through-errors") and source.kind == "flac" or self.disk.is_meddled:
            return is_proven
        return job.get("proof") != "notProven"

    def original_faults(self, job, source, name):
        told = job.get("original")
        is_there, is_trashed = self.disk.is_there(source), self.disk.is_trashed(source)
        if told in ("deleted", "trashed") and is_there:
            yield f"UNTRUE: {name}: is told {told}, but is still there"
        if told == "trashed" and not is_trashed:
            yield f"UNTRUE: {name}: is told trashed, but is not in the trash"
        if told == "deleted" and is_trashed and self.batch.trashes:
            yield f"UNTRUE: {name}: is told deleted, but lies in the trash"
        if told in ("kept", "untouched") and not is_there:
            yield f"UNTRUE: {name}: is told {told}, but is gone"
        if told == "kept" and not job.get("reason"):
            yield f"UNTRUE: {name}: was kept without a reason"
        if told == "kept" and not self.batch.deletes:
            yield f"UNTRUE: {name}: is told kept, but nobody asked for its deletion"
        if told == "untouched" and job.get("status") == "complete" and self.batch.deletes:
            yield f"UNTRUE: {name}: is complete, and nothing is told about the deletion that was asked for"
        if told in ("deleted", "trashed"):
            if not job.get("output") or job.get("status") != "complete":
                yield f"UNTRUE: {name}: was {told} by a job that is not complete"
            if not self.batch.has("--no-proof") and job.get("proof") != "proven":
                yield f"UNTRUE: {name}: was {told} without a proof"

    def exit_faults(self):
        status = self.run.status
        is_interrupted = self.interference.kind == "signal" and self.run.was_hit
        allowed = {OK, FAILED} | ({INTERRUPTED} if is_interrupted else set())
        if not self.batch.has("--yes") and self.batch.deletes or self.interference.kind == "unwritable folder":
            allowed.add(USAGE)
        if status not in allowed:
            yield f"UNTRUE: exit status {status}: {self.run.errors.decode('utf-8', 'replace')[-300:]}"
        if status == USAGE and self.disk.after != self.disk.before:
            yield "UNTRUE: exit status 2, but something was done"
        if status == OK:
            yield from self.silent_failures()
        if self.batch.has("--json") and status in (OK, FAILED):
            yield from self.batch_faults()

    def silent_failures(self):
        for job in self.run.jobs:
            if job.get("status") != "complete" or job.get("original") == "kept":
                ending = f"{job.get('status')}, original {job.get('original')}"
                yield f"UNTRUE: exit status 0, but {job.get('title')!r} is {ending}"
        for source in self.batch.sources:
            if not self.batch.takes(source) and self.batch.given == [self.batch.input_folder]:
                continue
            outputs = self.batch.outputs_of(source)
            if not any(path in self.disk.after for path in outputs):
                yield f"UNTRUE: exit status 0, but {source.path.name} has no output"
            elif self.batch.deletes and self.disk.is_there(source) and not self.batch.has("--skip-existing"):
                yield f"UNTRUE: exit status 0, but {source.path.name} was not deleted"

    def batch_faults(self):
        told = self.run.batch
        if told is None:
            yield "UNTRUE: there is no object of the batch"
            return
        if told.get("exitStatus") != self.run.status:
            yield f"UNTRUE: the batch tells exit status {told.get('exitStatus')}, it is {self.run.status}"
        for name, status in (("complete", "complete"), ("failed", "error"), ("canceled", "canceled")):
            count = sum(job.get("status") == status for job in self.run.jobs)
            if told.get(name) != count:
                yield f"UNTRUE: the batch tells {told.get(name)} {name}, {count} jobs do"
        problems = [job for job in self.run.jobs if job.get("status") != "complete" or job.get("reason")]
        others = [name for name in ("refused", "skipped", "warnings", "kept", "notInFull") if told.get(name)]
        if self.run.status == FAILED and not problems and not others and self.run.jobs:
            yield "UNTRUE: exit status 1, but nothing is told that was not done"


def faults_of(disk, run, interference):
    """All that is wrong after a run, one line each."""
    faults = [*run.faults, *crashes(run, interference), *disk.faults()]
    if disk.batch.has("--json"):
        faults += StatusCheck(disk, run, interference).faults()
    elif run.status is not None and run.status >= 0:
        faults += StatusCheck(disk, run, interference).exit_faults()
    return faults

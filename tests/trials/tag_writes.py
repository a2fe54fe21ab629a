#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Tags written into files of every kind that takes them, with SIGKILL at random moments, full disks and files that may
not be written.

Every file has its old bytes, or all of the new tags around the same sound, as another program reads them; what is told
of it is true, and nothing is left beside it.
"""

import dataclasses
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys

from places import SmallDisk
from running import GRACE_SECONDS, Interference
from session import Outcome, parse, run_trials
from snapshot import snapshot
from sources import png_picture

KINDS = ("flac", "mp3", "ape", "wv", "m4a")
FIELDS = ("title", "artist", "album", "genre", "composer")
PARTLY = "all other tags were"


@dataclasses.dataclass
class TagBatch:
    """Files in a private folder, and the command line that writes into them."""

    root: pathlib.Path
    options: list = dataclasses.field(default_factory=list)
    files: list = dataclasses.field(default_factory=list)
    settings: dict = dataclasses.field(default_factory=dict)

    def __post_init__(self):
        for folder in ("in", "home", "tmp", "state", "run", "trial"):
            (self.root / folder).mkdir(parents=True)

    @property
    def input_folder(self):
        return self.root / "in"

    def has(self, option):
        return option == "--beside-source"  # where the small disk has to be

    def arguments(self):
        return ["tags", "set", "--json", *self.options, *[str(path) for path in self.files]]

    def look(self):
        return snapshot(*(self.root / folder for folder in ("in", "tmp", "state")))


def sound_of(path):
    """A digest of the packets of sound, however they are wrapped; of Monkey's Audio, whose last packet takes in what
    stands behind it, of the samples."""
    codec = ["-c:a", "pcm_s16le"] if path.suffix == ".ape" else ["-c", "copy"]
    run = subprocess.run(["ffmpeg", "-v", "error", "-nostdin", "-i", f"file:{path}", "-map", "0:a", *codec, "-f", "md5",
                          "-"], capture_output=True, check=False)
    return run.stdout if run.returncode == 0 else None


def tags_of(path):
    run = subprocess.run(["ffprobe", "-v", "error", "-of", "json", "-show_entries", "format_tags:stream_tags",
                          f"file:{path}"], capture_output=True, check=False)
    held = json.loads(run.stdout or b"{}")
    tags = {}
    for part in [*held.get("streams", []), held.get("format", {})]:
        tags.update({name.lower(): value for name, value in part.get("tags", {}).items()})
    if "year" in tags:
        tags.setdefault("date", tags["year"])
    return tags


def source_of(workshop, chance, kind):
    if kind == "flac" and chance.random() < 0.5:
        wav = workshop.maker.random(chance, ("wav",), (16,), adorned=0, most_channels=2).data
        return subprocess.run(["flac", "--silent", "--stdout", "--tag=DATE=1969", "-"], input=wav, capture_output=True,
                              check=True).stdout
    if kind != "mp3":
        return workshop.maker.random(chance, (kind,), (16,), adorned=0.6, most_channels=2).data
    wav = workshop.maker.random(chance, ("wav",), (16,), adorned=0, most_channels=2).data
    title = f"Title {chance.randrange(16**8):08x}"
    return subprocess.run(["lame", "--quiet", "-b", "128", "--tt", title, "-", "-"], input=wav, capture_output=True,
                          check=True).stdout


def random_batch(workshop, chance, root):
    batch = TagBatch(root)
    for number in range(chance.randint(1, 4)):
        kind = chance.choice(KINDS)
        path = batch.input_folder / f"Track {number:02}.{kind}"
        path.write_bytes(source_of(workshop, chance, kind))
        if chance.random() < 0.3:
            path.chmod(0o444)
        batch.files.append(path)
    only_one = len(batch.files) == 1
    takes_composer = all(path.suffix not in (".ape", ".wv") for path in batch.files)
    possible = [name for name in FIELDS if (name != "title" or only_one) and (name != "composer" or takes_composer)]
    fields = [name for name in possible if chance.random() < 0.5]
    new = {name: f"new {name} " + "x" * chance.choice((0, 3, 5000)) + "." for name in fields or ["album"]}
    batch.options = [f"--{name}={value}" for name, value in new.items()]
    if chance.random() < 0.4:
        picture = root / "trial" / "picture.png"
        picture.write_bytes(png_picture(os.urandom(4).hex().encode()))
        batch.options.append(f"--picture={picture}")
    if chance.random() < 0.3:
        new["date"] = "1977"
        batch.options.append("--date=1977")
    return batch, new


def random_interference(workshop, chance, batch):
    dice = chance.random()
    largest = max(path.stat().st_size for path in batch.files)
    if dice < 0.7:
        return Interference("signal", signal=signal.SIGKILL, delay_seconds=chance.random() * 0.25)
    if dice < 0.8:
        return Interference("file size limit", limit_bytes=chance.randrange(1, largest + 8192))
    if dice < 0.9 and workshop.may_mount:
        return Interference("small disk", limit_bytes=chance.randrange(4096, 2 * largest + 16384))
    return Interference()


def faults_of(batch, before, sounds, dates, new, run):
    told = {job["path"]: job for job in run.jobs if job.get("type") in ("written", "problem")}
    after = batch.look()
    for path in sorted(set(after) - set(before)):
        yield f"LEFT OVER: {path.relative_to(batch.root)}"
    for path in batch.files:
        job = told.get(str(path), {})
        if path not in after or not after[path].is_file:
            yield f"LOST: {path.name} is gone"
            continue
        is_old = after[path] == before[path]
        if not is_old and sound_of(path) != sounds[path]:
            yield f"DAMAGED: {path.name} has another sound"
        tags = tags_of(path)
        wanted = {"date": dates[path], **new}
        has_new = all(tags.get(name) == value for name, value in wanted.items())
        if not is_old and not has_new:
            yield f"HALF WRITTEN: {path.name} has {str(tags)[:300]}"
        if (job.get("type") == "written" or run.status == 0) and not has_new:
            yield f"UNTRUE: {path.name} is told to be written, and is not"
        if job.get("type") == "problem" and not is_old and PARTLY not in job["problem"]:
            yield f"UNTRUE: {path.name} is told not to be written, and has changed: {job['problem']}"
        if path.stat().st_mode & 0o777 not in (0o444, 0o644):
            yield f"MODE: {path.name} has {path.stat().st_mode & 0o777:o}"
    if run.status not in (0, 1, -signal.SIGKILL):
        yield f"STATUS: {run.status}: {run.errors.decode('utf-8', 'replace')[-300:]}"


def trial(workshop, chance, root):
    batch, new = random_batch(workshop, chance, root)
    interference = random_interference(workshop, chance, batch)
    disk = SmallDisk(batch, interference.limit_bytes) if interference.kind == "small disk" else None
    before = batch.look()
    sounds = {path: sound_of(path) for path in batch.files}
    dates = {path: tags_of(path).get("date") for path in batch.files}
    run = workshop.runner.run(batch, interference)
    recovery = workshop.runner.recover(batch)
    faults = list(run.faults) + workshop.runner.wait_for_children(run.mark, GRACE_SECONDS)
    faults += list(faults_of(batch, before, sounds, dates, new, run))
    if recovery.status != 0:
        faults.append(f"UNTRUE: recovery ended with {recovery.status}: {recovery.errors.decode('utf-8', 'replace')[-300:]}")
    if disk:
        disk.end(bool(faults))
    written = sum(job.get("type") == "written" for job in run.jobs)
    outcome = Outcome(faults=faults, description=f"nurv {' '.join(word[:80] for word in batch.arguments())}\n"
                                                  f"{interference}, hit: {run.was_hit}")
    outcome.evils = [interference.name if run.was_hit else "came too late"]
    outcome.counts.update({"files": len(batch.files), "written": written})
    outcome.output = (run.output + run.errors + recovery.output + recovery.errors).decode("utf-8", "replace")
    if not faults:
        shutil.rmtree(root)
    return outcome


def main():
    faulty, _ = run_trials(parse(__doc__, 500), trial)
    sys.exit(1 if faulty else 0)


if __name__ == "__main__":
    main()

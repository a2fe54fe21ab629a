# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Compares what a run has left on the disk with what was there before."""

from meddling import meddled_with
from snapshot import digest_of, entry_of, is_in_trash

LISTS = (".ffp", ".ffp.txt", "ffp.txt", ".md5", ".md5.txt")


class DiskCheck:
    """The state of one batch after its run."""

    def __init__(self, batch, before, decoder, run):
        self.batch = batch
        self.before = before
        self.after = batch.look()
        self.decoder = decoder
        self.jobs = {job.get("source"): job for job in run.jobs if job.get("source")}
        self.errors = run.errors.decode("utf-8", "replace")
        self.source_paths = {source.path for source in batch.sources}
        self._decoded = {}
        self.is_meddled = bool(meddled_with(batch))
        self.trash_digests = {entry.digest for path, entry in self._trash_entries().items() if entry.is_file}

    def _trash_entries(self):
        root = self.batch.root
        entries = {path: entry for path, entry in self.after.items() if is_in_trash(path, root)}
        for path in (root / "home").rglob("*"):
            if is_in_trash(path, root):
                entries[path] = entry_of(path)
        return entries

    def faults(self):
        return [*self.lost_sources(), *self.replaced_files(), *self.strays()]

    def decoded(self, path):
        if path not in self._decoded:
            self._decoded[path] = self.decoder.decode(path)
        return self._decoded[path]

    def is_there(self, source):
        entry = self.after.get(source.path)
        return entry is not None and entry.is_file and entry.digest == digest_of(source.data)

    def is_trashed(self, source):
        return digest_of(source.data) in self.trash_digests

    def holds(self, path, source):
        """Whether the file holds the source's sound; for a source that nobody can judge, whether it holds sound."""
        entry = self.after.get(path)
        if entry is None or not entry.is_file:
            return False
        decoded = self.decoded(path)
        return decoded.is_whole and (source.accepts(decoded.sound) or not source.is_judged)

    def difference(self, path, source):
        entry = self.after.get(path)
        if entry is None or not entry.is_file:
            return f"{path.name} is {entry.kind if entry else 'not there'}"
        decoded = self.decoded(path)
        if not decoded.is_whole:
            return f"{path.name} has {decoded.sound or 'no sound'}; its decoder says: {decoded.complaint or 'nothing'}"
        if not source.accepted:
            return f"{path.name} cannot stand for a source that nobody can read"
        at = min(decoded.sound.first_difference(sound) or 0 for sound in source.accepted)
        return f"{path.name} has {decoded.sound}, not {source.accepted[0]}, and differs from frame {at}"

    def lost_sources(self):
        for source in self.batch.sources:
            if self.is_there(source):
                continue
            if source.path in self.after and self._is_only_in_the_way(source):
                continue
            if source.path in self.after:
                yield f"LOST: {source.path.name} was altered"
            elif not self.batch.deletes:
                yield f"LOST: {source.path.name} is gone although nobody asked for that"
            elif not self.is_trashed(source):
                yield from self._loss_without_source(source)

    def _is_only_in_the_way(self, source):
        """Whether the file is no source of this command, but has the name of an output that was to be replaced."""
        return not self.batch.takes(source) and self.batch.has("--overwrite") and self.batch.sources_of(source.path)

    def _loss_without_source(self, source):
        outputs = self.batch.outputs_of(source)
        holding = [path for path in outputs if source.accepted and self.holds(path, source)]
        if not holding and self.is_meddled and self.batch.has("--no-proof"):
            return  # a byte that changed: nothing but the proof, which was switched off, can notice it
        if not holding:
            yield f"LOST: {source.path.name} is gone; " + "; ".join(self.difference(path, source) for path in outputs[:1])
        elif not self.batch.has("--drop-metadata"):
            texts = self.decoder.texts(holding[0])
            lacking = [marker for marker in source.markers if not self._has(holding[0], texts, marker)]
            if lacking:
                yield f"LOST: {source.path.name} is gone, and {holding[0].name} lacks {sorted(lacking)[0][:40]!r}"

    def _has(self, path, texts, marker):
        if marker.startswith(b"\x89PNG"):
            # It may have been packed anew.
            return marker in texts or self.decoder.colours(marker) in self.decoder.pictures(path)
        wide = marker.decode("latin-1")
        return any(form in texts for form in (marker, wide.encode("utf-16-le"), wide.encode("utf-16-be")))

    def replaced_files(self):
        for path, old in self.before.items():
            new = self.after.get(path)
            if path in self.source_paths or new == old or old.kind == "folder" and new is not None:
                continue
            name = path.relative_to(self.batch.root)
            makers = self.batch.sources_of(path) if self.batch.has("--overwrite") else []
            if not makers or old.kind in ("folder", "other"):
                yield f"REPLACED: {name} was {old.kind}, is {new.kind if new else 'gone'}"
            elif new is None or not new.is_file:
                yield f"REPLACED: {name} made way for {new.kind if new else 'nothing'}"
            elif not self._is_whole_or_told(path, makers):
                yield f"REPLACED: {name} made way for less: {self.difference(path, makers[0])}"
            elif old.is_file and self.batch.trashes and old.digest not in self.trash_digests:
                yield f"REPLACED: {name} made way for an output, and is not in the trash"

    def strays(self):
        for path, entry in self.after.items():
            if path in self.before or entry.kind == "folder" or is_in_trash(path, self.batch.root):
                continue
            name = path.relative_to(self.batch.root)
            makers = self.batch.sources_of(path)
            if self._is_list(path):
                continue
            if not makers:
                yield f"STRAY: {name}"
            elif not self._is_whole_or_told(path, makers):
                yield f"UNFINISHED: {name} is no whole output: {self.difference(path, makers[0])}"
        for path in (self.batch.root / "tmp").iterdir():
            if path.is_dir() and not path.is_symlink():
                yield f"STRAY: {path.relative_to(self.batch.root)}"

    def _is_list(self, path):
        return (self.batch.has("--ffp") or self.batch.has("--md5")) and path.name.endswith(LISTS)

    def _is_whole_or_told(self, path, makers):
        """Whether the output holds the sound of a source, or what is wrong with it was told or is not the program's."""
        if any(self.holds(path, source) for source in makers) or self.is_meddled:
            return True
        if not self.batch.has("--json"):
            return any(f"{source.path.name}: its output " in self.errors for source in makers)
        told = [self.jobs.get(str(source.path)) for source in makers]
        return any(job and job.get("output") == str(path) and self._is_excused(job, source)
                   for job, source in zip(told, makers))

    def _is_excused(self, job, source):
        if job.get("status") != "complete":
            return True
        is_read_through = self.batch.has("--through-errors") and source.kind == "flac"
        return not source.is_judged or is_read_through or job.get("proof") == "notProven"

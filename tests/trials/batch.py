# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""One batch: a private folder with sources and what stands in their outputs' way, and the command line that is asked."""

import dataclasses
import pathlib
import shutil

from snapshot import snapshot
from sources import COMPRESSED

ENCODE_FORMATS = ("flac", "shn", "wv", "tta", "ape", "m4a")
DECODE_FORMATS = ("wav", "aiff")


@dataclasses.dataclass
class Batch:
    root: pathlib.Path
    command: str
    format: str
    options: list = dataclasses.field(default_factory=list)
    sources: list = dataclasses.field(default_factory=list)
    given: list = dataclasses.field(default_factory=list)  # the paths on the command line
    settings: dict = dataclasses.field(default_factory=dict)
    evils: list = dataclasses.field(default_factory=list)
    meddled_tool: str | None = None  # whose outputs a wrapper changes

    def __post_init__(self):
        for folder in ("in", "out", "outside", "home", "tmp", "state", "run", "trial"):
            (self.root / folder).mkdir(parents=True)

    @property
    def input_folder(self):
        return self.root / "in"

    @property
    def output_folder(self):
        return self.root / "out"

    @property
    def meddling_log(self):
        return self.root / "trial" / "meddled.log"

    def has(self, option):
        return any(word == option or word.startswith(option + "=") for word in self.options)

    @property
    def deletes(self):
        return self.has("--delete-originals")

    @property
    def trashes(self):
        return self.settings.get("trashOrDelete", 0) != 0

    def takes(self, source):
        if self.command == "encode" and any(evil.endswith("in m4a") for evil in source.evils):
            return False  # another kind than Apple Lossless, which a search of folders passes over
        return self.command == "encode" or source.path.suffix[1:].lower() in COMPRESSED

    def outputs_of(self, source):
        """Where the output of a source may be made; the first is where people look for it."""
        # shntool leaves the extension in the name where it does not know it, as in "a.WAV.shn".
        names = [f"{source.path.stem}.{self.format}", f"{source.path.name}.{self.format}"]
        if self.has("--beside-source"):
            return [source.path.with_name(name) for name in names]
        folders = [self.output_folder]
        if self.has("--keep-folders"):
            below = source.path.parent.relative_to(self.input_folder)
            folders = [self.output_folder / below, self.output_folder / "in" / below, self.output_folder]
        return list(dict.fromkeys(folder / name for folder in folders for name in names))

    def sources_of(self, output):
        return [source for source in self.sources if output in self.outputs_of(source)]

    def add(self, source, name, folder=""):
        place = self.input_folder / folder
        place.mkdir(parents=True, exist_ok=True)
        source.path = place / name
        source.path.write_bytes(source.data)
        self.sources.append(source)

    def arguments(self):
        return [self.command, f"--format={self.format}", *self.options, *[str(path) for path in self.given]]

    def evil_names(self):
        """Every evil of the batch, without the details."""
        names = self.evils + [evil for source in self.sources for evil in source.evils]
        return [name if name.startswith("lie:") else name.partition(":")[0] for name in names]

    def look(self):
        return snapshot(*(self.root / folder for folder in ("in", "out", "outside", "tmp", "state")))

    def description(self):
        lines = ["nurv " + " ".join(self.arguments()), f"evils: {', '.join(self.evils) or 'none'}"]
        lines += [f"  {source.path.relative_to(self.root)}: {source.sound}, {source.bits} bits"
                  f"{', tagged' if source.markers else ''}{', ' + '; '.join(source.evils) if source.evils else ''}"
                  for source in self.sources]
        return "\n".join(lines)

    def remove(self):
        shutil.rmtree(self.root, ignore_errors=True)

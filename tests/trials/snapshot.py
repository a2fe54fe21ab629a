# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""What is in a folder at one moment."""

import dataclasses
import hashlib
import os
import pathlib
import stat


@dataclasses.dataclass(frozen=True)
class Entry:
    kind: str  # "file", "folder", "link" or "other"
    digest: str = ""  # of a file
    target: str = ""  # of a link

    @property
    def is_file(self):
        return self.kind == "file"


def digest_of(data):
    return hashlib.sha256(data).hexdigest()


def entry_of(path):
    facts = os.lstat(path)
    if stat.S_ISLNK(facts.st_mode):
        return Entry("link", target=os.readlink(path))
    if stat.S_ISDIR(facts.st_mode):
        return Entry("folder")
    if stat.S_ISREG(facts.st_mode):
        return Entry("file", digest=digest_of(pathlib.Path(path).read_bytes()))
    return Entry("other")


def snapshot(*folders):
    """All that is below the folders, by path. Links are not followed."""
    entries = {}
    for folder in folders:
        for place, folders_in, files in os.walk(folder):
            for name in folders_in + files:
                path = pathlib.Path(place) / name
                entries[path] = entry_of(path)
    return entries


def is_in_trash(path, root):
    """Whether the path lies in a trash folder somewhere below `root`."""
    return any(part == "Trash" or part.startswith(".Trash") for part in path.relative_to(root).parts[:-1])

# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Puts the meddler in the place of one tool."""

import json
import pathlib

MEDDLER = pathlib.Path(__file__).resolve().with_name("meddler.py")
# What writes the outputs of a format, or reads the sources of a kind for WAV and AIFF.
WRITERS = {"flac": "flac", "shn": "shntool", "wv": "wavpack", "tta": "ttaenc", "ape": "mac", "m4a": "AtomicParsley"}
READERS = {"flac": "flac", "shn": "shntool", "wv": "wvunpack", "tta": "ttaenc", "ape": "mac"}


def tools_with_meddler(chance, batch, tools, tool, extensions):
    """A folder of links to all tools, one of which changes what it writes. Returns the folder."""
    folder = batch.root / "trial" / "tools"
    folder.mkdir()
    for real in pathlib.Path(tools).iterdir():
        (folder / real.name).symlink_to(MEDDLER if real.name == tool else real)
    orders = {"tool": str(pathlib.Path(tools) / tool), "folders": [str(batch.input_folder), str(batch.output_folder)],
              "extensions": list(extensions), "log": str(batch.meddling_log), "place": chance.random() * 0.998,
              "mask": 1 << chance.randrange(8)}
    (folder / f"{tool}.meddler").write_text(json.dumps(orders), encoding="utf-8")
    return folder


def meddled_with(batch):
    """The files that were changed."""
    if not batch.meddling_log.exists():
        return []
    lines = batch.meddling_log.read_text(encoding="utf-8").splitlines()
    return [pathlib.Path(json.loads(line)["path"]) for line in lines]

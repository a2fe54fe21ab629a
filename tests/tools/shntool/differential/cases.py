# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""All cases, by their subjects. Their names tell them apart."""

import command_lines
import edits
import reports
import splits

CASES = [*reports.CASES, *edits.CASES, *splits.CASES, *command_lines.CASES]


def twice():
    names = sorted(case.name for case in CASES)
    return [name for name, following in zip(names, names[1:]) if name == following]


assert not twice(), f"cases of the same name: {twice()}"

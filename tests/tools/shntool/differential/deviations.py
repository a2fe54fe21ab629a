# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Where the distribution's program is plainly wrong: the cases, the reason, and what is expected in its place."""

import dataclasses


@dataclasses.dataclass(frozen=True)
class Deviation:
    """What is given replaces that part of the reference's result; the rest has to equal it. Texts are bytes, or a
    function that makes them of the reference's; `files` are the paths whose contents are others."""
    cases: tuple
    reason: str
    status: object = None
    output: object = None
    errors: object = None
    files: object = None

    def expected(self, reference):
        return dataclasses.replace(
            reference,
            status=reference.status if self.status is None else self.status,
            output=replaced(self.output, reference.output),
            errors=replaced(self.errors, reference.errors),
            files=replaced(self.files, reference.files))


def replaced(change, value):
    if change is None:
        return value
    return change(value) if callable(change) else change


DEVIATIONS = ()


def deviation_of(name):
    return next((deviation for deviation in DEVIATIONS if name in deviation.cases), None)

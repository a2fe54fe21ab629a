# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Names the differences of two results."""

SHOWN = 300  # bytes of a text around its first difference


def place_of_difference(one, other):
    return next((place for place, pair in enumerate(zip(one, other)) if pair[0] != pair[1]), min(len(one), len(other)))


def text_difference(name, wanted, got):
    """Nothing where they are equal, else what stands in both from the start of the line that differs."""
    if wanted == got:
        return []
    place = place_of_difference(wanted, got)
    start = max(wanted.rfind(b"\n", 0, place) + 1, place - SHOWN, 0)
    return [f"{name} differs at byte {place} (of {len(wanted)} wanted, {len(got)} told)\n"
            f"    wanted: {wanted[start:start + SHOWN]!r}\n    told:   {got[start:start + SHOWN]!r}"]


def file_differences(wanted, got):
    faults = []
    for path in sorted(wanted.keys() | got.keys()):
        if path not in got:
            faults.append(f"{path!r} is missing")
        elif path not in wanted:
            faults.append(f"{path!r} should not be there ({len(got[path][1])} bytes)")
        elif wanted[path][0] != got[path][0]:
            faults.append(f"{path!r} has mode {got[path][0]}, not {wanted[path][0]}")
        elif wanted[path][1] != got[path][1]:
            place = place_of_difference(wanted[path][1], got[path][1])
            faults.append(f"{path!r} differs at byte {place} (of {len(wanted[path][1])} wanted, {len(got[path][1])} "
                          f"written)\n    wanted: {wanted[path][1][place:place + 16].hex(' ')}\n"
                          f"    told:   {got[path][1][place:place + 16].hex(' ')}")
    return faults


def differences(wanted, got):
    """The faults of a result, each a text of one or several lines; none where the results are equal."""
    faults = [] if wanted.status == got.status else [f"exit status {got.status}, not {wanted.status}"]
    faults += text_difference("standard output", wanted.output, got.output)
    faults += text_difference("standard error", wanted.errors, got.errors)
    return faults + file_differences(wanted.files, got.files)

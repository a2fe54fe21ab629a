# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Finds the processes that one run has started, wherever they hang in the tree of processes."""

import os
import pathlib
import signal
import time

MARK = "NURV_TRIAL_MARK"


def is_alive(pid):
    """Whether it runs; one that waits to be reaped does not."""
    try:
        facts = pathlib.Path(f"/proc/{pid}/stat").read_text(encoding="utf-8", errors="replace")
        return facts.rpartition(")")[2].split()[0] != "Z"
    except (OSError, IndexError):
        return False


def marked(mark):
    """The processes whose environment has the mark."""
    wanted = f"{MARK}={mark}".encode()
    found = []
    for entry in os.listdir("/proc"):
        if not entry.isdigit() or int(entry) == os.getpid():
            continue
        try:
            environment = pathlib.Path(f"/proc/{entry}/environ").read_bytes()
        except OSError:
            continue
        if wanted in environment.split(b"\0") and is_alive(int(entry)):
            found.append(int(entry))
    return sorted(found)


def children_of(pid):
    """Its children and theirs, the deepest last. Quick enough for programs that live for some milliseconds."""
    found = []
    try:
        for thread in os.listdir(f"/proc/{pid}/task"):
            words = pathlib.Path(f"/proc/{pid}/task/{thread}/children").read_text(encoding="ascii").split()
            found += [int(word) for word in words]
    except OSError:
        pass
    return found + [below for child in found for below in children_of(child)]


def name_of(pid):
    try:
        return pathlib.Path(f"/proc/{pid}/comm").read_text(encoding="utf-8", errors="replace").strip()
    except OSError:
        return "?"


def send(pid, number):
    """Whether there was a process to send it to."""
    try:
        os.kill(pid, number)
    except ProcessLookupError:
        return False
    return True


def wait_until_gone(mark, seconds):
    """What is left of the marked processes after that time at most."""
    deadline = time.monotonic() + seconds
    while left := marked(mark):
        if time.monotonic() > deadline:
            return left
        time.sleep(0.02)
    return []


def end(pids):
    for pid in pids:
        send(pid, signal.SIGKILL)

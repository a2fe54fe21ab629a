# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Disks that fill up, and folders that cannot be written."""

import os
import pathlib
import shutil
import subprocess
import tempfile

from running import NOBODY

PAGE = 4096


def may_mount():
    """Whether this process can mount a small disk."""
    if os.geteuid() != 0:
        return False
    with tempfile.TemporaryDirectory() as folder:
        if _mount(folder, PAGE):
            subprocess.run(["umount", folder], capture_output=True, check=True)
            return True
    return False


def may_run_as_nobody(program):
    if os.geteuid() != 0:
        return False
    try:
        run = subprocess.run([str(program), "--version"], stdin=subprocess.DEVNULL, capture_output=True, user=NOBODY,
                             group=NOBODY, extra_groups=[], timeout=60, check=False, cwd="/")
    except OSError:
        return False
    return run.returncode == 0


def _mount(folder, size):
    mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size},mode=0777", "tmpfs", str(folder)],
                             stdin=subprocess.DEVNULL, capture_output=True, check=False)
    return mounted.returncode == 0


def unmount(folder):
    subprocess.run(["umount", "-l", str(folder)], stdin=subprocess.DEVNULL, capture_output=True, check=False)


class SmallDisk:
    """Puts a folder of the batch onto a disk of its own with little room left on it."""

    def __init__(self, batch, room):
        self.folder = batch.input_folder if batch.has("--beside-source") else batch.output_folder
        moved = self.folder.with_name(self.folder.name + ".moved")
        self.folder.rename(moved)
        self.folder.mkdir()
        paths = list(moved.rglob("*"))
        used = sum(-(-path.lstat().st_size // PAGE) + 1 for path in paths) * PAGE
        self.is_mounted = _mount(self.folder, used + room)
        shutil.copytree(moved, self.folder, symlinks=True, dirs_exist_ok=True)
        shutil.rmtree(moved)

    def end(self, keeps_contents):
        """Takes the disk away; its files come into the folder itself if they are wanted."""
        if not self.is_mounted:
            return
        copy = self.folder.with_name(self.folder.name + ".copy")
        if keeps_contents:
            shutil.copytree(self.folder, copy, symlinks=True)
        unmount(self.folder)
        if keeps_contents:
            self.folder.rmdir()
            copy.rename(self.folder)


def close_for_nobody(batch, folder):
    """Gives everything to another user, who may not write into the folder nor into those below it."""
    for path in [batch.root, *batch.root.rglob("*")]:
        os.chown(path, NOBODY, NOBODY, follow_symlinks=False)
    for path in [folder, *folder.rglob("*")]:
        if path.is_dir() and not path.is_symlink():
            path.chmod(0o555)


def open_again(batch):
    for path in batch.root.rglob("*"):
        if path.is_dir() and not path.is_symlink():
            path.chmod(0o755)


def private_folder():
    """A new folder for trials, which other users may pass through."""
    folder = pathlib.Path(tempfile.mkdtemp(prefix="nurv-trials-"))
    folder.chmod(0o755)
    return folder

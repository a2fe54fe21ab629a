# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs the program on a batch, and interferes with it while it works."""

import dataclasses
import itertools
import json
import os
import resource
import signal
import subprocess
import threading
import time

import processes

LIMIT_SECONDS = 300
ORPHAN_SECONDS = 30
GRACE_SECONDS = 30
NOBODY = 65534

_numbers = itertools.count()


@dataclasses.dataclass
class Interference:
    """What is done to a run, once it has told of `after_jobs` jobs and `delay_seconds` have passed."""

    kind: str = "none"
    after_jobs: int = 0
    delay_seconds: float = 0.0
    limit_bytes: int = 0
    signal: int = 0
    ignores_limit_signal: bool = True

    @property
    def name(self):
        return f"{self.kind} {signal.Signals(self.signal).name}" if self.signal else self.kind

    @property
    def is_fatal(self):
        """Whether the program itself may end without a word."""
        return self.kind == "signal" and self.signal == signal.SIGKILL or \
            self.kind == "file size limit" and not self.ignores_limit_signal


@dataclasses.dataclass
class Run:
    status: int | None  # as subprocess tells it; None: it hung
    output: bytes
    errors: bytes
    jobs: list  # the objects of its jobs
    batch: dict | None  # the object of the batch
    faults: list  # what was wrong with the run itself
    mark: str = ""  # of all its processes
    was_hit: bool = False  # whether the interference took place
    seconds: float = 0.0


def environment_of(batch, tools, mark):
    home = batch.root / "home"
    folders = {"XDG_CONFIG_HOME": home / "config", "XDG_DATA_HOME": home / "data", "XDG_CACHE_HOME": home / "cache",
               "XDG_STATE_HOME": home / "state", "XDG_RUNTIME_DIR": batch.root / "run", "TMPDIR": batch.root / "tmp",
               "NURV_STATE": batch.root / "state", "NURV_SETTINGS": batch.root / "trial" / "settings.ini",
               "NURV_TOOLS": tools}
    inherited = ("PATH", "ASAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS")
    kept = {name: os.environ[name] for name in inherited if name in os.environ}
    return {**kept, **{name: str(path) for name, path in folders.items()}, "HOME": str(home), "LANG": "C.UTF-8",
            "QT_QPA_PLATFORM": "offscreen", processes.MARK: mark}


def write_settings(batch):
    lines = ["[General]"] + [f"{name}={value}" for name, value in batch.settings.items()]
    (batch.root / "trial" / "settings.ini").write_text("\n".join(lines) + "\n", encoding="utf-8")


class _Reader(threading.Thread):
    """Reads a pipe to its end, and counts the jobs that were told of."""

    def __init__(self, pipe):
        super().__init__(daemon=True)
        self.pipe = pipe
        self.data = b""
        self.start()

    def run(self):
        while piece := os.read(self.pipe.fileno(), 65536):
            self.data += piece

    def job_count(self):
        return self.data.count(b'"type":"job"')


class Runner:
    def __init__(self, program, tools):
        self.program = str(program)
        self.tools = tools

    def run(self, batch, interference, as_nobody=False, tools=None, waits_for_orphans=True):
        """Runs to the end. When the program was killed its children may live on: then the caller has to wait for them
        with `wait_for_children`, unless that is done here."""
        write_settings(batch)
        return self._run(batch, batch.arguments(), interference, as_nobody, tools or self.tools, waits_for_orphans)

    def recover(self, batch):
        return self._run(batch, ["recover", "--yes"], Interference(), False, self.tools)

    def _run(self, batch, arguments, interference, as_nobody, tools, waits_for_orphans=True):
        mark = f"{os.getpid()}-{next(_numbers)}"

        def prepare():
            if interference.kind == "file size limit":
                if interference.ignores_limit_signal:
                    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
                resource.setrlimit(resource.RLIMIT_FSIZE, (interference.limit_bytes, interference.limit_bytes))

        user = {"user": NOBODY, "group": NOBODY, "extra_groups": []} if as_nobody else {}
        started = time.monotonic()
        child = subprocess.Popen([self.program, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE, cwd=batch.root / "run", start_new_session=True,
                                 env=environment_of(batch, tools, mark), preexec_fn=prepare, restore_signals=True, **user)
        readers = [_Reader(child.stdout), _Reader(child.stderr)]
        was_hit = self._interfere(child, readers[0], interference, started)
        faults = []
        status = self._wait(child, started)
        if status is None:
            faults.append(f"HANG: not ended after {LIMIT_SECONDS} seconds")
            child.kill()
            child.wait()
        was_killed = interference.is_fatal and status is not None and status < 0
        if waits_for_orphans or not was_killed:
            faults += self.wait_for_children(mark, ORPHAN_SECONDS if was_killed else GRACE_SECONDS)
        for reader in readers:
            reader.join(GRACE_SECONDS)
        child.stdout.close()
        child.stderr.close()
        run = Run(status, readers[0].data, readers[1].data, [], None, faults, mark, was_hit, time.monotonic() - started)
        if "--json" in arguments:
            read_objects(run)
        return run

    @staticmethod
    def _wait(child, started):
        try:
            return child.wait(max(1.0, LIMIT_SECONDS - (time.monotonic() - started)))
        except subprocess.TimeoutExpired:
            return None

    @staticmethod
    def wait_for_children(mark, seconds):
        """Ends what is left after that time, and returns it as a fault."""
        left = processes.wait_until_gone(mark, seconds)
        names = ", ".join(processes.name_of(pid) for pid in left)
        processes.end(left)
        return [f"CHILD LEFT OVER: {names}"] if left else []

    def _interfere(self, child, reader, interference, started):
        if interference.kind not in ("signal", "child", "stop"):
            return interference.kind != "none"
        while reader.job_count() < interference.after_jobs and child.poll() is None and \
                time.monotonic() - started < LIMIT_SECONDS:
            time.sleep(0.002)
        time.sleep(interference.delay_seconds)
        if child.poll() is not None:
            return False
        if interference.kind == "signal":
            return processes.send(child.pid, interference.signal)
        if interference.kind == "stop":
            was_hit = processes.send(child.pid, signal.SIGSTOP)
            time.sleep(0.15)
            return processes.send(child.pid, signal.SIGCONT) and was_hit
        return self._hit_child(child, interference)

    @staticmethod
    def _hit_child(child, interference):
        while child.poll() is None:
            if children := processes.children_of(child.pid):
                if processes.send(children[-1], interference.signal):
                    return True
        return False


def read_objects(run):
    """Takes the JSON lines apart. The last one of a program that was killed may be cut."""
    lines = run.output.decode("utf-8", "replace").split("\n")
    for number, line in enumerate(lines):
        if not line:
            continue
        try:
            held = json.loads(line)
        except ValueError:
            held = None
        if not isinstance(held, dict):
            is_cut = number == len(lines) - 1 and run.status is not None and run.status < 0
            if not is_cut:
                run.faults.append(f"NO JSON on standard output: {line[:200]!r}")
        elif held.get("type") == "batch":
            run.batch = held
        else:
            run.jobs.append(held)


def random_interference(chance, source_count, largest):
    """For about half of all runs something; `largest`: bytes of the largest source."""
    dice = chance.random()
    moment = {"after_jobs": chance.randrange(source_count), "delay_seconds": chance.random() ** 2 * 0.25}
    if dice < 0.17:
        number = chance.choice((signal.SIGINT, signal.SIGTERM, signal.SIGKILL))
        return Interference("signal", signal=number, **moment)
    if dice < 0.27:
        moment["after_jobs"] *= chance.random() < 0.3
        moment["delay_seconds"] = chance.random() * 0.05
        return Interference("child", signal=chance.choice((signal.SIGKILL, signal.SIGTERM)), **moment)
    if dice < 0.31:
        return Interference("stop", **moment)
    if dice < 0.37:
        return Interference("file size limit", limit_bytes=chance.randrange(1, largest + 2),
                            ignores_limit_signal=chance.random() < 0.6)
    if dice < 0.43:
        return Interference("small disk", limit_bytes=chance.randrange(8192, 2 * largest + 16384))
    if dice < 0.47:
        return Interference("unwritable folder")
    if dice < 0.55:
        return Interference("meddler")
    return Interference()

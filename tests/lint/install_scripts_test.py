#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""What ./run and ./test do about missing packages, with an apt-get of our own along PATH."""

import os
import pathlib
import pty
import select
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
QUESTION = b"with apt-get? [y/N] "
LIMIT_SECONDS = 60

# Nothing is installed but what $FAKES/installed names, and "all" is everything.
DPKG_QUERY = """#!/bin/bash
for word; do
    case $word in --*) ;; *) grep -qxE "$word|all" "$FAKES/installed" && printf '%s ii \\n' "$word" ;; esac
done
true
"""
# Notes its calls. What would be removed stands in $FAKES/removed.
APT_GET = """#!/bin/bash
printf '%s\\n' "$*" >>"$FAKES/calls"
if [[ $* == *--simulate* ]]; then
    printf 'Inst needed (1)\\n'
    [[ ! -e $FAKES/removed ]] || sed 's/.*/Remv & [1.0]/' "$FAKES/removed"
elif [[ $* == *install* && -e $FAKES/removed ]]; then
    printf 'E: Packages need to be removed but remove is disabled.\\n' >&2
    exit 100
elif [[ $* == *install* ]]; then
    printf 'all\\n' >"$FAKES/installed"
fi
"""
SUDO = '#!/bin/bash\nexec "$@"\n'


class InstallScripts(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.fakes = pathlib.Path(folder.name)
        for name, text in (("dpkg-query", DPKG_QUERY), ("apt-get", APT_GET), ("sudo", SUDO)):
            (self.fakes / name).write_text(text, encoding="utf-8")
            (self.fakes / name).chmod(0o700)
        (self.fakes / "installed").write_text("cmake\n", encoding="utf-8")
        self.environment = {"PATH": f"{self.fakes}:/usr/bin:/bin", "FAKES": str(self.fakes), "LC_ALL": "C.UTF-8"}

    def calls(self):
        calls = self.fakes / "calls"
        return calls.read_text(encoding="utf-8").splitlines() if calls.exists() else []

    def installs(self):
        return [call for call in self.calls() if " install " in f" {call} " and "--simulate" not in call]

    def install_missing(self, packages="cmake flac sox"):
        return ["bash", "-c", f"set -euo pipefail; source scripts/dependencies.sh; nurv_install_missing {packages}; echo went on"]

    def without_terminal(self, command):
        done = subprocess.run(command, cwd=ROOT, env=self.environment, stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=LIMIT_SECONDS, check=False)
        return done.returncode, (done.stdout + done.stderr).decode()

    def at_terminal(self, command, answer):
        """The status and everything shown; `answer` is typed once the question is there."""
        child, terminal = pty.fork()
        if child == 0:
            os.chdir(ROOT)
            os.execve("/usr/bin/env", ["env", *command], self.environment)
        shown = b""
        is_answered = False
        while select.select([terminal], [], [], LIMIT_SECONDS)[0]:
            try:
                read = os.read(terminal, 4096)
            except OSError:
                break
            if not read:
                break
            shown += read
            if not is_answered and QUESTION in shown:
                is_answered = True
                os.write(terminal, answer)
        os.close(terminal)
        status = os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])
        return status, shown.decode().replace("\r\n", "\n"), is_answered

    def test_nobody_there_installs_without_a_question(self):
        status, text = self.without_terminal(self.install_missing())
        self.assertEqual((status, "went on" in text), (0, True), text)
        self.assertNotIn("[y/N]", text)
        self.assertIn("Installing missing packages: flac sox\n", text)
        self.assertEqual(len(self.installs()), 1, self.calls())
        self.assertTrue(self.installs()[0].endswith("flac sox"), self.calls())

    def test_no_call_may_remove(self):
        self.without_terminal(self.install_missing())
        for call in self.installs():
            self.assertIn("--no-remove", call)

    def test_nothing_missing_starts_nothing(self):
        status, text = self.without_terminal(self.install_missing("cmake"))
        self.assertEqual((status, text), (0, "went on\n"))
        self.assertEqual(self.calls(), [])

    def test_what_would_be_removed_is_named(self):
        (self.fakes / "removed").write_text("somebody-elses-flac\nlibold1\n", encoding="utf-8")
        status, text = self.without_terminal(self.install_missing())
        self.assertEqual(status, 1, text)
        self.assertIn("would have been removed: somebody-elses-flac libold1\n", text)
        self.assertNotIn("went on", text)

    def test_a_person_is_asked_and_told_what_comes(self):
        status, text, was_asked = self.at_terminal(self.install_missing(), b"y\n")
        self.assertTrue(was_asked, text)
        self.assertEqual(status, 0, text)
        self.assertLess(text.index("flac sox"), text.index("[y/N]"))
        self.assertEqual(len(self.installs()), 1)

    def test_anything_but_yes_changes_nothing(self):
        for answer in (b"\n", b"n\n", b"what?\n", b"\x04"):
            with self.subTest(answer=answer):
                status, text, was_asked = self.at_terminal(self.install_missing(), answer)
                self.assertTrue(was_asked, text)
                self.assertEqual(status, 1, text)
                self.assertIn("Nothing was installed.", text)
                self.assertIn("apt-get install --no-install-recommends flac sox", text)
                self.assertNotIn("went on", text)
                self.assertEqual(self.calls(), [])

    def test_continuous_integration_is_not_asked(self):
        self.environment["CI"] = "true"
        status, text, was_asked = self.at_terminal(self.install_missing(), b"")
        self.assertEqual((status, was_asked), (0, False), text)
        self.assertEqual(len(self.installs()), 1)

    def test_both_scripts_ask(self):
        for command in (["./run", "nurv", "--version"], ["./run"], ["./test", "-R", "Nothing"]):
            with self.subTest(command=command):
                status, text, was_asked = self.at_terminal(command, b"n\n")
                self.assertTrue(was_asked, text)
                self.assertEqual(status, 1, text)
                self.assertEqual(self.calls(), [])


if __name__ == "__main__":
    unittest.main()

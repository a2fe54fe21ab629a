#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Holds mutants.py against small lists and trees."""

import io
import os
import subprocess
import sys
import tempfile
import unittest
from contextlib import redirect_stdout
from pathlib import Path

import mutants
from mutants import APPLIES_NOT, BUILDS_NOT, KILLED, SURVIVED

LINE = "no-flush  src/a.cpp  one:A|B,two  if (flush(x)) => if (true)"
SOURCE = "void work()\n{\n    if (flush(x))\n        rename();\n}\n"


class FakeWorkshop(mutants.Workshop):
    """Compiles nothing: what is built and tested is decided by the texts."""

    def make(self, log, targets):
        self.targets = targets
        return "no such thing" not in (self.source / "src/a.cpp").read_text(encoding="utf-8")

    def test(self, log, expression, limit, *options):
        (self.logs / f"{log}.log").write_text("1/1 Test  #7: one.A.Sees ....***Failed  0.1 sec\n", encoding="utf-8")
        return 0 if "harmless" in (self.source / "src/a.cpp").read_text(encoding="utf-8") else 8


class Mutants(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name) / "tree"
        (self.root / "src").mkdir(parents=True)
        (self.root / "tests" / "one").mkdir(parents=True)
        (self.root / "src" / "a.cpp").write_text(SOURCE, encoding="utf-8")
        (self.root / "tests" / "one" / "CMakeLists.txt").write_text(
            "nurv_test(one\n  LABELS unit)\nnurv_test(two LABELS unit)\n", encoding="utf-8")

    def mutant(self, line=LINE):
        return mutants.parse_line(line, "line 1")

    def read(self, text):
        path = self.root / "list.txt"
        path.write_text(text, encoding="utf-8")
        return mutants.read_list(path)

    def test_line(self):
        found = self.mutant()
        self.assertEqual(found.name, "no-flush")
        self.assertEqual(found.targets(), ["one_test", "two_test"])
        self.assertEqual(found.expression(), r"^one\.(A|B)|^two\.()")

    def test_bad_lines(self):
        for line in ("name src/a.cpp one", "name src/a.cpp one no arrow", "name src/a.cpp one  => x",
                     "name src/a.cpp one same => same"):
            with self.assertRaises(mutants.BadList, msg=line):
                self.mutant(line)
        with self.assertRaises(mutants.BadList):
            self.read(LINE + "\n" + LINE + "\n")

    def test_comments_and_blank_lines(self):
        self.assertEqual(len(self.read(f"# about\n\n{LINE}\n")), 1)

    def test_applies_wherever_lines_break(self):
        text = "if (flush(x))\n            && more"
        self.assertEqual(self.mutant("a f one if (flush(x)) && more =>").apply(text), "")
        self.assertEqual(self.mutant().apply(SOURCE), SOURCE.replace("flush(x)", "true"))

    def test_applies_to_one_place_only(self):
        self.assertIsNone(self.mutant().apply(SOURCE + SOURCE))
        self.assertIsNone(self.mutant().apply("nothing"))

    def test_check_names_what_has_moved(self):
        self.assertEqual(list(mutants.faults_of([self.mutant()], self.root)), [])
        for line, text in (("a src/gone.cpp one x => y", "no src/gone.cpp"), ("a src/a.cpp one gone => y", "0 times"),
                           ("a src/a.cpp one ( => y", "4 times"), ("a src/a.cpp three rename => y", "program three")):
            faults = list(mutants.faults_of([self.mutant(line)], self.root))
            self.assertEqual(len(faults), 1, faults)
            self.assertIn(text, faults[0])

    def test_copies_what_has_changed_and_removes_what_has_gone(self):
        copy = self.root.parent / "copy"
        (self.root / "src" / "gone.cpp").write_text("x", encoding="utf-8")
        (self.root / "build").mkdir()
        mutants.copy_tree(self.root, copy)
        self.assertFalse((copy / "build").exists())
        (copy / "build").mkdir()
        (copy / "build" / "object").write_text("kept", encoding="utf-8")
        os.utime(copy / "src" / "a.cpp", (1, 1))
        (self.root / "src" / "gone.cpp").unlink()
        (self.root / "tests" / "one" / "CMakeLists.txt").write_text("other", encoding="utf-8")
        mutants.copy_tree(self.root, copy)
        self.assertEqual((copy / "src" / "a.cpp").stat().st_mtime, 1, "it was the same")
        self.assertFalse((copy / "src" / "gone.cpp").exists())
        self.assertEqual((copy / "tests" / "one" / "CMakeLists.txt").read_text(encoding="utf-8"), "other")
        self.assertTrue((copy / "build" / "object").exists())

    def test_verdicts(self):
        shop = FakeWorkshop(self.root.parent / "shop", 1, 60)
        mutants.copy_tree(self.root, shop.source)
        lines = {"killed a": ("src/a.cpp one rename => remove", KILLED),
                 "harmless": ("src/a.cpp one rename => harmless", SURVIVED),
                 "gone": ("src/a.cpp one nowhere => x", APPLIES_NOT),
                 "bad": ("src/a.cpp one rename(); => no such thing", BUILDS_NOT)}
        told = io.StringIO()
        with redirect_stdout(told):
            counts = mutants.judge(shop, [self.mutant(f"m{at} {line}") for at, (line, _) in enumerate(lines.values())])
        self.assertEqual(counts, {KILLED: 1, SURVIVED: 1, APPLIES_NOT: 1, BUILDS_NOT: 1})
        self.assertIn("by one.A.Sees", told.getvalue())
        self.assertEqual((shop.source / "src/a.cpp").read_text(encoding="utf-8"), SOURCE, "all is as it was")

    def test_what_hangs_is_ended(self):
        with open(os.devnull, "w", encoding="utf-8") as log:
            self.assertIsNone(mutants.run(["sleep", "600"], log, 0.2))
            self.assertEqual(mutants.run(["true"], log, 60), 0)

    def test_a_list_with_a_fault_ends_with_a_message(self):
        script = self.root / "tests" / "mutants" / "mutants.py"
        script.parent.mkdir()
        script.write_bytes((mutants.HERE / "mutants.py").read_bytes())
        (script.parent / "mutants.txt").write_text("nonsense\n", encoding="utf-8")
        result = subprocess.run([sys.executable, script, "--check"], capture_output=True, text=True, check=False)
        self.assertEqual(result.returncode, 1)
        self.assertIn("mutants.txt:1", result.stderr)
        (script.parent / "mutants.txt").write_text(LINE + "\n", encoding="utf-8")
        self.assertEqual(subprocess.run([sys.executable, script, "--check"], check=False).returncode, 0)


if __name__ == "__main__":
    unittest.main()

#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""Plants one fault at a time and expects check_sources to name it."""

import pathlib
import tempfile
import unittest

import check_sources

HEAD = "\n".join(check_sources.SPDX) + "\n"
WIDGETS = {"QWidget", "QMessageBox", "QApplication", "qwidget.h"}


class CheckSources(unittest.TestCase):
    def faults(self, name, body, head=HEAD):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / name
            path.parent.mkdir(parents=True)
            path.write_text(head + body, encoding="utf-8")
            return check_sources.check_tree(pathlib.Path(folder), WIDGETS)

    def assert_fault(self, name, body, text, head=HEAD):
        faults = self.faults(name, body, head)
        self.assertEqual(len(faults), 1, faults)
        self.assertIn(name, faults[0])
        self.assertIn(text, faults[0])

    def test_clean_sources_pass(self):
        self.assertEqual(self.faults("src/engine/A.cpp", '#include "base/B.h"\n#include <QString>\n'), [])
        self.assertEqual(self.faults("src/convert/A.cpp", '#include "tags/T.h"\n#include "convert/C.h"\n'), [])
        self.assertEqual(self.faults("src/ui/A.cpp", "#include <QWidget>\n"), [])
        self.assertEqual(self.faults("src/ui/DesktopPrompts.cpp", "QMessageBox box; dialog.exec();\n"), [])
        self.assertEqual(self.faults("src/ui/A.cpp", "// a QMessageBox would block here\n/* QFileDialog */\n"), [])

    def test_arrow_that_points_up(self):
        self.assert_fault("src/base/A.h", '#pragma once\n#include "engine/B.h"\n', "must not include engine/B.h")
        self.assert_fault("src/engine/A.cpp", '#include "app/B.h"\n', "must not include app/B.h")
        self.assert_fault("src/tags/A.cpp", '#include "convert/B.h"\n', "must not include convert/B.h")
        self.assert_fault("src/convert/A.cpp", '  #  include "ui/B.h"\n', "must not include ui/B.h")

    def test_codecs_below_samples_alone(self):
        self.assertEqual(self.faults("src/samples/A.cpp", '#include "shorten/ShortenDecoder.h"\n'), [])
        self.assert_fault("src/samples/A.cpp", '#include "shntool/A.h"\n', "must not include")
        self.assert_fault("src/convert/A.cpp", '#include "shorten/ShortenDecoder.h"\n', "does not name a folder")

    def test_cli_and_ui_are_strangers(self):
        self.assert_fault("src/cli/A.cpp", '#include "ui/B.h"\n', "must not include ui/B.h")
        self.assert_fault("src/ui/A.cpp", '#include "cli/B.h"\n', "must not include cli/B.h")

    def test_include_without_a_folder(self):
        self.assert_fault("src/engine/A.cpp", '#include "B.h"\n', "does not name a folder")

    def test_names_of_two_things(self):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            for name, body in (("src/base/A.h", "#pragma once\nclass A {\n};\nclass C;\n"), ("src/text/A.h", "#pragma once\n"),
                               ("tools/tta/B.cpp", "struct A final : C {\n};\nclass D;\n"), ("src/text/D.cpp", "class D {\n};\n")):
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(HEAD + body, encoding="utf-8")
            faults = check_sources.check_tree(root, WIDGETS)
        self.assertEqual(len(faults), 2, faults)
        self.assertIn("src/text/A.h:1: src/base/A.h has that name too", faults)
        self.assertIn("tools/tta/B.cpp:1: A is the name of a type in src/base/A.h too", faults)

    def test_folder_without_a_place(self):
        self.assert_fault("src/misc/A.cpp", "", "no place in the picture")

    def test_clean_tools_pass(self):
        self.assertEqual(self.faults("tools/tta/A.cpp", '#include "tta/B.h"\n#include "support/C.h"\n#include <zlib.h>\n'), [])
        self.assertEqual(self.faults("tools/support/A.h", '#pragma once\n#include "files/FileDescriptor.h"\n'), [])
        self.assertEqual(self.faults("fuzz/A.cpp", '#include "B.h"\n#include "tta/B.h"\n#include "tags/C.h"\n'), [])

    def test_tool_that_includes_what_it_must_not(self):
        self.assert_fault("tools/support/A.cpp", '#include "tta/B.h"\n', "support must not include tta/B.h")
        self.assert_fault("tools/tta/A.cpp", '#include "ape/B.h"\n', "tta must not include ape/B.h")
        self.assert_fault("tools/tta/A.cpp", '#include "files/TextFile.h"\n', "tta must not include files/TextFile.h")
        self.assert_fault("tools/tta/A.cpp", "#include <QString>\n", "QString: the bundled programs use no Qt")
        self.assert_fault("tools/tta/A.cpp", "#include <QtCore/qglobal.h>\n", "use no Qt")
        self.assert_fault("fuzz/A.cpp", '#include "ui/MainWindow.h"\n', "fuzz must not include")
        self.assert_fault("fuzz/A.cpp", '#include "other/A.h"\n', "fuzz must not include")
        self.assert_fault("tools/other/A.cpp", "", "no place among the tools")

    def test_program_without_a_manual_page(self):
        self.assert_fault("tools/tta/CMakeLists.txt", "nurv_tool(ttaenc SOURCES main.cpp)\n",
                          "ttaenc has no manual page data/man/nurv-ttaenc.1")

    def test_widget_header_below_ui(self):
        self.assert_fault("src/cli/A.cpp", "#include <QApplication>\n", "widget header")
        self.assert_fault("src/app/A.cpp", "#include <qwidget.h>\n", "widget header")
        self.assert_fault("src/app/A.cpp", "#include <QtWidgets/QLabel>\n", "widget header")

    def test_dialog_outside_the_prompts(self):
        self.assert_fault("src/ui/A.cpp", "QFileDialog::getOpenFileName();\n", "QFileDialog")
        self.assert_fault("src/ui/A.cpp", "    dialog->exec();\n", "exec")
        self.assert_fault("src/ui/A.cpp", "    return QDialog::exec();\n", "QDialog::exec")
        self.assert_fault("src/app/DesktopPrompts.cpp", "QInputDialog x;\n", "QInputDialog")

    def test_missing_head(self):
        self.assert_fault("src/engine/A.cpp", "int a;\n", "SPDX", head="")
        self.assert_fault("tests/engine/A.cpp", "int a;\n", "SPDX", head="")

    def test_header_without_guard(self):
        self.assert_fault("src/engine/A.h", "int a;\n", "#pragma once")

    def test_long_file(self):
        self.assert_fault("src/engine/A.cpp", "\n" * 600, "more than 600 lines")


if __name__ == "__main__":
    unittest.main()

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoreApplication>

#include <functional>
#include <memory>

namespace nurv::test {

/// Runs every test of the program and returns its exit status.
///
/// `--gtest_list_tests` is answered before any application object exists. Otherwise
/// the process gets a home of its own below a temporary folder (HOME, TMPDIR, the XDG
/// folders, NURV_SETTINGS, NURV_STATE) that is removed at the end, no session bus unless
/// NURV_TEST_SESSION_BUS is set, and the built resource folder as NURV_TOOLS unless
/// that is set already.
int runTests(int &argc, char **argv, const std::function<std::unique_ptr<QCoreApplication>()> &makeApplication);

} // namespace nurv::test

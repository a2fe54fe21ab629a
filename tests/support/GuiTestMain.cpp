// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/RunTests.h"

#include <QApplication>

int main(int argc, char **argv)
{
    return nurv::test::runTests(argc, argv, [&argc, argv] { return std::make_unique<QApplication>(argc, argv); });
}

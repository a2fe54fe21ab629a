// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"
#include "support/TestProgram.h"

#include <QFile>

namespace nurv::test {

/// Makes a Shorten file of the WAV file with the bundled program, which comes into the
/// resource folder with that. Returns `path`.
inline QString writeShorten(const ProgramFolder &tools, const QString &wav, const QString &path)
{
    if (!QFile::exists(tools.path(QStringLiteral("shorten"))))
        tools.addReal(QStringLiteral("shorten"));
    EXPECT_EQ(runProgram(tools.path(QStringLiteral("shorten")), {wav, path}).exitStatus, 0);
    return path;
}

} // namespace nurv::test

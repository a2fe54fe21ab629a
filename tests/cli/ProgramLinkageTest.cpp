// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

TEST(ProgramLinkage, NeedsNoWidgetLibrary)
{
    const ProgramResult result = runProgram(u"ldd"_s, {nurvPath()});
    ASSERT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_TRUE(result.output.contains("libQt6Core")) << result.output.constData();
    EXPECT_FALSE(result.output.contains("libQt6Widgets"));
}

TEST(ProgramLinkage, WorksInTheCLocaleWithoutADisplayOrASessionBus)
{
    const TestFolder folder;
    writeWav(folder.path(u"日本 é.wav"_s), {.seconds = 0.1});
    const ProgramResult result =
        runProgram(u"env"_s, {u"-u"_s, u"DISPLAY"_s, u"-u"_s, u"WAYLAND_DISPLAY"_s, u"-u"_s,
                              u"DBUS_SESSION_BUS_ADDRESS"_s, u"-u"_s, u"QT_QPA_PLATFORM"_s, u"LANG=C"_s, u"LC_ALL=C"_s,
                              nurvPath(), u"encode"_s, u"--beside-source"_s, folder.path()});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_TRUE(result.errors.startsWith("日本 é.wav: Complete\n1 of 1 done; ")) << result.errors.constData();
    EXPECT_EQ(folder.list(), (QStringList{u"日本 é.flac"_s, u"日本 é.wav"_s}));
    EXPECT_TRUE(sameSound(folder.path(u"日本 é.wav"_s), folder.path(u"日本 é.flac"_s)));
}

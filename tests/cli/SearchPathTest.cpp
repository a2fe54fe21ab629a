// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"
#include "support/TestFolder.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

const QString kHostilePath = u"PATH=:.:rel/x:/usr/bin:/bin:rel/x:"_s;

/// Programs of the helpers' names in a folder and below it, which tell when they are started.
void setTraps(const TestFolder &folder)
{
    for (const QString &place : {u""_s, u"rel/x/"_s}) {
        for (const QString &name :
             {u"shntool"_s, u"shorten"_s, u"ttaenc"_s, u"mac"_s, u"flac"_s, u"metaflac"_s, u"sox"_s, u"wavpack"_s}) {
            const QString path =
                folder.write(place + name, "#!/bin/sh\necho \"$0\" >>'" + folder.path(u"started"_s).toUtf8() + "'\n");
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
    }
}

ProgramResult runNurvIn(const TestFolder &folder, const QStringList &arguments)
{
    return runProgram(u"/usr/bin/env"_s,
                      QStringList{u"-C"_s, folder.path(), kHostilePath, nurvPath()} + arguments);
}

} // namespace

TEST(SearchPath, AConversionStartsNoProgramOfTheCurrentFolder)
{
    const TestFolder folder;
    setTraps(folder);
    const QString wav = writeWav(folder.path(u"in/a.wav"_s), {.seconds = 0.2});
    folder.makeFolder(u"out"_s);

    for (const QString &format : {u"shn"_s, u"flac"_s, u"tta"_s, u"ape"_s, u"wv"_s}) {
        const ProgramResult result = runNurvIn(folder, {u"encode"_s, u"--format"_s, format, u"--beside-source"_s, wav});
        EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    }
    const ProgramResult decoded = runNurvIn(folder, {u"decode"_s, u"--output-dir=out"_s, u"in/a.shn"_s});
    EXPECT_EQ(decoded.exitStatus, 0) << decoded.errors.constData();
    EXPECT_TRUE(sameSound(wav, folder.path(u"out/a.wav"_s)));
    const ProgramResult toFlac =
        runNurvIn(folder, {u"encode"_s, u"--format=flac"_s, u"--output-dir=out"_s, u"in/a.shn"_s});
    EXPECT_EQ(toFlac.exitStatus, 0) << toFlac.errors.constData();
    EXPECT_FALSE(folder.exists(u"started"_s));
}

TEST(SearchPath, AHelperInTheCurrentFolderIsNone)
{
    const TestFolder folder;
    setTraps(folder);
    const ProgramFolder tools;
    tools.addAllReal();
    tools.remove(u"shorten"_s);
    writeWav(folder.path(u"a.wav"_s), {.seconds = 0.2});

    const ProgramResult result =
        runNurvIn(folder, {u"encode"_s, u"--format=shn"_s, u"--beside-source"_s, u"a.wav"_s});
    EXPECT_NE(result.exitStatus, 0);
    EXPECT_TRUE(result.errors.contains("\"shorten\" could not be started: it is not there")) << result.errors.constData();
    EXPECT_FALSE(folder.exists(u"a.shn"_s));
    EXPECT_FALSE(folder.exists(u"started"_s));
}

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Version.h"
#include "NurvProgram.h"
#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"

#include <QFile>
#include <QJsonArray>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

TEST(DoctorCommand, TellsTheVersionAndThePlaceOfAProgram)
{
    ProgramFolder tools;
    tools.addAllReal();
    tools.remove(u"flac"_s);
    tools.addFake(u"flac"_s, "out=flac 9.8.7\\n");
    const ProgramResult result = runNurv({u"doctor"_s});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    QByteArray flacLine;
    for (const QByteArray &line : result.output.split('\n')) {
        if (line.startsWith("flac "))
            flacLine = line.simplified();
    }
    EXPECT_TRUE(flacLine.startsWith("flac found 9.8.7 flac " + tools.path(u"flac"_s).toUtf8())) << flacLine.constData();
}

TEST(DoctorCommand, EndsWithStatus3WhenARequiredProgramIsMissing)
{
    for (const QString &name : {u"flac"_s, u"metaflac"_s, u"shntool"_s}) {
        ProgramFolder tools;
        tools.addAllReal();
        tools.remove(name);
        const ProgramResult result = runNurv({u"doctor"_s});
        EXPECT_EQ(result.exitStatus, 3) << qPrintable(name);
        EXPECT_TRUE(result.output.contains("not found"));
    }
}

TEST(DoctorCommand, EndsWithStatus0WhenAnotherProgramIsMissing)
{
    ProgramFolder tools;
    for (const QString &name : {u"flac"_s, u"metaflac"_s, u"shntool"_s})
        tools.addReal(name);
    EXPECT_EQ(runNurv({u"doctor"_s, u"--quiet"_s}).exitStatus, 0);
}

TEST(DoctorCommand, GivesOneJsonObjectPerProgramAndOneForTheWhole)
{
    ProgramFolder tools;
    tools.addReal(u"flac"_s);
    const ProgramResult result = runNurv({u"doctor"_s, u"--json"_s});
    EXPECT_EQ(result.exitStatus, 3);
    QList<QJsonObject> objects = jsonLines(result.output);
    const QJsonObject whole = objects.takeLast();
    const QJsonObject tags = objects.takeLast();
    EXPECT_EQ(tags[u"name"_s], u"nurv-tags"_s);
    EXPECT_TRUE(tags[u"found"_s].toBool());
    EXPECT_EQ(whole[u"type"_s], u"doctor"_s);
    EXPECT_EQ(whole[u"exitStatus"_s], 3);
    int foundCount = 0;
    for (const QJsonObject &object : objects) {
        EXPECT_EQ(object[u"type"_s], u"program"_s);
        if (object[u"found"_s].toBool()) {
            ++foundCount;
            EXPECT_EQ(object[u"name"_s], u"flac"_s);
            EXPECT_EQ(object[u"path"_s], tools.path(u"flac"_s));
            EXPECT_EQ(object[u"package"_s], u"flac"_s);
        }
    }
    EXPECT_EQ(foundCount, 1);
    EXPECT_EQ(whole[u"missing"_s].toArray().size(), objects.size() - 1);
}

TEST(DoctorCommand, AFileThatIsNotExecutableIsNoProgram)
{
    ProgramFolder tools;
    tools.addAllReal();
    tools.remove(u"shntool"_s);
    QFile file(tools.path(u"shntool"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    const ProgramResult result = runNurv({u"doctor"_s});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_TRUE(result.output.contains("not executable"));
}

TEST(DoctorCommand, TellsOfTheProgramThatReadsTags)
{
    ProgramFolder tools;
    tools.addAllReal();
    const ProgramResult result = runNurv({u"doctor"_s});
    const QByteArray line = result.output.trimmed().split('\n').last().simplified();
    const QByteArray expected = "nurv-tags found " + nurv::shortVersionString().toUtf8() + " bundled /";
    EXPECT_TRUE(line.startsWith(expected)) << line.constData();
    EXPECT_TRUE(line.contains("/lib/nurv/nurv-tags reads tags")) << line.constData();
}

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/ExternalPrograms.h"

#include "process/ResourceFolder.h"
#include "support/ProgramFolder.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

using namespace Qt::StringLiterals;
using namespace nurv;

TEST(ResourceFolder, IsTheFolderThatTheEnvironmentNames)
{
    const test::ProgramFolder tools;
    EXPECT_EQ(pathToCommandLineTools(), tools.path());
    EXPECT_EQ(programPath(u"flac"_s), tools.path() + u"/flac"_s);
}

TEST(ResourceFolder, IsFoundFromTheExecutableOtherwise)
{
    const QByteArray named = qgetenv("NURV_TOOLS");
    qunsetenv("NURV_TOOLS");
    const QString beside = QDir(QCoreApplication::applicationDirPath() + u"/../lib/nurv/tools"_s).absolutePath();
    EXPECT_EQ(pathToCommandLineTools(), QDir::cleanPath(beside));
    qputenv("NURV_TOOLS", "some/where/..");
    EXPECT_EQ(pathToCommandLineTools(), QDir::currentPath() + u"/some"_s);
    qputenv("NURV_TOOLS", named);
}

TEST(ExternalPrograms, NamesEveryProgramOnceWithItsProvider)
{
    QSet<QString> names;
    for (const ExternalProgram &program : externalPrograms()) {
        names.insert(program.name);
        EXPECT_TRUE(program.isBundled || !program.package.isEmpty()) << program.name.toStdString();
        EXPECT_FALSE(program.purpose.isEmpty()) << program.name.toStdString();
        EXPECT_EQ(findExternalProgram(program.name), &program);
    }
    EXPECT_EQ(names, (QSet<QString>{u"flac"_s, u"metaflac"_s, u"shntool"_s, u"wavpack"_s, u"wvunpack"_s, u"lame"_s,
                                    u"opusenc"_s, u"sox"_s, u"cdda2wav"_s, u"AtomicParsley"_s, u"mkisofs"_s, u"shorten"_s,
                                    u"ttaenc"_s, u"mac"_s, u"dvda"_s}));
    EXPECT_EQ(externalPrograms().size(), 15U);
    EXPECT_EQ(findExternalProgram(u"cdda2wav"_s)->package, u"icedax"_s);
    EXPECT_EQ(findExternalProgram(u"rm"_s), nullptr);
}

TEST(ExternalPrograms, FindsAProgramWithItsVersion)
{
    const test::ProgramFolder tools;
    const std::vector<std::pair<QString, QByteArray>> outputs{
        {u"flac"_s, "flac 1.4.2\n"},
        {u"sox"_s, "sox:      SoX v14.4.2\n"},
        {u"lame"_s, "LAME 64bits version 3.100 (http://lame.sf.net)\n\nCopyright 2.0\n"},
    };
    const QStringList versions{u"1.4.2"_s, u"14.4.2"_s, u"3.100"_s};
    for (std::size_t index = 0; index < outputs.size(); ++index) {
        const auto &[name, output] = outputs[index];
        QFile script(tools.path(name));
        ASSERT_TRUE(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\n[ \"$*\" = --version ] && cat <<'END'\n" + output + "END\n");
        script.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        script.close();
        const ProgramStatus status = checkProgram(*findExternalProgram(name));
        EXPECT_EQ(status.state, ProgramStatus::State::Found);
        EXPECT_EQ(status.path, tools.path(name));
        EXPECT_EQ(status.version, versions.at(static_cast<qsizetype>(index)));
    }
}

TEST(ExternalPrograms, TellsAProgramThatIsMissingFromOneThatCannotRun)
{
    const test::ProgramFolder tools;
    const ExternalProgram &lame = *findExternalProgram(u"lame"_s);
    EXPECT_EQ(checkProgram(lame).state, ProgramStatus::State::NotFound);
    EXPECT_EQ(checkProgram(lame).path, tools.path(u"lame"_s));
    ASSERT_TRUE(QFile::link(u"/nowhere/lame"_s, tools.path(u"lame"_s)));
    EXPECT_EQ(checkProgram(lame).state, ProgramStatus::State::NotFound);
    ASSERT_TRUE(QFile::remove(tools.path(u"lame"_s)));
    QFile file(tools.path(u"lame"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    EXPECT_EQ(checkProgram(lame).state, ProgramStatus::State::NotExecutable);
    ASSERT_TRUE(QFile::remove(tools.path(u"lame"_s)));
    ASSERT_TRUE(QDir().mkpath(tools.path(u"lame"_s)));
    EXPECT_EQ(checkProgram(lame).state, ProgramStatus::State::NotExecutable);
    ASSERT_TRUE(QDir().rmpath(tools.path(u"lame"_s)));
}

TEST(ExternalPrograms, PromisesThatInstallingAgainHelpsOnlyForWhatThisBuildMakes)
{
    for (const ExternalProgram &program : externalPrograms()) {
        if (!program.isBundled)
            continue;
        const bool wasBuilt = QFileInfo::exists(QString::fromLocal8Bit(NURV_TOOLS_DIR) + u'/' + program.name);
        EXPECT_EQ(isPartOfThisBuild(program), wasBuilt) << program.name.toStdString();
        const QString text = missingProgramText(u"/opt/tools/"_s + program.name, u"Permission denied"_s);
        EXPECT_TRUE(text.contains(u"Nurv Audio Workbench"_s)) << text.toStdString();
        EXPECT_EQ(text.contains(u"installing that again"_s), wasBuilt) << text.toStdString();
        EXPECT_FALSE(text.contains(u"package"_s)) << text.toStdString();
    }
}

TEST(ExternalPrograms, SaysWhatIsMissingWhereAndWhoProvidesIt)
{
    const QString packaged = missingProgramText(u"/opt/tools/opusenc"_s, u"No such file or directory"_s);
    for (const QString &part : {u"opusenc"_s, u"/opt/tools"_s, u"opus-tools"_s, u"No such file or directory"_s})
        EXPECT_TRUE(packaged.contains(part)) << packaged.toStdString();
    // What is there needs no place to get it from.
    EXPECT_EQ(missingProgramText(u"/bin/sh"_s, u"Argument list too long"_s),
              u"\"sh\" could not be started: Argument list too long");
    const QString unknown = missingProgramText(u"/opt/tools/other"_s, u"x"_s);
    EXPECT_TRUE(unknown.contains(u"\"other\""_s) && unknown.contains(u"/opt/tools"_s));
}

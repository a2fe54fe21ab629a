// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QFile>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

using ::testing::HasSubstr;

/// Lists of names: of the option -F and on standard input.
class ShntoolLists : public ::testing::Test {
protected:
    ShntoolLists() { writeWav(m_folder.path(u"a.wav"_s), {.frames = 588 * 75}); }

    [[nodiscard]] static ProgramResult runShntool(const QStringList &arguments, const QByteArray &input = {})
    {
        return runProgram(QString::fromLocal8Bit(NURV_SHNTOOL), arguments, input);
    }

    TestFolder m_folder;
};

TEST_F(ShntoolLists, TellsWhyAListCannotBeRead)
{
    for (const QString &mode : {u"len"_s, u"conv"_s, u"join"_s, u"split"_s}) {
        const ProgramResult result = runShntool({mode, u"-q"_s, u"-F"_s, m_folder.path()});
        EXPECT_EQ(result.exitStatus, 1) << qPrintable(mode);
        EXPECT_THAT(result.errors.toStdString(), HasSubstr("could not read input filename file: ["));
        EXPECT_THAT(result.errors.toStdString(), HasSubstr("]: Is a directory\n"));
    }
    const ProgramResult typed = runProgram(u"/bin/bash"_s, {u"-c"_s, u"exec \"$0\" len -q < \"$1\""_s,
                                                            QString::fromLocal8Bit(NURV_SHNTOOL), m_folder.path()});
    EXPECT_EQ(typed.exitStatus, 1);
    EXPECT_THAT(typed.errors.toStdString(), HasSubstr("could not read input filenames: Is a directory\n"));
}

TEST_F(ShntoolLists, RefusesListsWithoutLines)
{
    const QString sparse = m_folder.write(u"sparse"_s, "a.wav\n");
    ASSERT_TRUE(QFile::resize(sparse, qint64{8} << 30));
    const QString one = m_folder.write(u"one"_s, QByteArray(65'537, 'x') + '\n');
    for (const QString &list : {u"/dev/zero"_s, sparse, one}) {
        const ProgramResult result = runShntool({u"len"_s, u"-q"_s, u"-F"_s, list});
        EXPECT_EQ(result.exitStatus, 1) << qPrintable(list);
        EXPECT_THAT(result.errors.toStdString(), HasSubstr("has a line of more than 64 KiB\n"));
    }
    const ProgramResult typed = runShntool({u"len"_s, u"-q"_s}, QByteArray(65'537, 'x') + '\n');
    EXPECT_EQ(typed.exitStatus, 1);
    EXPECT_THAT(typed.errors.toStdString(), HasSubstr("has a line of more than 64 KiB\n"));
}

TEST_F(ShntoolLists, RefusesListsWithoutAnEnd)
{
    const QByteArray line = QByteArray(4000, 'x') + '\n';
    const QString list = m_folder.write(u"list"_s, line.repeated(17'000));
    const ProgramResult result = runShntool({u"join"_s, u"-F"_s, list});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("has more than 64 MiB\n"));
}

TEST_F(ShntoolLists, TakesTheLongestLineThatMayBe)
{
    const QByteArray list = QByteArray(65'536, 'x') + '\n' + QFile::encodeName(m_folder.path(u"a.wav"_s)) + '\n';
    for (const QStringList &option : {QStringList{u"-F"_s, m_folder.write(u"list"_s, list)}, QStringList{}}) {
        const ProgramResult result =
            runShntool(QStringList{u"len"_s} + option, option.isEmpty() ? list : QByteArray());
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_THAT(result.errors.toStdString(), HasSubstr("filename too long"));
        EXPECT_THAT(result.output.toStdString(), HasSubstr("a.wav\n"));
    }
}

} // namespace

} // namespace nurv::test

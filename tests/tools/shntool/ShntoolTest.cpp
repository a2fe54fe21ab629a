// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

using ::testing::HasSubstr;

QString program()
{
    return QString::fromLocal8Bit(NURV_SHNTOOL);
}

/// Runs the program and takes its name out of what it writes.
ProgramResult runNameless(const QString &path, const QStringList &arguments, const QByteArray &input = {})
{
    ProgramResult result = runProgram(path, arguments, input);
    result.output.replace(QFile::encodeName(path), "shntool");
    result.errors.replace(QFile::encodeName(path), "shntool");
    return result;
}

class Shntool : public ::testing::Test {
protected:
    Shntool()
    {
        writeWav(m_folder.path(u"a.wav"_s), {.frames = 588 * 75});
        writeFlac(m_folder.path(u"b.flac"_s), {.frames = 588 * 80, .seed = 2});
        m_folder.write(u"no sound.wav"_s, "RIFF but no more");
    }

    [[nodiscard]] QString path(const QString &name) const { return m_folder.path(name); }

    TestFolder m_folder;
};

TEST_F(Shntool, AnswersAsTheDistributionsProgram)
{
    const QString a = path(u"a.wav"_s);
    const QString b = path(u"b.flac"_s);
    const QStringList calls[] = {
        {u"-h"_s},
        {},
        {u"--no-such-option"_s},
        {u"no-such-mode"_s},
        {u"len"_s, a, b},
        {u"len"_s, path(u"missing.wav"_s)},
        {u"len"_s, path(u"no sound.wav"_s)},
        {u"info"_s, a, b},
        {u"hash"_s, u"-m"_s, a, b},
        {u"hash"_s, u"-x"_s, a},
        {u"cmp"_s, a, b},
        {u"cmp"_s, a, a},
        {u"conv"_s, u"-h"_s},
        {u"conv"_s, u"-x"_s, a},
        {u"conv"_s, u"-O"_s, u"never"_s, u"-d"_s, path(u"missing"_s), a},
        {u"cue"_s, a, b},
    };
    for (const QStringList &call : calls) {
        const ProgramResult expected = runNameless(u"/usr/bin/shntool"_s, call);
        const ProgramResult result = runNameless(program(), call);
        EXPECT_EQ(result.exitStatus, expected.exitStatus) << qPrintable(call.join(u' '));
        EXPECT_EQ(result.output, expected.output) << qPrintable(call.join(u' '));
        EXPECT_EQ(result.errors, expected.errors) << qPrintable(call.join(u' '));
    }
}

TEST_F(Shntool, TellsItsOwnVersion)
{
    EXPECT_EQ(runProgram(program(), {u"--version"_s}).output, "shntool (Nurv Audio Workbench) " NURV_VERSION "\n");
    EXPECT_TRUE(
        runProgram(program(), {u"-v"_s}).errors.startsWith("shntool (Nurv Audio Workbench) " NURV_VERSION "\n"));
    EXPECT_THAT(runProgram(program(), {u"--help"_s}).output.toStdString(), HasSubstr("shntool MODE"));
}

TEST_F(Shntool, NamesOneFileForOneSource)
{
    const QString a = path(u"a.wav"_s);
    const std::pair<QStringList, const char *> cases[] = {
        {{u"-n"_s, u""_s, a}, "needs the name"},
        {{u"-n"_s, u"x.wav"_s}, "takes 1 source files, not 0"},
        {{u"-n"_s, u"x.wav"_s, a, a}, "takes 1 source files, not 2"},
        {{u"-t"_s, u"-n"_s, u"x.wav"_s, a}, "takes 0 source files, not 1"},
        {{u"-F"_s, a, u"-n"_s, u"x.wav"_s}, "does not go with -F"},
    };
    for (const auto &[arguments, text] : cases) {
        const ProgramResult result = runProgram(program(), QStringList{u"conv"_s} + arguments);
        EXPECT_EQ(result.exitStatus, 1) << text;
        EXPECT_THAT(result.errors.toStdString(), HasSubstr(text));
    }
}

TEST_F(Shntool, RefusesNumbersOfPiecesThatNoNumberFollows)
{
    const ProgramResult result = runProgram(program(), {u"split"_s, u"-c"_s, u"2147483647"_s, u"-l"_s, u"0:00.30"_s,
                                                        u"-d"_s, m_folder.path(), path(u"a.wav"_s)});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("starting count is too large"));
    EXPECT_EQ(m_folder.list().size(), 3);
}

TEST_F(Shntool, ConvertsToTheNameThatIsGiven)
{
    const QString out = path(u"given name.wav"_s);
    const ProgramResult result = runProgram(program(), {u"conv"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"always"_s, u"-o"_s,
                                                        u"wav"_s, u"-n"_s, out, path(u"b.flac"_s)});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(result.errors.startsWith("Converting [" + QFile::encodeName(path(u"b.flac"_s)) + "] (0:01.05) --> ["))
        << result.errors.constData();
    EXPECT_TRUE(result.errors.endsWith("100% OK\n")) << result.errors.constData();
    EXPECT_EQ(m_folder.read(u"given name.wav"_s), wavBytes({.frames = 588 * 80, .seed = 2}));
    EXPECT_EQ(m_folder.list(), (QStringList{u"a.wav"_s, u"b.flac"_s, u"given name.wav"_s, u"no sound.wav"_s}));
}

TEST_F(Shntool, EncodesToTheNameThatIsGiven)
{
    const QString out = path(u"any.ending"_s);
    const ProgramResult result =
        runProgram(program(), {u"conv"_s, u"-O"_s, u"never"_s, u"-o"_s, u"cust ext=flac flac -s -8 -o %f -"_s, u"-n"_s,
                               out, path(u"a.wav"_s)});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_TRUE(sameSound(out, path(u"a.wav"_s)));
}

TEST_F(Shntool, TakesNamesOfAllKinds)
{
    m_folder.write(u"-source.flac"_s, m_folder.read(u"b.flac"_s));
    const QByteArray expected = wavBytes({.frames = 588 * 80, .seed = 2});
    // A shell makes the names and passes them byte for byte, whatever the locale.
    for (const QString &name : {u"'-dash.wav'"_s, u"$'two\\nlines.wav'"_s, u"$'100% [x] \\' \".wav'"_s,
                                u"$'no utf-8 \\xff\\xfe.wav'"_s, u"$(printf '%0255d')"_s}) {
        const QString line = u"cd \"$1\" && name=%1 && \"$0\" conv -q -O never -n \"$name\" -- -source.flac "
                             "&& [ $(ls -Aq | wc -l) = 5 ] && cat -- \"$name\" && rm -- \"$name\""_s.arg(name);
        const ProgramResult result = runProgram(u"/bin/bash"_s, {u"-c"_s, line, program(), m_folder.path()});
        EXPECT_EQ(result.exitStatus, 0) << qPrintable(name) << result.errors.constData();
        EXPECT_TRUE(result.output == expected) << qPrintable(name);
    }
}

TEST_F(Shntool, ReportsAnEncoderThatFailedAndKeepsTheFormerFile)
{
    const QString out = path(u"out.mp3"_s);
    m_folder.write(u"out.mp3"_s, "former");
    const ProgramResult result = runProgram(program(), {u"conv"_s, u"-O"_s, u"always"_s, u"-o"_s,
                                                        u"cust ext=mp3 false %f"_s, u"-n"_s, out, path(u"a.wav"_s)});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("shntool [conv]: warning: "));
    EXPECT_EQ(m_folder.read(u"out.mp3"_s), "former");
    EXPECT_EQ(m_folder.list(), (QStringList{u"a.wav"_s, u"b.flac"_s, u"no sound.wav"_s, u"out.mp3"_s}));
}

TEST_F(Shntool, ReportsASourceThatIsNoSound)
{
    const QString out = path(u"out.wav"_s);
    for (const QString &source : {u"no sound.wav"_s, u"missing.flac"_s}) {
        const ProgramResult result =
            runProgram(program(), {u"conv"_s, u"-O"_s, u"always"_s, u"-n"_s, out, path(source)});
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_THAT(result.errors.toStdString(), HasSubstr("shntool [conv]: warning: "));
        EXPECT_FALSE(m_folder.exists(u"out.wav"_s));
    }
}

} // namespace

} // namespace nurv::test

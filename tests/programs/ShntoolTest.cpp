// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Shntool.h"

#include "programs/NeededPrograms.h"
#include "support/ProgramFolder.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <QFile>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class ShntoolTest : public ::testing::Test {
protected:
    /// What a conversion to Shorten starts for a file of these first bytes.
    QStringList startedFor(const QByteArray &head)
    {
        const QString source = folder.write(u"a.x"_s, head);
        return shntool::startedBy(shntool::toShortenArguments(source, u"/out"_s));
    }

    test::TestFolder folder;
};

TEST_F(ShntoolTest, StartsTheEncoderOfItsFormat)
{
    const QString source = folder.write(u"a.shn"_s, "ajkg");
    EXPECT_EQ(shntool::startedBy(shntool::toShortenArguments(source, u"/out"_s)), QStringList{u"shorten"_s});
    EXPECT_EQ(shntool::startedBy(shntool::toFlacArguments({}, source, u"/out"_s)), QStringList{u"flac"_s});
    EXPECT_EQ(shntool::startedBy(shntool::toFlacArguments({.lax = true}, source, u"/out"_s)), QStringList{u"flac"_s});
    EXPECT_EQ(shntool::startedBy(shntool::fromShortenArguments(u"AIFF"_s, source, u"/out"_s)), QStringList{u"sox"_s});
    EXPECT_EQ(shntool::startedBy(shntool::fromShortenArguments(u"WAV"_s, source, u"/out"_s)), QStringList());
    EXPECT_EQ(shntool::startedBy(shntool::shortenToWav(source, u"/out/a.wav"_s).arguments), QStringList());
}

TEST_F(ShntoolTest, StartsADecoderForWhatItDoesNotReadItself)
{
    const QStringList encoderOnly{u"shorten"_s};
    for (const QByteArray &head : {QByteArray("RIFF\0\0", 6), QByteArray("FORM\0\0", 6), QByteArray("fLaC\0\0", 6),
                                   QByteArray("TTA1\0\0", 6), QByteArray("ajkg"), QByteArray(), QByteArray("MAC ")})
        EXPECT_EQ(startedFor(head), encoderOnly) << head.constData();
    EXPECT_EQ(startedFor("wvpk"), (QStringList{u"wvunpack"_s, u"shorten"_s}));
    // 3990 and 3980, the version of a file of Monkey's Audio.
    EXPECT_EQ(startedFor(QByteArray("MAC \x96\x0f", 6)), encoderOnly);
    EXPECT_EQ(startedFor(QByteArray("MAC \x8c\x0f", 6)), (QStringList{u"mac"_s, u"shorten"_s}));
}

TEST_F(ShntoolTest, IsNotWaitedForWhereTheSourceIsAPipe)
{
    const QString pipe = folder.path(u"pipe"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_EQ(shntool::startedBy(shntool::toShortenArguments(pipe, u"/out"_s)), QStringList{u"shorten"_s});
}

TEST_F(ShntoolTest, StartsNothingForArgumentsWithoutAFormat)
{
    EXPECT_EQ(shntool::startedBy({}), QStringList());
    EXPECT_EQ(shntool::startedBy({u"conv"_s}), QStringList());
    EXPECT_EQ(shntool::startedBy({u"conv"_s, u"-o"_s}), QStringList());
    EXPECT_EQ(shntool::startedBy({u"len"_s, u"-o"_s, u"shn"_s, u"a.wav"_s}), QStringList());
}

TEST_F(ShntoolTest, KnowsExtensionsInLowerCaseOnly)
{
    for (const QString &known : {u"wav"_s, u"aiff"_s, u"shn"_s, u"flac"_s, u"ape"_s, u"tta"_s, u"wv"_s})
        EXPECT_TRUE(shntool::replacesExtension(known)) << qPrintable(known);
    for (const QString &other : {u"SHN"_s, u"aif"_s, u"m4a"_s, u""_s})
        EXPECT_FALSE(shntool::replacesExtension(other)) << qPrintable(other);
}

TEST(NeededPrograms, AreTheProgramAndWhatItStarts)
{
    const test::TestFolder folder;
    const QString source = folder.write(u"a.wv"_s, "wvpk");
    const NeededPrograms programs = NeededPrograms::ofRun(u"shntool"_s, shntool::toShortenArguments(source, u"/out"_s));
    EXPECT_EQ(programs.launched, QStringList{u"shntool"_s});
    EXPECT_EQ(programs.helpers, (QStringList{u"wvunpack"_s, u"shorten"_s}));
    EXPECT_EQ(NeededPrograms::ofRun(u"other"_s, {u"conv"_s}).launched, QStringList{u"other"_s});
    EXPECT_EQ(NeededPrograms::ofRun(u"flac"_s, {u"conv"_s, u"-o"_s, u"shn"_s}).helpers, QStringList());
}

TEST(NeededPrograms, AreMissedOnceEach)
{
    const test::ProgramFolder tools;
    tools.addFake(u"flac"_s, "");
    NeededPrograms programs{{u"flac"_s, u"mac"_s}, {}};
    programs.add({{u"mac"_s, u"ttaenc"_s}, {u"mac"_s}});
    EXPECT_EQ(programs.launched, (QStringList{u"flac"_s, u"mac"_s, u"ttaenc"_s}));
    const QStringList missing = programs.missing();
    ASSERT_EQ(missing.size(), 2);
    EXPECT_TRUE(missing[0].startsWith(u"\"mac\""_s)) << qPrintable(missing[0]);
    EXPECT_TRUE(missing[1].startsWith(u"\"ttaenc\""_s)) << qPrintable(missing[1]);
}

} // namespace
} // namespace nurv

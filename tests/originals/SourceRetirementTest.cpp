// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "originals/SourceRetirement.h"

#include "settings/SettingsStore.h"
#include "support/AudioFixtures.h"
#include "support/SystemCallRecorder.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QFile>

#include <gtest/gtest.h>

#include <cerrno>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using Original = TaskOutcome::Original;
using Proof = TaskOutcome::Proof;

class SourceRetirementTest : public ::testing::Test {
protected:
    SourceRetirementTest() { SettingsStore::instance().setValue(u"trashOrDelete"_s, 0); }

    SourceRetirement::Verdict examine(SourceRetirement &retirement, const QStringList &outputs)
    {
        return retirement.examine(outputs, [this](double percent) { shown.push_back(percent); }, [this] {
            return isUnwanted;
        });
    }
    /// With everything wanted that can be, after a look at the sources.
    static SourceRetirement wanting(const QStringList &sources, SourceRetirement::Wishes wishes = {})
    {
        SourceRetirement retirement(sources);
        wishes.deletesSources = true;
        retirement.setWishes(wishes);
        retirement.rememberSources();
        return retirement;
    }
    /// Changes one byte of the file.
    static void flip(const QString &path, qint64 offset)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.seek(offset));
        char byte = 0;
        ASSERT_TRUE(file.getChar(&byte));
        ASSERT_TRUE(file.seek(offset));
        ASSERT_TRUE(file.putChar(static_cast<char>(byte ^ 1)));
    }

    test::TestFolder folder;
    QString wav = test::writeWav(folder.path(u"a.wav"_s));
    QString flac = test::writeFlac(folder.path(u"a.flac"_s));
    std::vector<double> shown;
    bool isUnwanted = false;
};

TEST_F(SourceRetirementTest, DeletesWhatWasProven)
{
    SourceRetirement retirement = wanting({wav});
    const auto verdict = examine(retirement, {flac});
    EXPECT_EQ(verdict.failure, std::nullopt) << qPrintable(*verdict.failure);
    EXPECT_EQ(verdict.keeping, std::nullopt) << qPrintable(*verdict.keeping);
    EXPECT_EQ(verdict.proof, Proof::Proven);
    EXPECT_FALSE(shown.empty());
    EXPECT_EQ(retirement.retire().original, Original::Deleted);
    EXPECT_FALSE(QFile::exists(wav));
    EXPECT_EQ(retirement.retire().original, Original::Untouched) << "only once";
}

TEST_F(SourceRetirementTest, DeletesWhenTheOutputIsOnTheDisk)
{
    SourceRetirement retirement = wanting({wav});
    const test::SystemCallRecorder calls;
    EXPECT_EQ(examine(retirement, {flac}).proof, Proof::Proven);
    EXPECT_EQ(retirement.retire().original, Original::Deleted);
    const QStringList made = calls.calls();
    const auto file = made.indexOf(u"fsync "_s + flac);
    const auto name = made.indexOf(u"fsync "_s + folder.path());
    ASSERT_GE(file, 0) << qPrintable(made.join(u'\n'));
    EXPECT_LT(file, name);
    EXPECT_LT(name, made.indexOf(u"unlink "_s + wav));
}

TEST_F(SourceRetirementTest, KeepsTheSourceWhenTheOutputMayNotBeOnTheDisk)
{
    for (const QString &call : {u"fsync "_s + flac, u"fsync "_s + folder.path()}) {
        SourceRetirement retirement = wanting({wav});
        test::SystemCallRecorder calls;
        calls.fail(call, EIO);
        EXPECT_EQ(examine(retirement, {flac}).keeping, u"its output may not be on the disk yet"_s);
        EXPECT_EQ(retirement.retire().original, Original::Untouched);
        EXPECT_TRUE(QFile::exists(wav));
    }
}

TEST_F(SourceRetirementTest, TakesAnEmptyFileForNoOutput)
{
    SourceRetirement retirement = wanting({wav}, {.relation = SoundComparison::Relation::Contained});
    const auto verdict = examine(retirement, {folder.write(u"empty.flac"_s, "")});
    EXPECT_EQ(verdict.keeping, u"there is no output"_s);
    EXPECT_EQ(verdict.failure, std::nullopt);
    EXPECT_TRUE(shown.empty()) << "and proves nothing of it";
}

TEST_F(SourceRetirementTest, ComparesTheMetadataOfPairs)
{
    const QString first = test::writeFlac(folder.path(u"1.flac"_s), {.seed = 1}, {u"-T"_s, u"TITLE=One"_s});
    const QString second = test::writeFlac(folder.path(u"2.flac"_s), {.seed = 2}, {u"-T"_s, u"TITLE=Two"_s});
    const QString firstMade = test::writeFlac(folder.path(u"out/1.flac"_s), {.seed = 1}, {u"-T"_s, u"TITLE=One"_s});
    const QString secondMade = test::writeFlac(folder.path(u"out/2.flac"_s), {.seed = 2}, {u"-T"_s, u"TITLE=Two"_s});
    SourceRetirement all = wanting({first, second});
    EXPECT_TRUE(examine(all, {firstMade, secondMade}).keeping) << "each would have to hold both titles";
    SourceRetirement pairs = wanting({second, first}, {.areOutputsPaired = true});
    pairs.reorderSources({first, second});
    const auto verdict = examine(pairs, {firstMade, secondMade});
    EXPECT_EQ(verdict.keeping, std::nullopt);
    EXPECT_EQ(verdict.proof, Proof::Proven);
    EXPECT_EQ(pairs.retire().original, Original::Deleted);
    EXPECT_FALSE(QFile::exists(first) || QFile::exists(second));
}

TEST_F(SourceRetirementTest, NamesTheOneOfSeveralThatHasChanged)
{
    const QString other = test::writeWav(folder.path(u"b.wav"_s), {.seed = 2});
    const QString otherMade = test::writeFlac(folder.path(u"b.flac"_s), {.seed = 2});
    SourceRetirement retirement = wanting({wav, other}, {.areOutputsPaired = true});
    EXPECT_EQ(examine(retirement, {flac, otherMade}).keeping, std::nullopt);
    flip(other, 100);
    const auto ending = retirement.retire();
    EXPECT_EQ(ending.original, Original::Kept);
    EXPECT_EQ(ending.problem, u"b.wav has changed since the job began");
    EXPECT_TRUE(QFile::exists(wav)) << "none goes";
}

TEST_F(SourceRetirementTest, KeepsALossySourceAlsoWithoutTheProof)
{
    const QString lossy = test::writeByFfmpeg(folder.path(u"lossy.m4a"_s), {}, {u"-c:a"_s, u"aac"_s});
    const QString decoded = folder.path(u"decoded.wav"_s);
    ASSERT_EQ(test::runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, lossy, decoded}).exitStatus, 0);
    SourceRetirement retirement = wanting({lossy}, {.proves = false, .dropsMetadata = true});
    const auto verdict = examine(retirement, {decoded});
    EXPECT_EQ(verdict.failure, std::nullopt);
    EXPECT_EQ(verdict.keeping, u"it is lossy: nothing made of it stands for it"_s);
    EXPECT_EQ(retirement.retire().original, Original::Untouched);
}

TEST_F(SourceRetirementTest, LooksAtNothingButTheLengthsWhenNothingIsToBeDeleted)
{
    SourceRetirement retirement({wav});
    retirement.rememberSources();
    const auto verdict = examine(retirement, {flac});
    EXPECT_EQ(verdict.failure, std::nullopt);
    EXPECT_EQ(verdict.proof, Proof::NotNeeded);
    EXPECT_TRUE(shown.empty());
    EXPECT_EQ(retirement.retire().original, Original::Untouched);
    EXPECT_TRUE(QFile::exists(wav));
}

TEST_F(SourceRetirementTest, FailsForOneSampleThatDiffers)
{
    const QString copy = folder.path(u"copy.wav"_s);
    ASSERT_TRUE(QFile::copy(wav, copy));
    flip(copy, 44 + 4 * 30'000); // the low byte of the left sample of frame 30,000
    SourceRetirement retirement = wanting({wav});
    const auto verdict = examine(retirement, {copy});
    ASSERT_TRUE(verdict.failure);
    EXPECT_TRUE(verdict.failure->contains(u"30000"_s)) << qPrintable(*verdict.failure);
    EXPECT_EQ(retirement.retire().original, Original::Untouched);
    EXPECT_TRUE(QFile::exists(wav));
}

TEST_F(SourceRetirementTest, DeletesByTheLengthsAloneWhenTheProofIsSwitchedOff)
{
    SourceRetirement retirement = wanting({wav}, {.proves = false});
    const auto verdict = examine(retirement, {flac});
    EXPECT_EQ(verdict.keeping, std::nullopt);
    EXPECT_TRUE(shown.empty());
    EXPECT_EQ(retirement.retire().original, Original::Deleted);
}

TEST_F(SourceRetirementTest, KeepsASourceOfUnknownLengthWithoutTheProof)
{
    QByteArray bytes = folder.read(u"a.flac"_s);
    bytes[21] = static_cast<char>(bytes[21] & 0xF0); // total samples, and no MD5 either
    bytes.replace(22, 20, QByteArray(20, '\0'));
    const QString pipe = folder.write(u"pipe.flac"_s, bytes);
    SourceRetirement retirement = wanting({pipe}, {.proves = false});
    EXPECT_TRUE(examine(retirement, {wav}).keeping);
    EXPECT_EQ(retirement.retire().original, Original::Untouched);
    SourceRetirement proving = wanting({pipe});
    EXPECT_EQ(examine(proving, {wav}).proof, Proof::Proven);
    EXPECT_EQ(proving.retire().original, Original::Deleted);
}

TEST_F(SourceRetirementTest, KeepsWhatOnlyTheProofCouldTellOfAStretch)
{
    const QString stretch = test::writeWav(folder.path(u"stretch.wav"_s), {.frames = 1000});
    SourceRetirement retirement =
        wanting({wav}, {.proves = false, .relation = SoundComparison::Relation::Contained});
    EXPECT_TRUE(examine(retirement, {stretch}).keeping);
    EXPECT_EQ(retirement.retire().original, Original::Untouched);
    EXPECT_TRUE(QFile::exists(wav));
}

TEST_F(SourceRetirementTest, KeepsASourceThatChangedWhileTheJobWorked)
{
    SourceRetirement retirement = wanting({wav});
    flip(wav, 100);
    flip(wav, 100);
    EXPECT_EQ(examine(retirement, {flac}).keeping, u"it has changed since the job began");
    EXPECT_TRUE(shown.empty()) << "nothing to prove then";
}

TEST_F(SourceRetirementTest, KeepsASourceThatChangedAfterTheProof)
{
    SourceRetirement retirement = wanting({wav});
    ASSERT_EQ(examine(retirement, {flac}).proof, Proof::Proven);
    flip(wav, 100);
    const auto ending = retirement.retire();
    EXPECT_EQ(ending.original, Original::Kept);
    EXPECT_EQ(ending.problem, u"it has changed since the job began");
    EXPECT_TRUE(QFile::exists(wav));
}

TEST_F(SourceRetirementTest, KeepsTheSourceOfAnOutputThatChangedAfterTheProof)
{
    SourceRetirement retirement = wanting({wav});
    ASSERT_EQ(examine(retirement, {flac}).proof, Proof::Proven);
    flip(flac, 5000);
    const auto ending = retirement.retire();
    EXPECT_EQ(ending.original, Original::Kept);
    EXPECT_EQ(ending.problem, u"its output has changed since it was examined");
    EXPECT_TRUE(QFile::exists(wav));
}

TEST_F(SourceRetirementTest, KeepsADoubtedSource)
{
    SourceRetirement retirement = wanting({wav});
    retirement.doubt(u"the first reason"_s);
    retirement.doubt(u"another"_s);
    const auto verdict = examine(retirement, {flac});
    EXPECT_EQ(verdict.keeping, u"the first reason");
    EXPECT_EQ(verdict.proof, Proof::Proven) << "the output is looked at all the same";
    SourceRetirement late = wanting({wav});
    ASSERT_EQ(examine(late, {flac}).keeping, std::nullopt);
    late.doubt(u"found out late"_s);
    EXPECT_EQ(late.retire().problem, u"found out late");
    EXPECT_TRUE(QFile::exists(wav));
}

TEST_F(SourceRetirementTest, KeepsASourceThatIsItsOutput)
{
    SourceRetirement retirement = wanting({wav});
    EXPECT_EQ(examine(retirement, {folder.makeLink(u"link.wav"_s, wav)}).keeping, u"it is the output itself");
}

TEST_F(SourceRetirementTest, KeepsASourceWithoutAnOutput)
{
    SourceRetirement retirement = wanting({wav});
    EXPECT_EQ(examine(retirement, {}).keeping, u"there is no output");
    SourceRetirement missing = wanting({wav});
    const auto verdict = examine(missing, {folder.path(u"missing.flac"_s)});
    EXPECT_TRUE(verdict.failure || verdict.keeping);
    EXPECT_EQ(missing.retire().original, Original::Untouched);
}

TEST_F(SourceRetirementTest, KeepsTagsThatTheOutputDoesNotHold)
{
    const QString tagged = test::writeFlac(folder.path(u"tagged.flac"_s), {}, {u"-T"_s, u"TITLE=Dark Star"_s});
    SourceRetirement retirement = wanting({tagged});
    const auto verdict = examine(retirement, {wav});
    ASSERT_TRUE(verdict.keeping);
    EXPECT_TRUE(verdict.keeping->contains(u"WAV"_s)) << qPrintable(*verdict.keeping);
    SourceRetirement dropping = wanting({tagged}, {.dropsMetadata = true});
    EXPECT_EQ(examine(dropping, {wav}).keeping, std::nullopt);
    EXPECT_EQ(dropping.retire().original, Original::Deleted);
}

TEST_F(SourceRetirementTest, GivesUpWhenTheJobIsCancelled)
{
    isUnwanted = true;
    SourceRetirement retirement = wanting({wav});
    const auto verdict = examine(retirement, {flac});
    EXPECT_TRUE(verdict.wasGivenUp);
    EXPECT_EQ(verdict.failure, std::nullopt);
    EXPECT_EQ(retirement.retire().original, Original::Untouched);
    EXPECT_TRUE(QFile::exists(wav));
}

TEST_F(SourceRetirementTest, MovesToTheTrashWhenTheSettingSaysSo)
{
    SettingsStore::instance().setValue(u"trashOrDelete"_s, 1);
    SourceRetirement retirement = wanting({wav});
    ASSERT_EQ(examine(retirement, {flac}).keeping, std::nullopt);
    EXPECT_EQ(retirement.retire().original, Original::Trashed);
    EXPECT_FALSE(QFile::exists(wav));
}

TEST_F(SourceRetirementTest, LetsSeveralSourcesGoForOneOutput)
{
    // What is joined by another program than ours.
    const QString second = test::writeWav(folder.path(u"b.wav"_s), {.seed = 7});
    const QString joined = folder.path(u"joined.wav"_s);
    ASSERT_EQ(test::runProgram(u"sox"_s, {wav, second, joined}).exitStatus, 0);
    SourceRetirement wrongOrder = wanting({second, wav});
    EXPECT_TRUE(examine(wrongOrder, {joined}).failure);
    SourceRetirement retirement = wanting({wav, second});
    const auto verdict = examine(retirement, {joined});
    EXPECT_EQ(verdict.failure, std::nullopt) << qPrintable(*verdict.failure);
    EXPECT_EQ(retirement.retire().original, Original::Deleted);
    EXPECT_FALSE(QFile::exists(wav) || QFile::exists(second));
}

} // namespace
} // namespace nurv

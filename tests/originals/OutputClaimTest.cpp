// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "originals/OutputClaim.h"

#include "originals/OutputBatch.h"
#include "support/TestFolder.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class OutputClaimTest : public ::testing::Test {
protected:
    test::TestFolder folder;
    QString wav = folder.path(u"a.wav"_s);
    QString tta = folder.path(u"a.tta"_s);
    OutputClaim first;
    OutputClaim second;
};

TEST_F(OutputClaimTest, IsForOneJobAtATime)
{
    ASSERT_EQ(first.take(tta, wav, nullptr), std::nullopt);
    EXPECT_EQ(second.take(tta, folder.path(u"a.aiff"_s), nullptr), u"its output a.tta is made from "_s + wav);
    first.release();
    EXPECT_EQ(second.take(tta, folder.path(u"a.aiff"_s), nullptr), std::nullopt);
}

TEST_F(OutputClaimTest, IsRefusedForAFileThatIsBeingConverted)
{
    ASSERT_EQ(first.take(tta, wav, nullptr), std::nullopt);
    EXPECT_EQ(second.take(wav, folder.path(u"b.tta"_s), nullptr), u"its output a.wav is being converted"_s);
    OutputClaim other;
    ASSERT_EQ(other.take(folder.path(u"a.ape"_s), wav, nullptr), std::nullopt) << "two may read one file";
    first.release();
    EXPECT_TRUE(second.take(wav, folder.path(u"b.tta"_s), nullptr)) << "one still does";
    other.release();
    EXPECT_EQ(second.take(wav, folder.path(u"b.tta"_s), nullptr), std::nullopt);
}

TEST_F(OutputClaimTest, IsRefusedToASourceThatIsNotMadeYet)
{
    ASSERT_EQ(first.take(tta, wav, nullptr), std::nullopt);
    EXPECT_EQ(second.take(folder.path(u"b.wav"_s), tta, nullptr), u"it is still being made from "_s + wav);
}

TEST_F(OutputClaimTest, KnowsAFolderByItsOtherName)
{
    const test::TestFolder links;
    ASSERT_TRUE(QFile::link(folder.path(), links.path(u"link"_s)));
    ASSERT_EQ(first.take(tta, wav, nullptr), std::nullopt);
    EXPECT_TRUE(second.take(links.path(u"link/a.tta"_s), links.path(u"b.wav"_s), nullptr));
}

TEST_F(OutputClaimTest, KnowsAFileByItsOtherName)
{
    folder.write(u"a.wav"_s, "sound");
    ASSERT_TRUE(QFile::link(wav, folder.path(u"link.wav"_s)));
    ASSERT_EQ(first.take(tta, wav, nullptr), std::nullopt);
    EXPECT_TRUE(second.take(folder.path(u"link.wav"_s), folder.path(u"b.tta"_s), nullptr));
}

TEST_F(OutputClaimTest, KnowsOtherReadersOfItsSource)
{
    ASSERT_EQ(first.take(tta, wav, nullptr), std::nullopt);
    EXPECT_FALSE(first.isSourceReadByOthers());
    ASSERT_EQ(second.take(folder.path(u"a.ape"_s), wav, nullptr), std::nullopt);
    EXPECT_TRUE(first.isSourceReadByOthers());
    first.release();
    EXPECT_TRUE(first.isSourceReadByOthers());
    second.release();
    EXPECT_FALSE(first.isSourceReadByOthers());
    EXPECT_FALSE(OutputClaim().isSourceReadByOthers());
}

TEST_F(OutputClaimTest, StaysTakenInItsBatch)
{
    OutputBatch batch;
    ASSERT_EQ(first.take(tta, wav, &batch), std::nullopt);
    first.release();
    EXPECT_TRUE(second.take(tta, folder.path(u"a.aiff"_s), &batch));
}

TEST_F(OutputClaimTest, TellsNamesApartThatDifferInTheirCaseWhereTheDiskDoes)
{
    ASSERT_EQ(first.take(tta, wav, nullptr), std::nullopt);
    EXPECT_EQ(second.take(folder.path(u"A.tta"_s), folder.path(u"A.wav"_s), nullptr), std::nullopt);
}

TEST(FoldedName, IsTheSameForSpellingsThatSomeDisksTakeForOneName)
{
    EXPECT_EQ(foldedName(u"/x/Lied É.wav"_s), foldedName(u"/x/LIED E\u0301.WAV"_s));
    EXPECT_NE(foldedName(u"/x/a.wav"_s), foldedName(u"/x/b.wav"_s));
}

} // namespace
} // namespace nurv

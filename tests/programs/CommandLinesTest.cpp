// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/AtomicParsley.h"
#include "programs/Flac.h"
#include "programs/Metaflac.h"
#include "programs/Shntool.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const QString kSource = u"/in/a b.wav"_s;
const QString kOutput = u"/out/a b.flac"_s;

TEST(CommandLines, EncodeFlacWithALevel)
{
    EXPECT_EQ(flac::encodingArguments({.level = 5}, kSource, kOutput),
              (QStringList{u"-5"_s, kSource, u"-o"_s, kOutput}));
    EXPECT_EQ(flac::encodingArguments({.level = 0}, kSource, kOutput),
              (QStringList{u"-0"_s, kSource, u"-o"_s, kOutput}));
}

TEST(CommandLines, EncodeFlacWithEveryOptionInTheirOrder)
{
    EXPECT_EQ(flac::encodingArguments({.level = 8, .keepForeignMetadata = true, .verify = true, .overwrite = true},
                                      kSource, kOutput),
              (QStringList{u"-8"_s, u"--keep-foreign-metadata"_s, u"-V"_s, u"-f"_s, kSource, u"-o"_s, kOutput}));
}

TEST(CommandLines, TellFlacFirstThatNobodyKnowsTheChannels)
{
    EXPECT_EQ(flac::encodingArguments({.level = 5, .verify = true, .hasNoChannelMap = true}, kSource, kOutput),
              (QStringList{u"--channel-map=none"_s, u"-5"_s, u"-V"_s, kSource, u"-o"_s, kOutput}));
}

TEST(CommandLines, ReplaceAFlacFileOnlyWhenTold)
{
    EXPECT_TRUE(flac::replacesOutput(flac::encodingArguments({.overwrite = true}, kSource, kOutput)));
    EXPECT_FALSE(flac::replacesOutput(flac::encodingArguments({.verify = true}, kSource, kOutput)));
}

TEST(CommandLines, MarkAFileAsGapless)
{
    EXPECT_EQ(atomicParsley::gaplessArguments(u"/m/a b.m4a"_s),
              (QStringList{u"/m/a b.m4a"_s, u"--overWrite"_s, u"--gapless"_s, u"--true"_s}));
}

TEST(CommandLines, ShowAndSetOneKeyOfAFlacFile)
{
    const QString path = u"/music/a b.flac"_s;
    EXPECT_EQ(metaflac::showTagArguments(path, u"TITLE"), (QStringList{u"--show-tag=TITLE"_s, path}));
    EXPECT_EQ(metaflac::removeTagArguments(path, u"DATE"), (QStringList{u"--remove-tag=DATE"_s, path}));
    EXPECT_EQ(metaflac::setTagArguments(path, u"GENRE", u"100%1 = \"x\"\ny"_s),
              (QStringList{u"--set-tag=GENRE=100%1 = \"x\"\ny"_s, path}));
    EXPECT_EQ(metaflac::showFormatArguments(path, u"--show-bps"_s), (QStringList{u"--show-bps"_s, path}));
    EXPECT_EQ(metaflac::showDigestArguments(path), (QStringList{u"--show-md5"_s, path}));
}

TEST(CommandLines, TakeTheValueOfAKeyBehindTheLastEqualsSign)
{
    EXPECT_EQ(metaflac::valueInOutput(u" TITLE=a=b \n\n"_s, u"TITLE"), u"b"_s);
    EXPECT_EQ(metaflac::valueInOutput(u"title=x\nTITLE=y\n"_s, u"TITLE"), u"y"_s);
    EXPECT_EQ(metaflac::valueInOutput(u"TITLE=\n"_s, u"TITLE"), u""_s);
    EXPECT_EQ(metaflac::valueInOutput(u""_s, u"TITLE"), u""_s);
    EXPECT_EQ(metaflac::valueInOutput(u"/x.flac: ERROR: reading metadata, status = \"X\"\n"_s, u"TITLE"), u""_s);
}

TEST(CommandLines, StartNothingWithAWordThatTheKernelRefuses)
{
    // MAX_ARG_STRLEN counts the zero at the end, too.
    EXPECT_TRUE(metaflac::canBeStartedWith({QString(131'071, u'x')}));
    EXPECT_FALSE(metaflac::canBeStartedWith({u"a"_s, QString(131'072, u'x')}));
    EXPECT_FALSE(metaflac::canBeStartedWith({QString(65'536, u'\u00e9')}));
}

TEST(CommandLines, PassNoLevelWithLax)
{
    EXPECT_EQ(flac::encodingArguments({.level = 8, .lax = true}, kSource, kOutput),
              (QStringList{u"--lax"_s, kSource, u"-o"_s, kOutput}));
}

TEST(CommandLines, HandTheEncoderToShntoolAsOneWord)
{
    EXPECT_EQ(shntool::toFlacArguments({.level = 5}, u"/in/a.shn"_s, u"/out"_s),
              (QStringList{u"conv"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"never"_s, u"-d"_s, u"/out"_s, u"-o"_s,
                           u"cust ext=flac flac -5  -o %f -"_s, u"/in/a.shn"_s}));
    EXPECT_EQ(shntool::toFlacArguments({.level = 8, .verify = true}, u"/in/a.shn"_s, u"/out"_s).at(8),
              u"cust ext=flac flac -8  -V  -o %f -");
}

TEST(CommandLines, DropEverythingElseWithLaxThroughShntool)
{
    EXPECT_EQ(shntool::toFlacArguments(
                  {.level = 8, .lax = true, .keepForeignMetadata = true, .verify = true, .overwrite = true},
                  u"/in/a.shn"_s, u"/out"_s),
              (QStringList{u"conv"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"never"_s, u"-d"_s, u"/out"_s, u"-o"_s,
                           u"cust ext=flac flac --lax -o %f -"_s, u"/in/a.shn"_s}));
}

TEST(CommandLines, EncodeAndDecodeShorten)
{
    EXPECT_EQ(shntool::toShortenArguments(kSource, u"/out"_s),
              (QStringList{u"conv"_s, u"-o"_s, u"shn"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"never"_s, u"-d"_s, u"/out"_s,
                           kSource}));
    EXPECT_EQ(shntool::fromShortenArguments(u"WAV"_s, u"/in/a.shn"_s, u"/out"_s),
              (QStringList{u"conv"_s, u"-o"_s, u"wav"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"never"_s, u"-d"_s, u"/out"_s,
                           u"/in/a.shn"_s}));
    EXPECT_EQ(shntool::fromShortenArguments(u"AIFF"_s, u"/in/a.shn"_s, u"/out"_s).at(2), u"aiff");
    EXPECT_EQ(shntool::fromShortenArguments(u"other"_s, u"/in/a.shn"_s, u"/out"_s).at(2), u"-P");
}

TEST(CommandLines, KeepSourceAndFolderWhereTheJobsLookForThem)
{
    EXPECT_EQ(shntool::toShortenArguments(kSource, u"/out"_s).at(shntool::kSourcePlace), kSource);
    EXPECT_EQ(shntool::fromShortenArguments(u"AIFF"_s, kSource, u"/out"_s).at(shntool::kSourcePlace), kSource);
    EXPECT_EQ(shntool::toFlacArguments({}, kSource, u"/out"_s).at(shntool::kSourcePlace), kSource);
    EXPECT_EQ(shntool::toFlacArguments({}, kSource, u"/out"_s).at(shntool::kFlacFolderPlace), u"/out");
}

TEST(CommandLines, DecodeFlacToWav)
{
    EXPECT_EQ(flac::decodingArguments(u"WAV"_s, false, false, u"/in/a.flac"_s, u"/out/a.wav"_s),
              (QStringList{u"-d"_s, u"/in/a.flac"_s, u"-o"_s, u"/out/a.wav"_s}));
}

TEST(CommandLines, DecodeFlacToAiffWithBothOptions)
{
    EXPECT_EQ(flac::decodingArguments(u"AIFF"_s, true, true, u"/in/a.flac"_s, u"/out/a.aiff"_s),
              (QStringList{u"-d"_s, u"--keep-foreign-metadata"_s, u"-F"_s, u"--force-aiff-format"_s, u"/in/a.flac"_s,
                           u"-o"_s, u"/out/a.aiff"_s}));
}

} // namespace
} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConversionArguments.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::conversionArguments {
namespace {

const QString kSource = u"/in/a b.wav"_s;
const QString kOutput = u"/out/a b.flac"_s;

TEST(ConversionArguments, EncodeFlacWithALevel)
{
    EXPECT_EQ(encodeFlac({.level = 5}, kSource, kOutput), (QStringList{u"-5"_s, kSource, u"-o"_s, kOutput}));
    EXPECT_EQ(encodeFlac({.level = 0}, kSource, kOutput), (QStringList{u"-0"_s, kSource, u"-o"_s, kOutput}));
}

TEST(ConversionArguments, EncodeFlacWithEveryOptionInTheirOrder)
{
    EXPECT_EQ(
        encodeFlac({.level = 8, .keepForeignMetadata = true, .verify = true, .overwrite = true}, kSource, kOutput),
        (QStringList{u"-8"_s, u"--keep-foreign-metadata"_s, u"-V"_s, u"-f"_s, kSource, u"-o"_s, kOutput}));
}

TEST(ConversionArguments, PassNoLevelWithLax)
{
    EXPECT_EQ(encodeFlac({.level = 8, .lax = true}, kSource, kOutput),
              (QStringList{u"--lax"_s, kSource, u"-o"_s, kOutput}));
}

TEST(ConversionArguments, HandTheEncoderToShntoolAsOneWord)
{
    EXPECT_EQ(flacByShntool({.level = 5}, u"/in/a.shn"_s, u"/out"_s),
              (QStringList{u"conv"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"never"_s, u"-d"_s, u"/out"_s, u"-o"_s,
                           u"cust ext=flac flac -5  -o %f -"_s, u"/in/a.shn"_s}));
    EXPECT_EQ(flacByShntool({.level = 8, .verify = true}, u"/in/a.shn"_s, u"/out"_s).at(8),
              u"cust ext=flac flac -8  -V  -o %f -");
}

TEST(ConversionArguments, DropEverythingElseWithLaxThroughShntool)
{
    EXPECT_EQ(flacByShntool({.level = 8, .lax = true, .keepForeignMetadata = true, .verify = true, .overwrite = true},
                            u"/in/a.shn"_s, u"/out"_s),
              (QStringList{u"conv"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"never"_s, u"-d"_s, u"/out"_s, u"-o"_s,
                           u"cust ext=flac flac --lax -o %f -"_s, u"/in/a.shn"_s}));
}

TEST(ConversionArguments, EncodeAndDecodeShorten)
{
    EXPECT_EQ(encodeShorten(kSource, u"/out"_s), (QStringList{u"conv"_s, u"-o"_s, u"shn"_s, u"-P"_s, u"pct"_s, u"-O"_s,
                                                              u"never"_s, u"-d"_s, u"/out"_s, kSource}));
    EXPECT_EQ(decodeShorten(u"WAV"_s, u"/in/a.shn"_s, u"/out"_s),
              (QStringList{u"conv"_s, u"-o"_s, u"wav"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"never"_s, u"-d"_s, u"/out"_s,
                           u"/in/a.shn"_s}));
    EXPECT_EQ(decodeShorten(u"AIFF"_s, u"/in/a.shn"_s, u"/out"_s).at(2), u"aiff");
    EXPECT_EQ(decodeShorten(u"other"_s, u"/in/a.shn"_s, u"/out"_s).at(2), u"-P");
}

TEST(ConversionArguments, KeepSourceAndFolderWhereTheJobsLookForThem)
{
    EXPECT_EQ(encodeShorten(kSource, u"/out"_s).at(kShntoolSource), kSource);
    EXPECT_EQ(decodeShorten(u"AIFF"_s, kSource, u"/out"_s).at(kShntoolSource), kSource);
    EXPECT_EQ(flacByShntool({}, kSource, u"/out"_s).at(kShntoolSource), kSource);
    EXPECT_EQ(flacByShntool({}, kSource, u"/out"_s).at(kFlacByShntoolFolder), u"/out");
}

TEST(ConversionArguments, DecodeFlacToWav)
{
    EXPECT_EQ(decodeFlac(u"WAV"_s, false, false, u"/in/a.flac"_s, u"/out/a.wav"_s),
              (QStringList{u"-d"_s, u"/in/a.flac"_s, u"-o"_s, u"/out/a.wav"_s}));
    EXPECT_EQ(decodedExtension(u"WAV"_s), u"wav");
}

TEST(ConversionArguments, DecodeFlacToAiffWithBothOptions)
{
    EXPECT_EQ(decodeFlac(u"AIFF"_s, true, true, u"/in/a.flac"_s, u"/out/a.aiff"_s),
              (QStringList{u"-d"_s, u"--keep-foreign-metadata"_s, u"-F"_s, u"--force-aiff-format"_s, u"/in/a.flac"_s,
                           u"-o"_s, u"/out/a.aiff"_s}));
    EXPECT_EQ(decodedExtension(u"AIFF"_s), u"aiff");
}

} // namespace
} // namespace nurv::conversionArguments

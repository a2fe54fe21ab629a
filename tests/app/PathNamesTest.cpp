// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/PathNames.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {

TEST(PathNames, LastComponentStandsBehindTheLastSlash)
{
    EXPECT_EQ(lastPathComponent(u"/music/a b.flac"_s), u"a b.flac"_s);
    EXPECT_EQ(lastPathComponent(u"a.flac"_s), u"a.flac"_s);
    EXPECT_EQ(lastPathComponent(u"/music/disc//"_s), u"disc"_s);
    EXPECT_EQ(lastPathComponent(u"/"_s), QString());
    EXPECT_EQ(lastPathComponent(QString()), QString());
}

TEST(PathNames, FolderStandsBeforeTheLastSlash)
{
    EXPECT_EQ(folderOf(u"/music/disc/a.flac"_s), u"/music/disc"_s);
    EXPECT_EQ(folderOf(u"/a.flac"_s), u"/"_s);
    EXPECT_EQ(folderOf(u"//a.flac"_s), u"/"_s);
    EXPECT_EQ(folderOf(u"/music/disc/"_s), u"/music"_s);
    EXPECT_EQ(folderOf(u"/"_s), u"/"_s);
    EXPECT_EQ(folderOf(u"a.flac"_s), QString());
}

TEST(PathNames, ExtensionStandsBehindTheLastPointOfTheName)
{
    EXPECT_EQ(pathExtension(u"/music/a.FLAC"_s), u"FLAC"_s);
    EXPECT_EQ(pathExtension(u"/music/live.ffp.txt"_s), u"txt"_s);
    EXPECT_EQ(pathExtension(u"/music/..flac"_s), u"flac"_s);
    EXPECT_EQ(pathExtension(u"/music.flac/a"_s), QString());
    EXPECT_EQ(pathExtension(u"/music/a."_s), QString());
    EXPECT_EQ(pathExtension(u"/music/.flac"_s), QString());
    EXPECT_EQ(pathExtension(u"/music/a"_s), QString());
}

TEST(PathNames, FormatWordIsTheExtensionInCapitals)
{
    EXPECT_EQ(formatWord(u"/music/a.m4a"_s), u"M4A"_s);
    EXPECT_EQ(formatWord(u"/music/a.Flac"_s), u"FLAC"_s);
    EXPECT_EQ(formatWord(u"/music/a"_s), QString());
}

TEST(PathNames, NameWithoutExtensionKeepsTheOtherPoints)
{
    EXPECT_EQ(nameWithoutExtension(u"/music/01. Song.flac"_s), u"01. Song"_s);
    EXPECT_EQ(nameWithoutExtension(u"/music/.hidden"_s), u".hidden"_s);
    EXPECT_EQ(nameWithoutExtension(u"/music/a."_s), u"a."_s);
}

TEST(PathNames, JoinsWithOneSlash)
{
    EXPECT_EQ(joinPath(u"/music"_s, u"a.flac"_s), u"/music/a.flac"_s);
    EXPECT_EQ(joinPath(u"/music/"_s, u"a.flac"_s), u"/music/a.flac"_s);
    EXPECT_EQ(joinPath(u"/"_s, u"a.flac"_s), u"/a.flac"_s);
    EXPECT_EQ(joinPath(QString(), u"a.flac"_s), u"a.flac"_s);
}

TEST(PathNames, OutputPathTakesTheSourceNameAndTheNewExtension)
{
    EXPECT_EQ(outputPath(u"/out"_s, u"/in/01. Söng.WAV"_s, u"flac"_s), u"/out/01. Söng.flac"_s);
    EXPECT_EQ(outputPath(u"/out"_s, u"/in/raw"_s, u"wav"_s), u"/out/raw.wav"_s);
    EXPECT_EQ(outputPath(u"/out"_s, u"/in/a.b.shn"_s, u"wav"_s), u"/out/a.b.wav"_s);
}

TEST(PathNames, TellTheDiscBetweenTheLastDAndTheNextT)
{
    EXPECT_EQ(discNumber(u"/shows/show-d1t01.shn"_s), u"1");
    EXPECT_EQ(discNumber(u"/dead/2001-d2/show-d12t01.shn"_s), u"12");
    EXPECT_EQ(discNumber(u"/shows/disc3 track.shn"_s), u"isc3 ");
    EXPECT_EQ(discNumber(u"/shows/d2/t01.shn"_s), u"2/");
    EXPECT_EQ(discNumber(u"/music/best/a.shn"_s), u"/music/bes") << "without a d, the whole path counts";
    EXPECT_EQ(discNumber(u"/music/dt.shn"_s), QString());
    EXPECT_EQ(discNumber(u"/music/a.shnd"_s), QString());
    EXPECT_EQ(discNumber(u"/music/d9.shn"_s), u"9.shn") << "without a t behind it, all of the rest does";
}

} // namespace nurv

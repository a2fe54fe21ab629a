// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/DiscFolderRemoval.h"

#include "support/TestFolder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class DiscFolderRemoval : public ::testing::Test {
protected:
    DiscFolderRemoval()
    {
        for (const QString &name : {u"AUDIO_TS.IFO"_s, u"AUDIO_TS.BUP"_s, u"AUDIO_PP.IFO"_s, u"ATS_01_0.IFO"_s,
                                    u"ATS_01_0.BUP"_s, u"ATS_01_1.AOB"_s, u"ATS_01_9.AOB"_s})
            folder.write(u"disc/AUDIO_TS/"_s + name, "x");
        folder.makeFolder(u"disc/VIDEO_TS"_s);
    }
    [[nodiscard]] std::optional<QString> remove() const { return removeDiscFolder(folder.path(u"disc"_s)); }

    test::TestFolder folder;
};

TEST_F(DiscFolderRemoval, RemovesADisc)
{
    EXPECT_EQ(remove(), std::nullopt);
    EXPECT_FALSE(folder.exists(u"disc"_s));
    EXPECT_EQ(remove(), std::nullopt) << "nothing is left to be done";
}

TEST_F(DiscFolderRemoval, LeavesWhatIsOfNoDisc)
{
    folder.write(u"disc/AUDIO_TS/mine.wav"_s, "mine");
    folder.write(u"disc/VIDEO_TS/film.vob"_s, "mine");
    EXPECT_EQ(remove(), u"AUDIO_TS holds something else"_s);
    EXPECT_EQ(folder.list(), (QStringList{u"disc/AUDIO_TS/mine.wav"_s, u"disc/VIDEO_TS/film.vob"_s}));
    folder.remove(u"disc/AUDIO_TS/mine.wav"_s);
    EXPECT_EQ(remove(), u"VIDEO_TS holds something else"_s);
    folder.remove(u"disc/VIDEO_TS/film.vob"_s);
    folder.write(u"disc/notes.txt"_s, "mine");
    EXPECT_TRUE(remove().has_value());
    EXPECT_EQ(folder.read(u"disc/notes.txt"_s), "mine");
}

TEST_F(DiscFolderRemoval, FollowsNoLink)
{
    test::TestFolder other;
    other.write(u"AUDIO_TS/AUDIO_TS.IFO"_s, "precious");
    folder.makeLink(u"link"_s, other.path());
    EXPECT_TRUE(removeDiscFolder(folder.path(u"link"_s)).has_value());
    folder.makeFolder(u"made"_s);
    folder.makeLink(u"made/AUDIO_TS"_s, other.path(u"AUDIO_TS"_s));
    EXPECT_TRUE(removeDiscFolder(folder.path(u"made"_s)).has_value());
    EXPECT_EQ(other.read(u"AUDIO_TS/AUDIO_TS.IFO"_s), "precious");
}

} // namespace
} // namespace nurv

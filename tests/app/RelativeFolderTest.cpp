// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/FileIntake.h"
#include "app/TestApplication.h"
#include "support/TestFolder.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// The current folder is another one while it lives.
class CurrentFolder {
public:
    explicit CurrentFolder(const QString &path) : m_before(QDir::currentPath()) { EXPECT_TRUE(QDir::setCurrent(path)); }
    ~CurrentFolder() { QDir::setCurrent(m_before); }
    CurrentFolder(const CurrentFolder &) = delete;
    CurrentFolder &operator=(const CurrentFolder &) = delete;

private:
    QString m_before;
};

class RelativeFolder : public ::testing::Test {
protected:
    RelativeFolder() { file = folder.write(u"shows/disc1/a.flac"_s, "x"); }

    /// The relative folder of the one file when that name is given.
    [[nodiscard]] QString whenGiven(const QString &name, const QString &path)
    {
        decode.clearFiles();
        decode.addFiles({name});
        EXPECT_TRUE(decode.fileNames().contains(path)) << qPrintable(decode.fileNames().join(u'\n'));
        return decode.relativeFolderOf(path);
    }
    [[nodiscard]] QString whenGiven(const QString &name) { return whenGiven(name, file); }

    test::TestApplication application;
    test::CountingTab &decode = application.tab(u"decode"_s);
    test::TestFolder folder;
    QString file;
};

} // namespace

TEST_F(RelativeFolder, BeginsWithTheGivenFoldersOwnName)
{
    EXPECT_EQ(whenGiven(folder.path(u"shows"_s)), u"shows/disc1"_s);
    EXPECT_EQ(whenGiven(folder.path(u"shows"_s) + u"//"_s), u"shows/disc1"_s);
    EXPECT_EQ(whenGiven(folder.path(u"shows/disc1"_s)), u"disc1"_s);
    EXPECT_EQ(whenGiven(folder.path(u"shows/disc1/../../shows"_s)), u"shows/disc1"_s);
}

TEST_F(RelativeFolder, IsEmptyForAFileThatWasGivenItselfAndForAStrangeOne)
{
    EXPECT_EQ(whenGiven(file), QString());
    EXPECT_EQ(decode.relativeFolderOf(folder.path(u"other.flac"_s)), QString());
    decode.clearFiles();
    decode.addMatchedFiles({file});
    EXPECT_EQ(decode.relativeFolderOf(file), QString());
}

TEST_F(RelativeFolder, HoldsOnlyThePartBelowFoldersThatAreNotCalledByAName)
{
    const CurrentFolder current(folder.path(u"shows"_s));
    EXPECT_EQ(whenGiven(u"."_s), u"disc1"_s);
    EXPECT_EQ(whenGiven(u"./"_s), u"disc1"_s);
    EXPECT_EQ(whenGiven(u".."_s), u"shows/disc1"_s);
    EXPECT_EQ(whenGiven(u"disc1/.."_s), u"disc1"_s);
    EXPECT_EQ(whenGiven(u"disc1/."_s), QString());
    EXPECT_EQ(whenGiven(u"disc1"_s), u"disc1"_s);
}

TEST_F(RelativeFolder, CountsFromTheRoot)
{
    EXPECT_EQ(relativeFolder(u"/music/disc1/a.flac"_s, u"/"_s), u"music/disc1"_s);
    EXPECT_EQ(relativeFolder(u"/a.flac"_s, u"/"_s), QString());
    EXPECT_EQ(relativeFolder(u"/musical/a.flac"_s, u"/music"_s), QString());
    EXPECT_EQ(relativeFolder(u"/music/a.flac"_s, QString()), QString());
}

TEST_F(RelativeFolder, CallsLinksByTheirNamesAndNeverLeavesTheGivenFolder)
{
    const QString link = folder.makeLink(u"link"_s, folder.path(u"shows"_s));
    EXPECT_EQ(whenGiven(link, link + u"/disc1/a.flac"_s), u"link/disc1"_s);
    folder.makeFolder(u"in"_s);
    folder.makeLink(u"in/out of it.flac"_s, u"../shows/disc1/a.flac"_s);
    EXPECT_EQ(whenGiven(folder.path(u"in"_s), folder.path(u"in/out of it.flac"_s)), u"in"_s);
}

TEST_F(RelativeFolder, TakesOddNamesAsTheyAre)
{
    for (const QString &name : {u"..."_s, u"..a"_s, u" "_s, u"a\nb"_s, u"-n"_s, u"a\\b"_s, u":x"_s, u"曲 1.d"_s}) {
        const QString odd = folder.write(u"shows/"_s + name + u"/b.flac"_s, "x");
        EXPECT_EQ(whenGiven(folder.path(u"shows"_s), odd), u"shows/"_s + name);
        EXPECT_EQ(whenGiven(folder.path(u"shows/"_s + name), odd), name);
    }
}

TEST_F(RelativeFolder, StaysWithTheFilesOverSeveralAdditions)
{
    const QString other = folder.write(u"tapes/b.flac"_s, "x");
    decode.addFiles({folder.path(u"shows"_s)});
    decode.addFiles({other, folder.path(u"tapes"_s), folder.path()});
    EXPECT_EQ(decode.relativeFolderOf(file), u"shows/disc1"_s);
    // Given itself first.
    EXPECT_EQ(decode.relativeFolderOf(other), QString());
    decode.filterGivenExtension(u"flac"_s);
    EXPECT_EQ(decode.relativeFolderOf(file), QString());
    decode.addFiles({folder.path(u"tapes"_s)});
    EXPECT_EQ(decode.relativeFolderOf(other), u"tapes"_s);
}

TEST_F(RelativeFolder, ComesAlongWithFilesThatArriveWithTheApplication)
{
    const QString other = folder.write(u"tapes/1/b.flac"_s, "x");
    application.controller.selectTab(u"decode"_s);
    application.controller.openFiles({folder.path(u"shows"_s), other});
    EXPECT_EQ(decode.relativeFolderOf(file), u"shows/disc1"_s);
    EXPECT_EQ(decode.relativeFolderOf(other), QString());

    application.controller.selectTab(NURVController::kAboutLabel);
    application.controller.openFiles({folder.path(u"tapes"_s), folder.write(u"c.wav"_s, "x")});
    EXPECT_EQ(decode.relativeFolderOf(other), QString());
    const QString third = folder.write(u"tapes/1/c.flac"_s, "x");
    application.controller.selectTab(NURVController::kAboutLabel);
    application.controller.openFiles({folder.path(u"tapes"_s)});
    EXPECT_EQ(decode.relativeFolderOf(third), u"tapes/1"_s);
}

TEST_F(RelativeFolder, ASearchedFileThatIsAppendedByHandCountsAsGivenItself)
{
    FileIntake intake;
    intake.accepted = {u"/x/a.flac"_s};
    intake.accept(u"/x/y/b.flac"_s, u"/x"_s);
    decode.addCollected(intake);
    EXPECT_EQ(decode.relativeFolderOf(u"/x/a.flac"_s), QString());
    EXPECT_EQ(decode.relativeFolderOf(u"/x/y/b.flac"_s), u"y"_s);
}

} // namespace nurv

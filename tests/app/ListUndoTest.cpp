// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TestApplication.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace nurv::test {

namespace {

class ListUndoTest : public ::testing::Test {
protected:
    ListUndoTest()
    {
        tab.addMatchedFiles({u"/m/show/1.wav"_s, u"/m/show/2.wav"_s, u"/m/show/3.aiff"_s},
                            {u"/m"_s, u"/m"_s, QString()});
    }

    TestApplication application;
    CountingTab &tab = application.tab(u"encode"_s);
};

} // namespace

TEST_F(ListUndoTest, EveryRemovalIsTakenBackFromTheLastToTheFirst)
{
    EXPECT_EQ(tab.removedCount(), 0);
    tab.undoRemoval();
    EXPECT_EQ(tab.fileNames().size(), 3);

    tab.deleteSelectedRows({1});
    EXPECT_EQ(tab.removedCount(), 1);
    tab.filterGivenExtension(u"aiff"_s);
    tab.clearFiles();
    EXPECT_THAT(tab.fileNames(), IsEmpty());
    tab.undoRemoval();
    EXPECT_THAT(tab.fileNames(), ElementsAre(u"/m/show/1.wav"_s));
    tab.undoRemoval();
    EXPECT_THAT(tab.fileNames(), ElementsAre(u"/m/show/1.wav"_s, u"/m/show/3.aiff"_s));
    EXPECT_EQ(tab.relativeFolderOf(u"/m/show/3.aiff"_s), QString());
    tab.undoRemoval();
    EXPECT_THAT(tab.fileNames(), ElementsAre(u"/m/show/1.wav"_s, u"/m/show/2.wav"_s, u"/m/show/3.aiff"_s));
    EXPECT_EQ(tab.relativeFolderOf(u"/m/show/2.wav"_s), u"show"_s) << "as when it was added";
    EXPECT_EQ(tab.removedCount(), 0);
}

TEST_F(ListUndoTest, WhatRemovedNothingIsNoStep)
{
    tab.clearFiles();
    tab.clearFiles();
    tab.deleteSelectedRows({0});
    tab.filterGivenExtension(u"wav"_s);
    tab.undoRemoval();
    EXPECT_EQ(tab.fileNames().size(), 3);
}

TEST_F(ListUndoTest, FilesThatCameMeanwhileStay)
{
    tab.clearFiles();
    tab.addMatchedFiles({u"/m/9.wav"_s, u"/m/show/1.wav"_s});
    tab.undoRemoval();
    EXPECT_THAT(tab.fileNames(),
                ElementsAre(u"/m/9.wav"_s, u"/m/show/1.wav"_s, u"/m/show/2.wav"_s, u"/m/show/3.aiff"_s));
}

TEST_F(ListUndoTest, TheListIsAnnouncedEvenIfAllWereThereAgain)
{
    tab.deleteSelectedRows({0});
    tab.addMatchedFiles({u"/m/show/1.wav"_s});
    int announcements = 0;
    QObject::connect(&tab, &BaseTab::fileNamesChanged, &tab, [&announcements] { ++announcements; });
    tab.undoRemoval();
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(tab.fileNames().size(), 3);
    EXPECT_EQ(tab.removedCount(), 0);
}

TEST_F(ListUndoTest, WhatATabTookOffWhileItExecutedComesBackWhenItIsThrough)
{
    tab.whileExecuting = [this] {
        tab.clearFiles();
        tab.undoRemoval();
        EXPECT_THAT(tab.fileNames(), IsEmpty());
    };
    EXPECT_TRUE(application.controller.execute(tab));
    EXPECT_EQ(tab.fileNames().size(), 3);
}

} // namespace nurv::test

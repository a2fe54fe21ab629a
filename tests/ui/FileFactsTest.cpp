// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FileFacts.h"

#include "support/AudioFixtures.h"
#include "support/WaitUntil.h"
#include "text/HumanUnits.h"
#include "ui/FileFactsReader.h"
#include "ui/FileListModel.h"
#include "ui/FileListView.h"
#include "ui/pages/TabPage.h"
#include "ui/WindowFixture.h"

#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

QString lineOf(const QString &path)
{
    return fileFactWords::line(path, FileFacts::read(path, std::nullopt));
}

class FileFactsTest : public ::testing::Test, public WindowFixture {
protected:
    FileFactsTest()
    {
        controller.selectTab(u"encode"_s);
        window.resize(1200, 700);
        show();
    }
    QString factsOf(int row) const
    {
        return list->model()->index(row, 0).data(FileListModel::FactsRole).toString();
    }
    bool waitForFacts() const
    {
        return waitUntil([this] { return list->facts().isComplete(); });
    }
    /// The pixels of a row behind its name that are not like the first of them.
    int paintedBehindName(int row) const
    {
        const QRect cell = list->visualRect(list->model()->index(row, 0));
        const int begin = cell.right() + 1;
        const QImage image = list->viewport()
                                 ->grab(QRect(begin, cell.top(), list->viewport()->width() - begin, cell.height()))
                                 .toImage();
        int painted = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                painted += image.pixel(x, y) != image.pixel(0, 0) ? 1 : 0;
        }
        return painted;
    }

    TabPage *page = window.page(u"encode"_s);
    FileListView *list = page->fileList();
};

} // namespace

TEST(FileFacts, ALineSaysWhatIsKnown)
{
    const TestFolder folder;
    const QString flac = writeFlac(folder.path(u"a.flac"_s), {.rate = 96000, .bits = 24, .frames = 96000 * 3});
    EXPECT_EQ(lineOf(flac),
              u"FLAC · 24/96 · 2 ch · 0:03 · "_s + sizeText(QFileInfo(flac).size()));
    EXPECT_EQ(lineOf(writeWav(folder.path(u"b.wav"_s), {.channels = 1, .frames = 44100 * 75})),
              u"WAV · 16/44.1 · 1 ch · 1:15 · 6.6 MB"_s);
    const QString lossy = lineOf(writeByFfmpeg(folder.path(u"c.mp3"_s), {.seconds = 2.0}));
    EXPECT_TRUE(lossy.startsWith(u"MP3 · 44.1 kHz · 2 ch · 0:02 · "_s)) << qPrintable(lossy);
    EXPECT_EQ(lineOf(folder.write(u"list.md5"_s, "x")), u"MD5 · 1 byte"_s);
    EXPECT_EQ(lineOf(folder.write(u"torn.flac"_s, "fLaC")), u"FLAC · 4 bytes"_s);
    EXPECT_EQ(lineOf(folder.write(u"README"_s, "four")), u"4 bytes"_s);
    EXPECT_EQ(lineOf(folder.path(u"gone.wav"_s)), u"no longer there"_s);
}

TEST(FileFacts, TimesAreThoseOfAClock)
{
    EXPECT_EQ(fileFactWords::clock(0.0), u"0:00"_s);
    EXPECT_EQ(fileFactWords::clock(59.6), u"1:00"_s);
    EXPECT_EQ(fileFactWords::clock(252.0), u"4:12"_s);
    EXPECT_EQ(fileFactWords::clock(3599.4), u"59:59"_s);
    EXPECT_EQ(fileFactWords::clock(3852.0), u"1:04:12"_s);
}

TEST(FileFacts, TheHeaderOfTheVerySameFileIsNotReadAgain)
{
    const TestFolder folder;
    const QString path = folder.write(u"a.wav"_s, "no sound");
    FileFacts known = FileFacts::read(path, std::nullopt);
    ASSERT_FALSE(known.sound);
    known.sound = SoundLength{.declaredFrames = 48000, .heldFrames = {}, .sampleRateHz = 48000};
    EXPECT_EQ(FileFacts::read(path, known).seconds(), 1.0);
    folder.write(u"a.wav"_s, "no sound either");
    EXPECT_FALSE(FileFacts::read(path, known).sound);
}

TEST_F(FileFactsTest, ARowShowsThemBehindTheName)
{
    encodeTab.addMatchedFiles({writeWav(folder.path(u"1.wav"_s), {.frames = 44100}), folder.path(u"2.wav"_s)});
    ASSERT_TRUE(waitForFacts());
    EXPECT_EQ(factsOf(0), u"WAV · 16/44.1 · 2 ch · 0:01 · 176 kB"_s);
    EXPECT_EQ(factsOf(1), u"no longer there"_s);
    EXPECT_TRUE(list->model()->index(1, 0).data(Qt::ForegroundRole).isValid()) << "grey";
    EXPECT_FALSE(list->model()->index(0, 0).data(Qt::ForegroundRole).isValid());
    EXPECT_TRUE(list->model()->index(0, 0).data(Qt::AccessibleDescriptionRole).toString().endsWith(factsOf(0)));
    EXPECT_GT(paintedBehindName(0), 100);
    // A narrow list shows the names.
    EXPECT_EQ(list->model()->index(0, 0).data().toString(), u"1.wav"_s);
}

TEST_F(FileFactsTest, FilesOfOneNameAreToldApartByTheirFolders)
{
    const QString first = folder.write(u"disc1/t.wav"_s, "x");
    const QString second = folder.write(u"disc2/t.wav"_s, "xx");
    encodeTab.addMatchedFiles({first, second, folder.write(u"disc2/u.wav"_s, "x")});
    ASSERT_TRUE(waitForFacts());
    EXPECT_EQ(factsOf(0), u"disc1 · WAV · 1 byte"_s);
    EXPECT_EQ(factsOf(1), u"disc2 · WAV · 2 bytes"_s);
    EXPECT_EQ(factsOf(2), u"WAV · 1 byte"_s);
    encodeTab.deleteSelectedRows({0});
    EXPECT_EQ(factsOf(0), u"WAV · 2 bytes"_s);
}

TEST_F(FileFactsTest, TheSumOfAllStandsBelow)
{
    auto *const sum = page->findChild<QLabel *>(u"fileSum"_s);
    EXPECT_FALSE(sum->isVisible());
    encodeTab.addMatchedFiles({writeWav(folder.path(u"1.wav"_s), {.frames = 44100 * 40}),
                               writeWav(folder.path(u"2.wav"_s), {.frames = 44100 * 50})});
    ASSERT_TRUE(waitForFacts());
    EXPECT_TRUE(sum->isVisible());
    EXPECT_EQ(sum->text(), u"· 2 min · 16 MB"_s);
    encodeTab.deleteSelectedRows({1});
    EXPECT_EQ(sum->text(), u"· 40 s · 7.1 MB"_s);
    encodeTab.clearFiles();
    EXPECT_FALSE(sum->isVisible());
    encodeTab.undoRemoval();
    ASSERT_TRUE(waitForFacts());
    EXPECT_EQ(sum->text(), u"· 40 s · 7.1 MB"_s);
}

TEST_F(FileFactsTest, WhatHasGoneMeanwhileIsSeenWhenTheWindowIsUsedAgain)
{
    const QString path = folder.write(u"1.wav"_s, "x");
    encodeTab.addMatchedFiles({path});
    ASSERT_TRUE(waitForFacts());
    EXPECT_EQ(factsOf(0), u"WAV · 1 byte"_s);
    ASSERT_TRUE(QFile::remove(path));
    list->facts().refresh();
    ASSERT_TRUE(waitUntil([this] { return factsOf(0) == u"no longer there"; }));
    EXPECT_EQ(list->facts().totalBytes(), 0);
}

TEST_F(FileFactsTest, APageThatNobodySeesReadsNothing)
{
    controller.selectTab(u"decode"_s);
    FileListView *const other = window.page(u"lossy"_s)->fileList();
    lossyTab.addMatchedFiles({folder.write(u"1.wav"_s, "x")});
    handleWaitingEvents();
    EXPECT_EQ(other->facts().facts(folder.path(u"1.wav"_s)), nullptr);
    controller.selectTab(u"lossy"_s);
    ASSERT_TRUE(waitUntil([other] { return other->facts().isComplete(); }));
    EXPECT_EQ(other->facts().totalBytes(), 1);
}

TEST_F(FileFactsTest, ThousandsAreReadWhileOthersComeAndGo)
{
    QStringList paths;
    for (int number = 0; number < 3000; ++number)
        paths.append(folder.path(u"%1.wav"_s.arg(number)));
    for (int begin = 0; begin < 3000; begin += 500)
        encodeTab.addMatchedFiles(paths.sliced(begin, 500));
    encodeTab.deleteSelectedRows({0, 1, 2});
    encodeTab.undoRemoval();
    ASSERT_TRUE(waitForFacts());
    EXPECT_EQ(factsOf(2999), u"no longer there"_s);
    encodeTab.addMatchedFiles({folder.write(u"last.wav"_s, "x")});
    ASSERT_TRUE(waitForFacts());
    EXPECT_EQ(list->facts().totalBytes(), 1);
}

} // namespace nurv::test

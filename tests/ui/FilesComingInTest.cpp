// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/FileArrivals.h"
#include "support/AudioFixtures.h"
#include "support/FileLooks.h"
#include "support/WaitUntil.h"
#include "ui/FileListView.h"
#include "ui/GivenFiles.h"
#include "ui/pages/TabPage.h"
#include "ui/RunningInstance.h"
#include "ui/WindowFixture.h"

#include <QFile>
#include <QSignalSpy>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;
using ::testing::UnorderedElementsAre;

namespace nurv::test {

namespace {

QStringList urisOf(const QStringList &paths)
{
    QStringList uris;
    for (const QString &path : paths)
        uris.append(uriOfArgument(QFile::encodeName(path)));
    return uris;
}

class FilesComingIn : public ::testing::Test, public WindowFixture {
protected:
    FilesComingIn()
    {
        controller.selectTab(u"encode"_s);
        encodeTab.setRefusalMessageDelay(0);
        wav = folder.write(u"a.wav"_s, "x");
        inFolder = folder.write(u"album/b.wav"_s, "x");
        lossless = writeByFfmpeg(folder.path(u"album/c.m4a"_s), {.seconds = 0.1}, {u"-c:a"_s, u"alac"_s});
        note = folder.write(u"album/note.txt"_s, "x");
        given = {wav, folder.path(u"album"_s)};
    }

    /// `comeIn` brings in the given files; `isTold`: that the note is not taken. The window does not show: a list in sight
    /// looks at its files again, for what it says of them.
    void expectOneLookAtEach(const std::function<void()> &comeIn, bool isTold)
    {
        QSignalSpy searches(&controller.arrivals(), &FileArrivals::searchBegan);
        const FileLooks looks;
        comeIn();
        // Told when they are on the list, at a later turn of the event loop.
        if (isTold)
            prompts.expectAsk(u"Some files types were not recognized by this tab and were skipped"_s, {u"OK"_s}, u"OK"_s);
        ASSERT_TRUE(waitUntil([this] { return encodeTab.fileNames().size() == 3; }));
        EXPECT_THAT(encodeTab.fileNames(), UnorderedElementsAre(wav, inFolder, lossless));
        EXPECT_EQ(searches.size(), 1) << "by another way";
        for (const QString &path : {wav, inFolder, lossless, note})
            EXPECT_EQ(looks.stats(path), 1) << qPrintable(path);
        // Only what the name does not decide is opened. A text may hold sound for a list, not for the application.
        EXPECT_EQ(looks.opens(wav), 0);
        EXPECT_EQ(looks.opens(inFolder), 0);
        EXPECT_EQ(looks.opens(lossless), 1);
        EXPECT_EQ(looks.opens(note), isTold ? 1 : 0);
        EXPECT_EQ(prompts.unaskedCount(), 0);
    }

    QString wav;
    QString inFolder;
    QString lossless;
    QString note;
    QStringList given;
};

} // namespace

TEST_F(FilesComingIn, AreLookedAtOnceWhenTheyAreArgumentsOfTheStart)
{
    expectOneLookAtEach([this] { window.openFiles(filesOfUris(urisOf(given))); }, false);
}

TEST_F(FilesComingIn, AreLookedAtOnceWhenASecondInstanceHandsThemOver)
{
    RunningInstance instance;
    QObject::connect(&instance, &RunningInstance::openRequested, &window, &MainWindow::openFiles);
    expectOneLookAtEach([&] { instance.Open(urisOf(given), {}); }, false);
}

TEST_F(FilesComingIn, AreLookedAtOnceWhenTheyAreDroppedOnTheWindow)
{
    expectOneLookAtEach([this] { EXPECT_TRUE(dropOn(&window, given)); }, false);
}

TEST_F(FilesComingIn, AreLookedAtOnceWhenTheyAreDroppedOnTheList)
{
    expectOneLookAtEach([this] { EXPECT_TRUE(dropOn(window.page(u"encode"_s)->fileList()->viewport(), given)); }, true);
}

TEST_F(FilesComingIn, AreLookedAtOnceWhenTheyAreChosen)
{
    expectOneLookAtEach(
        [this] {
            prompts.expectFilesToAdd(controller, u"encode"_s, given);
            window.page(u"encode"_s)->chooseFiles();
        },
        true);
}

} // namespace nurv::test

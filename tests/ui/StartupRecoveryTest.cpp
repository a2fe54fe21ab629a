// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/StartupRecovery.h"

#include "journal/KilledProcess.h"
#include "support/AudioFixtures.h"
#include "support/WaitUntil.h"
#include "ui/WindowFixture.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace nurv::test {

namespace {

const QStringList kButtons{u"Keep"_s, u"Remove"_s};

class StartupRecoveryTest : public ::testing::Test {
protected:
    StartupRecoveryTest()
    {
        writeWav(application.folder.path(u"a.wav"_s), {.seconds = 0.1});
        writeWav(application.folder.path(u"b.wav"_s), {.seconds = 0.1});
        writeFlac(application.folder.path(u"c.flac"_s), {.seconds = 0.1});
    }
    [[nodiscard]] QString path(const QString &name) const { return application.folder.path(name); }
    /// Kills an encoding of a.wav and b.wav, and the decoding of c.flac in the same run,
    /// when a.flac and c.wav are half made.
    void killInTheMiddle() const
    {
        runAndKill({u"plan=%1|%2"_s.arg(path(u"a.flac"_s), path(u"a.wav"_s)),
                    u"plan=%1|%2"_s.arg(path(u"b.flac"_s), path(u"b.wav"_s)),
                    u"plan=%1|%2"_s.arg(path(u"c.wav"_s), path(u"c.flac"_s)), u"begin"_s,
                    u"begun="_s + path(u"a.flac"_s), u"write=%1|half"_s.arg(path(u"a.flac"_s)),
                    u"begun="_s + path(u"c.wav"_s), u"write=%1|half"_s.arg(path(u"c.wav"_s))});
    }
    void run()
    {
        StartupRecovery recovery(application.controller);
        QSignalSpy finished(&recovery, &StartupRecovery::finished);
        recovery.start();
        EXPECT_EQ(finished.size(), 0) << "it returns at once";
        EXPECT_TRUE(waitUntil([&finished] { return !finished.isEmpty(); }));
        application.prompts.verify();
    }
    void expectQuestion(const QString &answer)
    {
        application.prompts.expectAsk(
            {.title = u"An earlier run was interrupted"_s,
             .message =
                 u"It left behind:\n%1\n%2\n\n\"Remove\" removes 2 files (8 bytes) and adds 3 files that were "
                 "not finished to the list again. \"Keep\" changes nothing, and the next start asks again."_s.arg(
                     path(u"a.flac"_s), path(u"c.wav"_s)),
             .buttons = kButtons},
            answer);
    }

    JournalShelf shelf;
    WindowFixture application;
};

} // namespace

TEST_F(StartupRecoveryTest, AsksNothingWhenNothingWasLeft)
{
    run();
    EXPECT_THAT(application.prompts.shownAlerts(), IsEmpty());
}

TEST_F(StartupRecoveryTest, RemovesWhatIsHalfMadeAndOffersTheSourcesAgain)
{
    killInTheMiddle();
    expectQuestion(u"Remove"_s);
    run();
    EXPECT_EQ(application.folder.list(), (QStringList{u"a.wav"_s, u"b.wav"_s, u"c.flac"_s}));
    EXPECT_THAT(application.encodeTab.fileNames(), ElementsAre(path(u"a.wav"_s), path(u"b.wav"_s)));
    EXPECT_THAT(application.decodeTab.fileNames(), ElementsAre(path(u"c.flac"_s)));
    EXPECT_THAT(shelf.journals(), IsEmpty());
    run();
}

TEST_F(StartupRecoveryTest, KeepsEverythingAndAsksAgainAtTheNextStart)
{
    killInTheMiddle();
    for (int start = 0; start < 2; ++start) {
        expectQuestion(u"Keep"_s);
        run();
        EXPECT_EQ(application.folder.read(u"a.flac"_s), "half");
        EXPECT_THAT(application.encodeTab.fileNames(), IsEmpty());
    }
    EXPECT_EQ(dismissingButton({.title = {}, .message = {}, .buttons = kButtons}), kButtons.first());
}

TEST_F(StartupRecoveryTest, OffersSourcesAlsoWhenNothingElseWasLeft)
{
    runAndKill({u"plan=%1|%2"_s.arg(path(u"a.flac"_s), path(u"a.wav"_s)), u"begin"_s});
    application.prompts.expectAsk({.title = u"An earlier run was interrupted"_s,
                                   .message = u"Not finished:\n%1\n\n\"Add Again\" adds 1 file that was not finished "
                                              "to the list again."_s.arg(path(u"a.wav"_s)),
                                   .buttons = {u"Not Now"_s, u"Add Again"_s}},
                                  u"Add Again"_s);
    run();
    EXPECT_THAT(application.encodeTab.fileNames(), ElementsAre(path(u"a.wav"_s)));
    EXPECT_EQ(application.controller.selectedTabViewItem(), u"encode"_s);
}

TEST_F(StartupRecoveryTest, NamesTenOfManyFiles)
{
    QStringList steps;
    for (int number = 10; number < 35; ++number)
        steps.append(u"plan=%1|%2"_s.arg(path(u"%1.flac"_s.arg(number)), path(u"a.wav"_s)));
    steps.append(u"begin"_s);
    for (int number = 10; number < 35; ++number) {
        steps.append(u"begun="_s + path(u"%1.flac"_s.arg(number)));
        steps.append(u"write=%1|half"_s.arg(path(u"%1.flac"_s.arg(number))));
    }
    runAndKill(steps);
    QStringList names;
    for (int number = 10; number < 20; ++number)
        names.append(path(u"%1.flac"_s.arg(number)));
    application.prompts.expectAsk(
        {.title = u"An earlier run was interrupted"_s,
         .message =
             u"It left behind:\n%1\nand 15 more\n\n\"Remove\" removes 25 files (100 bytes) and adds 1 file that "
             "was not finished to the list again. \"Keep\" changes nothing, and the next start asks again."_s.arg(
                 names.join(u'\n')),
         .buttons = kButtons},
        u"Keep"_s);
    run();
}

} // namespace nurv::test

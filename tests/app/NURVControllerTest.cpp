// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/NURVController.h"

#include "app/FileArrivals.h"
#include "app/TestApplication.h"
#include "base/NurvFailure.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskQueue.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>
#include <QFile>

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <new>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

namespace nurv {

namespace {

// Never starts anything, and ends when it is cancelled.
class WaitingTask final : public NURVTask {
public:
    using NURVTask::NURVTask;

    void startTask() override {}
    void cancelTask() override
    {
        NURVTask::cancelTask();
        reportCompletion();
    }
};

void addTasks(NURVController &controller, int count)
{
    for (int number = 0; number < count; ++number)
        controller.taskQueue().addTask(std::make_shared<WaitingTask>(&controller.taskQueue()));
}

class NURVControllerTest : public ::testing::Test {
protected:
    test::TestApplication application;
    NURVController &controller = application.controller;
    test::TestFolder folder;
};

Alert quitQuestion(const QString &text)
{
    return {.title = u"Tasks in Progress"_s, .message = text, .buttons = {u"No"_s, u"Yes"_s}};
}

} // namespace

TEST_F(NURVControllerTest, HasItsPagesInTheirOrder)
{
    EXPECT_THAT(controller.pageLabels(),
                ElementsAre(u"decode"_s, u"encode"_s, u"checksum"_s, u"shntool"_s, u"fix SBE"_s, u"util"_s, u"Tags"_s,
                            u"lossy"_s, u"about"_s));
}

TEST_F(NURVControllerTest, KnowsTheExtensionsOfEveryPage)
{
    const std::map<QString, QString> expected{
        {u"decode"_s, u"FLAC, SHN, WV, M4A, TTA, APE"_s},
        {u"encode"_s, u"WAV, AIF, AIFF, FLAC, SHN, WV, TTA, APE"_s},
        {u"checksum"_s, u"WAV, AIFF, AIF, FLAC, SHN, MD5, FFP, TXT, APE, WV, TTA, ST5"_s},
        {u"shntool"_s, u"FLAC, SHN, WAV, AIF, AIFF, TTA, WV, APE"_s},
        {u"fix SBE"_s, u"FLAC, SHN, WAV, AIF, AIFF, WV, TTA"_s},
        {u"lossy"_s, u"FLAC, SHN, WAV, AIFF, AIF, WV, TTA"_s},
        {u"Tags"_s, u"FLAC, M4A, MP3, WV, APE"_s},
        {u"util"_s, QString()},
        {u"about"_s, QString()},
    };
    for (const auto &[label, extensions] : expected)
        EXPECT_EQ(controller.extensions(label).join(u", "_s), extensions) << qPrintable(label);
}

// The files hold no audio, so nothing but the names can make them valid.
TEST_F(NURVControllerTest, JudgesEveryExtensionOnEveryPage)
{
    const QStringList extensions{u"FLAC"_s, u"SHN"_s, u"WV"_s,  u"M4A"_s, u"TTA"_s, u"APE"_s, u"WAV"_s, u"AIF"_s,
                                 u"AIFF"_s, u"MD5"_s, u"FFP"_s, u"TXT"_s, u"ST5"_s, u"MP3"_s, u"JPG"_s};
    const std::map<QString, QString> valid{
        {u"decode"_s, u"FLAC SHN WV M4A TTA APE"_s},
        {u"encode"_s, u"FLAC SHN WV TTA APE WAV AIF AIFF"_s},
        {u"checksum"_s, extensions.join(u' ')},
        {u"shntool"_s, u"FLAC SHN WV TTA APE WAV AIF AIFF"_s},
        {u"fix SBE"_s, u"FLAC SHN WV TTA WAV AIF AIFF"_s},
        {u"util"_s, extensions.join(u' ')},
        {u"Tags"_s, u"FLAC WV M4A APE MP3"_s},
        {u"lossy"_s, u"FLAC SHN WV TTA WAV AIF AIFF"_s},
    };
    for (const auto &[label, expected] : valid) {
        for (const bool isLower : {false, true}) {
            QStringList found;
            for (const QString &extension : extensions) {
                const QString path = folder.write(u"file."_s + (isLower ? extension.toLower() : extension), "no audio");
                if (controller.isValidFile(label, path))
                    found.append(extension);
            }
            EXPECT_EQ(found.join(u' '), expected) << qPrintable(label);
        }
    }
}

TEST_F(NURVControllerTest, TakesAFileWithoutExtensionEverywhereButOnTheTagsPage)
{
    const QString path = folder.write(u"bonus"_s, "x");
    for (const QString &label : controller.pageLabels())
        EXPECT_EQ(controller.isValidFile(label, path), label != u"Tags") << qPrintable(label);
}

TEST_F(NURVControllerTest, FindsPlainAudioBehindAnyNameWhereThePageTakesIt)
{
    const QString wav = folder.write(u"x.dat"_s, test::wavBytes({.seconds = 0.1}));
    const QString aiff = folder.write(u"y.dat"_s, test::aiffBytes({.seconds = 0.1}));
    const QString text = folder.write(u"z.dat"_s, "no audio");
    for (const QString &label : {u"encode"_s, u"shntool"_s, u"fix SBE"_s, u"lossy"_s}) {
        EXPECT_TRUE(controller.isValidFile(label, wav)) << qPrintable(label);
        EXPECT_TRUE(controller.isValidFile(label, aiff)) << qPrintable(label);
        EXPECT_FALSE(controller.isValidFile(label, text)) << qPrintable(label);
    }
    for (const QString &label : {u"decode"_s, u"Tags"_s})
        EXPECT_FALSE(controller.isValidFile(label, wav)) << qPrintable(label);
}

TEST_F(NURVControllerTest, TakesAnM4aFileForEncodingOnlyWhenItHoldsAppleLossless)
{
    const QString lossless =
        test::writeByFfmpeg(folder.path(u"lossless.m4a"_s), {.seconds = 0.2}, {u"-c:a"_s, u"alac"_s});
    const QString lossy = test::writeByFfmpeg(folder.path(u"lossy.M4A"_s), {.seconds = 0.2}, {u"-c:a"_s, u"aac"_s});
    for (const QString &label : {u"encode"_s, u"lossy"_s}) {
        EXPECT_TRUE(controller.isValidFile(label, lossless)) << qPrintable(label);
        EXPECT_FALSE(controller.isValidFile(label, lossy)) << qPrintable(label);
    }
    for (const QString &label : {u"decode"_s, u"Tags"_s}) {
        EXPECT_TRUE(controller.isValidFile(label, lossless)) << qPrintable(label);
        EXPECT_TRUE(controller.isValidFile(label, lossy)) << qPrintable(label);
    }
    EXPECT_FALSE(controller.isValidFile(u"shntool"_s, lossless));
}

TEST_F(NURVControllerTest, JudgesFilesOnOtherThreadsToo)
{
    const QString path = folder.write(u"x.dat"_s, test::wavBytes({.seconds = 0.1}));
    std::vector<std::thread> threads;
    std::atomic<int> valid = 0;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round)
                valid += controller.isValidFile(u"encode"_s, path) ? 1 : 0;
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(valid, 80);
}

TEST_F(NURVControllerTest, SelectsPagesAndShowsTheirOptions)
{
    QStringList selected;
    QObject::connect(&controller, &NURVController::pageSelected, &controller,
                     [&](const QString &label) { selected.append(label); });
    EXPECT_EQ(controller.selectedTabViewItem(), u"decode"_s);
    controller.applicationDidFinishLaunching();
    EXPECT_EQ(application.tab(u"decode"_s).displayRequests, 1);

    controller.selectTab(u"lossy"_s);
    controller.selectTab(2);
    controller.selectTab(8);
    EXPECT_THAT(selected, ElementsAre(u"lossy"_s, u"checksum"_s, u"about"_s));
    EXPECT_EQ(application.tab(u"lossy"_s).displayRequests, 1);
    EXPECT_EQ(application.tab(u"checksum"_s).displayRequests, 1);
    EXPECT_EQ(controller.selectedTabViewItem(), u"about"_s);

    for (const int index : {-1, 9})
        controller.selectTab(index);
    controller.selectTab(u"nothing"_s);
    EXPECT_EQ(controller.selectedTabViewItem(), u"about"_s);
}

TEST(NURVControllerPages, RefusesToSelectAPageWithoutATab)
{
    test::TestApplication application({u"encode"_s});
    application.controller.selectTab(u"encode"_s);
    application.controller.selectTab(u"Tags"_s);
    EXPECT_EQ(application.controller.selectedTabViewItem(), u"encode"_s);
    EXPECT_EQ(application.controller.tab(u"Tags"_s), nullptr);
}

TEST(NURVControllerPages, ForgetsATabThatIsGone)
{
    test::TestApplication application{QStringList()};
    {
        const test::CountingTab tab(application.controller, u"util"_s);
        EXPECT_EQ(application.controller.tab(u"util"_s), &tab);
    }
    EXPECT_EQ(application.controller.tab(u"util"_s), nullptr);
}

TEST_F(NURVControllerTest, QuitsAtOnceWithAnEmptyQueue)
{
    EXPECT_TRUE(controller.applicationShouldTerminate());
}

TEST_F(NURVControllerTest, AsksWithTheNumberOfJobsBeforeItQuits)
{
    addTasks(controller, 5);
    const Alert question =
        quitQuestion(u"There are 5 tasks in the queue.  Are you sure you want to quit?"_s);
    application.prompts.expectAsk(question, u"No"_s);
    EXPECT_FALSE(controller.applicationShouldTerminate());
    application.prompts.expectAsk(question, u"Yes"_s);
    EXPECT_TRUE(controller.applicationShouldTerminate());
}

TEST_F(NURVControllerTest, CountsASingleJobInTheSameWords)
{
    addTasks(controller, 1);
    application.prompts.expectAsk(
        quitQuestion(u"There are 1 tasks in the queue.  Are you sure you want to quit?"_s), u"No"_s);
    EXPECT_FALSE(controller.applicationShouldTerminate());
}

TEST_F(NURVControllerTest, AsksBeforeTheMainWindowCloses)
{
    const QStringList buttons{u"No"_s, u"Yes"_s};
    application.prompts.expectAsk(u"Are you sure you want to quit?"_s, buttons, u"No"_s);
    EXPECT_FALSE(controller.windowShouldClose());
    application.prompts.expectAsk(u"Are you sure you want to quit?"_s, buttons, u"Yes"_s);
    EXPECT_TRUE(controller.windowShouldClose());
}

TEST_F(NURVControllerTest, CancelsEveryJobWhenItTerminates)
{
    addTasks(controller, 4);
    controller.applicationWillTerminate();
    EXPECT_EQ(controller.taskQueue().taskCount(), 0);
    EXPECT_FALSE(controller.taskQueue().noSleep());
}

TEST_F(NURVControllerTest, TellsItsVersionAndBuild)
{
    // What is told of the newest release where programs are looked for.
    QFile metainfo(QStringLiteral(NURV_METAINFO));
    ASSERT_TRUE(metainfo.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(metainfo.readAll());
    const qsizetype start = text.indexOf(u"<release version=\""_s) + 18;
    const QString version = text.sliced(start, text.indexOf(u'"', start) - start);
    ASSERT_EQ(version.count(u'.'), 2) << qPrintable(version);
    EXPECT_EQ(NURVController::titleText(), u"Nurv Audio Workbench "_s + version);
    EXPECT_EQ(NURVController::buildText(), u"(Build "_s + version + u')');
}

TEST_F(NURVControllerTest, HoldsFilesThatArriveWhileATabExecutesUntilItHasReturned)
{
    test::CountingTab &decode = application.tab(u"decode"_s);
    decode.addMatchedFiles({u"/music/1.flac"_s});
    decode.whileExecuting = [&] {
        FileIntake found;
        found.accepted = {u"/music/2.flac"_s};
        decode.addCollected(found);
        controller.selectTab(NURVController::kAboutLabel);
        found.accepted = {u"/music/3.flac"_s};
        controller.arrivals().deliver(NURVController::kAboutLabel, found);
        EXPECT_EQ(decode.fileNames(), QStringList{u"/music/1.flac"_s});
        // What a tab does when its jobs are queued.
        decode.clearFiles();
    };
    EXPECT_TRUE(controller.execute(decode));
    EXPECT_EQ(decode.fileNames(), (QStringList{u"/music/2.flac"_s, u"/music/3.flac"_s}));
}

TEST_F(NURVControllerTest, ShowsWhyATabThrewAndLeavesItsListUsable)
{
    test::CountingTab &decode = application.tab(u"decode"_s);
    for (const bool isOurs : {true, false}) {
        decode.clearFiles();
        decode.addMatchedFiles({u"/music/1.flac"_s});
        decode.whileExecuting = [&] {
            FileIntake found;
            found.accepted = {u"/music/2.flac"_s};
            decode.addCollected(found);
            if (isOurs)
                throw NurvFailure(u"the disk is gone\n"_s);
            throw std::bad_alloc();
        };
        application.prompts.expectAsk({.title = u"The command could not be carried out."_s,
                                       .message = isOurs ? u"the disk is gone"_s : u"std::bad_alloc"_s,
                                       .buttons = {u"OK"_s}},
                                      u"OK"_s);
        EXPECT_FALSE(controller.execute(decode));
        EXPECT_EQ(decode.fileNames(), (QStringList{u"/music/1.flac"_s, u"/music/2.flac"_s}));
        decode.addMatchedFiles({u"/music/3.flac"_s});
        EXPECT_EQ(decode.fileNames().size(), 3) << "files that arrive join the list at once";
    }
}

TEST_F(NURVControllerTest, EndsTheSearchesOfFoldersWhenItTerminates)
{
    folder.write(u"a.flac"_s, "x");
    const Arrival onWindow{.label = u"decode"_s, .door = Door::Application, .paths = {folder.path()}};
    const Arrival onList{.label = u"decode"_s, .door = Door::List, .paths = {folder.path(u"a.flac"_s)}};
    EXPECT_EQ(controller.arrivals().search(onWindow).accepted.size(), 1);
    controller.applicationWillTerminate();
    EXPECT_TRUE(controller.arrivals().search(onWindow).accepted.isEmpty());
    EXPECT_TRUE(controller.arrivals().search(onList).accepted.isEmpty());
}

} // namespace nurv

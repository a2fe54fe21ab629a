// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ProgressStrip.h"

#include "app/BatchWatch.h"
#include "support/WaitUntil.h"
#include "ui/BatchWords.h"
#include "ui/Contrast.h"
#include "ui/JobInState.h"
#include "ui/OutputWindow.h"
#include "ui/ProgressLine.h"
#include "ui/StatusWindow.h"
#include "ui/WindowDesktopServices.h"
#include "ui/WindowFixture.h"

#include <QDesktopServices>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nurv::test {

namespace {

class ProgressStripTest : public ::testing::Test, public WindowFixture {
protected:
    NURVTaskQueue &queue = controller.taskQueue();
    BatchWatch &batch = window.batch();
    ProgressStrip *strip = window.progressStrip();
    ProgressLine *line = strip->line();

    std::shared_ptr<JobInState> add(const QString &title)
    {
        auto job = std::make_shared<JobInState>(queue, title);
        queue.addTask(job);
        return job;
    }
    void end(const std::shared_ptr<JobInState> &job, const QString &output = {}, bool failed = false)
    {
        job->ownOutcome().output = output;
        job->finish(failed);
        Q_EMIT queue.taskSettled(job);
    }
    QString said()
    {
        batch.flush();
        return line->line();
    }
    /// Ends a batch of one file made in the folder of the test.
    void makeFile(const QString &name = u"1.flac"_s) { end(add(u"1.wav"_s), folder.path(name)); }
};

/// What a desktop opens folders with.
class FileManager final : public QObject {
    Q_OBJECT

public:
    QList<QUrl> urls;

public Q_SLOTS:
    void open(const QUrl &url) { urls.append(url); }
};

} // namespace

TEST(BatchWords, TellTheTimeLeftAsCoarselyAsItIsKnown)
{
    using batchWords::timeLeft;
    EXPECT_EQ(timeLeft(0s), u"a few seconds left"_s);
    EXPECT_EQ(timeLeft(9s), u"a few seconds left"_s);
    EXPECT_EQ(timeLeft(12s), u"about 10 s left"_s);
    EXPECT_EQ(timeLeft(54s), u"about 50 s left"_s);
    EXPECT_EQ(timeLeft(55s), u"about 1 min left"_s);
    EXPECT_EQ(timeLeft(170s), u"about 3 min left"_s);
    EXPECT_EQ(timeLeft(59min + 29s), u"about 59 min left"_s);
    EXPECT_EQ(timeLeft(59min + 31s), u"about 1 h left"_s);
    EXPECT_EQ(timeLeft(129min), u"about 2 h 10 min left"_s);
    EXPECT_EQ(timeLeft(178min), u"about 3 h left"_s);
}

TEST(BatchWords, CountWhatHasEndedAndTellTheTimeLeft)
{
    std::chrono::microseconds now{0};
    BatchProgress progress([&] { return now; });
    for (int i = 0; i < 12; ++i)
        progress.learnSize(progress.add("encode"), 1'000'000);
    EXPECT_EQ(batchWords::progress(progress), u"0 of 12"_s);
    for (std::size_t job = 0; job < 7; ++job) {
        progress.begin(job);
        now += 36s;
        progress.end(job, job < 2 ? BatchProgress::Ending::Failed : BatchProgress::Ending::Done);
    }
    EXPECT_EQ(batchWords::progress(progress), u"7 of 12 · 2 failed · about 3 min left"_s);
    progress.end(11, BatchProgress::Ending::Canceled);
    EXPECT_EQ(batchWords::progress(progress), u"8 of 12 · 2 failed · 1 canceled · about 2 min left"_s);
}

TEST(BatchWords, TellFirstWhatFailed)
{
    BatchSummary summary;
    summary.done = 12;
    summary.files = 12;
    summary.folders = {u"/home/anna/Music"_s};
    summary.sourceBytes = 1000;
    summary.outputBytes = 620;
    summary.duration = 134s;
    EXPECT_EQ(batchWords::summary(summary), u"12 files made in Music · 38 % smaller · 2 min 14 s"_s);
    summary.failed = 1;
    summary.originalsKept = 1;
    EXPECT_EQ(batchWords::summary(summary),
              u"1 failed · 1 original kept · 12 files made in Music · 38 % smaller · 2 min 14 s"_s);
    summary.outputBytes = 1680;
    summary.folders.insert(u"/home/anna/Music/disc 2"_s);
    summary.originalsKept = 0;
    EXPECT_EQ(batchWords::summary(summary), u"1 failed · 12 files made in 2 folders · 68 % larger · 2 min 14 s"_s);
}

TEST(BatchWords, TellOfJobsThatMakeNoFiles)
{
    BatchSummary summary;
    summary.done = 4;
    summary.failed = 2;
    summary.canceled = 3;
    summary.notInFull = 1;
    summary.notProven = 1;
    summary.duration = 200ms;
    EXPECT_EQ(batchWords::summary(summary),
              u"2 failed · 3 canceled · 1 not in full · 1 not proven · 4 done · under 1 s"_s);
    summary = {};
    summary.done = 1;
    summary.files = 1;
    summary.folders = {u"/m/a\u202Eb"_s};
    EXPECT_EQ(batchWords::summary(summary), u"1 file made in a\\u{202E}b · under 1 s"_s);
}

TEST_F(ProgressStripTest, StandsBelowEveryPage)
{
    show();
    for (const QString &label : controller.pageLabels()) {
        controller.selectTab(label);
        handleWaitingEvents();
        ASSERT_TRUE(strip->isVisible()) << label.toStdString();
        const QRect place(strip->mapTo(&window, QPoint(0, 0)), strip->size());
        EXPECT_TRUE(window.rect().contains(place)) << label.toStdString();
        EXPECT_EQ(place.bottom(), window.rect().bottom());
    }
    EXPECT_EQ(line->line(), u"No jobs"_s);
    EXPECT_FALSE(line->share().has_value());
}

TEST_F(ProgressStripTest, FitsASmallWindow)
{
    show();
    window.resize(640, 480);
    for (const QString &label : controller.pageLabels()) {
        controller.selectTab(label);
        handleWaitingEvents();
        EXPECT_LE(window.width(), 640) << label.toStdString();
        EXPECT_LE(window.height(), 480) << label.toStdString();
    }
    makeFile();
    queue.showOutputWindow(u"report"_s, u"1.wav"_s);
    end(add(u"2.wav"_s), folder.path(QString(90, u'W') + u"/2.flac"_s));
    handleWaitingEvents();
    EXPECT_LE(window.width(), 640);
    for (const QWidget *const widget : std::initializer_list<QWidget *>{line, strip->folderButton()}) {
        EXPECT_TRUE(strip->rect().contains(widget->geometry()));
        EXPECT_GE(widget->width(), widget->minimumSizeHint().width());
    }
}

TEST_F(ProgressStripTest, KeepsItsHeightWhenItsButtonsComeAndGo)
{
    show();
    const int idle = strip->height();
    const auto job = add(u"1.wav"_s);
    batch.flush();
    handleWaitingEvents();
    EXPECT_EQ(strip->height(), idle);
    end(job, folder.path(u"1.flac"_s));
    handleWaitingEvents();
    EXPECT_TRUE(strip->folderButton()->isVisible());
    EXPECT_EQ(strip->height(), idle);
}

TEST_F(ProgressStripTest, TellsHowFarTheQueueIs)
{
    show();
    const auto first = add(u"1.wav"_s);
    const auto second = add(u"2.wav"_s);
    const auto third = add(u"3.wav"_s);
    EXPECT_EQ(said(), u"0 of 3"_s) << "nothing was measured yet";
    first->show(u"Encoding"_s, 60.0);
    batch.flush();
    EXPECT_NEAR(line->share().value_or(-1.0), 0.2, 1e-9);
    EXPECT_FALSE(strip->folderButton()->isVisible());
    end(second, {}, true);
    EXPECT_EQ(said().section(u" · about"_s, 0, 0), u"1 of 3 · 1 failed"_s);
    EXPECT_EQ(line->accessibleDescription(), line->line());
    end(first);
    end(third);
    EXPECT_TRUE(line->line().startsWith(u"1 failed · 2 done · "_s)) << line->line().toStdString();
}

TEST_F(ProgressStripTest, ChangesByItself)
{
    show();
    add(u"1.wav"_s);
    EXPECT_TRUE(waitUntil([this] { return line->line() == u"0 of 1"_s; }));
    queue.killAllTasks();
}

TEST_F(ProgressStripTest, AClickOrAKeyOpensTheStatusWindow)
{
    show();
    StatusWindow *const status = window.statusWindow();
    EXPECT_FALSE(status->isVisible());
    QTest::mouseClick(line, Qt::LeftButton);
    EXPECT_TRUE(status->isVisible());
    for (const int key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        status->close();
        window.activateWindow();
        line->setFocus();
        QTest::keyClick(line, static_cast<Qt::Key>(key));
        EXPECT_TRUE(status->isVisible()) << key;
    }
    status->close();
    window.activateWindow();
    line->clearFocus();
    const QImage before = line->grab().toImage();
    line->setFocus(Qt::TabFocusReason);
    EXPECT_NE(line->grab().toImage(), before) << "one sees where the keyboard is";
    EXPECT_FALSE(line->accessibleName().isEmpty());
    EXPECT_TRUE((line->focusPolicy() & Qt::TabFocus) != 0);
}

TEST_F(ProgressStripTest, TellsWhatWasMadeUntilTheNextBatch)
{
    show();
    const auto job = add(u"1.wav"_s);
    job->ownOutcome().sourceBytes = 1000;
    job->ownOutcome().outputBytes = 620;
    end(job, folder.path(u"Music/1.flac"_s));
    EXPECT_EQ(line->line(), u"1 file made in Music · 38 % smaller · under 1 s"_s);
    EXPECT_FALSE(line->share().has_value());
    EXPECT_TRUE(strip->folderButton()->isVisible());
    EXPECT_FALSE(strip->reportButton()->isVisible()) << "there was none";
    controller.selectTab(u"decode"_s);
    handleWaitingEvents();
    EXPECT_EQ(line->line(), u"1 file made in Music · 38 % smaller · under 1 s"_s);
    add(u"2.wav"_s);
    EXPECT_EQ(said(), u"0 of 1"_s);
    EXPECT_FALSE(strip->folderButton()->isVisible());
    queue.killAllTasks();
}

TEST_F(ProgressStripTest, TellsNothingOfTheLastBatchBesideTheRowsOfTheNext)
{
    show();
    makeFile();
    ASSERT_TRUE(line->line().startsWith(u"1 file made"_s));
    const auto job = add(u"2.wav"_s);
    handleWaitingEvents();
    EXPECT_EQ(line->line(), u"0 of 1"_s);
    end(job);
}

TEST_F(ProgressStripTest, OpensTheReportAgain)
{
    show();
    const auto job = add(u"1.wav"_s);
    job->dropResults();
    queue.showOutputWindow(u"what was wrong"_s, u"1.wav"_s);
    end(job, {}, true);
    ASSERT_EQ(window.outputWindows().size(), 1);
    window.outputWindows().first()->close();
    ASSERT_TRUE(waitUntil([this] { return window.outputWindows().isEmpty(); }));
    ASSERT_TRUE(strip->reportButton()->isVisible());
    QTest::mouseClick(strip->reportButton(), Qt::LeftButton);
    ASSERT_EQ(window.outputWindows().size(), 1);
    EXPECT_EQ(window.outputWindows().first()->text(), u"what was wrong"_s);
    EXPECT_EQ(window.outputWindows().first()->windowTitle(), u"1.wav"_s);
}

TEST_F(ProgressStripTest, AsksTheDesktopForTheFolderAndTellsWhenNobodyShowsIt)
{
    show();
    makeFile();
    QSignalSpy wanted(strip, &ProgressStrip::folderRequested);
    // The desktop of this test has no file manager.
    prompts.expectAsk({.title = u"No program shows the folder"_s, .message = folder.path(), .buttons = {u"OK"_s}},
                      u"OK"_s);
    QTest::mouseClick(strip->folderButton(), Qt::LeftButton);
    ASSERT_EQ(wanted.size(), 1);
    EXPECT_EQ(wanted.at(0).at(0).toString(), folder.path());
    makeFile(u"never made/1.flac"_s);
    prompts.expectAsk(
        {.title = u"The folder is not there"_s, .message = folder.path(u"never made"_s), .buttons = {u"OK"_s}},
        u"OK"_s);
    QTest::mouseClick(strip->folderButton(), Qt::LeftButton);
}

TEST_F(ProgressStripTest, AFolderIsNoMnemonicAndNoMarkup)
{
    show();
    makeFile(u"R&B <b>/1.flac"_s);
    EXPECT_EQ(line->line().section(u" · "_s, 0, 0), u"1 file made in R&B <b>"_s);
    EXPECT_TRUE(line->shortcut().isEmpty());
    EXPECT_FALSE(strip->folderButton()->toolTip().contains(u"<b>"_s));
}

TEST_F(ProgressStripTest, TheStatusWindowHasTheSameLine)
{
    show();
    StatusWindow *const status = window.statusWindow();
    auto *const label = status->findChild<QLabel *>(u"batchLine"_s);
    status->bringToFront();
    EXPECT_FALSE(label->isVisible()) << "there is nothing to say yet";
    const auto job = add(u"1.wav"_s);
    add(u"2.wav"_s);
    batch.flush();
    EXPECT_TRUE(label->isVisible());
    EXPECT_EQ(label->text(), u"0 of 2"_s);
    end(job, {}, true);
    batch.flush();
    EXPECT_EQ(label->text(), line->line());
    queue.killAllTasks();
}

TEST_F(ProgressStripTest, ItsTextEndsWithinItsRoom)
{
    show();
    makeFile(QString(200, u'W') + u"/1.flac"_s);
    handleWaitingEvents();
    const QImage image = line->grab().toImage();
    const QRect beside(image.width() - 5, 2, 3, image.height() - 4);
    for (int y = beside.top(); y <= beside.bottom(); ++y) {
        for (int x = beside.left(); x <= beside.right(); ++x)
            ASSERT_EQ(image.pixel(x, y), image.pixel(beside.left(), beside.top()));
    }
}

TEST(WindowDesktopServices, OpensAFolderAsTheDesktopDoes)
{
    FileManager handler;
    QDesktopServices::setUrlHandler(u"file"_s, &handler, "open");
    WindowDesktopServices services;
    EXPECT_TRUE(services.openFolder(u"/home/anna/50 % off #1"_s));
    QDesktopServices::unsetUrlHandler(u"file"_s);
    ASSERT_EQ(handler.urls.size(), 1);
    EXPECT_EQ(handler.urls.first().toLocalFile(), u"/home/anna/50 % off #1"_s);
}

} // namespace nurv::test

#include "ProgressStripTest.moc"

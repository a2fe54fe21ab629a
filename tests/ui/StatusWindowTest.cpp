// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/StatusWindow.h"

#include "engine/NURVTask.h"
#include "engine/NURVTaskQueue.h"
#include "support/WaitUntil.h"
#include "ui/Contrast.h"
#include "ui/JobInState.h"
#include "ui/StatusListModel.h"
#include "ui/StatusQueueCell.h"
#include "ui/WindowFixture.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

#include <set>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

class StatusWindowTest : public ::testing::Test, public WindowFixture {
protected:
    NURVTaskQueue &queue = controller.taskQueue();
    StatusWindow *status = window.statusWindow();
    QListView *list = status->list();

    std::shared_ptr<JobInState> add(const QString &title)
    {
        auto job = std::make_shared<JobInState>(queue, title);
        queue.addTask(job);
        return job;
    }
    void showRows()
    {
        ASSERT_TRUE(waitUntil([this] {
            return status->isVisible() && list->model()->rowCount() == static_cast<int>(queue.panelArray().size());
        }));
        ASSERT_TRUE(QTest::qWaitForWindowExposed(status));
        handleWaitingEvents();
    }
    StatusRowLayout partsOf(int row) const
    {
        const double scale = StatusQueueCell::pixelsPerPoint(list);
        return StatusQueueCell::layOut(StatusQueueCell::frameOf(list->visualRect(list->model()->index(row, 0)), scale),
                                       scale);
    }
    /// The distinct colours that the list shows within a part of a row.
    std::set<QRgb> colorsIn(const QRectF &part) const
    {
        const QImage image = list->viewport()->grab(part.toAlignedRect()).toImage();
        std::set<QRgb> colors;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                colors.insert(image.pixel(x, y) | 0xff000000);
        }
        return colors;
    }
    bool isBlank(const QRectF &part) const { return colorsIn(part).size() == 1; }
    void clickCancel(int row) const
    {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier,
                          partsOf(row).cancelButton.center().toPoint());
        handleWaitingEvents();
    }
};

} // namespace

TEST(StatusQueueCell, PlacesItsPartsAtTheirPrescribedPoints)
{
    const StatusRowLayout parts = StatusQueueCell::layOut(QRectF(7, 100, 300, 46), 1.0);
    EXPECT_EQ(parts.mainLine, QRectF(7, 104, 260, 18));
    EXPECT_EQ(parts.progressBar, QRectF(7, 121, 260, 15));
    EXPECT_EQ(parts.statusLine, QRectF(7, 136, 260, 10));
    EXPECT_EQ(parts.cancelButton, QRectF(282, 121, 15, 15));
}

TEST(StatusQueueCell, ScalesPointsToTheScreen)
{
    const StatusRowLayout parts = StatusQueueCell::layOut(QRectF(0, 0, 600, 92), 2.0);
    EXPECT_EQ(parts.mainLine, QRectF(0, 8, 520, 36));
    EXPECT_EQ(parts.cancelButton, QRectF(550, 42, 30, 30));
}

TEST_F(StatusWindowTest, ARowIsHighEnoughForItsParts)
{
    add(u"a.wav"_s);
    showRows();
    const double scale = StatusQueueCell::pixelsPerPoint(list);
    EXPECT_GE(list->visualRect(list->model()->index(0, 0)).height(), 46.0 * scale);
    QFont statusFont = QApplication::font();
    statusFont.setPointSize(9);
    EXPECT_GE(partsOf(0).statusLine.height() + 6.0 * scale, QFontMetricsF(statusFont).height());
}

TEST_F(StatusWindowTest, AWaitingRowShowsItsStatusLineOnly)
{
    add(u"1.wav"_s);
    add(u"2.wav"_s);
    add(u"3.wav"_s); // the limit is two
    showRows();
    EXPECT_TRUE(isBlank(partsOf(2).mainLine));
    EXPECT_TRUE(isBlank(partsOf(2).cancelButton));
    EXPECT_FALSE(isBlank(partsOf(2).statusLine));
    EXPECT_EQ(list->model()->index(2, 0).data(Qt::AccessibleTextRole).toString(), u"3.wav, Waiting..."_s);
}

TEST_F(StatusWindowTest, ARunningRowShowsNameBarAndCancelImage)
{
    const auto job = add(u"1.wav"_s);
    showRows();
    EXPECT_FALSE(isBlank(partsOf(0).mainLine));
    EXPECT_FALSE(isBlank(partsOf(0).cancelButton));
    const QImage before = list->viewport()->grab(partsOf(0).progressBar.toAlignedRect()).toImage();
    job->show(u"Encoding"_s, 60.0);
    ASSERT_TRUE(
        waitUntil([&] { return list->viewport()->grab(partsOf(0).progressBar.toAlignedRect()).toImage() != before; }));
    EXPECT_EQ(list->model()->index(0, 0).data(Qt::AccessibleTextRole).toString(), u"1.wav, Encoding, 60 percent"_s);
}

TEST_F(StatusWindowTest, ACompletedRowIsDarkGreenWithoutBarAndImage)
{
    const auto job = add(u"1.wav"_s);
    add(u"2.wav"_s);
    job->finish();
    showRows();
    EXPECT_TRUE(colorsIn(partsOf(0).mainLine).contains(qRgb(0, 128, 0)));
    EXPECT_TRUE(isBlank(partsOf(0).progressBar.adjusted(0, 2, 0, -4)));
    EXPECT_TRUE(isBlank(partsOf(0).cancelButton));
}

TEST_F(StatusWindowTest, AFailedRowIsRedKeepsItsBarAndTellsItsReport)
{
    const auto job = add(u"1.wav"_s);
    job->write(u"1.wav: ERROR, no fmt chunk\n"_s);
    job->finish(true);
    showRows();
    EXPECT_TRUE(colorsIn(partsOf(0).mainLine).contains(StatusQueueCell::systemRed(list->palette()).rgb()));
    EXPECT_FALSE(isBlank(partsOf(0).progressBar));
    EXPECT_TRUE(isBlank(partsOf(0).cancelButton));
    EXPECT_EQ(list->model()->index(0, 0).data(Qt::ToolTipRole).toString(), u"1.wav: ERROR, no fmt chunk"_s);
}

TEST_F(StatusWindowTest, ARowTellsNoReportThatIsStillWritten)
{
    const auto job = add(u"1.wav"_s);
    job->write(u"1.wav: ERROR, no fmt chunk\n"_s);
    job->setError(true);
    showRows();
    EXPECT_EQ(list->model()->index(0, 0).data(Qt::ToolTipRole).toString(), u"1.wav"_s);
    EXPECT_FALSE(StatusListModel::hasReport(*job));
    job->finish(true);
    EXPECT_TRUE(StatusListModel::hasReport(*job));
}

TEST_F(StatusWindowTest, ACancelledRowSaysSoInRed)
{
    const auto job = add(u"1.wav"_s);
    add(u"2.wav"_s);
    showRows();
    clickCancel(0);
    ASSERT_TRUE(job->cancelled());
    job->finish();
    ASSERT_TRUE(waitUntil(
        [&] { return colorsIn(partsOf(0).mainLine).contains(StatusQueueCell::systemRed(list->palette()).rgb()); }));
    EXPECT_EQ(list->model()->index(0, 0).data().toString(), u"Canceled"_s);
}

TEST_F(StatusWindowTest, ARowThatWasCancelledStillTellsWhichFileItIs)
{
    controller.taskQueue().hold();
    const auto job = add(u"a song.wav"_s);
    const auto untitled = add(QString());
    add(u"3.wav"_s);
    showRows();
    job->cancelTask();
    untitled->cancelTask();
    handleWaitingEvents();
    list->viewport()->repaint();
    const auto inkWidth = [this](int row) {
        const QImage image = list->viewport()->grab(partsOf(row).mainLine.toAlignedRect()).toImage();
        int last = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixel(x, y) != image.pixel(image.width() - 1, 0))
                    last = std::max(last, x);
            }
        }
        return last;
    };
    // The title stands behind the word.
    EXPECT_GT(inkWidth(0), inkWidth(1) + list->fontMetrics().horizontalAdvance(u"song"_s));
}

TEST_F(StatusWindowTest, AFailedRowSaysWhyOnceItIsSettled)
{
    const auto job = add(u"1.wav"_s);
    job->write(u"flac 1.4\nERROR: no fmt chunk\n"_s);
    const auto reason = [this] { return list->model()->index(0, 0).data(StatusListModel::ReasonRole).toString(); };
    add(u"2.wav"_s);
    showRows();
    job->finish(true);
    EXPECT_EQ(reason(), QString()) << "its outcome may still change";
    Q_EMIT queue.taskSettled(job);
    EXPECT_EQ(reason(), u"no fmt chunk"_s);
    EXPECT_TRUE(list->model()->index(0, 0).data(Qt::AccessibleTextRole).toString().endsWith(u"no fmt chunk"_s));
    queue.removeAllErrors();
    handleWaitingEvents();
    EXPECT_EQ(list->model()->index(0, 0).data().toString(), u"2.wav"_s);
    EXPECT_EQ(reason(), QString());
}

TEST_F(StatusWindowTest, TheCancelImageOfACancelledJobThatStillRunsIsDimmedAndDead)
{
    const auto job = add(u"1.wav"_s);
    showRows();
    const QRect image = partsOf(0).cancelButton.toAlignedRect();
    const QImage before = list->viewport()->grab(image).toImage();
    clickCancel(0);
    ASSERT_TRUE(waitUntil([&] { return list->viewport()->grab(image).toImage() != before; }));
    clickCancel(0);
    EXPECT_EQ(job->cancels, 1);
}

TEST_F(StatusWindowTest, AClickBesideTheImageCancelsNothing)
{
    const auto job = add(u"1.wav"_s);
    showRows();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, partsOf(0).progressBar.center().toPoint());
    QTest::mousePress(list->viewport(), Qt::LeftButton, Qt::NoModifier, partsOf(0).mainLine.center().toPoint());
    QTest::mouseRelease(list->viewport(), Qt::LeftButton, Qt::NoModifier, partsOf(0).cancelButton.center().toPoint());
    handleWaitingEvents();
    EXPECT_EQ(job->cancels, 0);
}

TEST_F(StatusWindowTest, TheKeyboardCancelsTheSelectedJobs)
{
    const auto first = add(u"1.wav"_s);
    const auto second = add(u"2.wav"_s);
    const auto third = add(u"3.wav"_s);
    showRows();
    list->setFocus();
    list->setCurrentIndex(list->model()->index(1, 0));
    QTest::keyClick(list, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(list, Qt::Key_Delete);
    handleWaitingEvents();
    EXPECT_EQ(first->cancels, 0);
    EXPECT_EQ(second->cancels, 1);
    EXPECT_TRUE(third->cancelled());
}

TEST_F(StatusWindowTest, ItsMenuRemovesErrorsAndShowsTheReportOfAFailedJob)
{
    const auto job = add(u"1.wav"_s);
    job->write(u"what went wrong\n"_s);
    job->finish(true);
    showRows();
    QSignalSpy output(&queue, &NURVTaskQueue::outputWindowRequested);
    list->setCurrentIndex(list->model()->index(0, 0));
    Q_EMIT status->contextMenu()->aboutToShow();
    const auto action = [this](const QString &name) { return status->findChild<QAction *>(name); };
    EXPECT_FALSE(action(u"cancelAll"_s)->isEnabled());
    EXPECT_FALSE(action(u"cancelJob"_s)->isEnabled());
    ASSERT_TRUE(action(u"showReport"_s)->isEnabled());
    action(u"showReport"_s)->trigger();
    ASSERT_EQ(output.size(), 1);
    EXPECT_EQ(output.at(0).at(0).toString(), u"what went wrong"_s);
    EXPECT_EQ(output.at(0).at(1).toString(), u"1.wav"_s);

    ASSERT_TRUE(action(u"removeErrors"_s)->isEnabled());
    action(u"removeErrors"_s)->trigger();
    EXPECT_TRUE(queue.panelArray().empty());
    EXPECT_FALSE(status->isVisible());
}

TEST_F(StatusWindowTest, ComesUpOncePerBatchAndStaysClosedWhenTheUserClosesIt)
{
    const auto first = add(u"1.wav"_s);
    showRows();
    status->close();
    const auto second = add(u"2.wav"_s);
    const auto third = add(u"3.wav"_s);
    first->finish();
    handleWaitingEvents();
    EXPECT_FALSE(status->isVisible());
    second->finish();
    third->finish();
    handleWaitingEvents();

    add(u"next batch"_s);
    EXPECT_TRUE(waitUntil([this] { return status->isVisible(); }));
}

TEST_F(StatusWindowTest, ComesUpAgainAtEachPressOfTheButtonAndLeavesTheKeyboard)
{
    show();
    add(u"1.wav"_s);
    showRows();
    // What the window systems look at; the one of the tests activates whatever is shown.
    EXPECT_TRUE(status->windowHandle()->property("_q_showWithoutActivating").toBool())
        << "it takes no keys from whoever types";
    status->close();
    add(u"2.wav"_s);
    handleWaitingEvents();
    EXPECT_FALSE(status->isVisible());
    Q_EMIT controller.executing();
    add(u"3.wav"_s);
    EXPECT_TRUE(waitUntil([this] { return status->isVisible(); }));
}

TEST_F(StatusWindowTest, NoShortcutReachesTheWindowBehindIt)
{
    controller.selectTab(u"encode"_s);
    show();
    status->bringToFront();
    ASSERT_TRUE(waitUntil([this] { return status->isActiveWindow(); }));
    const bool before = encodeTab.deleteOriginalsButton.isOn();
    for (int key = Qt::Key_A; key <= Qt::Key_Z; ++key) {
        if (key != Qt::Key_A && key != Qt::Key_E)
            QTest::keyClick(list, static_cast<Qt::Key>(key), Qt::AltModifier);
    }
    QTest::qWait(200);
    EXPECT_EQ(encodeTab.deleteOriginalsButton.isOn(), before);
    EXPECT_NE(status->windowType(), Qt::Tool) << "Qt takes its shortcuts for those of its parent";
}

TEST_F(StatusWindowTest, ShowsTheRowsOfANewBatchBehindThoseThatFailed)
{
    for (int i = 0; i < 60; ++i)
        add(u"old"_s)->finish(true);
    add(u"new 1"_s);
    add(u"new 2"_s);
    showRows();
    EXPECT_TRUE(waitUntil(
        [this] { return list->viewport()->rect().intersects(list->visualRect(list->model()->index(60, 0))); }));
}

TEST_F(StatusWindowTest, DoesNotAppearForABatchThatIsOverAtOnce)
{
    add(u"1.wav"_s)->finish();
    handleWaitingEvents();
    EXPECT_FALSE(status->isVisible());
}

TEST_F(StatusWindowTest, ClosesWhenTheLastJobHasEndedWell)
{
    const auto job = add(u"1.wav"_s);
    showRows();
    job->finish();
    EXPECT_FALSE(status->isVisible());
}

TEST_F(StatusWindowTest, PassesOnAtMostThirtyRepaintsASecondAndNeverDropsTheLast)
{
    const auto job = add(u"1.wav"_s);
    showRows();
    QSignalSpy repaints(list->model(), &QAbstractItemModel::dataChanged);
    QElapsedTimer clock;
    clock.start();
    int changes = 0;
    while (clock.elapsed() < 500 || changes < 200) {
        job->show(u"%1"_s.arg(++changes), 0.0);
        handleWaitingEvents();
    }
    job->show(u"last"_s, 100.0);
    const qint64 elapsed = clock.elapsed();
    EXPECT_LE(repaints.size(), elapsed / 33 + 1);
    repaints.clear();
    EXPECT_TRUE(waitUntil([&] { return !repaints.isEmpty(); }));
    EXPECT_EQ(list->model()->index(0, 0).data(Qt::AccessibleTextRole).toString(), u"1.wav, last, 100 percent"_s);
}

TEST_F(StatusWindowTest, TakesTwentyThousandJobsInOneGo)
{
    std::vector<std::shared_ptr<NURVTask>> jobs;
    for (int number = 0; number < 20'000; ++number)
        jobs.push_back(std::make_shared<JobInState>(queue, u"%1.wav"_s.arg(number)));
    QSignalSpy inserted(list->model(), &QAbstractItemModel::rowsInserted);
    queue.addTasks(jobs);
    showRows();
    EXPECT_EQ(list->model()->rowCount(), 20'000);
    EXPECT_LE(inserted.size(), 100);
    queue.cancelAllTasks();
}

TEST_F(StatusWindowTest, ShowsDirectionMarksAndControlCharacters)
{
    add(u"a\u202Enhs\x1b[2J.flac"_s);
    showRows();
    const QModelIndex index = list->model()->index(0, 0);
    const QString shown = u"a\\u{202E}nhs\\x1B[2J.flac"_s;
    EXPECT_EQ(index.data(Qt::DisplayRole).toString(), shown);
    EXPECT_EQ(index.data(Qt::ToolTipRole).toString(), shown);
    EXPECT_TRUE(index.data(Qt::AccessibleTextRole).toString().startsWith(shown));
}

TEST_F(StatusWindowTest, ElidesALongNameInTheMiddleOfItsLine)
{
    add(QString(400, u'W'));
    showRows();
    const StatusRowLayout parts = partsOf(0);
    const QRectF beside(parts.mainLine.right() + 2, parts.mainLine.top(), 20, parts.mainLine.height());
    EXPECT_TRUE(isBlank(beside));
}

TEST_F(StatusWindowTest, ItsRedAndGreenAreLegibleInLightAndDarkPalettes)
{
    for (const QColor &base : {QColor(255, 255, 255), QColor(27, 30, 32)}) {
        QPalette palette;
        palette.setColor(QPalette::Base, base);
        for (const QColor &text : {StatusQueueCell::systemRed(palette), StatusQueueCell::darkGreen(palette)})
            EXPECT_GE(contrast(text, base), 4.5) << base.name().toStdString();
    }
}

} // namespace nurv::test

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Contrast.h"
#include "app/BatchWatch.h"
#include "support/WaitUntil.h"
#include "ui/DarkPalette.h"
#include "ui/FileListView.h"
#include "ui/JobInState.h"
#include "ui/LegiblePalette.h"
#include "ui/LegibleStyle.h"
#include "ui/ProgressLine.h"
#include "ui/ProgressStrip.h"
#include "ui/StatusListModel.h"
#include "ui/StatusQueueCell.h"
#include "ui/StatusWindow.h"
#include "ui/WindowFixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

constexpr double kLegible = 4.5;

QPalette lightPalette()
{
    return std::unique_ptr<QStyle>(QStyleFactory::create(u"Fusion"_s))->standardPalette();
}

QPalette highContrastPalette()
{
    QPalette palette(Qt::white, Qt::black, Qt::white, Qt::black, Qt::darkGray, Qt::white, Qt::black);
    palette.setColor(QPalette::Button, Qt::black);
    palette.setColor(QPalette::ButtonText, Qt::white);
    palette.setColor(QPalette::Highlight, QColor(26, 235, 255));
    palette.setColor(QPalette::HighlightedText, Qt::black);
    palette.setColor(QPalette::PlaceholderText, QColor(255, 255, 255, 128));
    return palette;
}

/// What a desktop gives: Fusion with other colours.
class ColoredStyle final : public QProxyStyle {
public:
    explicit ColoredStyle(const QPalette &palette) : QProxyStyle(u"fusion"_s), m_palette(palette) {}
    using QProxyStyle::polish;
    void polish(QPalette &palette) override { palette = m_palette; }

private:
    QPalette m_palette;
};

/// The application in one scheme of colours, as each of the tests finds it.
class ContrastTest : public ::testing::TestWithParam<std::pair<const char *, QPalette (*)()>> {
protected:
    ContrastTest()
    {
        QApplication::setStyle(new LegibleStyle);
        QApplication::setPalette(LegiblePalette::corrected(GetParam().second()));
        m_fixture = std::make_unique<WindowFixture>();
    }
    ~ContrastTest() override
    {
        m_fixture.reset();
        QApplication::setPalette(QPalette());
        QApplication::setStyle(u"fusion"_s);
    }

    WindowFixture &workbench() { return *m_fixture; }

private:
    std::unique_ptr<WindowFixture> m_fixture;
};

QString textOf(const QWidget *widget)
{
    if (const auto *const label = qobject_cast<const QLabel *>(widget))
        return label->pixmap(Qt::ReturnByValue).isNull() ? label->text() : QString();
    if (const auto *const button = qobject_cast<const QAbstractButton *>(widget))
        return button->text();
    if (const auto *const field = qobject_cast<const QLineEdit *>(widget))
        return field->text().isEmpty() ? field->placeholderText() : field->text();
    return {};
}

/// Paints each label, button and field of the window; returns how many.
int expectLegible(const QWidget &window, const QString &where)
{
    int count = 0;
    for (QWidget *const widget : window.findChildren<QWidget *>()) {
        const QString text = textOf(widget);
        if (text.trimmed().isEmpty() || !widget->isVisible() || !widget->isEnabled() || widget->size().isEmpty())
            continue;
        ++count;
        EXPECT_GE(strongestContrast(widget->grab().toImage()), kLegible)
            << where.toStdString() << ": " << widget->metaObject()->className() << " \"" << text.toStdString() << '"';
    }
    return count;
}

} // namespace

TEST_P(ContrastTest, OfTheTextsOfEachPage)
{
    WindowFixture &app = workbench();
    app.show();
    for (const QString &label : app.controller.pageLabels()) {
        app.controller.selectTab(label);
        handleWaitingEvents();
        EXPECT_GT(expectLegible(app.window, label), 0) << label.toStdString();
        // The words that an empty list shows.
        for (FileListView *const list : app.window.findChildren<FileListView *>()) {
            if (!list->isVisible())
                continue;
            EXPECT_GE(strongestContrast(list->viewport()->grab().toImage()), kLegible) << label.toStdString();
        }
    }
}

TEST_P(ContrastTest, OfTheSelectedFileInAList)
{
    WindowFixture &app = workbench();
    app.show();
    app.controller.selectTab(u"encode"_s);
    app.folder.write(u"one.wav"_s, "a file");
    app.controller.openFiles({app.folder.path(u"one.wav"_s)});
    FileListView *list = nullptr;
    ASSERT_TRUE(waitUntil([&] {
        for (FileListView *const view : app.window.findChildren<FileListView *>()) {
            if (view->isVisible() && view->model()->rowCount() == 1)
                list = view;
        }
        return list != nullptr;
    }));
    for (const bool hasKeyboard : {false, true}) {
        list->selectAll();
        if (hasKeyboard)
            list->setFocus();
        else
            list->clearFocus();
        handleWaitingEvents();
        const QRect row = list->visualRect(list->model()->index(0, 0));
        EXPECT_GE(strongestContrast(list->viewport()->grab(row).toImage()), kLegible) << "keyboard: " << hasKeyboard;
    }
}

TEST_P(ContrastTest, OfTheRowsOfTheJobs)
{
    NURVTaskQueue &queue = workbench().controller.taskQueue();
    std::vector<std::shared_ptr<JobInState>> jobs;
    for (int i = 0; i < 5; ++i) {
        jobs.push_back(std::make_shared<JobInState>(queue, u"%1 song.wav"_s.arg(i)));
        jobs.back()->showTitle();
        queue.addTask(jobs.back());
    }
    jobs[0]->finish();
    jobs[1]->write(u"ERROR: unexpected end of file\n"_s);
    jobs[1]->finish(true);
    Q_EMIT queue.taskSettled(jobs[1]);
    jobs[2]->setCancelled(true);
    jobs[2]->finish();
    jobs[3]->show(u"Encoding"_s, 40.0);

    StatusWindow &status = *workbench().window.statusWindow();
    status.resize(440, 500);
    status.bringToFront();
    handleWaitingEvents();
    expectLegible(status, u"status"_s);
    QListView &list = *status.list();
    ASSERT_EQ(list.model()->rowCount(), 5);
    for (const bool isSelected : {false, true}) {
        if (isSelected)
            list.selectAll();
        else
            list.clearSelection();
        handleWaitingEvents();
        const double scale = StatusQueueCell::pixelsPerPoint(&list);
        for (int row = 0; row < 5; ++row) {
            const auto parts = StatusQueueCell::layOut(
                StatusQueueCell::frameOf(list.visualRect(list.model()->index(row, 0)), scale), scale);
            std::vector<QRectF> texts{parts.statusLine};
            if (row < 4)
                texts.push_back(parts.mainLine);
            for (const QRectF &text : texts) {
                EXPECT_GE(strongestContrast(list.viewport()->grab(text.toAlignedRect()).toImage()), kLegible)
                    << "row " << row << " selected: " << isSelected << " at " << text.top();
            }
        }
    }
}

TEST_P(ContrastTest, OfTheStripBelowThePages)
{
    WindowFixture &app = workbench();
    app.show();
    NURVTaskQueue &queue = app.controller.taskQueue();
    BatchWatch &batch = app.window.batch();
    const ProgressStrip &strip = *app.window.progressStrip();
    ProgressLine &line = *strip.line();
    const auto expectLegibleLine = [&](const char *state) {
        handleWaitingEvents();
        // Without the bar, which may stand out by itself.
        EXPECT_GE(strongestContrast(line.grab(line.textRect()).toImage()), kLegible) << state;
    };
    expectLegibleLine("no jobs");
    std::vector<std::shared_ptr<JobInState>> jobs;
    for (int i = 0; i < 2; ++i) {
        jobs.push_back(std::make_shared<JobInState>(queue, u"%1.wav"_s.arg(i)));
        queue.addTask(jobs.back());
    }
    jobs[0]->show(u"Encoding"_s, 60.0);
    batch.flush();
    ASSERT_TRUE(line.share().has_value());
    line.clearFocus();
    expectLegibleLine("running");
    line.setFocus();
    expectLegibleLine("with the keyboard");
    line.setDown(true);
    expectLegibleLine("pressed");
    line.setDown(false);
    // The bar itself: what is done of it, against what is not.
    const QRect bar(0, 0, line.textRect().left(), line.height());
    EXPECT_GE(strongestContrast(line.grab(bar).toImage()), 3.0);
    for (const auto &job : jobs) {
        job->ownOutcome().output = app.folder.path(u"1.flac"_s);
        job->finish(job == jobs[1]);
        Q_EMIT queue.taskSettled(job);
    }
    queue.showOutputWindow(u"report"_s, u"1.wav"_s);
    ASSERT_EQ(batch.state(), BatchWatch::State::Over);
    expectLegibleLine("over");
    EXPECT_GE(expectLegible(strip, u"strip"_s), 2);
}

INSTANTIATE_TEST_SUITE_P(Schemes, ContrastTest,
                         ::testing::Values(std::pair{"light", &lightPalette}, std::pair{"dark", &darkPalette},
                                           std::pair{"highContrast", &highContrastPalette}),
                         [](const auto &scheme) { return std::string(scheme.param.first); });

TEST(LegiblePalette, FollowsTheColorsOfTheDesktop)
{
    const auto quiet = [] {
        const QPalette palette = QApplication::palette();
        return contrast(blended(palette.color(QPalette::PlaceholderText), palette.color(QPalette::Base)),
                        palette.color(QPalette::Base));
    };
    QApplication::setStyle(new ColoredStyle(lightPalette()));
    {
        const LegiblePalette palette;
        EXPECT_GE(quiet(), kLegible);
        QApplication::setStyle(new ColoredStyle(darkPalette()));
        EXPECT_EQ(QApplication::palette().color(QPalette::Base), darkPalette().color(QPalette::Base));
        EXPECT_GE(quiet(), kLegible);
        QApplication::setStyle(new ColoredStyle(lightPalette()));
        EXPECT_GE(quiet(), kLegible);
    }
    QApplication::setPalette(QPalette());
    QApplication::setStyle(u"fusion"_s);
}

TEST(LegiblePalette, LeavesWhatIsLegible)
{
    QPalette palette = highContrastPalette();
    palette.setColor(QPalette::PlaceholderText, Qt::white);
    EXPECT_EQ(LegiblePalette::corrected(palette), palette);
}

} // namespace nurv::test

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/StatusWindow.h"

#include "app/BatchWatch.h"
#include "app/UnfinishedFiles.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskQueue.h"
#include "ui/BatchWords.h"
#include "ui/StatusListModel.h"
#include "ui/StatusQueueCell.h"
#include "ui/WindowPlace.h"

#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QLocale>
#include <QMenu>
#include <QPushButton>
#include <QTimerEvent>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kMargin = 10;
constexpr QSize kFirstSize{480, 420};
constexpr std::chrono::milliseconds kAnimationInterval{40};
const QString kGeometryKey = u"window/statusGeometry"_s;

} // namespace

StatusWindow::StatusWindow(NURVTaskQueue &queue, BatchWatch &batch, UnfinishedFiles &unfinished, QWidget *parent)
    : QWidget(parent, Qt::Dialog), m_queue(queue), m_batch(batch), m_unfinished(unfinished),
      m_model(new StatusListModel(queue, this)), m_cell(new StatusQueueCell(this))
{
    setObjectName(u"statusWindow"_s);
    // Who has pressed the button goes on where the keyboard was.
    setAttribute(Qt::WA_ShowWithoutActivating);
    setWindowTitle(tr("Status"));
    createWidgets();
    layOut();
    createContextMenu();
    connectAll();
    showCount();
    showBatch();
    m_hasPlace = windowPlace::restore(*this, kGeometryKey, kFirstSize);
}

void StatusWindow::createWidgets()
{
    m_list = new QListView(this);
    m_list->setObjectName(u"statusList"_s);
    m_list->setAccessibleName(tr("Jobs"));
    m_list->setModel(m_model);
    m_list->setItemDelegate(m_cell);
    m_list->setUniformItemSizes(true);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setTabKeyNavigation(false);
    m_list->installEventFilter(this);

    m_batchLabel = new QLabel(this);
    m_batchLabel->setObjectName(u"batchLine"_s);
    m_batchLabel->setTextFormat(Qt::PlainText);
    m_batchLabel->setWordWrap(true);
    m_batchLabel->setContentsMargins(kMargin, 0, kMargin, 0);

    m_countLabel = new QLabel(this);
    m_countLabel->setObjectName(u"jobCount"_s);
    m_countLabel->setForegroundRole(QPalette::PlaceholderText);

    m_pauseButton = new QPushButton(tr("&Pause"), this);
    m_pauseButton->setObjectName(u"pauseButton"_s);
    m_pauseButton->setCheckable(true);
    m_pauseButton->setAccessibleName(tr("Pause"));
    m_pauseButton->setToolTip(tr("Start no further job; those that run go on to their end"));

    m_putBackButton = new QPushButton(tr("Put &Back"), this);
    m_putBackButton->setObjectName(u"putBackButton"_s);
    m_putBackButton->setAccessibleName(tr("Put failed and canceled files back"));
    m_putBackButton->setToolTip(tr("Put the files of failed and canceled jobs back into the lists that they came from"));

    m_removeErrorsButton = new QPushButton(tr("Remove &Errors"), this);
    m_removeErrorsButton->setObjectName(u"removeErrorsButton"_s);
    m_removeErrorsButton->setAccessibleName(tr("Remove errors"));
    m_removeErrorsButton->setToolTip(tr("Take the rows of failed jobs out of the list"));

    m_cancelAllButton = new QPushButton(tr("Cancel &All"), this);
    m_cancelAllButton->setObjectName(u"cancelAllButton"_s);
    m_cancelAllButton->setAccessibleName(tr("Cancel all"));
    m_cancelAllButton->setToolTip(tr("Cancel every job, running or waiting"));
}

void StatusWindow::layOut()
{
    auto *const buttons = new QHBoxLayout;
    buttons->setContentsMargins(kMargin, 0, kMargin, kMargin);
    buttons->setSpacing(kMargin);
    buttons->addWidget(m_countLabel, 1);
    buttons->addWidget(m_pauseButton);
    buttons->addWidget(m_putBackButton);
    buttons->addWidget(m_removeErrorsButton);
    buttons->addWidget(m_cancelAllButton);

    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(kMargin);
    column->addWidget(m_list, 1);
    column->addWidget(m_batchLabel);
    column->addLayout(buttons);
}

void StatusWindow::createContextMenu()
{
    m_menu = new QMenu(this);
    m_menu->setObjectName(u"removeErrorsMenu"_s);
    m_cancelAction = m_menu->addAction(tr("&Cancel"), this, &StatusWindow::cancelSelected);
    m_cancelAction->setObjectName(u"cancelJob"_s);
    m_reportAction = m_menu->addAction(tr("Show re&port"), this, &StatusWindow::showReport);
    m_reportAction->setObjectName(u"showReport"_s);
    m_menu->addSeparator();
    m_putBackAction = m_menu->addAction(tr("Put &back into the list"), &m_unfinished, &UnfinishedFiles::putBack);
    m_putBackAction->setObjectName(u"putBack"_s);
    m_cancelAllAction = m_menu->addAction(tr("Cancel &all"), &m_queue, &NURVTaskQueue::cancelAllTasks);
    m_cancelAllAction->setObjectName(u"cancelAll"_s);
    m_removeErrorsAction = m_menu->addAction(tr("Remove &errors"), &m_queue, &NURVTaskQueue::removeAllErrors);
    m_removeErrorsAction->setObjectName(u"removeErrors"_s);
    connect(m_menu, &QMenu::aboutToShow, this, &StatusWindow::prepareMenu);
}

void StatusWindow::connectAll()
{
    connect(m_pauseButton, &QPushButton::clicked, &m_queue, [this](bool pauses) { pauses ? m_queue.hold() : m_queue.release(); });
    connect(&m_queue, &NURVTaskQueue::heldChanged, this, &StatusWindow::showPause);
    connect(m_putBackButton, &QPushButton::clicked, &m_unfinished, &UnfinishedFiles::putBack);
    connect(&m_unfinished, &UnfinishedFiles::changed, this, &StatusWindow::showCount);
    connect(m_removeErrorsButton, &QPushButton::clicked, &m_queue, &NURVTaskQueue::removeAllErrors);
    connect(m_cancelAllButton, &QPushButton::clicked, &m_queue, &NURVTaskQueue::cancelAllTasks);
    connect(m_cell, &StatusQueueCell::cancelClicked, this,
            [this](const QModelIndex &index) { cancelLater(m_model->task(index.row())); });
    connect(m_list, &QListView::doubleClicked, this, &StatusWindow::showReport);
    connect(m_model, &StatusListModel::scrollRequested, this,
            [this](int row) { m_list->scrollTo(m_model->index(row), QAbstractItemView::EnsureVisible); });
    connect(m_model, &QAbstractItemModel::dataChanged, this, &StatusWindow::showCount);
    connect(m_model, &QAbstractItemModel::rowsInserted, this, &StatusWindow::showCount);
    connect(m_model, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex &, int first) { showNewRows(first); });
    connect(m_model, &QAbstractItemModel::modelReset, this, &StatusWindow::showCount);
    connect(&m_batch, &BatchWatch::changed, this, &StatusWindow::showBatch);
    connect(&m_queue, &NURVTaskQueue::panelRequested, this, &StatusWindow::requestPanel);
    connect(&m_queue, &NURVTaskQueue::panelCloseRequested, this, &StatusWindow::closePanel);
    connect(&m_queue, &NURVTaskQueue::taskCountChanged, this, [this](int count) {
        if (count == 0)
            m_wasBroughtUp = false;
    });
}

void StatusWindow::requestPanel()
{
    if (m_wasBroughtUp)
        return;
    m_wasBroughtUp = true;
    m_showIsPending = true;
    // One appearance for all the jobs that a tab hands over in one go, and none
    // for a batch that is over before the window could be seen.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (m_showIsPending)
                appear();
        },
        Qt::QueuedConnection);
}

void StatusWindow::showNewRows(int first)
{
    const auto &rows = m_queue.panelArray();
    const auto begin = rows.begin();
    const bool areOthersDone = std::all_of(begin, begin + std::min<std::ptrdiff_t>(first, std::ssize(rows)),
                                           [](const auto &task) { return task->isDone(); });
    if (areOthersDone)
        m_list->scrollTo(m_model->index(first), QAbstractItemView::PositionAtTop);
}

void StatusWindow::closePanel()
{
    m_showIsPending = false;
    hide();
}

void StatusWindow::appear()
{
    m_showIsPending = false;
    m_model->flush();
    if (!m_hasPlace)
        windowPlace::moveBeside(*this, parentWidget());
    show();
    raise();
}

void StatusWindow::bringToFront()
{
    appear();
    activateWindow();
}

void StatusWindow::saveState() const
{
    if (m_hasPlace)
        windowPlace::keep(*this, kGeometryKey);
}

void StatusWindow::showCount()
{
    const int waiting = m_queue.taskCount();
    if (waiting == 0)
        m_countLabel->setText(m_model->rowCount() == 0 ? tr("No jobs") : tr("All jobs have ended"));
    else if (waiting == 1)
        m_countLabel->setText(tr("1 job left"));
    else
        m_countLabel->setText(tr("%1 jobs left").arg(QLocale().toString(waiting)));
    const auto &rows = m_queue.panelArray();
    const bool hasErrors = std::any_of(rows.begin(), rows.end(), [](const auto &task) { return task->error(); });
    m_removeErrorsButton->setEnabled(hasErrors);
    m_cancelAllButton->setEnabled(waiting > 0);
    m_putBackButton->setEnabled(m_unfinished.count() > 0);
    showPause();
    if (std::exchange(m_hasErrors, hasErrors) != hasErrors)
        Q_EMIT hasErrorsChanged(hasErrors);
}

void StatusWindow::showPause()
{
    m_pauseButton->setChecked(m_queue.isHeld());
    m_pauseButton->setEnabled(m_queue.isHeld() || m_queue.taskCount() > 0);
}

void StatusWindow::showBatch()
{
    const QString line = batchWords::line(m_batch);
    m_batchLabel->setText(line);
    m_batchLabel->setVisible(!line.isEmpty());
}

std::vector<std::shared_ptr<NURVTask>> StatusWindow::selectedTasks() const
{
    std::vector<std::shared_ptr<NURVTask>> tasks;
    const QModelIndexList rows = m_list->selectionModel()->selectedRows();
    for (const QModelIndex &index : rows) {
        if (std::shared_ptr<NURVTask> task = m_model->task(index.row()))
            tasks.push_back(std::move(task));
    }
    return tasks;
}

void StatusWindow::prepareMenu()
{
    const auto tasks = selectedTasks();
    m_cancelAction->setEnabled(std::any_of(tasks.begin(), tasks.end(),
                                           [](const auto &task) { return !task->isDone() && !task->cancelled(); }));
    m_reportAction->setEnabled(tasks.size() == 1 && StatusListModel::hasReport(*tasks.front()));
    m_putBackAction->setEnabled(m_unfinished.count() > 0);
    m_cancelAllAction->setEnabled(m_queue.taskCount() > 0);
    m_removeErrorsAction->setEnabled(m_removeErrorsButton->isEnabled());
}

void StatusWindow::cancelSelected()
{
    for (const std::shared_ptr<NURVTask> &task : selectedTasks())
        cancelLater(task);
}

void StatusWindow::cancelLater(const std::shared_ptr<NURVTask> &task)
{
    // A job that ends at once changes the list, which the view must not see in
    // the middle of handling the click.
    QMetaObject::invokeMethod(
        this,
        [task] {
            if (task && !task->isDone() && !task->cancelled())
                task->cancelButton().action();
        },
        Qt::QueuedConnection);
}

void StatusWindow::showReport()
{
    const auto tasks = selectedTasks();
    if (tasks.size() != 1 || !StatusListModel::hasReport(*tasks.front()))
        return;
    const QString report = StatusListModel::reportOf(*tasks.front());
    m_queue.showOutputWindow(report.isEmpty() ? tr("The job left no report.") : report, tasks.front()->title());
}

void StatusWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape || event->matches(QKeySequence::Close)) {
        close();
        event->accept();
        return;
    }
    QWidget::keyPressEvent(event);
}

bool StatusWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_list)
        return QWidget::eventFilter(watched, event);
    if (event->type() == QEvent::KeyPress) {
        const auto *const key = static_cast<QKeyEvent *>(event);
        if (key->matches(QKeySequence::Delete) || key->key() == Qt::Key_Backspace) {
            cancelSelected();
            return true;
        }
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            showReport();
            return true;
        }
    } else if (event->type() == QEvent::ContextMenu) {
        const auto *const menuEvent = static_cast<QContextMenuEvent *>(event);
        m_menu->popup(menuEvent->globalPos());
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void StatusWindow::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_hasPlace = true;
    if (m_animationTimer == 0)
        m_animationTimer = startTimer(kAnimationInterval);
}

void StatusWindow::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    if (m_animationTimer != 0)
        killTimer(std::exchange(m_animationTimer, 0));
}

void StatusWindow::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_animationTimer) {
        QWidget::timerEvent(event);
        return;
    }
    if (m_queue.taskCount() == 0)
        return;
    const QRect seen = m_list->viewport()->rect();
    const QModelIndex first = m_list->indexAt(seen.topLeft());
    for (int row = first.row(); row >= 0 && row < m_model->rowCount(); ++row) {
        const QModelIndex index = m_model->index(row);
        const QRect place = m_list->visualRect(index);
        if (place.top() > seen.bottom())
            break;
        const NURVTask *const task = StatusListModel::taskAt(index);
        if (task != nullptr && task->isActive() && task->progressIndicator().indeterminate)
            m_list->update(index);
    }
}

} // namespace nurv

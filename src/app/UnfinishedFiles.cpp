// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/UnfinishedFiles.h"

#include "app/BaseTab.h"
#include "app/NURVController.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskQueue.h"

#include <QPointer>

#include <utility>

namespace nurv {

UnfinishedFiles::UnfinishedFiles(NURVController &controller, QObject *parent) : QObject(parent), m_controller(controller)
{
    const NURVTaskQueue &queue = controller.taskQueue();
    connect(&queue, &NURVTaskQueue::rowAppended, this, &UnfinishedFiles::taskAdded);
    connect(&queue, &NURVTaskQueue::taskSettled, this, &UnfinishedFiles::taskSettled);
}

void UnfinishedFiles::taskAdded(int row)
{
    const BaseTab *const tab = m_controller.executingTab();
    const auto &rows = m_controller.taskQueue().panelArray();
    if (tab == nullptr || row < 0 || static_cast<std::size_t>(row) >= rows.size())
        return;
    const NURVTask &task = *rows[static_cast<std::size_t>(row)];
    QHash<Source, QString> sources;
    qsizetype triedAgain = 0;
    for (const QString &path : task.sourcePaths()) {
        const Source source(tab->label(), path);
        sources.insert(source, tab->baseOf(path));
        triedAgain += m_files.remove(source) ? 1 : 0;
    }
    if (!sources.isEmpty())
        m_sourcesOfTask.insert(&task, sources);
    if (triedAgain > 0)
        Q_EMIT changed();
}

void UnfinishedFiles::taskSettled(const std::shared_ptr<NURVTask> &task)
{
    using Original = TaskOutcome::Original;
    const QHash<Source, QString> sources = m_sourcesOfTask.take(task.get());
    const Original original = task->outcome().original;
    const bool isGone = original == Original::Deleted || original == Original::Trashed;
    if (sources.isEmpty() || isGone || (!task->error() && !task->cancelled()))
        return;
    m_lastLabel = sources.cbegin().key().first;
    m_files.insert(sources);
    Q_EMIT changed();
}

void UnfinishedFiles::putBack()
{
    m_controller.whenListsMayChange([files = QPointer(this)] {
        if (files)
            files->putBackNow();
    });
}

void UnfinishedFiles::putBackNow()
{
    const QHash<Source, QString> files = std::exchange(m_files, {});
    if (files.isEmpty())
        return;
    QHash<QString, std::pair<QStringList, QStringList>> lists; // paths and bases
    for (auto file = files.cbegin(); file != files.cend(); ++file) {
        auto &[paths, bases] = lists[file.key().first];
        paths.append(file.key().second);
        bases.append(file.value());
    }
    for (auto list = lists.cbegin(); list != lists.cend(); ++list) {
        if (BaseTab *const tab = m_controller.tab(list.key()))
            tab->addMatchedFiles(list->first, list->second);
    }
    m_controller.selectTab(m_lastLabel);
    Q_EMIT changed();
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "checksum/ChecksumFixture.h"
#include "engine/NURVTaskResults.h"
#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"

namespace nurv::test {

using namespace Qt::StringLiterals;

/// Jobs that check lists, one at a time, with their reports.
struct VerifyListFixture : ChecksumFixture {
    using State = ListedFile::State;

    VerifyListFixture()
    {
        QObject::connect(&queue, &NURVTaskQueue::rowChanged, &queue, [this](int row) {
            const auto &job = queue.panelArray()[static_cast<std::size_t>(row)];
            if (statuses.isEmpty() || statuses.last() != job->topTextField().text)
                statuses.append(job->topTextField().text);
            progress = std::max(progress, job->progressIndicator().value);
        });
    }
    /// Runs a job of the kind over the list.
    template<typename Task>
    std::shared_ptr<Task> verify(const QString &list)
    {
        const auto results = std::make_shared<NURVTaskResults>();
        const auto task = std::make_shared<Task>(&queue, list, results);
        results->addTaskInSet(*task);
        outputWindows.clear();
        run(task);
        report = results->results(*task);
        return task;
    }
    [[nodiscard]] static std::vector<State> statesOf(const NURVTask &task)
    {
        std::vector<State> states;
        for (const ListedFile &file : task.outcome().listedFiles)
            states.push_back(file.state);
        return states;
    }

    QStringList statuses;
    double progress = 0.0;
    QString report;
};

} // namespace nurv::test

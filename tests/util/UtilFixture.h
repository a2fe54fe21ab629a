// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/ConvertFixture.h"

#include "base/WorkerThreads.h"
#include "process/ChildProcess.h"
#include "util/UtilTab.h"

#include <QFile>
#include <QFileInfo>

namespace nurv::test {

using namespace Qt::StringLiterals;

/// A tab of utilities whose questions come without a delay, and a folder for what it makes.
class UtilFixture : public ConvertFixture {
protected:
    UtilFixture()
    {
        SettingsStore::instance().remove(u"utilRenamePreview"_s);
        tab.setRevertDelay(0);
        QObject::connect(&queue(), &NURVTaskQueue::rowChanged, &controller, [this](int row) {
            const auto &task = queue().panelArray()[static_cast<std::size_t>(row)];
            note(statuses, task->topTextField().text);
            note(mainLines, task->textField().text);
            bars.append(task->progressIndicator().value);
        });
    }

    /// Presses the button and waits for the end of everything. Returns the jobs.
    std::vector<std::shared_ptr<NURVTask>> execute(const QString &command, const QStringList &files)
    {
        tab.setCommand(command);
        tab.addMatchedFiles(files);
        queue().hold();
        // Jobs that failed stay in the list.
        const auto before = static_cast<std::ptrdiff_t>(queue().panelArray().size());
        tab.executeCommand();
        std::vector<std::shared_ptr<NURVTask>> jobs(queue().panelArray().begin() + before, queue().panelArray().end());
        queue().release();
        settle();
        return jobs;
    }
    void settle()
    {
        EXPECT_TRUE(finish());
        EXPECT_TRUE(waitUntil([] { return workerThreads::runningCount() == 0; }));
        handleWaitingEvents();
        EXPECT_EQ(children::runningCount(), 0);
    }
    void setFake(const QString &tool, const QByteArray &script)
    {
        clear(tool);
        tools.addFake(tool, script);
    }
    /// Lets the program be that shell script.
    void setScript(const QString &tool, const QByteArray &script)
    {
        clear(tool);
        QFile file(tools.path(tool));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/bash\n" + script);
        file.close();
        EXPECT_TRUE(file.setPermissions(file.permissions() | QFile::ExeOwner | QFile::ExeUser));
    }
    /// Whether the job ended without an error, with its report where it did not.
    static ::testing::AssertionResult isDone(const std::shared_ptr<NURVTask> &job)
    {
        if (job->isDone() && !job->error() && !job->cancelled())
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << job->report().toStdString() << job->outcome().problem.toStdString();
    }

    ProgramFolder tools;
    UtilTab tab{controller};
    QStringList statuses;
    QStringList mainLines;
    QList<double> bars;

private:
    void clear(const QString &tool) const
    {
        if (QFileInfo::exists(tools.path(tool)))
            tools.remove(tool);
    }
    static void note(QStringList &lines, const QString &line)
    {
        if (lines.isEmpty() || lines.last() != line)
            lines.append(line);
    }
};

} // namespace nurv::test

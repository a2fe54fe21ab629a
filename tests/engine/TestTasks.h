// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "desktop/DesktopServices.h"
#include "engine/NURVAsyncNSTask.h"
#include "engine/NURVInProcessTask.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskQueue.h"
#include "engine/NURVTaskResults.h"
#include "settings/SettingsStore.h"
#include "support/ProgramFolder.h"

#include <QStringList>

#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace nurv::test {

/// Writes down what the queue asks of the desktop.
class RecordingServices final : public DesktopServices {
public:
    /// The queue that is made on these services runs two jobs at once.
    RecordingServices() { SettingsStore::instance().registerDefaults({{QStringLiteral("maxThreads"), 2}}); }

    void setBadge(int count) override
    {
        badges.push_back(count);
        if (failsToSetBadge)
            throw std::runtime_error("planted");
        if (whenAsked)
            whenAsked();
    }
    void setProgress(std::optional<double> share) override { shares.push_back(share); }
    bool openFolder(const QString &path) override
    {
        folders.append(path);
        return true;
    }
    bool hasNotificationService() override { return hasNotifications; }
    void deliverNotification(const QString &title, const QString &) override { notifications.append(title); }
    void requestAttention() override { ++attentionRequests; }
    std::optional<std::uint32_t> createSleepAssertion(const QString &reason) override
    {
        assertionReasons.append(reason);
        if (whenAsked)
            whenAsked();
        return assertion;
    }
    void releaseSleepAssertion(std::uint32_t id) override
    {
        released.push_back(id);
        if (failsToRelease)
            throw std::runtime_error("planted");
    }

    std::function<void()> whenAsked; ///< for the badge and the sleep assertion
    bool failsToSetBadge = false;
    bool failsToRelease = false;
    bool hasNotifications = true;
    std::optional<std::uint32_t> assertion = 7;
    std::vector<int> badges;
    std::vector<std::optional<double>> shares;
    QStringList folders;
    QStringList notifications;
    int attentionRequests = 0;
    QStringList assertionReasons;
    std::vector<std::uint32_t> released;
};

/// A job that runs until the test ends it.
class HeldTask final : public NURVTask {
public:
    using NURVTask::NURVTask;

    void startTask() override
    {
        ++starts;
        NURVTask::startTask();
    }
    /// What a finished job does: stop, then tell the queue.
    void finish(bool failed = false)
    {
        setError(failed);
        stopTask();
        reportCompletion();
    }
    /// What a job that was cancelled while it waited does.
    void cancelTask() override
    {
        setCancelled(true);
        if (isActive())
            return;
        stopTask();
        reportCompletion();
    }
    void write(const QString &text) { appendResultsForSelf(text); }

    int starts = 0;
};

/// A command job that acts out a script of the fake program.
class ScriptedTask : public NURVAsyncNSTask {
public:
    ScriptedTask(NURVTaskQueue *queue, const QStringList &script)
        : NURVAsyncNSTask(queue, fakeProgramPath(), script)
    {
        setTitle(QStringLiteral("scripted"));
    }

    QStringList chunks;
    QStringList steps; ///< the order of the hooks
    QString throwingHook; ///< the name of the hook that throws
    bool parserSetsError = false;

protected:
    void processTaskOutput(const QString &chunk) override
    {
        chunks.append(chunk);
        if (parserSetsError)
            setError(true);
        throwIn(QStringLiteral("processTaskOutput"));
        NURVAsyncNSTask::processTaskOutput(chunk);
    }
    void cleanup() override
    {
        steps.append(QStringLiteral("cleanup, %1").arg(topTextField().text));
        steps.append(isDone() ? QStringLiteral("done") : QStringLiteral("not done"));
        throwIn(QStringLiteral("cleanup"));
    }
    void finalCleanup() override
    {
        steps.append(QStringLiteral("finalCleanup, %1").arg(topTextField().text));
        throwIn(QStringLiteral("finalCleanup"));
    }

private:
    void throwIn(const QString &hook) const
    {
        if (throwingHook == hook)
            throw std::runtime_error("planted");
    }
};

/// An in-process job whose work a test gives.
class WorkTask final : public NURVInProcessTask {
public:
    WorkTask(NURVTaskQueue *queue, std::function<void(WorkTask &)> work)
        : NURVInProcessTask(queue), m_work(std::move(work))
    {
        setTitle(QStringLiteral("work"));
    }

    using NURVTask::appendResultsForSelf;

protected:
    void doStartTask() override
    {
        showStarted();
        m_work(*this);
    }

private:
    std::function<void(WorkTask &)> m_work;
};

} // namespace nurv::test

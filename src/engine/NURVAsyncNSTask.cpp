// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NURVAsyncNSTask.h"

#include "base/GuiThread.h"
#include "base/NurvFailure.h"
#include "programs/ExternalPrograms.h"
#include "programs/ProgramEnvironment.h"

#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

NURVAsyncNSTask::NURVAsyncNSTask(NURVTaskQueue *queue, const QString &launchPath,
                                 const QStringList &arguments)
    : NURVTask(queue), m_launchPath(launchPath), m_arguments(arguments)
{
    QObject::connect(&m_task, &ChildProcess::outputRead, &m_task,
                     [this](const QByteArray &bytes) { taskDataAvailable(bytes); });
    QObject::connect(&m_task, &ChildProcess::finished, &m_task, [this] {
        const std::shared_ptr<NURVTask> self = shared_from_this();
        self->stopTask();
    });
}

NURVAsyncNSTask::~NURVAsyncNSTask() = default;

void NURVAsyncNSTask::appendToPATH(const QString &folder)
{
    m_pathFolders.append(folder);
}

NeededPrograms NURVAsyncNSTask::neededPrograms() const
{
    return NeededPrograms::ofRun(m_launchPath.section(u'/', -1), m_arguments);
}

void NURVAsyncNSTask::startTask()
{
    becomeActive();
    ChildCommand command{.launchPath = m_launchPath,
                         .arguments = m_arguments,
                         .environment = programEnvironment(),
                         .workingDirectory = m_currentDirectoryPath};
    for (const QString &folder : std::as_const(m_pathFolders))
        nurv::appendToPATH(command.environment, folder);
    setUnbuffered(command.environment);

    const std::optional<QString> failure = m_task.start(command);
    m_hasRun = !failure;
    if (failure)
        failToStart(missingProgramText(m_launchPath, *failure));
}

void NURVAsyncNSTask::failToStart(const QString &reason)
{
    failWith(reason);
    postToGuiThread([self = shared_from_this()] { self->stopTask(); });
}

void NURVAsyncNSTask::taskDataAvailable(const QByteArray &bytes)
{
    const QString chunk = m_decoder.decode(bytes);
    if (!chunk.isEmpty())
        runHook([&] { processTaskOutput(chunk); });
}

void NURVAsyncNSTask::processTaskOutput(const QString &chunk)
{
    appendResultsForSelf(chunk);
}

void NURVAsyncNSTask::stopTask()
{
    // The queue may let go of a job that stops, and the caller may only refer to it.
    const std::shared_ptr<NURVTask> self = weak_from_this().lock();
    if (m_task.isRunning() || std::exchange(m_isStopped, true))
        return;
    completeStop();
}

void NURVAsyncNSTask::completeStop()
{
    readExitStatus();
    markStopped();
    runHook([this] { cleanup(); });
    NURVTask::stopTask();
    runHook([this] { finalCleanup(); });
    reportCompletion();
    reportSettled();
}

void NURVAsyncNSTask::runHook(const std::function<void()> &hook)
{
    try {
        hook();
    } catch (const NurvFailure &failure) {
        failWith(failure.reason());
    } catch (const std::exception &failure) {
        failWith(QString::fromUtf8(failure.what()));
    }
}

void NURVAsyncNSTask::readExitStatus()
{
    const std::optional<ChildExit> exit = m_task.exitState();
    if (cancelled() || !exit || exit->succeeded())
        return;
    setError(true);
    if (exit->signal != 0)
        failWith(killedProgramText(m_launchPath.section(u'/', -1), exit->signal, title()));
}

QString NURVAsyncNSTask::description() const
{
    QString words = u"\"%1\"\n "_s.arg(m_launchPath);
    for (const QString &argument : m_arguments)
        words += u'"' + argument + u"\"\n "_s;
    return words;
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConversionTask.h"

#include "convert/ConvertLog.h"
#include "convert/DeletionCheck.h"
#include "platform/GuiThread.h"
#include "platform/NurvFailure.h"
#include "platform/WorkerThreads.h"

#include <memory>
#include <optional>
#include <system_error>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Where flac works when it replaces an output, source or not.
QString temporaryOf(const QString &output)
{
    return output + u".tmp,fl-ac+en'c"_s;
}

} // namespace

ConversionTask::ConversionTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments,
                               const QString &fileName)
    : NURVAsyncNSTask(queue, launchPath, arguments), Conversion(*this, fileName)
{
}

void ConversionTask::startTask()
{
    if (const std::optional<QString> reason = takeOutput()) {
        becomeActive();
        failToStart(*reason);
        return;
    }
    m_temporaryExisted = isThere(temporaryOf(outputFile()));
    NURVAsyncNSTask::startTask();
}

void ConversionTask::completeStop()
{
    removeHalfMadeFiles();
    if (!deleteOriginal() || cancelled() || !programSucceeded()) {
        NURVAsyncNSTask::completeStop();
        return;
    }
    // The disk may take its time, so a worker waits for it; until then the job stays
    // active. When the application ends meanwhile, the source simply stays.
    const auto self = std::static_pointer_cast<ConversionTask>(shared_from_this());
    const auto stop = [self](bool isOnDisk) {
        self->setOutputIsOnDisk(isOnDisk);
        self->NURVAsyncNSTask::completeStop();
    };
    try {
        workerThreads::start([stop, output = outputFile()] {
            postToGuiThread([stop, isOnDisk = flushToDisk(output)] { stop(isOnDisk); });
        });
    } catch (const std::system_error &failure) {
        qCWarning(convertLog, "The output was not flushed: %s", failure.what());
        stop(false);
    }
}

void ConversionTask::removeHalfMadeFiles() const
{
    const std::optional<ChildExit> exit = exitState();
    // A program that ends by itself cleans up by itself, or means to leave what it leaves.
    if (!exit || exit->signal == 0)
        return;
    if (!m_temporaryExisted)
        removeHalfMade(temporaryOf(outputFile()));
    if (!outputExisted() && !outputIsSource())
        removeHalfMade(outputFile());
}

bool ConversionTask::programSucceeded() const
{
    const std::optional<ChildExit> exit = exitState();
    return exit && exit->succeeded();
}

QString ConversionTask::report() const
{
    return reportInstead(NURVAsyncNSTask::report());
}

void ConversionTask::failWith(const QString &reason)
{
    NURVAsyncNSTask::failWith(reason);
    keepReasonForReport(reason);
}

void ConversionTask::processTaskOutput(const QString &chunk)
{
    keepForReport(chunk);
    showChunk(parseOutput(chunk));
}

void ConversionTask::copyTags(const std::function<void()> &copy)
{
    // A job that was cancelled while it waited, or whose program is missing, made no
    // output, and one that was refused the place made none either: whatever has that
    // name belongs to someone else.
    const bool hasOutput = hasRun() && isThere(outputFile()) && (programSucceeded() || !outputExisted());
    if (!hasOutput)
        return;
    try {
        checkThatSourceIsThere();
        copy();
    } catch (const NurvFailure &failure) {
        qCWarning(convertLog).noquote() << "Tags not copied:" << fileName() << "->" << outputFile() << ':'
                                        << failure.reason();
        keepSourceForItsTags();
    }
}

} // namespace nurv

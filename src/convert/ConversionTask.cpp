// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConversionTask.h"

#include "app/PathNames.h"
#include "app/TemporaryNames.h"
#include "base/GuiThread.h"
#include "base/Log.h"
#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "base/WorkerThreads.h"
#include "files/FileRename.h"
#include "files/FileStatus.h"
#include "programs/ExternalPrograms.h"

#include <QFile>

#include <cerrno>
#include <exception>
#include <memory>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Where flac works when it replaces an output, source or not.
QString temporaryOf(const QString &output)
{
    return output + kFlacScratchSuffix.toString();
}

} // namespace

ConversionTask::ConversionTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments,
                               const QString &fileName)
    : NURVAsyncNSTask(queue, launchPath, arguments), Conversion(*this, fileName)
{
}

void ConversionTask::startTask()
{
    std::optional<QString> obstacle = refusal();
    if (!obstacle)
        obstacle = takeOutput();
    if (!obstacle) {
        try {
            beginOutput(replacesOutput());
            noteIntermediateBegun();
            m_intermediateExisted = isThere(intermediateFile());
            if (isLink(intermediateFile()))
                throw NurvFailure(u"%1 is a link, and has the name of a file on the way to its output"_s.arg(
                    lastPathComponent(intermediateFile())));
        } catch (const NurvFailure &failure) {
            obstacle = failure.reason();
        }
    }
    if (!obstacle) {
        NURVAsyncNSTask::startTask();
        return;
    }
    becomeActive();
    noteProblem(*obstacle);
    if (deleteOriginal())
        ownOutcome().original = TaskOutcome::Original::Kept;
    failToStart(problemLine(*obstacle));
}

void ConversionTask::completeStop()
{
    takeIntermediateFile();
    if (!hasRun() || !isThere(outputFile())) {
        removeHalfMadeFiles();
        finishStop();
        return;
    }
    // The disk may take its time, and so do tags and a proof, so a worker does all; until then
    // the job stays active. When the application ends meanwhile, the source simply stays.
    const auto self = std::static_pointer_cast<ConversionTask>(shared_from_this());
    try {
        workerThreads::start([task = self]() mutable {
            task->finishMadeOutput();
            const SourceRetirement::Verdict verdict =
                task->programSucceeded() ? task->examineOutput() : SourceRetirement::Verdict();
            // When the application ends meanwhile, nobody else does.
            if (task->cancelled())
                task->keepOrDropOutput();
            // The job must not end on this thread.
            ConversionTask *const examined = task.get();
            postToGuiThread([task = std::move(task), examined, verdict] { examined->takeExamination(verdict); });
        });
    } catch (const std::exception &failure) {
        qCWarning(convertLog, "The output was not examined: %s", failure.what());
        finishMadeOutput();
        SourceRetirement::Verdict verdict;
        if (programSucceeded() && !cancelled() && !error()) {
            verdict.proof = TaskOutcome::Proof::NotProven;
            if (deleteOriginal())
                verdict.keeping = u"its output could not be examined"_s;
        }
        takeExamination(verdict);
    }
}

void ConversionTask::finishMadeOutput()
{
    runHook([this] { finishOutput(); });
    removeHalfMadeFiles();
    if (programSucceeded() && !cancelled() && !error())
        noteComplete();
}

void ConversionTask::takeIntermediateFile()
{
    const QString made = intermediateFile();
    if (made.isEmpty() || !hasRun() || m_intermediateExisted || !isThere(made))
        return;
    // shntool, which alone gives such names, does so to whole files: after a failure this is somebody else's.
    if (!programSucceeded())
        return;
    if (renameToFreeName(QFile::encodeName(made), QFile::encodeName(outputFile())))
        return;
    const QString problem = u"its output stays as %1, since it could not get its name: %2"_s.arg(
        lastPathComponent(made), systemErrorText(errno));
    // Whatever has that name now is somebody else's.
    disownOutput();
    noteProblem(problem);
    failWith(problemLine(problem));
}

void ConversionTask::takeExamination(const SourceRetirement::Verdict &verdict)
{
    takeVerdict(verdict);
    finishStop();
}

void ConversionTask::finishStop()
{
    if (!programSucceeded() && !cancelled())
        setError(true);
    if (hasRun() && !cancelled() && !error() && !hasMadeOutput()) {
        noteProblem(u"its program made no output"_s);
        failWith(problemLine(u"its program made no output"_s));
    }
    keepOrDropOutput();
    if (hasRun())
        noteIntermediateGone();
    NURVAsyncNSTask::completeStop();
}

void ConversionTask::removeHalfMadeFiles() const
{
    const std::optional<ChildExit> exit = exitState();
    if (!exit || exit->succeeded())
        return;
    const ExternalProgram *const program = findExternalProgram(lastPathComponent(launchPath()));
    // Of a program that ends by itself the output is removed only where it is known to leave
    // a cut one.
    const bool placesWhole = program && program->placesWholeOutput;
    const bool isCut = !placesWhole && (exit->signal != 0 || (program && program->leavesHalfMadeOutput));
    // Nothing had that name when the program was started.
    if (exit->signal != 0)
        removeHalfMade(temporaryOf(outputFile()));
    if (isCut && !outputExisted())
        removeHalfMade(outputFile());
}

bool ConversionTask::programSucceeded() const
{
    const std::optional<ChildExit> exit = exitState();
    return exit && exit->succeeded();
}

QString ConversionTask::report() const
{
    return reportOr(NURVAsyncNSTask::report());
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
    const auto tell = [this](const QString &reason) {
        qCWarning(convertLog).noquote() << "Tags not copied:" << fileName() << "->" << outputFile() << ':' << reason;
        noteLostTags(reason);
    };
    try {
        checkThatSourceIsThere();
        copy();
    } catch (const NurvFailure &failure) {
        tell(failure.reason());
    } catch (const std::exception &failure) {
        tell(QString::fromUtf8(failure.what()));
    }
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/DeEmphasisTask.h"

#include "app/PathNames.h"
#include "base/Log.h"
#include "base/SystemError.h"
#include "files/FileStatus.h"
#include "journal/OutputJournal.h"
#include "programs/Sox.h"
#include "samples/SoundLength.h"
#include "text/TextNumbers.h"

#include <QFileInfo>

#include <cerrno>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Whether that is what the header of a stream has that a program has written into a pipe: a size close below 2³¹ or
/// 2³².
bool isLengthOfPipe(std::int64_t frames, std::int64_t frameBytes)
{
    constexpr std::int64_t kClose = 0x10000;
    const std::int64_t bytes = frames * frameBytes;
    return (bytes < 0x80000000 && bytes >= 0x80000000 - kClose)
           || (bytes < 0x100000000 && bytes >= 0x100000000 - kClose);
}

/// What is to come out; nothing where the source does not tell.
std::optional<std::int64_t> framesOf(const SoundLength &source)
{
    const std::int64_t frameBytes = std::int64_t{source.channels} * ((source.bitsPerSample + 7) / 8);
    const bool isTold = source.declaredFrames && !isLengthOfPipe(*source.declaredFrames, frameBytes);
    return isTold ? source.declaredFrames : source.heldFrames;
}

} // namespace

DeEmphasisTask::DeEmphasisTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments,
                               std::shared_ptr<NURVTaskResults> results)
    : NURVAsyncNSTask(queue, launchPath, arguments)
{
    setSourcePath(sox::deEmphasisSource(arguments));
    nameRow(lastPathComponent(fileName()));
    setResults(std::move(results));
}

DeEmphasisTask::~DeEmphasisTask() = default;

std::optional<QString> DeEmphasisTask::takeOutput()
{
    // Before the look at the name, so that what another job makes is not taken for somebody's file.
    if (std::optional<QString> refusal = m_claim.take(outputFile(), fileName(), nullptr))
        return refusal;
    if (isLink(outputFile()))
        return u"its output name is a link"_s;
    return reserveOutput();
}

std::optional<QString> DeEmphasisTask::reserveOutput()
{
    const QString name = lastPathComponent(outputFile());
    m_journal = OutputJournal::begin({{outputFile(), fileName()}});
    m_journal->markBegun(outputFile());
    if (m_output.make(outputFile()))
        return std::nullopt;
    const int reason = errno;
    m_journal->markEnded(outputFile());
    return reason == EEXIST ? u"its output %1 exists already"_s.arg(name)
                            : u"its output %1 cannot be made: %2"_s.arg(name, systemErrorText(reason));
}

void DeEmphasisTask::startTask()
{
    ownOutcome().sourceBytes = QFileInfo(fileName()).size();
    if (const std::optional<QString> obstacle = takeOutput()) {
        becomeActive();
        ownOutcome().problem = *obstacle;
        failToStart(u"%1: %2\n"_s.arg(fileName(), *obstacle));
        return;
    }
    NURVAsyncNSTask::startTask();
}

void DeEmphasisTask::processTaskOutput(const QString &chunk)
{
    const sox::DeEmphasisReport report = sox::parseDeEmphasis(chunk);
    m_totalOutput += report.text;
    if (report.progress) {
        setTopTextFieldString(u"Applying de-emphasis: %1%"_s.arg(sixDecimals(*report.progress)));
        setProgressIndicatorValue(*report.progress);
        updateStatus();
    }
    if (report.isDone)
        m_totalOutput += u"%1  - Done"_s.arg(fileName());
}

void DeEmphasisTask::failWith(const QString &reason)
{
    setError(true);
    m_totalOutput += u'\n' + reason;
}

void DeEmphasisTask::fail(const QString &problem)
{
    if (outcome().problem.isEmpty())
        ownOutcome().problem = problem;
    failWith(u"%1: %2\n"_s.arg(fileName(), problem));
}

/// sox ends with status 0, too, when a source is shorter than its header says.
std::optional<QString> DeEmphasisTask::faultOfOutput() const
{
    if (!isThere(outputFile()))
        return u"its program made no output"_s;
    if (!m_output.isInPlace())
        return u"something else has the name of its output %1 now, and stays"_s.arg(lastPathComponent(outputFile()));
    const std::optional<SoundLength> source = soundLength(fileName());
    const std::optional<SoundLength> made = soundLength(outputFile());
    if (!made || !made->declaredFrames)
        return u"the output's length cannot be read"_s;
    if (made->heldFrames && *made->heldFrames < *made->declaredFrames)
        return u"the output holds %1 samples, and tells of %2"_s.arg(*made->heldFrames).arg(*made->declaredFrames);
    const std::optional<std::int64_t> expected = source ? framesOf(*source) : std::nullopt;
    if (expected && expected != made->declaredFrames)
        return u"the output has %1 samples, and the source %2"_s.arg(*made->declaredFrames).arg(*expected);
    return std::nullopt;
}

void DeEmphasisTask::removeOutput() const
{
    if (!m_output.remove() && errno != ENOENT)
        qCWarning(utilLog).noquote() << "Not removed:" << outputFile() << ':' << systemErrorText(errno);
}

void DeEmphasisTask::cleanup()
{
    if (!m_output.isMade())
        return;
    if (!error() && !cancelled())
        examineOutput();
    else if (error() && hasRun() && outcome().problem.isEmpty())
        ownOutcome().problem = sox::reasonOfFailure(m_totalOutput);
    if (outcome().output.isEmpty())
        removeOutput();
    m_journal->markEnded(outputFile());
}

void DeEmphasisTask::examineOutput()
{
    if (const std::optional<QString> fault = faultOfOutput()) {
        fail(*fault);
        return;
    }
    ownOutcome().output = outputFile();
    ownOutcome().outputBytes = QFileInfo(outputFile()).size();
}

void DeEmphasisTask::finalCleanup()
{
    m_claim.release();
    m_journal.reset();
    m_totalOutput += u"\n\n"_s;
    appendResults(m_totalOutput);
}

} // namespace nurv

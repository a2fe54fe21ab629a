// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/DeEmphasisTask.h"

#include "app/PathNames.h"
#include "base/Log.h"
#include "base/SystemError.h"
#include "files/FileStatus.h"
#include "files/FolderEntry.h"
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

/// Whether it is what stands in the header of a stream that a program has written into a pipe: close below 2³¹ or 2³².
bool isSizeOfPipe(std::int64_t bytes)
{
    constexpr std::int64_t kClose = 0x10000;
    for (const std::int64_t most : {std::int64_t{0x80000000}, std::int64_t{0x100000000}}) {
        if (bytes < most && bytes >= most - kClose)
            return true;
    }
    return false;
}

/// What is to come out; nothing where the source does not tell.
std::optional<std::int64_t> framesOf(const SoundLength &source)
{
    if (!source.declaredFrames)
        return source.heldFrames;
    const std::int64_t frameBytes = std::int64_t{source.channels} * ((source.bitsPerSample + 7) / 8);
    return isSizeOfPipe((*source.declaredFrames + 1) * frameBytes - 1)
                   || isSizeOfPipe(*source.declaredFrames * frameBytes)
               ? source.heldFrames
               : source.declaredFrames;
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
    if (isThere(outputFile()))
        return u"its output %1 exists already"_s.arg(lastPathComponent(outputFile()));
    return std::nullopt;
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
    m_journal = OutputJournal::begin({{outputFile(), fileName()}});
    m_journal->markBegun(outputFile());
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
    if (!isPlainFile(outputFile()))
        return u"its program made no output"_s;
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
    // It had no such name when the program was started.
    if (isThere(outputFile()) && !FolderEntry(outputFile()).remove())
        qCWarning(utilLog).noquote() << "Not removed:" << outputFile() << ':' << systemErrorText(errno);
}

void DeEmphasisTask::cleanup()
{
    if (!hasRun())
        return;
    if (error() || cancelled()) {
        if (error() && outcome().problem.isEmpty())
            ownOutcome().problem = sox::reasonOfFailure(m_totalOutput);
        removeOutput();
    } else if (const std::optional<QString> fault = faultOfOutput()) {
        fail(*fault);
        removeOutput();
    } else {
        ownOutcome().output = outputFile();
        ownOutcome().outputBytes = QFileInfo(outputFile()).size();
    }
    m_journal->markEnded(outputFile());
}

void DeEmphasisTask::finalCleanup()
{
    m_claim.release();
    m_journal.reset();
    m_totalOutput += u"\n\n"_s;
    appendResults(m_totalOutput);
}

} // namespace nurv

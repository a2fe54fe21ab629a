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

DeEmphasisTask::DeEmphasisTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments,
                               std::shared_ptr<NURVTaskResults> results)
    : NURVAsyncNSTask(queue, launchPath, arguments)
{
    setSourcePath(arguments.at(1));
    nameRow(lastPathComponent(fileName()));
    setResults(std::move(results));
}

DeEmphasisTask::~DeEmphasisTask() = default;

std::optional<QString> DeEmphasisTask::takeOutput()
{
    const QString name = lastPathComponent(outputFile());
    if (isLink(outputFile()))
        return u"its output name is a link"_s;
    if (isThere(outputFile()))
        return u"its output %1 exists already"_s.arg(name);
    return m_claim.take(outputFile(), fileName(), nullptr);
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
    if (source && source->declaredFrames && source->declaredFrames != made->declaredFrames)
        return u"the output has %1 samples, and the source tells of %2"_s.arg(*made->declaredFrames)
            .arg(*source->declaredFrames);
    return std::nullopt;
}

void DeEmphasisTask::cleanup()
{
    if (!hasRun())
        return;
    if (error() || cancelled()) {
        if (error() && outcome().problem.isEmpty())
            ownOutcome().problem = sox::reasonOfFailure(m_totalOutput);
        // It had no such name when the program was started.
        if (isThere(outputFile()) && !FolderEntry(outputFile()).remove())
            qCWarning(utilLog).noquote() << "Not removed:" << outputFile() << ':' << systemErrorText(errno);
    } else if (const std::optional<QString> fault = faultOfOutput()) {
        fail(*fault);
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

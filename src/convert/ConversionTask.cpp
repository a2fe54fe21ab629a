// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConversionTask.h"

#include "app/PathNames.h"
#include "app/Util.h"
#include "convert/ConvertLog.h"
#include "convert/DeletionCheck.h"
#include "platform/GuiThread.h"
#include "platform/NurvFailure.h"
#include "platform/WorkerThreads.h"

#include <QFile>

#include <algorithm>
#include <memory>
#include <optional>
#include <system_error>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Of a longer output only the end is kept: that is where programs say what failed.
constexpr qsizetype kLongestReport = 65'536;

bool isSameFile(const QString &left, const QString &right)
{
    struct stat leftFacts = {};
    struct stat rightFacts = {};
    return ::stat(QFile::encodeName(left).constData(), &leftFacts) == 0
           && ::stat(QFile::encodeName(right).constData(), &rightFacts) == 0 && leftFacts.st_dev == rightFacts.st_dev
           && leftFacts.st_ino == rightFacts.st_ino;
}

/// Also true for a link that leads nowhere.
bool isThere(const QString &path)
{
    struct stat facts = {};
    return ::lstat(QFile::encodeName(path).constData(), &facts) == 0;
}

/// Where flac works when it replaces an output, source or not.
QString temporaryOf(const QString &output)
{
    return output + u".tmp,fl-ac+en'c"_s;
}

} // namespace

ConversionTask::ConversionTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments,
                               const QString &fileName)
    : NURVAsyncNSTask(queue, launchPath, arguments), m_fileName(fileName)
{
    setTitle(lastPathComponent(fileName));
    setTextFieldString(title());
    setTextFieldValue();
}

void ConversionTask::startTask()
{
    if (const std::optional<QString> other = m_claim.take(outputFile(), fileName(), m_batch.get())) {
        becomeActive();
        failToStart(u"%1: its output %2 is made from %3\n"_s.arg(fileName(), lastPathComponent(outputFile()), *other));
        return;
    }
    m_outputExisted = isThere(outputFile());
    m_temporaryExisted = isThere(temporaryOf(outputFile()));
    NURVAsyncNSTask::startTask();
}

void ConversionTask::completeStop()
{
    removeHalfMadeFiles();
    if (!m_deleteOriginal || cancelled() || !programSucceeded()) {
        NURVAsyncNSTask::completeStop();
        return;
    }
    // The disk may take its time, so a worker waits for it; until then the job stays
    // active. When the application ends meanwhile, the source simply stays.
    const auto self = std::static_pointer_cast<ConversionTask>(shared_from_this());
    const auto stop = [self](bool isOnDisk) {
        self->m_outputIsOnDisk = isOnDisk;
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
    if (!m_outputExisted && !isSameFile(fileName(), outputFile()))
        removeHalfMade(outputFile());
}

void ConversionTask::removeHalfMade(const QString &path) const
{
    if (isThere(path) && !QFile::remove(path))
        qCWarning(convertLog).noquote() << "Half made and not removed:" << path;
}

bool ConversionTask::programSucceeded() const
{
    const std::optional<ChildExit> exit = exitState();
    return exit && exit->succeeded();
}

QString ConversionTask::report() const
{
    if (!error() && !m_toldOfDamage)
        return NURVAsyncNSTask::report();
    return fileName() + u":\n"_s + toolOutput::asOnATerminal(m_ownText);
}

void ConversionTask::keepForReport(const QString &text)
{
    m_ownText += text;
    // A marker can be spread over two chunks.
    const qsizetype fresh = std::min(m_ownText.size(), text.size() + toolOutput::kLongestDamageMarker);
    if (toolOutput::tellsOfDamage(QStringView(m_ownText).last(fresh))) {
        m_toldOfDamage = true;
        if (m_batch)
            m_batch->toldOfDamage = true;
    }
    if (m_ownText.size() > kLongestReport)
        m_ownText.remove(0, m_ownText.size() - kLongestReport);
}

void ConversionTask::failWith(const QString &reason)
{
    NURVAsyncNSTask::failWith(reason);
    if (!m_ownText.isEmpty() && !m_ownText.endsWith(u'\n'))
        keepForReport(u"\n"_s);
    keepForReport(reason);
}

void ConversionTask::processTaskOutput(const QString &chunk)
{
    keepForReport(chunk);
    const toolOutput::ChunkReport report = parseOutput(chunk);
    if (report.status) {
        setTopTextFieldString(*report.status);
        setProgressIndicatorValue(report.progress.value_or(0.0));
        updateStatus();
    }
    setTextFieldString(title());
    setTextFieldValue();
    // The first slot, whichever member of the set this job is.
    appendResults(report.results);
}

void ConversionTask::showStatus(const QString &text)
{
    setTopTextFieldString(text);
    setTopTextFieldValue();
}

void ConversionTask::copyTags(const std::function<void()> &copy)
{
    // A job that was cancelled while it waited, or whose program is missing, made no
    // output, and one that was refused the place made none either: whatever has that
    // name belongs to someone else.
    const bool hasOutput = hasRun() && isThere(outputFile()) && (programSucceeded() || !m_outputExisted);
    if (!hasOutput)
        return;
    try {
        copy();
    } catch (const NurvFailure &failure) {
        qCWarning(convertLog).noquote() << "Tags not copied:" << fileName() << "->" << outputFile() << ':'
                                        << failure.reason();
        m_sourceHasTheOnlyTags = true;
    }
}

std::optional<QString> ConversionTask::reasonToKeepOriginal() const
{
    if (const std::optional<QString> reason = reasonToKeepSource(m_fileName, outputFile()))
        return reason;
    if (m_toldOfDamage)
        return u"its program told of damage"_s;
    if (m_sourceHasTheOnlyTags)
        return u"only it has the tags"_s;
    if (!m_outputIsOnDisk)
        return u"its output may not be on the disk yet"_s;
    return std::nullopt;
}

void ConversionTask::deleteSourceIfDone()
{
    if (!m_deleteOriginal || error() || cancelled())
        return;
    if (const std::optional<QString> reason = reasonToKeepOriginal()) {
        qCWarning(convertLog).noquote() << "Kept, since" << *reason + u':' << m_fileName;
        return;
    }
    Util::deleteFile(m_fileName);
}

void ConversionTask::dropResultsUnlessFailed()
{
    if (error() || m_toldOfDamage || (m_batch && m_batch->toldOfDamage))
        return;
    setResults(nullptr);
    m_ownText.clear();
}

} // namespace nurv

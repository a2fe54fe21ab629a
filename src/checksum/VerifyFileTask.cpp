// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/VerifyFileTask.h"

#include "app/PathNames.h"
#include "programs/TestOutput.h"
#include "text/TextNumbers.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

VerifyFileTask::VerifyFileTask(std::shared_ptr<NURVTaskResults> results, NURVTaskQueue *queue, const QString &launchPath,
                               const QStringList &arguments, const QString &path)
    : NURVAsyncNSTask(queue, launchPath, arguments), m_fileName(lastPathComponent(path))
{
    setResults(std::move(results));
    setSourcePath(path);
    nameRow(m_fileName);
}

void VerifyFileTask::showProgress(double percent)
{
    setTopTextFieldString(u"Verifying: %1%"_s.arg(sixDecimals(percent)));
    setProgressIndicatorValue(percent);
    updateStatus();
}

void VerifyFileTask::addLines(const QString &lines)
{
    m_report += lines;
    appendResultsForSelf(lines);
}

void VerifyFileTask::addLinesToFirst(const QString &lines)
{
    m_report += lines;
    appendResults(lines);
}

void VerifyFileTask::failWith(const QString &reason)
{
    m_report += reason;
    NURVAsyncNSTask::failWith(reason);
}

VerifyFlacTask::VerifyFlacTask(std::shared_ptr<NURVTaskResults> results, NURVTaskQueue *queue, const QString &launchPath,
                               const QStringList &arguments)
    : VerifyFileTask(std::move(results), queue, launchPath, arguments, arguments.value(1))
{
}

void VerifyFlacTask::startTask()
{
    showStatus(u"Verifying"_s);
    VerifyFileTask::startTask();
}

void VerifyFlacTask::processTaskOutput(const QString &chunk)
{
    const testOutput::FlacChunk found = testOutput::parseFlac(chunk, fileName());
    m_singleResult += found.lines;
    if (found.hasProgress)
        showProgress(found.progress);
    showMainLine(fileName());
}

void VerifyFlacTask::cleanup()
{
    if (cancelled())
        m_singleResult += u"%1 canceled\n"_s.arg(fileName());
    addLines(testOutput::tailOf(m_singleResult));
}

VerifyApeTask::VerifyApeTask(std::shared_ptr<NURVTaskResults> results, NURVTaskQueue *queue, const QString &launchPath,
                             const QStringList &arguments)
    : VerifyFileTask(std::move(results), queue, launchPath, arguments, arguments.value(0))
{
}

void VerifyApeTask::processTaskOutput(const QString &chunk)
{
    if (chunk.contains(u'%') && chunk.contains(u"Progress: "_s))
        showProgress(leadingNumber(chunk.section(u"Progress: "_s, 1, 1).section(u'%', 0, 0)));
    m_singleResult += chunk;
    showMainLine(title());
}

void VerifyApeTask::cleanup()
{
    addLinesToFirst(testOutput::tailOfMac(m_singleResult, title()));
}

VerifyByPercentTask::VerifyByPercentTask(std::shared_ptr<NURVTaskResults> results, NURVTaskQueue *queue,
                                         const QString &launchPath, const QStringList &arguments)
    : VerifyFileTask(std::move(results), queue, launchPath, arguments, arguments.value(1))
{
}

void VerifyByPercentTask::startTask()
{
    showMainLine(title());
    VerifyFileTask::startTask();
}

void VerifyByPercentTask::processTaskOutput(const QString &chunk)
{
    const QString text = trimBackspaces(chunk);
    if (text.contains(u'%'))
        showProgress(leadingNumber(text.section(u"% done"_s, 0, 0)));
    addLines(text);
    showMainLine(title());
}

} // namespace nurv

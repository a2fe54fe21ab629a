// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/Conversion.h"

#include "app/PathNames.h"
#include "app/Util.h"
#include "convert/ConvertLog.h"
#include "convert/DeletionCheck.h"
#include "convert/FileFacts.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskResults.h"
#include "platform/GuiThread.h"
#include "platform/NurvFailure.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Of a longer output only the end is kept: that is where programs say what failed.
constexpr qsizetype kLongestReport = 65'536;

bool isSameMoment(const timespec &left, const timespec &right)
{
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

/// The same file, not written to in between.
bool isUntouched(const struct stat &before, const struct stat &now)
{
    return isSameFile(before, now) && before.st_size == now.st_size && isSameMoment(before.st_mtim, now.st_mtim)
           && isSameMoment(before.st_ctim, now.st_ctim);
}

} // namespace

Conversion::Conversion(NURVTask &task, const QString &fileName) : m_task(task)
{
    task.setSourcePath(fileName);
    task.setTitle(lastPathComponent(fileName));
    task.setTextFieldString(task.title());
    task.setTextFieldValue();
}

Conversion::~Conversion() = default;

const QString &Conversion::fileName() const
{
    return m_task.sourcePath();
}

std::shared_ptr<NURVTask> Conversion::asTask() const
{
    return m_task.shared_from_this();
}

void Conversion::setBatch(std::shared_ptr<ConversionBatch> batch)
{
    m_batch = std::move(batch);
    m_batch->sources.insert(QFileInfo(fileName()).canonicalFilePath());
}

bool Conversion::outputIsAnotherSource() const
{
    const QString output = QFileInfo(outputFile()).canonicalFilePath();
    return m_batch && !output.isEmpty() && m_batch->sources.contains(output) && !outputIsSource();
}

std::optional<QString> Conversion::takeOutput()
{
    if (outputIsAnotherSource())
        return u"%1: its output %2 is another file of the list\n"_s.arg(fileName(), lastPathComponent(outputFile()));
    if (const std::optional<QString> refusal = m_claim.take(outputFile(), fileName(), m_batch.get()))
        return u"%1: %2\n"_s.arg(fileName(), *refusal);
    m_sourceBefore = factsOf(fileName());
    lookAtOutput();
    return std::nullopt;
}

void Conversion::lookAtOutput()
{
    m_outputBefore = factsOf(outputFile());
    // A link that leads nowhere has the name all the same.
    if (!m_outputBefore && isThere(outputFile()))
        m_outputBefore.emplace();
}

bool Conversion::outputIsSource() const
{
    const std::optional<struct stat> source = factsOf(fileName());
    const std::optional<struct stat> output = factsOf(outputFile());
    return source && output && isSameFile(*source, *output);
}

bool Conversion::hasMadeOutput() const
{
    const std::optional<struct stat> now = factsOf(outputFile());
    return now && S_ISREG(now->st_mode) && now->st_size > 0 && hasTouchedOutput();
}

bool Conversion::hasTouchedOutput() const
{
    const std::optional<struct stat> now = factsOf(outputFile());
    return now && !(m_outputBefore && isUntouched(*m_outputBefore, *now));
}

void Conversion::removeHalfMade(const QString &path)
{
    if (isThere(path) && !QFile::remove(path))
        qCWarning(convertLog).noquote() << "Half made and not removed:" << path;
}

bool Conversion::isThere(const QString &path)
{
    struct stat facts = {};
    return ::lstat(QFile::encodeName(path).constData(), &facts) == 0;
}

void Conversion::showStatus(const QString &text)
{
    m_task.setTopTextFieldString(text);
    m_task.setTopTextFieldValue();
}

void Conversion::showChunk(const toolOutput::ChunkReport &report)
{
    if (report.status) {
        m_task.setTopTextFieldString(*report.status);
        m_task.setProgressIndicatorValue(report.progress.value_or(0.0));
        m_task.updateStatus();
    }
    if (report.repaintsTitle) {
        m_task.setTextFieldString(m_task.title());
        m_task.setTextFieldValue();
    }
    // The first slot, whichever member of the set this job is.
    if (const auto results = m_task.results())
        results->appendResults(report.results);
}

void Conversion::keepForReport(const QString &text)
{
    m_ownText += text;
    // A marker can be spread over two chunks.
    const qsizetype fresh = std::min(m_ownText.size(), text.size() + toolOutput::kLongestDamageMarker);
    if (toolOutput::tellsOfDamage(QStringView(m_ownText).last(fresh)))
        noteDamage(u"its program told of damage"_s);
    if (m_ownText.size() > kLongestReport)
        m_ownText.remove(0, m_ownText.size() - kLongestReport);
}

void Conversion::keepReasonForReport(const QString &reason)
{
    if (!m_ownText.isEmpty() && !m_ownText.endsWith(u'\n'))
        keepForReport(u"\n"_s);
    keepForReport(reason);
}

QString Conversion::reportInstead(const QString &usual) const
{
    if (!m_task.error() && !m_doubt)
        return usual;
    return fileName() + u":\n"_s + toolOutput::asOnATerminal(m_ownText);
}

void Conversion::doubtSource(const QString &reason)
{
    if (!m_doubt)
        m_doubt = reason;
    if (m_batch)
        m_batch->toldOfDamage = true;
}

void Conversion::noteDamage(const QString &reason)
{
    m_isDamaged = true;
    doubtSource(reason);
}

std::optional<QString> Conversion::reasonToKeepOriginal() const
{
    if (const std::optional<QString> reason = reasonToKeepSource(fileName(), outputFile()))
        return reason;
    if (const auto now = factsOf(fileName()); !m_sourceBefore || !now || !isUntouched(*m_sourceBefore, *now))
        return u"it has changed since the job began"_s;
    if (m_claim.isSourceReadByOthers())
        return u"another job converts it, too"_s;
    if (!hasTouchedOutput())
        return u"its output was there before"_s;
    if (m_doubt)
        return m_doubt;
    if (m_sourceHasTheOnlyTags)
        return u"only it has the tags"_s;
    if (!m_outputIsOnDisk)
        return u"its output may not be on the disk yet"_s;
    return std::nullopt;
}

void Conversion::deleteSourceIfDone()
{
    if (!m_deleteOriginal || m_task.error() || m_task.cancelled() || std::exchange(m_hasDeletedSource, true))
        return;
    if (const std::optional<QString> reason = reasonToKeepOriginal()) {
        qCWarning(convertLog).noquote() << "Kept, since" << *reason + u':' << fileName();
        return;
    }
    Util::deleteFile(fileName());
}

void Conversion::checkThatSourceIsThere() const
{
    // The tags of a file that is gone read as blank.
    if (!isThere(fileName()))
        throw NurvFailure(u"%1 is gone"_s.arg(fileName()));
}

bool Conversion::sharesSetWithDamage() const
{
    return m_batch && m_batch->toldOfDamage && m_task.results() && m_task.results()->memberCount() > 1;
}

void Conversion::dropResultsUnlessFailed()
{
    if (m_task.error() || m_doubt || sharesSetWithDamage())
        return;
    // Where the queue looks at it.
    runOnGuiThread([this] { m_task.setResults(nullptr); });
    m_ownText.clear();
}

} // namespace nurv

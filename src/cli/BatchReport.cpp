// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/BatchReport.h"

#include "app/ProblemLine.h"
#include "cli/Console.h"
#include "cli/RowDisplay.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskResults.h"
#include "engine/ReportFrame.h"
#include "text/RegularExpression.h"

#include <QJsonObject>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using Original = TaskOutcome::Original;
using Proof = TaskOutcome::Proof;

QString originalWord(Original original)
{
    switch (original) {
    case Original::Deleted: return u"deleted"_s;
    case Original::Trashed: return u"trashed"_s;
    case Original::Kept: return u"kept"_s;
    case Original::Untouched: break;
    }
    return u"untouched"_s;
}

QString proofWord(Proof proof)
{
    switch (proof) {
    case Proof::Proven: return u"proven"_s;
    case Proof::NotProven: return u"notProven"_s;
    case Proof::NotNeeded: break;
    }
    return u"notNeeded"_s;
}

using FileState = ListedFile::State;

} // namespace

struct BatchReport::Job {
    TaskOutcome outcome;
    QString report;  ///< what its programs wrote
    QString problem; ///< one line; empty when everything was done

    [[nodiscard]] bool keptOriginal() const { return outcome.original == Original::Kept; }
    [[nodiscard]] bool hasProblem() const { return !problem.isEmpty() || keptOriginal(); }
};

namespace {

/// The report without backspaces, and of figures that follow each other only with the last.
QString withLastFigures(const QString &report)
{
    // With the backspaces between them, which would take what stands before.
    static const RegularExpression earlier(u"\\s*\\b(?:\\d{1,3}%[ \\x08]*+(?=\\d{1,3}%))++"_s);
    return earlier.replaceAll(report, u" "_s).remove(u'\b');
}

/// The text with the path that it ends with, if it does, as the user knows it.
QString withKnownName(const QString &text, const SourceNames &names)
{
    const qsizetype path = text.indexOf(u" /"_s) + 1;
    return path == 0 ? text : text.first(path) + names.nameOf(text.sliced(path));
}

} // namespace

BatchReport::BatchReport(Console &console, Options options) : m_console(console), m_options(std::move(options))
{
    m_counts.refused = m_options.refused;
}

void BatchReport::addSettled(const NURVTask &task)
{
    Job job{.outcome = task.outcome(), .report = withLastFigures(task.report()), .problem = task.outcome().problem};
    const bool hasFailed = task.error() && !task.cancelled();
    // Also of one that had failed by itself when it was canceled.
    if ((hasFailed || (task.error() && job.keptOriginal())) && job.problem.isEmpty())
        job.problem = problemLine(task.report(), task.sourcePath(), m_options.switches);
    job.problem = withKnownName(job.problem, m_options.names);
    for (const QString &warning : task.warnings()) {
        if (!job.problem.contains(warning))
            job.problem += job.problem.isEmpty() ? warning : u"; "_s + warning;
    }
    if (!task.cancelled() && !hasFailed)
        m_warnings.append(task.warnings());
    add(task, job);
}

void BatchReport::addUnsettled(const NURVTask &task)
{
    add(task, {.outcome = {}, .report = {}, .problem = u"it has not come to its end"_s});
}

void BatchReport::add(const NURVTask &task, const Job &job)
{
    count(task, job);
    if ((task.error() || job.hasProblem()) && task.results() && !job.outcome.isReport)
        m_setsWithProblems.insert(task.results());
    else if (task.results() && task.results()->frame() && !task.cancelled())
        m_goodReports[task.results()].emplace(task.results()->placeOf(task), job.report);
    if (m_options.json)
        writeObject(task, job);
    if (!(m_options.json && m_options.quiet))
        writeLines(task, job);
}

void BatchReport::count(const NURVTask &task, const Job &job)
{
    // A job for a set of files does all of them or none.
    const int files = task.sourceCount();
    const int affected = std::max(files, 1);
    m_counts.files += files;
    if (task.cancelled()) {
        ++m_counts.canceled;
        return;
    }
    ++(task.error() ? m_counts.failed : m_counts.complete);
    if (job.keptOriginal())
        countKept(task, job, affected);
    else if (task.error())
        countFailed(task, job, affected);
    else if (job.hasProblem())
        m_counts.notInFull += affected;
    else
        m_counts.done += files;
    if (task.error())
        return;
    if (job.outcome.proof == Proof::NotProven)
        m_counts.notProven += affected;
    m_counts.sourceBytes += job.outcome.sourceBytes;
    m_counts.outputBytes += job.outcome.outputBytes;
}

/// Of a set some may have been done.
void BatchReport::countFailed(const NURVTask &task, const Job &job, int affected)
{
    const int failed = std::min(job.outcome.failedSources.value_or(affected), affected);
    m_counts.failedOtherwise += failed;
    m_counts.done += std::max(task.sourceCount() - failed, 0);
}

QString BatchReport::nameOf(const NURVTask &task) const
{
    return task.sourcePath().isEmpty() ? task.title() : m_options.names.nameOf(task.sourcePath());
}

/// Of a set some originals may be gone as they were meant to.
void BatchReport::countKept(const NURVTask &task, const Job &job, int affected)
{
    const int kept = task.error() ? affected : std::min(job.outcome.keptSources.value_or(affected), affected);
    m_counts.originalsKept += kept;
    m_counts.done += std::max(task.sourceCount() - kept, 0);
}

/// "disc1/a.wav: Complete; not proven"; nothing for a job that gets no line.
std::optional<QString> BatchReport::lineOf(const NURVTask &task, const Job &job) const
{
    QStringList words;
    if (task.cancelled()) {
        if (m_options.quiet || m_notBegun.count(&task) > 0)
            return std::nullopt;
        words.append(endingText(task));
        if (!job.problem.isEmpty())
            words.append(job.problem);
    } else if (task.error()) {
        words.append(job.problem);
        if (job.keptOriginal())
            words.append(u"original kept"_s);
    } else {
        if (m_options.quiet && !job.hasProblem())
            return std::nullopt;
        // A list that was not written is not complete in any way.
        if (!job.hasProblem() || task.sourceCount() > 0)
            words.append(endingText(task));
        if (job.keptOriginal())
            words.append(job.problem.isEmpty() ? u"original kept"_s : u"original kept: "_s + job.problem);
        else if (job.hasProblem())
            words.append(job.problem);
        if (job.outcome.proof == Proof::NotProven)
            words.append(u"not proven"_s);
    }
    return nameOf(task) + u": "_s + words.join(u"; "_s);
}

void BatchReport::writeLines(const NURVTask &task, const Job &job)
{
    if (const std::optional<QString> line = lineOf(task, job))
        m_console.writeLine(*line);
    for (const ListedFile &file : job.outcome.listedFiles) {
        if (file.state == FileState::Ok || task.cancelled())
            continue;
        const QString why = file.detail.isEmpty() ? QString() : u" ("_s + file.detail + u')';
        m_console.writeLine(u"    %1: %2%3"_s.arg(file.name, stateWord(file.state), why));
    }
    const bool wentWrong = !task.cancelled() && (task.error() || job.hasProblem());
    if (!m_options.verbose || m_options.json || !wentWrong)
        return;
    const QStringList lines = job.report.split(u'\n');
    for (const QString &line : lines) {
        if (!line.trimmed().isEmpty())
            m_console.writeLine(u"    "_s + line);
    }
}

void BatchReport::writeObject(const NURVTask &task, const Job &job)
{
    const TaskOutcome &outcome = job.outcome;
    for (const ListedFile &file : outcome.listedFiles) {
        m_console.writeJson({{u"type"_s, u"entry"_s},
                             {u"list"_s, task.sourcePath()},
                             {u"name"_s, file.name},
                             {u"state"_s, stateWord(file.state)},
                             {u"reason"_s, file.detail}});
    }
    m_console.writeJson({{u"type"_s, u"job"_s},
                         {u"title"_s, task.title()},
                         {u"source"_s, task.sourcePath()},
                         {u"output"_s, outcome.output.isEmpty() ? QJsonValue() : QJsonValue(outcome.output)},
                         {u"status"_s, endingText(task).toLower()},
                         {u"original"_s, originalWord(outcome.original)},
                         {u"proof"_s, proofWord(outcome.proof)},
                         {u"reason"_s, job.problem},
                         {u"sourceBytes"_s, outcome.sourceBytes},
                         {u"outputBytes"_s, outcome.outputBytes},
                         {u"report"_s, job.report}});
}

void BatchReport::addWindow(const QString &text, const QString &title, const std::shared_ptr<NURVTaskResults> &results)
{
    m_windowObjects.append(QJsonObject{{u"title"_s, title}, {u"text"_s, withLastFigures(text)}});
    m_windows.push_back({text, results});
}

void BatchReport::writeWindows()
{
    if (m_options.json)
        return;
    for (const Window &window : m_windows) {
        // What went wrong was told job by job; a set without any report is nothing but line ends.
        if (m_setsWithProblems.count(window.results))
            m_console.writeOutput(goodReportsOf(window.results));
        else if (!window.text.trimmed().isEmpty())
            m_console.writeOutput(window.text);
    }
}

QString BatchReport::goodReportsOf(const std::shared_ptr<NURVTaskResults> &results) const
{
    const auto good = m_goodReports.find(results);
    if (good == m_goodReports.end())
        return {};
    QString text;
    for (const auto &[place, report] : good->second)
        text += report + u'\n';
    return text + results->frame()->foot();
}

void BatchReport::writeClosingLine(std::chrono::milliseconds duration)
{
    // A list that was written is no file of the batch.
    const bool hasFiles =
        m_counts.files > 0 || m_counts.refused > 0 || m_counts.skippedExisting > 0 || m_counts.canceled > 0;
    if (!m_options.quiet && hasFiles)
        m_console.writeLine(closingLine(m_counts, duration));
}

} // namespace nurv

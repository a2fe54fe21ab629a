// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/BatchCounts.h"
#include "cli/SourceNames.h"

#include <QJsonArray>
#include <QString>
#include <QStringList>

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace nurv {

class Console;
class NURVTask;
class NURVTaskResults;

/// Counts what became of the jobs and tells it: a line for each job that is settled and,
/// when wanted, what its programs wrote; a JSON object instead; the reports of sets in
/// which nothing went wrong; the closing line.
///
/// GUI thread.
class BatchReport {
public:
    struct Options {
        bool json = false;
        bool quiet = false;   ///< no line about a job that did all it was asked for
        bool verbose = false; ///< what programs wrote follows the line of a problem
        SourceNames names = {};
        QStringList switches = {}; ///< those that a program's advice may mention: "--lax"
        int refused = 0;           ///< how much of the input could not be worked on
    };

    /// `console` must outlive the report.
    BatchReport(Console &console, Options options);

    /// A job whose outcome is final.
    void addSettled(const NURVTask &task);
    /// A job that hangs: there is no outcome to be had.
    void addUnsettled(const NURVTask &task);
    /// Jobs that will be canceled before they began get no line each.
    void addNotBegun(const NURVTask &task) { m_notBegun.insert(&task); }
    /// What an output window of that set would show.
    void addWindow(const QString &text, const QString &title, const std::shared_ptr<NURVTaskResults> &results);
    void setSkippedExisting(int count) { m_counts.skippedExisting = count; }

    /// Writes what the windows of sets without a problem would show to standard output, and of checks with one the reports of
    /// what is good.
    void writeWindows();
    void writeClosingLine(std::chrono::milliseconds duration);

    [[nodiscard]] const BatchCounts &counts() const { return m_counts; }
    [[nodiscard]] const QStringList &warnings() const { return m_warnings; }
    [[nodiscard]] const QJsonArray &windows() const { return m_windowObjects; }

private:
    /// What there is to say about one job.
    struct Job;
    struct Window {
        QString text;
        std::shared_ptr<NURVTaskResults> results;
    };

    void add(const NURVTask &task, const Job &job);
    void count(const NURVTask &task, const Job &job);
    void countKept(const NURVTask &task, const Job &job, int affected);
    void countFailed(const NURVTask &task, const Job &job, int affected);
    void writeLines(const NURVTask &task, const Job &job);
    void writeObject(const NURVTask &task, const Job &job);
    [[nodiscard]] std::optional<QString> lineOf(const NURVTask &task, const Job &job) const;
    [[nodiscard]] QString nameOf(const NURVTask &task) const;
    [[nodiscard]] QString goodReportsOf(const std::shared_ptr<NURVTaskResults> &results) const;

    Console &m_console;
    Options m_options;
    BatchCounts m_counts;
    QStringList m_warnings; ///< of jobs that ended well
    QJsonArray m_windowObjects;
    std::vector<Window> m_windows;
    std::set<std::shared_ptr<NURVTaskResults>> m_setsWithProblems;
    std::map<std::shared_ptr<NURVTaskResults>, std::map<int, QString>> m_goodReports; ///< of framed sets, by their places
    std::set<const NURVTask *> m_notBegun;
};

} // namespace nurv

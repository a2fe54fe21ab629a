// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVInProcessTask.h"

#include <QString>

#include <memory>
#include <vector>

namespace nurv {

/// Checks the files of one checksum list, and reports to a set that all lists of a batch share.
///
///     first line ──> verify: lines, files ──> lines ──> what is wrong, counted
///
/// The lines of the report are as they always were, whatever they hide: a file that is not there can have the digest that its
/// entry wants. What was found of each file stands in the outcome; when one is not what the list says, the last lines count
/// them, and the job ends in error.
class VerifyListTask : public NURVInProcessTask {
public:
    /// Lists of other programs are understood, too: see foreignList. Before the start.
    void setUnderstandsOthers(bool understandsOthers) { m_understandsOthers = understandsOthers; }

protected:
    /// `fileName`: the list, an absolute path.
    VerifyListTask(NURVTaskQueue *queue, const QString &fileName, std::shared_ptr<NURVTaskResults> results);

    /// The first status line.
    [[nodiscard]] virtual QString openingStatus() const = 0;
    /// What the report begins with: "Verify MD5: " and so on.
    [[nodiscard]] virtual QString openingLine() const = 0;
    /// The files. Throws NurvFailure when the list cannot be read.
    virtual void verify() = 0;

    void doStartTask() final;

    [[nodiscard]] const QString &fileName() const { return sourcePath(); }
    [[nodiscard]] bool understandsOthers() const { return m_understandsOthers; }
    /// Adds to the job's own part of the report.
    void addLines(const QString &lines) { appendResultsForSelf(lines); }
    /// One of the files of the list, in its order.
    void addFile(const ListedFile &file) { m_files.push_back(file); }
    /// A file that was good so far.
    void markDamaged(std::size_t index, const QString &detail);
    [[nodiscard]] std::size_t fileCount() const { return m_files.size(); }

private:
    void conclude();

    std::vector<ListedFile> m_files;
    bool m_understandsOthers = false;
};

/// What is wrong with files of a list, a statement for each kind: "2 of 14 files are missing". Empty when nothing is.
[[nodiscard]] QStringList statementsOn(const std::vector<ListedFile> &files);

} // namespace nurv

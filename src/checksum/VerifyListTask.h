// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "checksum/ListEntries.h"
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
/// them, and the job ends in error. A list that another program may have written is said to be one.
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
    // The entries of a text, read as a list of this program, and as one of another.
    [[nodiscard]] virtual std::vector<checksumList::Entry> ownEntries(const QString &text) const = 0;
    [[nodiscard]] virtual std::vector<checksumList::Entry> entriesOfOthers(const QString &text) const = 0;
    /// Whether an entry can only fit without a folder in its name.
    [[nodiscard]] virtual bool needsBareNames() const { return false; }

    void doStartTask() final;

    [[nodiscard]] const QString &fileName() const { return sourcePath(); }
    [[nodiscard]] bool understandsOthers() const { return m_understandsOthers; }
    /// The text of the list, in UTF-8 unless others are understood. Throws NurvFailure.
    [[nodiscard]] QString text() const;
    [[nodiscard]] std::vector<checksumList::Entry> entriesOf(const QString &text) const;
    /// Adds to the job's own part of the report.
    void addLines(const QString &lines) { appendResultsForSelf(lines); }
    /// Adds to the lines that get into the report in one piece, with `reportGathered` or when the check ends early.
    void gather(const QString &lines) { m_gathered += lines; }
    void reportGathered();
    /// One of the files of the list, in its order.
    void addFile(const ListedFile &file) { m_files.push_back(file); }
    /// A file that was good so far.
    void mark(std::size_t index, ListedFile::State state, const QString &detail);
    [[nodiscard]] std::size_t fileCount() const { return m_files.size(); }

private:
    void conclude();
    void failFor(const QString &reason);
    [[nodiscard]] bool isOfAnotherProgram() const;
    [[nodiscard]] bool hasNamesForOthers() const;

    std::vector<ListedFile> m_files;
    QString m_gathered;
    bool m_understandsOthers = false;
};

/// What is wrong with files of a list, a statement for each kind: "2 of 14 files are missing", "1 of 1 file is missing".
/// Empty when nothing is.
[[nodiscard]] QStringList statementsOn(const std::vector<ListedFile> &files);

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>
#include <vector>

namespace nurv {

/// One of the files that a job has looked at for its list.
struct ListedFile {
    enum class State {
        Ok,         ///< it was read, and is what the list says
        Different,  ///< it was read, and is another one
        Damaged,    ///< its decoder found errors
        Missing,    ///< there is no file of that name
        Unreadable, ///< it could not be read to its end
        NotAnEntry, ///< the line names no file
    };

    QString name; ///< as the list has it; of a line that is no entry the whole of it
    State state = State::Ok;
    QString detail = {}; ///< one line: why, where that is known
};

/// One word of small letters: "ok", "missing" and so on.
[[nodiscard]] QString stateWord(ListedFile::State state);

/// What a job made of its source, and what became of that source. Final when the queue
/// says that the job is settled; read it on the GUI thread then.
struct TaskOutcome {
    enum class Original {
        Untouched, ///< nobody asked for its deletion, or the job did not get that far
        Deleted,
        Trashed,
        Kept, ///< its deletion was asked for, and `problem` says why it is there still
    };
    enum class Proof {
        NotNeeded, ///< the lengths that files and programs tell agree
        Proven,    ///< both sides were decoded and are equal
        NotProven, ///< no length was told that could be compared
    };

    QString output; ///< absolute path; empty when the job left none
    Original original = Original::Untouched;
    Proof proof = Proof::NotNeeded;
    /// One line without the source's name, without a full stop: why the job failed, or
    /// what was not done although it did its work. Empty when all was done.
    QString problem;
    qint64 sourceBytes = 0; ///< at the start of the job
    qint64 outputBytes = 0; ///< at its end
    /// What a job that checks a list has found, in the order of the list.
    std::vector<ListedFile> listedFiles = {};
    /// Of a job that did its work on several sources and kept originals: how many of them. Nothing: all.
    std::optional<int> keptSources = {};
    /// Of a job that failed at some of several sources: how many of them. Nothing: all.
    std::optional<int> failedSources = {};
    /// Of a job that made several files: how many of them. `output` is their folder then.
    int outputFiles = 0;
    /// Its report is what it was for, and is told whatever it failed at.
    bool isReport = false;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QtGlobal>

namespace nurv {

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
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "journal/FileIdentity.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace nurv {

/// A file that a process left when it was killed. Paths are bytes.
struct Leftover {
    enum class Kind {
        Output,    ///< under the name of an output
        Temporary, ///< a file or folder that was to go
        Aside,     ///< a user's file that was moved aside for an output
    };
    enum class Plan {
        Remove,  ///< proven to be ours and unfinished
        PutBack, ///< the user's file goes back to where it was
        Leave,   ///< told only: somebody has to look at it
        Wait,    ///< a program still works on it, so it is looked at another time
    };
    enum class Outcome { Open, Removed, PutBack, Left };

    Kind kind = Kind::Output;
    Plan plan = Plan::Leave;
    QByteArray path;
    QByteArray output; ///< of an aside: where it belongs
    QString reason;    ///< why it is left, or waited for
    FileIdentity identity;
    Outcome outcome = Outcome::Open;
};

/// A conversion that a process did not come to the end of, and whose output is not there.
struct UnfinishedSource {
    QByteArray source;
    QByteArray output;
};

/// What one journal tells of a process that was killed.
struct UnfinishedRun {
    QByteArray journal;        ///< the name of its file
    QString defect;            ///< why the journal cannot be used; then there is nothing else
    std::int64_t beganNs = 0;  ///< since 1970
    int runningPrograms = 0;   ///< that the process has started
    QList<Leftover> leftovers; ///< an output stands before what goes into its place
    QList<UnfinishedSource> sources;

    [[nodiscard]] bool isEmpty() const
    {
        return defect.isEmpty() && runningPrograms == 0 && leftovers.isEmpty() && sources.isEmpty();
    }
};

} // namespace nurv

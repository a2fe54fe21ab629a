// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "programs/ProgramOutput.h"

#include <QString>
#include <QStringList>
#include <QStringView>

#include <functional>

namespace nurv {

/// One run of a program of the resource folder within a job: its command line, how its
/// output is read, when it is ended, and what its end means.
struct ProgramStage {
    QString name;
    QStringList arguments;
    std::function<ChunkReport(const QString &chunk)> parse;
    /// Whether the end of the output so far tells of a failure: the job's error flag is set.
    /// May be empty.
    std::function<bool(QStringView text)> tellsOfError = {};
    /// Whether the end of the output so far asks if a file may be replaced, which nobody
    /// answers: the file is not the program's own. May be empty.
    std::function<bool(QStringView text)> asksToOverwrite = {};
    /// The run is ended as soon as the error flag is set.
    bool stopsOnError = true;
    /// The run is ended as soon as the job is cancelled.
    bool stopsOnCancel = true;
    /// A file in the output's place is replaced without a question, where the batch leaves
    /// that to the program.
    bool replacesOutput = false;
    /// A status other than 0 makes the job fail when it stops. Where it does not, it still
    /// keeps the source.
    bool looksAtExitStatus = true;

    /// A stage that decodes for an encoding to Apple Lossless: neither its status nor a
    /// cancelled job is looked at while it runs.
    [[nodiscard]] ProgramStage unwatched() const;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "programs/ExternalProgram.h"

#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace nurv::sox {

// `sox`. Nothing here runs it. Paths are absolute; each word is one argument.

[[nodiscard]] const ExternalProgram &program();

/// A file with pre-emphasis to one without; the output's extension says its format. It takes 44100 and 48000 Hz only.
/// The program opens what the source's name means as a pattern of glob(7), so that one with "[1]" would be another
/// file: what it would obey there is written with backslashes.
[[nodiscard]] QStringList deEmphasisArguments(const QString &source, const QString &output);
/// The source in such arguments, as it is called.
[[nodiscard]] QString deEmphasisSource(const QStringList &arguments);

// "In:42.5% 00:00:10.22 [00:00:13.78] Out:451k  [  -===|===-  ]        Clip:0    ", each line over the one before, in the
// end "Done.". What it says of the files stands before the first of them.

/// What one chunk means to a de-emphasis.
struct DeEmphasisReport {
    QString text;                   ///< for the report; not of a line of progress
    std::optional<double> progress; ///< in percent
    bool isDone = false;            ///< it tells that it has come to its end
};
[[nodiscard]] DeEmphasisReport parseDeEmphasis(QStringView chunk);

/// The reason in the text of a run that failed, in its own words: "can't open input file `a.wav': ...". Empty: none.
[[nodiscard]] QString reasonOfFailure(QStringView text);

} // namespace nurv::sox

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "programs/ExternalProgram.h"
#include "programs/ProgramStage.h"

#include <QString>
#include <QStringView>

namespace nurv::lame {

// `lame`, alone or started by `shntool`. Nothing here runs either. Paths are absolute.

[[nodiscard]] const ExternalProgram &program();

/// How it encodes.
struct Mp3Encoding {
    QString type;  ///< "CBR" or "VBR"
    int level = 0; ///< CBR: kbit/s; VBR: quality, 0 is the best, 9 the smallest

    /// "-b" for "CBR", else "-V".
    [[nodiscard]] QString option() const;
};

/// A WAV file.
[[nodiscard]] ProgramStage encoding(const Mp3Encoding &encoding, const QString &wav, const QString &output);
/// Any file that `shntool` reads, which pipes its samples. The output gets the name of the source in the
/// folder: see `shntoolOutput`. `output` names it instead where that is another name.
[[nodiscard]] ProgramStage encodingByShntool(const Mp3Encoding &encoding, const QString &source, const QString &folder);
[[nodiscard]] ProgramStage encodingByShntoolTo(const Mp3Encoding &encoding, const QString &source, const QString &output);

// "Converting [x.flac] (3:00.00) --> [x.mp3] :   0% ", backspaces, "  1% ", …, "100% OK", and what lame says.

[[nodiscard]] ChunkReport parseByShntool(QStringView chunk);

// "  5741/6893   (83%)|    0:03/    0:04|   …", each line over the one before.

/// The figure before the first "%)|", if it stands far enough from the start.
[[nodiscard]] ChunkReport parse(QStringView chunk);

} // namespace nurv::lame

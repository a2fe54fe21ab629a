// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "programs/ExternalProgram.h"
#include "programs/ProgramStage.h"

#include <QString>

#include <optional>

namespace nurv::opusenc {

// `opusenc`. Nothing here runs it. Paths are absolute.

[[nodiscard]] const ExternalProgram &program();

/// How it encodes.
struct OpusEncoding {
    QString type;           ///< "CBR", "VBR Constrained" or "VBR"
    int bitRate = 0;        ///< kbit/s
    double frameSize = 0.0; ///< milliseconds: 2.5, 5, 10, 20, 40 or 60

    /// "hard-cbr", "cvbr" or "vbr"; nothing for another type.
    [[nodiscard]] std::optional<QString> modeWord() const;
    /// As the option takes it; nothing for another size.
    [[nodiscard]] std::optional<QString> frameSizeWord() const;
};

/// What goes into the file besides the sound; nothing: no option.
struct Texts {
    std::optional<QString> title;
    std::optional<QString> artist;
};

/// Of an encoding that has both words. WAV, AIFF or FLAC; what it writes is only kept.
[[nodiscard]] ProgramStage encoding(const OpusEncoding &encoding, const Texts &texts, const QString &input,
                                    const QString &output);

} // namespace nurv::opusenc

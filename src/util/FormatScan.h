// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/AudioFormatObject.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace nurv {

/// The formats of the files for a disc, which have to match: what a look at all of them has found.
struct FormatScan {
    enum class Ending {
        Complete,
        Refused,  ///< at an AIFF file, or at one without a format
        Mismatch, ///< at one of another format than those before it
        GivenUp,  ///< by the user
    };

    std::vector<AudioFormatObject> formats; ///< of the files, in their order; complete only when that is the ending
    Ending ending = Ending::Complete;

    /// Looks at the files, in their order. Any thread; blocks. May throw.
    [[nodiscard]] static FormatScan of(const QStringList &paths, const std::function<bool()> &isUnwanted);
};

/// "2:05" for 125.7 seconds.
[[nodiscard]] QString parseTimeAsString(double seconds);
/// "52.92 MB", of 1,000,000 bytes.
[[nodiscard]] QString parseSizeFromTimeAsString(double seconds, int sampleRate, int bitDepth, int channels);

} // namespace nurv

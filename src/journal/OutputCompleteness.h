// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

namespace nurv {

/// What an output holds of the sound of its source.
enum class OutputCompleteness {
    /// Not the whole of it: it is empty, no sound file although its source is one, shorter than its source, or a
    /// FLAC file that its encoder did not come to seal.
    Incomplete,
    Whole,   ///< as many samples, and what its encoder writes last
    Unknown,
};

/// Reads a few headers.
[[nodiscard]] OutputCompleteness completenessOf(const QByteArray &output, const QByteArray &source);

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace nurv {

/// The lengths that the headers and sizes of sources and outputs tell, compared without
/// decoding anything: an output that holds no sound, or less than its source, is no output.
struct SoundLengthCheck {
    /// What is wrong, as a line without a full stop; nothing when nothing speaks against it.
    std::optional<QString> fault;
    /// Whether both sides told their lengths, so that only a decoder could tell more.
    bool isKnown = false;

    /// The outputs have to hold the sources, all together. A few reads of each file.
    [[nodiscard]] static SoundLengthCheck of(const QStringList &sources, const QStringList &outputs);
    /// The same of a lossy output, whose durations are compared: up to what encoders fill up with.
    [[nodiscard]] static SoundLengthCheck ofLossy(const QString &source, const QString &output);
};

} // namespace nurv

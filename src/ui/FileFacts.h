// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "samples/SoundLength.h"

#include <QString>
#include <QtGlobal>

#include <optional>

#include <sys/stat.h>

namespace nurv {

/// What people want to know of a file before they work on it, after its size and its header.
struct FileFacts {
    std::optional<struct stat> status; ///< nothing: there is no such file any more
    std::optional<SoundLength> sound;  ///< nothing: it is no sound of a known kind

    /// Reads the header unless `known` is of the very same file. Any thread; blocks.
    [[nodiscard]] static FileFacts read(const QString &path, const std::optional<FileFacts> &known);

    [[nodiscard]] qint64 bytes() const { return status ? static_cast<qint64>(status->st_size) : 0; }
    /// The length of the sound; nothing when nothing tells it.
    [[nodiscard]] std::optional<double> seconds() const;
};

namespace fileFactWords {

/// "FLAC · 24/96 · 2 ch · 4:12 · 31 MB": as much of it as is known.
[[nodiscard]] QString line(const QString &path, const FileFacts &facts);
/// "4:12", "1:04:12".
[[nodiscard]] QString clock(double seconds);

} // namespace fileFactWords

} // namespace nurv

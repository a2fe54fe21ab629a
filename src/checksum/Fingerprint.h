// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace nurv {

/// One entry of a fingerprint list: the file's base name, a colon and all that
/// `metaflac --show-md5` writes, its line end included; what it writes alone when it
/// cannot read the file's metadata. `path` is absolute. Any thread; blocks.
[[nodiscard]] QString fingerprint(const QString &path);

/// What is wrong with such an entry; nothing: it holds the fingerprint of some sound. A FLAC file whose encoder stored none
/// has zeros, which fit any file of that kind.
[[nodiscard]] std::optional<QString> faultOfFingerprint(const QString &entry);

} // namespace nurv

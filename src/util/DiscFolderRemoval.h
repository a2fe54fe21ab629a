// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace nurv {

/// Removes a folder that `dvda` has made: the files of a disc in its AUDIO_TS, that and VIDEO_TS, and the folder itself. No
/// link is followed. Anything else in it stays, and the folders around that. Returns nothing when all is gone, or was not
/// there, else why not, as a line without a full stop. Any thread.
[[nodiscard]] std::optional<QString> removeDiscFolder(const QString &path);

} // namespace nurv

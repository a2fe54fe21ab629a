// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace nurv {

/// Why the source of a finished conversion has to stay, as a sentence's end;
/// nothing when the output stands for it. A source stays when its output is
/// missing, empty or the very same file, and when a WAV or AIFF file and its own
/// chunk sizes disagree: its converter has then not read all of it. Any thread.
[[nodiscard]] std::optional<QString> reasonToKeepSource(const QString &source, const QString &output);

/// Writes the file through to the disk. False: the reason is in errno. Blocks.
[[nodiscard]] bool flushFileToDisk(const QString &path);
/// The same for the entries of a folder. True where folders are not flushed by request.
[[nodiscard]] bool flushFolderToDisk(const QString &path);
/// Writes the file and its entry in the folder through to the disk. Blocks for as
/// long as the disk takes. Returns whether the system says that it is there.
[[nodiscard]] bool flushToDisk(const QString &path);

} // namespace nurv

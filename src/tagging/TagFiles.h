// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/TagFormat.h"
#include "tags/TagsObject.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace nurv {
class OutputJournal;
}

namespace nurv::tagFiles {

// Which reader and writer a file has: its extension says so.

/// FLAC, MP3, APE, WV and M4A; nothing for a file of any other extension.
[[nodiscard]] std::optional<TagFormat> formatOf(const QString &path);

/// Nothing for a file that has no reader. Throws NurvFailure when it cannot be read. Blocks; any thread.
[[nodiscard]] std::optional<TagsObject> read(const QString &path);

/// Does nothing for a file that has no writer. Throws NurvFailure; the file is then as it was, or has all of the tags
/// (AACTagsHelper::Unoptimized). Returns why the picture is not in the file, as the end of a sentence, where that costs
/// nothing else. Blocks; any thread, but not twice at a time for one file.
TagsObject::Text write(const QString &path, const TagsObject &tags, bool writeEmptyTags);

/// Notes on the disk that these files will be written, for a process that is killed: what it was making beside them is
/// known then. `markEnded` for each that has been. Blocks; any thread.
[[nodiscard]] std::shared_ptr<OutputJournal> beginJournal(const QStringList &paths);

} // namespace nurv::tagFiles

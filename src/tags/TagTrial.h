// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/StoredTags.h"
#include "tags/TagFormat.h"
#include "tags/TagsObject.h"
#include "tags/TagsProcess.h"

#include <QString>

namespace nurv {

/// What a file holds, and what it would hold once a record was written.
struct TagTrial {
    StoredTags before;
    StoredTags after;
};

/// Lets the writer of the format loose on the file, without writing anything: what it would make of it is read again.
/// The picture of the record takes no part. By a process of its own where TagsProcess is set up. Throws NurvFailure
/// when the file cannot be read or the writer would fail. Blocks; any thread.
[[nodiscard]] TagTrial tryTags(TagFormat format, const QString &path, const TagsObject &tags, bool writeEmptyTags);

/// The writer of each format, but for a FLAC file's date. Throws NurvFailure.
[[nodiscard]] TagsProcess::Written writeTagsByFormat(const TagsProcess::Writing &writing, const QString &path,
                                                     const TagsObject &tags);

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/StoredTags.h"
#include "tags/TagsObject.h"

#include <QList>
#include <QString>

#include <functional>

namespace nurv {

/// What is to be written to a file.
struct TagWriting {
    QString path;
    TagsObject record;
};

namespace tagPreview {

/// What a writing changes in a file: a line for each tag with its old and its new values, what becomes of the
/// picture, and what of the record files of its kind do not take. Empty when nothing changes. The writer itself says so, on a copy of the tags in memory (tryTags). Throws
/// NurvFailure for a file that cannot be read or written.
[[nodiscard]] QStringList changesOf(const TagWriting &writing, bool writeEmptyTags);

/// The differences between two lists of tags, a line each.
[[nodiscard]] QStringList differences(const StoredTags &before, const StoredTags &after);

/// The changes of all files, each under its name, or why there will be none; `end` comes last. Worthless once it was
/// unwanted. Blocks; any thread.
[[nodiscard]] QString textOf(const QList<TagWriting> &writings, bool writeEmptyTags, const QString &end,
                             const std::function<bool()> &isUnwanted);

} // namespace tagPreview

} // namespace nurv

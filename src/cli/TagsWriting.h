// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tagging/TagPreview.h"
#include "tags/TagFormat.h"

#include <QJsonObject>
#include <QString>

#include <optional>

namespace nurv {

class FilesRun;

/// The way from tags that were given, by options or in a file, into the files.
namespace tagsWriting {

[[nodiscard]] bool hasApeTags(TagFormat format);

/// Why a further field of FLAC files cannot have the name, which it begins with; nothing when it can. Names that have options of their own
/// would be written twice, and which one stays nobody could tell.
[[nodiscard]] std::optional<QString> faultOfCustomName(const QString &name);

/// Writes the record, or tells what that would change. Returns the object that tells of it as JSON. Throws NurvFailure
/// for what cannot be written, and when nothing of the record has a place in a file of its kind.
[[nodiscard]] QJsonObject writeOrTell(FilesRun &run, TagWriting writing, bool writeEmptyTags, bool isTrial);

} // namespace tagsWriting

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/StoredTags.h"
#include "tags/TagsObject.h"

#include <QJsonObject>
#include <QString>

#include <optional>

namespace nurv::tagsJson {

// The tags of a file as JSON: what the fields of the window show, for people and scripts, and every tag as it is
// stored, so that a file can be given all of them back.

/// "file" is how the user knows it.
[[nodiscard]] QJsonObject objectOf(const QString &file, const QString &path, const TagsObject &record,
                                   const StoredTags &stored);

/// What an object says about a file.
struct Restoration {
    QString path;
    QString format; ///< its extension in capitals; empty: it does not say
    std::optional<StoredTags> stored;
    TagsObject record; ///< where nothing is stored: the fields
};

/// Nothing for an object of another type, which others may stand between. Throws NurvFailure for one that is damaged.
[[nodiscard]] std::optional<Restoration> restorationOf(const QJsonObject &object);

} // namespace nurv::tagsJson

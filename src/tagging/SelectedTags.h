// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tagging/CommonTags.h"
#include "tags/TagsObject.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace nurv {

/// What the selected files hold, as far as the fields show it.
struct SelectedTags {
    /// Of one file what it holds; of several what they have in common (CommonTags); nothing when that is nothing.
    std::optional<TagsObject> record;
    CommonTags common;
    /// The first of the pictures that cannot be decoded, and why; nothing when all can.
    std::optional<QString> pictureFault;
    QStringList problems; ///< "a.m4a: why", for each file that could not be read
};

/// Reads them on as many threads as the machine has processors, with the records of only a few files in memory at a
/// time. `isUnwanted` ends it early, `noteProgress` gets the number of files that were read; both are called on any of
/// the threads. Never throws; blocks.
[[nodiscard]] SelectedTags readSelectedTags(const QStringList &paths, const std::function<bool()> &isUnwanted,
                                            const std::function<void(qsizetype)> &noteProgress = {});

/// Whether none of the files has a picture; one that cannot be read has none, one whose picture cannot be decoded has
/// one.
[[nodiscard]] bool areWithoutPicture(const QStringList &paths);

} // namespace nurv

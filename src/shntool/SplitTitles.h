// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QString>

namespace nurv::splitTitles {

/// What the pieces of a split are to be called, by the names that shntool gives them: "split-track03.flac" becomes
/// "03 Song.flac". `text` is a cue sheet, or a list of points, of which nothing has a title; `format` is the extension.
/// A piece without a title keeps its name, and what stands before the first TRACK counts for nothing.
[[nodiscard]] QMap<QString, QString> read(const QString &text, const QString &format);

/// Whether the name can be that of a file: no folder in it, and no longer than file systems take.
[[nodiscard]] bool canBeName(const QString &name);

} // namespace nurv::splitTitles

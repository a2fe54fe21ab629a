// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace nurv {

class Mp4Movie;

/// Lets `edit` change the movie box of the file, puts the boxes in order (Mp4Optimizer) and writes the file. `edit`
/// returns false when the metadata cannot take what it has for it. Throws NurvFailure, and then leaves the file as it
/// was. Returns why the boxes are in their old order, if they are.
[[nodiscard]] std::optional<QString> editMp4Movie(const QString &path,
                                                  const std::function<bool(Mp4Movie &movie)> &edit);

} // namespace nurv

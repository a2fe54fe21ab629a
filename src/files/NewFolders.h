// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace nurv {

/// Makes `folder` and those between `root` and it, as far as they are missing. What is there already has to
/// be a folder itself: no link below `root` is followed. `folder` is `root` or below it, both without "." and
/// "..". Returns why not all are there now, as a line without a full stop. Any thread; blocks.
[[nodiscard]] std::optional<QString> makeFoldersBelow(const QString &root, const QString &folder);

} // namespace nurv

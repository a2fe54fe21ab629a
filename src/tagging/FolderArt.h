// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace nurv {

/// The one picture in the folder that all these files lie in, by its name: JPG, JPEG, GIF, TIFF or PNG. Nothing when
/// they lie in several folders, and when there is none or more than one. Lists the folder.
[[nodiscard]] std::optional<QString> onlyPictureBeside(const QStringList &paths);

} // namespace nurv

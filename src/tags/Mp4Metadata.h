// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/MetadataCollector.h"

#include <QString>

#include <cstdint>

namespace nurv {

/// Reads the metadata items of an MPEG-4 file, and by name what else it holds besides sound: text
/// tracks, chapter lists, boxes that nobody knows. Returns where its boxes end. Throws NurvFailure when
/// they are damaged, and when the metadata is of a kind whose items have no names.
[[nodiscard]] std::int64_t readMp4Metadata(const QString &path, MetadataCollector &found);

} // namespace nurv

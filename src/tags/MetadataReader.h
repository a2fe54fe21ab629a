// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/MetadataInventory.h"

#include <QString>

namespace nurv {

/// Tells by a file's first bytes which of the readers of metadata belong to it, and runs them.
///
///     file ──> ID3v2 in front ──> blocks, chunks, boxes, stored parts ──> tags at the end
///                    └──────────────────────┴──> MetadataCollector <──┘
///
/// As MetadataInventory::of.
[[nodiscard]] MetadataInventory readMetadata(const QString &path);

} // namespace nurv

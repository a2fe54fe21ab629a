// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/MetadataInventory.h"

namespace nurv {

MetadataInventory MetadataInventory::of(const QString &)
{
    return {};
}

std::optional<QString> metadataLost(const MetadataInventory &, const MetadataInventory &, const QString &)
{
    return std::nullopt;
}

} // namespace nurv

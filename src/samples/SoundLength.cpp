// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/SoundLength.h"

namespace nurv {

std::optional<SoundLength> soundLength(const QString &)
{
    return std::nullopt;
}

} // namespace nurv

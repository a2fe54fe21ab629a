// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/AudioStreamDescription.h"

namespace nurv {

QString fourCharText(FourCharCode code)
{
    QString text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const char character = static_cast<char>(code >> shift & 0xFF);
        const bool isPrintable = character >= ' ' && character <= '~';
        text += QLatin1Char(isPrintable ? character : '?');
    }
    return text;
}

std::uint32_t appleLosslessFlags(std::uint32_t bits)
{
    switch (bits) {
    case 16: return kAppleLossless16Bit;
    case 20: return kAppleLossless20Bit;
    case 24: return kAppleLossless24Bit;
    case 32: return kAppleLossless32Bit;
    default: return 0;
    }
}

} // namespace nurv

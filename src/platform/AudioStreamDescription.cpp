// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/AudioStreamDescription.h"

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

} // namespace nurv

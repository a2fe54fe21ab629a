// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeRangeCoder.h"

#include "ape/ApeRangeCoding.h"

namespace nurv {

uint8_t *finishRangeEncoder(ApeRangeEncoder &coder)
{
    normalise(coder);
    const uint32_t top = (coder.low >> 23) + 1;
    if (top > 0xFF)
        propagateCarry(coder.next);
    *coder.next++ = static_cast<uint8_t>(top);
    for (int i = 0; i < 3; ++i)
        *coder.next++ = 0;
    return coder.next;
}

} // namespace nurv

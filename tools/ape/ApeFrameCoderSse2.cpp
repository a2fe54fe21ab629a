// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeFrameCoderVariants.h"
#include "ape/ApeFrameLoops.h"
#include "ape/ApeSimdFilter.h"

namespace nurv {

ApeFrameCoder *newSse2FrameCoder(ApeLevel level)
{
    return newFrameCoder<SimdFilter>(level);
}

} // namespace nurv

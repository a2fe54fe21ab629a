// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeFrameCoderVariants.h"
#include "ape/ApeFrameLoops.h"
#include "ape/ApePlainFilter.h"

namespace nurv {

ApeFrameCoder *newPlainFrameCoder(ApeLevel level)
{
    return newFrameCoder<PlainFilter>(level);
}

} // namespace nurv

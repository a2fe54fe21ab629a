// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeFormat.h"

namespace nurv {

class ApeFrameCoder;

// One source file each, compiled for its instructions.
[[nodiscard]] ApeFrameCoder *newPlainFrameCoder(ApeLevel level);
[[nodiscard]] ApeFrameCoder *newSse2FrameCoder(ApeLevel level);
[[nodiscard]] ApeFrameCoder *newAvx2FrameCoder(ApeLevel level);

} // namespace nurv

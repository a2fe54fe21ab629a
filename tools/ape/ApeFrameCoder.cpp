// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeFrameCoder.h"

#include "ape/ApeFrameCoderVariants.h"

namespace nurv {

ApeFrameCoder::~ApeFrameCoder() = default;

bool isAvailable(ApeInstructionSet set)
{
    switch (set) {
    case ApeInstructionSet::Plain: return true;
#ifdef NURV_APE_X86
    case ApeInstructionSet::Sse2: return __builtin_cpu_supports("sse2");
    case ApeInstructionSet::Avx2: return __builtin_cpu_supports("avx2");
#endif
    default: return false;
    }
}

ApeInstructionSet bestInstructionSet()
{
    for (const ApeInstructionSet set : {ApeInstructionSet::Avx2, ApeInstructionSet::Sse2}) {
        if (isAvailable(set))
            return set;
    }
    return ApeInstructionSet::Plain;
}

std::unique_ptr<ApeFrameCoder> makeApeFrameCoder(ApeLevel level, [[maybe_unused]] ApeInstructionSet set)
{
#ifdef NURV_APE_X86
    if (set == ApeInstructionSet::Avx2)
        return std::unique_ptr<ApeFrameCoder>(newAvx2FrameCoder(level));
    if (set == ApeInstructionSet::Sse2)
        return std::unique_ptr<ApeFrameCoder>(newSse2FrameCoder(level));
#endif
    return std::unique_ptr<ApeFrameCoder>(newPlainFrameCoder(level));
}

} // namespace nurv

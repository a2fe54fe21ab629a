// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Id3v2.h"

#include "support/Bytes.h"
#include "support/InputFile.h"

#include <span>

namespace nurv {

/// "ID3", two bytes of version, one of flags, and the size in four times seven bits.
uint64_t skipId3v2Tags(InputFile &input)
{
    constexpr size_t kTagHeaderBytes = 10;
    constexpr uint8_t kHasFooter = 0x10;
    uint64_t skipped = 0;
    for (;;) {
        const std::span<const uint8_t> tag = input.peek(kTagHeaderBytes);
        if (tag.size() < kTagHeaderBytes || !startsWith(tag, "ID3"))
            return skipped;
        uint64_t size = 0;
        for (const uint8_t byte : tag.subspan(6))
            size = size << 7 | (byte & 0x7FU);
        size += kTagHeaderBytes + ((tag[5] & kHasFooter) != 0 ? kTagHeaderBytes : 0);
        input.skip(size);
        skipped += size;
    }
}

} // namespace nurv

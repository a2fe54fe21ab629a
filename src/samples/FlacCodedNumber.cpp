// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/FlacCodedNumber.h"

#include <bit>

namespace nurv {

std::optional<FlacCodedNumber> FlacCodedNumber::read(std::span<const std::uint8_t> bytes)
{
    if (bytes.empty())
        return std::nullopt;
    const auto ones = static_cast<std::size_t>(std::countl_one(bytes[0]));
    if (ones == 0)
        return FlacCodedNumber{bytes[0], 1};
    if (ones == 1 || ones > 7 || bytes.size() < ones)
        return std::nullopt;
    FlacCodedNumber number{bytes[0] & (0x7FU >> ones), ones};
    for (std::size_t i = 1; i < ones; ++i) {
        if ((bytes[i] & 0xC0) != 0x80)
            return std::nullopt;
        number.value = number.value << 6 | (bytes[i] & 0x3FU);
    }
    return number;
}

} // namespace nurv

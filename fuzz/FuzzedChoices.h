// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace nurv::fuzz {

/// Takes choices from the front of a fuzzer's input, one after the other; zeros when
/// nothing is left.
class FuzzedChoices {
public:
    explicit FuzzedChoices(std::span<const std::uint8_t> bytes) : m_rest(bytes) {}

    [[nodiscard]] bool isEmpty() const { return m_rest.empty(); }

    /// A number of one byte.
    [[nodiscard]] unsigned small()
    {
        const std::span<const std::uint8_t> bytes = take(1);
        return bytes.empty() ? 0 : bytes[0];
    }
    /// A number of two bytes, big-endian.
    [[nodiscard]] unsigned large()
    {
        const unsigned high = small();
        return high << 8 | small();
    }
    /// That many bytes, or what is left.
    [[nodiscard]] std::span<const std::uint8_t> take(std::size_t count)
    {
        const std::span<const std::uint8_t> taken = m_rest.first(std::min(count, m_rest.size()));
        m_rest = m_rest.subspan(taken.size());
        return taken;
    }
    [[nodiscard]] std::span<const std::uint8_t> rest() const { return m_rest; }

private:
    std::span<const std::uint8_t> m_rest;
};

} // namespace nurv::fuzz

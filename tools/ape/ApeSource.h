// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace nurv {

/// A Monkey's Audio file that can be turned into a WAV file, once.
class ApeSource {
public:
    using Sink = std::function<void(std::span<const uint8_t>)>;

    virtual ~ApeSource() = default;

    /// Blocks (one sample of every channel) of the whole file.
    [[nodiscard]] virtual uint64_t totalBlocks() const = 0;

    /// Hands the WAV file to `sink`, first what stands before the samples; samples only
    /// once their checksum is right. Throws ApeError at the first fault. `onBlocks` is told
    /// now and then how many blocks were decoded since.
    virtual void decode(const Sink &sink, const std::function<void(size_t)> &onBlocks) = 0;
};

} // namespace nurv

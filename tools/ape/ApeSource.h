// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/ByteSink.h"

#include <cstddef>
#include <cstdint>
#include <functional>

namespace nurv {

/// A Monkey's Audio file that can be turned into a WAV file, once.
class ApeSource {
public:
    virtual ~ApeSource() = default;

    /// Blocks (one sample of every channel) of the whole file.
    [[nodiscard]] virtual uint64_t totalBlocks() const = 0;

    /// Hands the WAV file to `sink`, first what stands before the samples; samples only
    /// once their checksum is right. Throws ApeError at the first fault. `onBlocks` is told
    /// now and then how many blocks were decoded since.
    virtual void decode(const ByteSink &sink, const std::function<void(size_t)> &onBlocks) = 0;
};

} // namespace nurv

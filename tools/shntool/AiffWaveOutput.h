// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/WaveOutput.h"
#include "support/TemporaryFile.h"

#include <cstddef>
#include <vector>

namespace nurv {

/// An AIFF file of integer samples.
class AiffWaveOutput final : public WaveOutput {
public:
    /// Throws ToolError(Write) where no file can be made.
    explicit AiffWaveOutput(const std::string &name);

    bool write(std::span<const uint8_t> bytes) override;
    bool complete() override;
    bool commit() override;

private:
    bool takeHeader(std::span<const uint8_t> &bytes);
    bool writeSamples(std::span<const uint8_t> bytes);
    [[nodiscard]] std::vector<uint8_t> head() const;

    TemporaryFile m_file;
    std::vector<uint8_t> m_header; ///< of the WAV file, until it is whole
    bool m_hasHeader = false;
    unsigned m_channels = 0;
    unsigned m_bits = 0; ///< valid ones
    unsigned m_sampleBytes = 0;
    uint32_t m_samplesPerSecond = 0;
    uint64_t m_dataBytes = 0; ///< as the header says
    uint64_t m_taken = 0;     ///< of them
    std::vector<uint8_t> m_part;   ///< the first bytes of a sample
    std::vector<uint8_t> m_swapped;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ShortenTestSupport.h"

#include <cstdint>
#include <span>
#include <vector>

namespace nurv::shorten::test {

/// Writes Shorten streams of any version, bit by bit and with every command that the
/// test asks for, straight from the format's formulas and without a line of the codec:
/// for streams that our encoder never makes.
class ReferenceStream {
public:
    struct Settings {
        unsigned version = 2;
        uint32_t fileType = 5;
        uint32_t channels = 1;
        uint32_t blockSize = 256; ///< version 0: always 256
        uint32_t maxOrder = 0;
        uint32_t meanCount = 4;
        Bytes skipped{}; ///< written to the output in front of everything
    };
    explicit ReferenceStream(const Settings &settings);

    // The codes.
    void bit(bool value);
    void uvar(uint32_t value, unsigned lowBits);
    void var(int32_t value, unsigned lowBits);
    void number(uint32_t value, unsigned lowBitsOfVersion0);

    // The commands. Samples are those of one channel, as the file type has them.
    void verbatim(std::span<const uint8_t> bytes);
    void setBlockSize(uint32_t frames);
    void setShift(unsigned shift);
    void diff(unsigned order, unsigned energy, std::span<const int32_t> samples);
    void zero();
    void linear(std::span<const int32_t> coefficients, unsigned energy, std::span<const int32_t> samples);
    void quit();

    /// With `endBit` after the last command and zeros up to a whole word.
    [[nodiscard]] Bytes finish(bool endBit = true);

private:
    struct State {
        std::vector<int64_t> past; ///< every sample so far, shifted down; the newest last
        std::vector<int64_t> means;
    };

    void writeResidual(int32_t value, unsigned energy);
    [[nodiscard]] int64_t level() const;
    [[nodiscard]] std::vector<int64_t> shiftedDown(std::span<const int32_t> samples) const;
    void endBlock(std::span<const int64_t> block);

    Settings m_settings;
    uint32_t m_blockSize;
    unsigned m_shift = 0;
    std::vector<State> m_states;
    size_t m_channel = 0;
    std::vector<bool> m_bits;
};

/// The stream of a WAV file that goes through all the predictors in turns, QLPC as far as
/// the settings allow it. Channels and file type are the file's; `behind` follows its sound.
[[nodiscard]] Bytes mixedStream(const Wave &wave, ReferenceStream::Settings settings, bool endBit = true,
                                std::span<const uint8_t> behind = {});

} // namespace nurv::shorten::test

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace nurv {

/// The first 22 bytes of a TTA1 file, without the magic and the CRC.
struct TtaHeader {
    static constexpr size_t kByteCount = 22;
    static constexpr unsigned kMaxChannels = 6;
    static constexpr uint32_t kMaxSampleRateHz = 1'000'000;
    /// Of the seek table; more would take a sample rate below 1 kHz and hours of sound.
    static constexpr uint64_t kMaxFrames = uint64_t{1} << 22;

    uint16_t channels = 0;      ///< 1 to 6
    uint16_t bitsPerSample = 0; ///< 8, 16 or 24
    uint32_t sampleRateHz = 0;
    uint32_t sampleCount = 0; ///< per channel

    [[nodiscard]] unsigned bytesPerSample() const { return bitsPerSample / 8U; }
    /// Of one sample of every channel.
    [[nodiscard]] unsigned blockAlign() const { return channels * bytesPerSample(); }
    /// Samples per channel in every frame but the last: 256/245 seconds of sound.
    [[nodiscard]] uint32_t frameLength() const;
    [[nodiscard]] uint64_t frameCount() const;
    /// Samples per channel in the frame, counted from 0.
    [[nodiscard]] uint32_t samplesInFrame(uint64_t frame) const;
    [[nodiscard]] uint64_t pcmByteCount() const { return uint64_t{sampleCount} * blockAlign(); }

    /// Throws ToolError(UnsupportedFormat), naming the value, when a file of ours cannot hold this.
    void check() const;

    [[nodiscard]] std::array<uint8_t, kByteCount> toBytes() const;

    enum class Crc { Checked, Ignored };
    /// Throws ToolError: InvalidInput without the magic, Damaged when the CRC does not match,
    /// UnsupportedFormat for encrypted files and as `check` does.
    static TtaHeader fromBytes(std::span<const uint8_t, kByteCount> bytes, Crc crc = Crc::Checked);
};

} // namespace nurv

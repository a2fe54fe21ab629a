// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace nurv {

constexpr uint16_t kApeVersion = 3990;
/// The oldest version with a descriptor and this header; older ones are not read here.
constexpr uint16_t kApeFirstDescriptorVersion = 3980;
constexpr size_t kApeDescriptorBytes = 52;
constexpr size_t kApeHeaderBytes = 24;
/// `formatFlags`: no WAV header is stored, the decoder makes one.
constexpr uint16_t kApeFlagMakeWaveHeader = 32;

/// How hard an encoder tries; written as 1000, 2000, ... 5000.
enum class ApeLevel : uint16_t { Fast = 1000, Normal = 2000, High = 3000, ExtraHigh = 4000, Insane = 5000 };

[[nodiscard]] std::optional<ApeLevel> apeLevelFromNumber(uint32_t number);

/// Blocks (one sample of every channel) of a frame, as encoders choose them today.
[[nodiscard]] uint32_t apeBlocksPerFrame(ApeLevel level);

/// The first bytes of a file: where its parts are and how long.
struct ApeDescriptor {
    uint16_t version = kApeVersion;
    uint32_t descriptorBytes = kApeDescriptorBytes;
    uint32_t headerBytes = kApeHeaderBytes;
    uint32_t seekTableBytes = 0;
    uint32_t storedHeaderBytes = 0;   ///< of the WAV file, before its payload
    uint64_t frameDataBytes = 0;      ///< a multiple of 4
    uint32_t storedTrailingBytes = 0; ///< of the WAV file, behind its payload
    std::array<uint8_t, 16> md5{};    ///< all zero: none

    /// `bytes` begin with the four characters "MAC ".
    [[nodiscard]] static ApeDescriptor read(std::span<const uint8_t, kApeDescriptorBytes> bytes);
    void write(std::span<uint8_t, kApeDescriptorBytes> bytes) const;
};

/// What a file says of its sound.
struct ApeHeader {
    uint16_t level = 0;
    uint16_t formatFlags = 0;
    uint32_t blocksPerFrame = 0;
    uint32_t finalFrameBlocks = 0;
    uint32_t totalFrames = 0;
    uint16_t bitsPerSample = 0;
    uint16_t channels = 0;
    uint32_t sampleRateHz = 0;

    [[nodiscard]] static ApeHeader read(std::span<const uint8_t, kApeHeaderBytes> bytes);
    void write(std::span<uint8_t, kApeHeaderBytes> bytes) const;

    [[nodiscard]] uint64_t totalBlocks() const;
    [[nodiscard]] uint32_t blocksOfFrame(uint32_t frame) const;
    [[nodiscard]] uint32_t bytesPerBlock() const { return uint32_t{channels} * bitsPerSample / 8; }
};

/// The four bytes in front of a frame's coded samples: the CRC-32 of its PCM without the
/// lowest bit, and in the highest bit whether a special code follows.
constexpr uint32_t kApeSpecialCodeFollows = 0x80000000;

/// Special codes of a frame.
namespace apespecial {
constexpr uint32_t kSilentMono = 1;
constexpr uint32_t kSilentStereo = 3; ///< both bits; one alone only informs
constexpr uint32_t kEqualChannels = 4;
} // namespace apespecial

/// The checksum of a frame's PCM as the frame holds it.
[[nodiscard]] uint32_t apeFrameCrc(std::span<const uint8_t> pcm);

/// The WAV header for a file that holds none. Level and frames of `header` do not matter.
[[nodiscard]] std::vector<uint8_t> apeWaveHeader(const ApeHeader &header, uint64_t pcmBytes);

} // namespace nurv

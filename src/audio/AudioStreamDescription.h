// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <cstdint>

namespace nurv {

/// A format, container or status code: four characters in one number, the first in
/// the highest byte.
using FourCharCode = std::uint32_t;

[[nodiscard]] constexpr FourCharCode fourCharCode(const char (&text)[5])
{
    FourCharCode code = 0;
    for (int i = 0; i < 4; ++i)
        code = code << 8 | static_cast<unsigned char>(text[i]);
    return code;
}

/// The four characters of a code; a byte that is no printable ASCII becomes "?".
[[nodiscard]] QString fourCharText(FourCharCode code);

// Format codes of the files that are written, and of linear PCM in memory.
inline constexpr FourCharCode kFormatAAC = fourCharCode("aac ");
inline constexpr FourCharCode kFormatAppleLossless = fourCharCode("alac");
inline constexpr FourCharCode kFormatLinearPCM = fourCharCode("lpcm");

// Containers of the files that are written.
inline constexpr FourCharCode kFileM4A = fourCharCode("m4af");
inline constexpr FourCharCode kFileWave = fourCharCode("WAVE");
inline constexpr FourCharCode kFileAIFF = fourCharCode("AIFF");

// Flags of linear PCM.
inline constexpr std::uint32_t kFlagFloat = 1;
inline constexpr std::uint32_t kFlagBigEndian = 2;
inline constexpr std::uint32_t kFlagSignedInteger = 4;
inline constexpr std::uint32_t kFlagPacked = 8;
inline constexpr std::uint32_t kBigEndianIntegers = kFlagSignedInteger | kFlagBigEndian | kFlagPacked;
inline constexpr std::uint32_t kLittleEndianIntegers = kFlagSignedInteger | kFlagPacked;

// Flags of Apple Lossless: the width of the source.
inline constexpr std::uint32_t kAppleLossless16Bit = 1;
inline constexpr std::uint32_t kAppleLossless20Bit = 2;
inline constexpr std::uint32_t kAppleLossless24Bit = 3;
inline constexpr std::uint32_t kAppleLossless32Bit = 4;
/// 0 for a width that the format does not have.
[[nodiscard]] std::uint32_t appleLosslessFlags(std::uint32_t bits);

/// How the samples of a file, or of a buffer, are laid out. Fields that have no
/// meaning for a format are 0.
struct AudioStreamDescription {
    double sampleRate = 0.0; ///< Hz
    FourCharCode formatId = 0;
    std::uint32_t formatFlags = 0;
    std::uint32_t bytesPerPacket = 0;
    std::uint32_t framesPerPacket = 0;
    std::uint32_t bytesPerFrame = 0;
    std::uint32_t channelsPerFrame = 0;
    std::uint32_t bitsPerChannel = 0;
    std::uint32_t reserved = 0;

    bool operator==(const AudioStreamDescription &) const = default;
};
static_assert(sizeof(AudioStreamDescription) == 40);

} // namespace nurv

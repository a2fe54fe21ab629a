// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

namespace nurv::shorten {

/// "ajkg", followed by one byte of format version.
inline constexpr uint8_t kMagic[] = {0x61, 0x6A, 0x6B, 0x67};
/// Where the bit stream starts: after the magic and the version.
inline constexpr size_t kStreamOffset = 5;

inline constexpr uint32_t kDefaultBlockSize = 256;
inline constexpr uint32_t kDefaultMeanCount = 4;

// What a decoder accepts. Nothing in circulation comes near.
inline constexpr unsigned kMaxVersion = 3;
inline constexpr uint32_t kMaxChannels = 8;
inline constexpr uint32_t kMaxBlockSize = 65535;
inline constexpr uint32_t kMaxPredictorOrder = 1024;
inline constexpr uint32_t kMaxMeanCount = 32768;
inline constexpr uint32_t kMaxShift = 31;
/// Of the residuals of 16-bit samples, 18 can occur in DIFF3.
inline constexpr uint32_t kMaxEnergy = 25;

/// Decoded samples that every channel keeps, at least: what DIFF3 looks back to.
inline constexpr uint32_t kMinHistory = 3;
/// The encoder cuts VERBATIM into pieces of this size: readers look for the `fmt `
/// chunk in the first piece, and no further than this.
inline constexpr size_t kVerbatimPieceBytes = 256;

// The fixed numbers of low-order bits of the Rice codes.
inline constexpr unsigned kFunctionBits = 2;
inline constexpr unsigned kEnergyBits = 3;
inline constexpr unsigned kShiftBits = 2;
inline constexpr unsigned kOrderBits = 2;
inline constexpr unsigned kCoefficientBits = 5;
inline constexpr unsigned kVerbatimSizeBits = 5;
inline constexpr unsigned kVerbatimByteBits = 8;
inline constexpr unsigned kLongBits = 2;

/// The commands of the bit stream.
enum class Function : uint32_t {
    Diff0 = 0,
    Diff1 = 1,
    Diff2 = 2,
    Diff3 = 3,
    Quit = 4,
    BlockSize = 5,
    BitShift = 6,
    Qlpc = 7,
    Zero = 8,
    Verbatim = 9,
};

/// How the samples lie in the original file. The other codes (0, 7 to 10) are logarithmic
/// samples with mapping tables, which nothing here reads.
enum class FileType : uint32_t {
    Signed8 = 1,
    Unsigned8 = 2,
    Signed16BigEndian = 3,
    Unsigned16BigEndian = 4,
    Signed16LittleEndian = 5,
    Unsigned16LittleEndian = 6,
};

[[nodiscard]] constexpr bool isKnown(FileType type)
{
    return type >= FileType::Signed8 && type <= FileType::Unsigned16LittleEndian;
}

[[nodiscard]] constexpr size_t bytesPerSample(FileType type)
{
    return type == FileType::Signed8 || type == FileType::Unsigned8 ? 1 : 2;
}

/// What the block means hold before the first block.
[[nodiscard]] constexpr int32_t startMean(FileType type)
{
    switch (type) {
    case FileType::Unsigned8: return 128;
    case FileType::Unsigned16BigEndian:
    case FileType::Unsigned16LittleEndian: return 32768;
    default: return 0;
    }
}

/// The fields of a stream's header.
struct StreamHeader {
    unsigned version = 2;
    FileType fileType = FileType::Signed16LittleEndian;
    uint32_t channels = 2;
    uint32_t blockSize = kDefaultBlockSize; ///< sample frames in a block
    uint32_t maxPredictorOrder = 0;
    uint32_t meanCount = kDefaultMeanCount; ///< remembered block means of a channel
};

} // namespace nurv::shorten

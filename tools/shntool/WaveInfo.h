// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nurv {

struct AudioFormat;

/// Sectors of an audio CD.
inline constexpr uint64_t kSectorBytes = 2352;
inline constexpr uint64_t kSectorsPerSecond = 75;
inline constexpr uint64_t kCdBytesPerSecond = kSectorBytes * kSectorsPerSecond;
/// A track of a CD is no shorter than four seconds.
inline constexpr uint64_t kShortestTrackBytes = 4 * kCdBytesPerSecond;

inline constexpr uint64_t kCanonicalHeaderBytes = 44;
/// The `fmt ` chunk of a plain header, and the one with a subformat.
inline constexpr uint32_t kPlainFormatBytes = 16;
inline constexpr uint32_t kExtensibleFormatBytes = 40;

/// What the head of a WAV file says of it, or of what a file of another format holds.
struct WaveHeader {
    uint16_t formatTag = 0; ///< as it stands there: 0xFFFE with a subformat
    uint16_t channels = 0;
    uint32_t samplesPerSecond = 0;
    uint32_t bytesPerSecond = 0;
    uint16_t blockAlign = 0;
    uint16_t bitsPerSample = 0; ///< of the container
    uint32_t channelMask = 0;   ///< with a subformat only
    uint16_t validBits = 0;     ///< with a subformat only
    uint64_t chunkBytes = 0;    ///< the size of the RIFF chunk
    uint64_t dataBytes = 0;     ///< the size of the data chunk
    std::vector<uint8_t> bytes; ///< all in front of the data

    [[nodiscard]] bool isExtensible() const { return formatTag == 0xFFFE; }
    [[nodiscard]] uint64_t calculatedRate() const;
    [[nodiscard]] bool isCdQuality() const;
    /// The RIFF chunk with its own head.
    [[nodiscard]] uint64_t totalBytes() const { return chunkBytes + 8; }
    /// What the canonical header for this format takes: without a subformat where none is told.
    [[nodiscard]] uint64_t canonicalBytes() const;
    /// Of the plain kind, with nothing but a format and the data.
    [[nodiscard]] bool isCanonical() const { return bytes.size() == kCanonicalHeaderBytes; }
};

/// What is known of a file.
struct WaveInfo {
    std::string fileName;
    const AudioFormat *format = nullptr;
    WaveHeader header;
    uint64_t actualBytes = 0; ///< of the file as it is
    uint64_t id3Bytes = 0;    ///< of tags in front

    enum class PadByte { NotNeeded, Present, Missing, Unknown };

    [[nodiscard]] uint64_t dataBytes() const { return header.dataBytes; }
    [[nodiscard]] uint64_t totalBytes() const { return header.totalBytes(); }
    [[nodiscard]] bool isCdQuality() const { return header.isCdQuality(); }
    [[nodiscard]] bool endsOnSector() const { return dataBytes() % kSectorBytes == 0; }
    [[nodiscard]] bool isTooShort() const { return dataBytes() < kShortestTrackBytes; }
    [[nodiscard]] bool isBlockAligned() const;
    /// Bytes in the RIFF chunk behind the data, a pad byte included.
    [[nodiscard]] uint64_t bytesBehindData() const;
    [[nodiscard]] PadByte padByte() const;
    /// Of chunks behind the data, without a pad byte.
    [[nodiscard]] uint64_t extraBytes() const;
    [[nodiscard]] bool isInconsistent() const;
    /// Whether the size of the file tells something.
    [[nodiscard]] bool canTellTruncation() const;
    [[nodiscard]] uint64_t missingBytes() const;
    [[nodiscard]] uint64_t junkBytes() const;
    [[nodiscard]] double ratio() const;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace nurv {

class InputFile;

/// What a RIFF/WAVE `fmt ` chunk says, with the subformat of WAVE_FORMAT_EXTENSIBLE
/// resolved into `formatTag`.
struct WaveFormat {
    uint16_t formatTag = 0; ///< 1 = integer PCM, 3 = float
    uint16_t channels = 0;
    uint32_t sampleRateHz = 0;
    uint16_t blockAlign = 0;
    uint16_t bitsPerSample = 0; ///< of the container
    uint32_t channelMask = 0;   ///< the places of the speakers; 0: not told

    [[nodiscard]] bool isIntegerPcm() const { return formatTag == 1; }
};

/// Reads a WAV file from its start to its end in three pieces, whatever it comes from:
///
///     header (to the end of the `data` chunk's head) | payload | trailing bytes
///
/// The payload is min(declared size, bytes present), in whole sample frames; what
/// remains of a frame, the pad byte and later chunks are trailing bytes. The three
/// together are the input, byte for byte.
class WaveReader {
public:
    /// Which kinds of WAV files the caller can use.
    enum class Kinds { Riff, RiffAndRf64 };

    /// Reads up to the first payload byte. Throws ToolError(InvalidInput) when no `fmt `
    /// and `data` chunk is found in the first 64 MiB, or the `fmt ` chunk contradicts
    /// itself, and ToolError(UnsupportedFormat) for big-endian files, and RF64 files that
    /// were not asked for.
    explicit WaveReader(InputFile &input, Kinds kinds = Kinds::Riff);

    [[nodiscard]] const WaveFormat &format() const;

    /// All bytes before the payload.
    [[nodiscard]] std::span<const uint8_t> header() const;

    /// What the `data` chunk says of itself, or the `ds64` chunk of it. Pipes say 0 or
    /// 0xFFFFFFFF when unknown.
    [[nodiscard]] uint64_t declaredDataBytes() const;

    /// Whether the declared size is one of those that mean "to the end of the input", up
    /// to which the payload is then read: 0xFFFFFFFF, or 0 with bytes following. But the
    /// RIFF chunk of a file may tell that these are the chunks behind an empty one.
    [[nodiscard]] bool hasUnknownSize() const;

    /// The payload to come, in whole sample frames: what of it there is, of regular files
    /// only. For others, what the header says, which may be a guess; nothing where it says
    /// nothing.
    [[nodiscard]] std::optional<uint64_t> payloadBytesPresent() const;
    [[nodiscard]] std::optional<uint64_t> payloadBytesDeclared() const;

    /// Reads whole sample frames into `bytes`, whose size is a multiple of the block align.
    /// Returns the bytes read, fewer than asked for at the end of the payload only.
    size_t readPayload(std::span<uint8_t> bytes);

    /// Payload bytes read so far.
    [[nodiscard]] uint64_t payloadBytesRead() const;

    /// After the payload: reads the next trailing bytes, 0 at the end of the input.
    size_t readTrailing(std::span<uint8_t> bytes);

private:
    std::span<const uint8_t> takeIntoHeader(uint64_t count);
    void readUpToPayload(Kinds kinds);
    void readWideSizes(std::span<const uint8_t> chunk);
    void readFormat(std::span<const uint8_t> chunk);
    [[nodiscard]] bool isAccountedFor() const;

    InputFile &m_input;
    WaveFormat m_format;
    std::vector<uint8_t> m_header;
    uint64_t m_declaredDataBytes = 0;
    uint64_t m_wideDataBytes = 0; ///< of a `ds64` chunk
    bool m_hasUnknownSize = false;
    uint64_t m_payloadLimit = 0; ///< bytes, in whole sample frames
    uint64_t m_payloadBytesRead = 0;
    std::vector<uint8_t> m_partialFrame; ///< the first of the trailing bytes
};

/// What a canonical WAV file says of its sound.
struct PcmFormat {
    uint16_t channels = 0;
    uint32_t sampleRateHz = 0;
    uint16_t bitsPerSample = 0;
};

/// The canonical 44-byte head of a WAV file of integer PCM. It counts the pad byte that
/// the caller writes after an odd number of data bytes. Sizes beyond 32 bits are written
/// as 0xFFFFFFFF.
[[nodiscard]] std::vector<uint8_t> canonicalWaveHeader(const PcmFormat &format, uint64_t dataBytes);

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace nurv {

inline constexpr size_t kDiscSectorBytes = 2048;

/// The linear PCM of a title: 16 or 24 bits, 44.1 to 192 kHz, 1, 2 or 6 channels.
struct DvdAudioFormat {
    uint32_t sampleRateHz = 0;
    unsigned bitsPerSample = 0;
    unsigned channels = 0;

    bool operator==(const DvdAudioFormat &) const = default;

    [[nodiscard]] unsigned bytesPerFrame() const { return channels * bitsPerSample / 8; }
    /// Sample frames of the unit that time stamps count.
    [[nodiscard]] uint32_t accessUnitFrames() const;
    [[nodiscard]] bool isMultichannel() const { return channels > 2; }

    /// The codes of a disc, of channel group 1 in the high half and group 2 in the low one.
    [[nodiscard]] uint8_t sizesByte() const;
    [[nodiscard]] uint8_t ratesByte() const;
    [[nodiscard]] uint8_t channelAssignment() const;

    /// "96000 Hz, 24 bits, 2 channels"
    [[nodiscard]] std::string text() const;
};

/// Why a disc cannot hold sound of that kind; nothing where it can.
[[nodiscard]] std::optional<std::string> objectionTo(const DvdAudioFormat &format);

/// How the room of a full pack behind its fixed headers is divided.
struct PackDivision {
    unsigned audioBytes = 0;
    unsigned headerBytes = 0;  ///< of the private header, behind the byte that counts them
    unsigned paddingBytes = 0; ///< of a padding packet behind the audio
};

/// The first pack of a title has a system header, which leaves less room.
[[nodiscard]] PackDivision fullPack(const DvdAudioFormat &format, bool isFirstOfTitle);

/// The packs of a track with that many sample frames.
[[nodiscard]] uint64_t packsOfTrack(const DvdAudioFormat &format, uint64_t frames, bool isFirstOfTitle);

} // namespace nurv

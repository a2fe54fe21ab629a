// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shorten/ShortenFormat.h"

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nurv::shorten::test {

using Bytes = std::vector<uint8_t>;

[[nodiscard]] Bytes fromHex(std::string_view digits);
void append(Bytes &bytes, std::span<const uint8_t> more);
[[nodiscard]] Bytes littleEndian(uint32_t value, size_t size);

/// Kinds of sound that bring out different commands and codes.
enum class Sound {
    Silence,
    Square,      ///< full scale, alternating slowly
    Alternation, ///< full scale, with every sample
    Noise,
    Sweep,
    Music,
    Offset, ///< a constant, then a little noise on it
    Bursts,
    Shifts, ///< low-order bits that are 0 for changing stretches
    Ramp,
};
inline constexpr Sound kAllSounds[] = {Sound::Silence, Sound::Square, Sound::Alternation, Sound::Noise,  Sound::Sweep,
                                       Sound::Music,   Sound::Offset, Sound::Bursts,      Sound::Shifts, Sound::Ramp};
void PrintTo(Sound sound, std::ostream *out);

/// A WAV file to make.
struct Wave {
    Sound sound = Sound::Music;
    size_t frames = 1000;
    unsigned channels = 2;
    unsigned bits = 16;
    uint32_t seed = 1;

    /// Interleaved, signed also where the file has them unsigned.
    [[nodiscard]] std::vector<int32_t> samples() const;
    /// As they lie in the file.
    [[nodiscard]] Bytes data() const;
    [[nodiscard]] Bytes file() const { return file({}, {}); }
    /// With chunks, or anything else, before and after the data chunk; the RIFF size
    /// counts all.
    [[nodiscard]] Bytes file(std::span<const uint8_t> before, std::span<const uint8_t> after) const;
    /// Everything up to the data. `more` bytes follow the data.
    [[nodiscard]] Bytes header(std::span<const uint8_t> before, size_t dataBytes, size_t more) const;
};
void PrintTo(const Wave &wave, std::ostream *out);

/// A RIFF chunk; its pad byte, where one is due, has the given value, none when negative.
[[nodiscard]] Bytes chunk(std::string_view name, size_t size, int padByte = 0);

/// The stream that the encoder makes of a WAV file, with its seek table where wanted.
[[nodiscard]] Bytes encoded(std::span<const uint8_t> wave, uint32_t blockSize = kDefaultBlockSize,
                            uint32_t meanCount = kDefaultMeanCount, bool withSeekTable = false);

/// What the decoder makes of a stream. Throws as it does.
[[nodiscard]] Bytes decoded(std::span<const uint8_t> stream);

/// The decoder's complaint, empty when it has none. `restored` gets what it wrote before.
[[nodiscard]] std::string complaint(std::span<const uint8_t> stream, Bytes *restored = nullptr);

} // namespace nurv::shorten::test

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "samples/SampleStream.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace nurv {

class ByteSource;

/// What the first bytes of a FLAC, TTA or Monkey's Audio file say of its sound.
struct CodecHeader {
    enum class Kind { Flac, Tta, MonkeysAudio };

    Kind kind = Kind::Flac;
    SampleFormat format;
    std::optional<std::int64_t> declaredFrames; ///< nothing where the format says "not known"
    std::array<std::uint8_t, 16> md5{};         ///< of the samples: FLAC; all 0: not told
    std::uint16_t version = 0;                  ///< Monkey's Audio: 3990 for 3.99
    std::int64_t soundEnd = 0;                  ///< TTA: the offset behind the last frame

    /// `start`: of the file's header. Nothing when it is none of these or damaged.
    [[nodiscard]] static std::optional<CodecHeader> read(const ByteSource &source, std::int64_t start);

    static constexpr std::size_t kStreamInfoBytes = 34;
    /// Of a STREAMINFO block of FLAC, which other containers hold too.
    [[nodiscard]] static CodecHeader fromStreamInfo(std::span<const std::uint8_t, kStreamInfoBytes> info);

    /// The offset of the first frame of a FLAC file, behind all metadata; `start`: of the file's
    /// header. Nothing when the metadata goes beyond the file.
    [[nodiscard]] static std::optional<std::int64_t> flacSoundStart(const ByteSource &source, std::int64_t start);
};

} // namespace nurv

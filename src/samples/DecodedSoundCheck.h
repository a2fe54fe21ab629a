// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace nurv {

class ByteSource;
struct CodecHeader;
class WavpackBlocks;

/// Holds what a file says beside its samples against what a decoder made of it. A decoder
/// library passes over damage between the pieces that it can read; this does not.
///
/// Every operation throws NurvFailure where the two do not fit.
class DecodedSoundCheck {
public:
    DecodedSoundCheck() = default;
    virtual ~DecodedSoundCheck() = default;
    DecodedSoundCheck(const DecodedSoundCheck &) = delete;
    DecodedSoundCheck &operator=(const DecodedSoundCheck &) = delete;

    /// A piece of the file on its way to the decoder. Returns how many of its bytes that gets.
    [[nodiscard]] virtual std::size_t onPacket(std::span<const std::uint8_t> bytes) { return bytes.size(); }
    /// Decoded samples as SampleStream gives them.
    virtual void onSamples(const std::int32_t * /*samples*/, std::size_t /*frames*/) {}
    /// After the last one.
    virtual void atEnd(std::int64_t /*frames*/) {}
};

/// FLAC: the frames are numbered, and the header has the MD5 of the samples.
/// `soundStart`: where the frames begin of which the file is made; nothing inside another
/// container.
[[nodiscard]] std::unique_ptr<DecodedSoundCheck> makeFlacCheck(const ByteSource &source, const CodecHeader &header,
                                                               std::optional<std::int64_t> soundStart);
/// WavPack: the blocks tell their lengths, and may hold what stood behind the sound.
[[nodiscard]] std::unique_ptr<DecodedSoundCheck> makeWavpackCheck(WavpackBlocks blocks);
/// TTA: nothing but tags follows the last frame.
[[nodiscard]] std::unique_ptr<DecodedSoundCheck> makeTtaCheck(const ByteSource &source, const CodecHeader &header);

} // namespace nurv

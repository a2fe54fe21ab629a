// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/AudioFileStatus.h"

#include <cstdint>
#include <functional>
#include <memory>

struct AVCodecContext;
struct AVPacket;

namespace nurv {

/// How AAC is to be encoded; what is 0 is left to the encoder.
struct AudioEncoderSettings {
    std::uint32_t bitRate = 0;     ///< bits per second
    std::uint32_t quality = 0;     ///< 0 to 127, for bit-rate control mode 3
    std::uint32_t bitRateMode = 0; ///< 0 constant, 1 long-term average, 2 constrained variable, 3 by quality
};

/// Encodes client samples to Apple Lossless or AAC, and brings them to the sample
/// rate of the file. Its properties take effect with the next `open`. Used by one
/// thread at a time.
class AudioEncoder {
public:
    using PacketSink = std::function<AudioFileStatus(AVPacket &packet)>;

    /// `file`: the format to encode to.
    explicit AudioEncoder(const AudioStreamDescription &file);
    ~AudioEncoder();
    AudioEncoder(const AudioEncoder &) = delete;
    AudioEncoder &operator=(const AudioEncoder &) = delete;

    /// Whether there is an encoder that gives this format without losing bits that
    /// the format promises to keep.
    [[nodiscard]] static AudioFileStatus check(const AudioStreamDescription &file);

    [[nodiscard]] AudioFileStatus setClientFormat(const AudioStreamDescription &format);

    // Properties. A value out of range is refused and changes nothing.
    [[nodiscard]] AudioFileStatus setBitRate(std::uint32_t bitsPerSecond);
    /// What `setBitRate` takes of AAC at most, in bits per second, for the file's rate and channels.
    [[nodiscard]] std::uint32_t mostBitRate() const;
    [[nodiscard]] AudioFileStatus setQuality(std::uint32_t quality);
    [[nodiscard]] AudioFileStatus setBitRateMode(std::uint32_t mode);
    /// One bit per speaker, as in WAV; both layouts have to agree.
    [[nodiscard]] AudioFileStatus setInputChannelLayout(std::uint32_t bitmap);
    [[nodiscard]] AudioFileStatus setOutputChannelLayout(std::uint32_t bitmap);
    [[nodiscard]] AudioFileStatus getSettings(AudioEncoderSettings &settings) const;
    [[nodiscard]] AudioFileStatus setSettings(const AudioEncoderSettings &settings);

    /// Makes the encoder ready, again after a property has changed.
    [[nodiscard]] AudioFileStatus open();
    /// The open encoder.
    [[nodiscard]] const AVCodecContext &codec() const;
    /// How many frames the file will have for as many client frames.
    [[nodiscard]] std::int64_t fileFrames(std::int64_t clientFrames) const;

    /// How many frames of the file have been encoded.
    [[nodiscard]] std::int64_t encodedFrames() const;

    [[nodiscard]] AudioFileStatus encode(const std::uint8_t *client, std::uint32_t frames, const PacketSink &sink);
    /// Encodes what is left. Nothing can be encoded afterwards.
    [[nodiscard]] AudioFileStatus flush(const PacketSink &sink);

private:
    class Engine;
    [[nodiscard]] AudioFileStatus setForAac(std::uint32_t &setting, std::uint32_t value, std::uint32_t most);
    std::unique_ptr<Engine> m_engine;
};

} // namespace nurv

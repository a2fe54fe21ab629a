// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/AudioContainerWriter.h"
#include "audio/AudioEncoder.h"

#include <memory>

struct AVPacket;

namespace nurv {

class AudioOutputFile;

/// Writes Apple Lossless and AAC into an MPEG-4 audio file whose "moov" box comes
/// before the sound.
///
///     ftyp | moov, free | mdat     the length is known: room is kept in front
///     ftyp | moov | mdat           it is not: everything moves back at the end
///
/// Either way memory is needed for the index only, 64 bytes per packet.
class Mpeg4FileWriter final : public AudioContainerWriter {
public:
    /// `expectedFrames`: the most client frames that will come, 0 when unknown.
    /// `file` outlives the writer.
    Mpeg4FileWriter(AudioOutputFile &file, const AudioStreamDescription &format, std::int64_t expectedFrames);
    ~Mpeg4FileWriter() override;

    [[nodiscard]] AudioFileStatus begin() override { return AudioFileStatus::Ok; }
    [[nodiscard]] AudioFileStatus setClientFormat(const AudioStreamDescription &format) override;
    [[nodiscard]] AudioFileStatus write(const std::uint8_t *client, std::uint32_t frames) override;
    [[nodiscard]] AudioFileStatus finish() override;
    [[nodiscard]] AudioEncoder *converter() override { return &m_encoder; }

private:
    struct Muxer;

    [[nodiscard]] AudioFileStatus start();
    [[nodiscard]] AudioFileStatus writePacket(AVPacket &packet);
    [[nodiscard]] std::int64_t roomForIndex() const;
    [[nodiscard]] bool makeLengthExact();

    AudioOutputFile &m_file;
    AudioEncoder m_encoder;
    AudioStreamDescription m_client;
    std::int64_t m_expectedFrames;
    std::int64_t m_writtenFrames = 0;
    std::unique_ptr<Muxer> m_muxer;
};

} // namespace nurv

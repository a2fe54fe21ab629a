// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/WaveInfo.h"
#include "support/AvHandles.h"
#include "support/ByteSink.h"

#include <cstdint>
#include <string>
#include <vector>

namespace nurv {

/// Decodes the Apple Lossless sound of an MPEG-4 file with FFmpeg's libraries.
class AlacDecoder {
public:
    /// Reads the head of the file. Throws ToolError: InvalidInput or UnsupportedFormat.
    explicit AlacDecoder(const std::string &name);
    ~AlacDecoder();
    AlacDecoder(const AlacDecoder &) = delete;
    AlacDecoder &operator=(const AlacDecoder &) = delete;

    /// Hands the sound to `sink` as a WAV file, its header first. Throws ToolError(Damaged) at the first fault, also
    /// where the file holds less or more than it counts.
    void decode(const ByteSink &sink);

private:
    void open();
    void openCodec();
    void takeFrames(const ByteSink &sink);
    void giveFrame(const ByteSink &sink);
    [[noreturn]] void failDamaged(const std::string &why) const;

    std::string m_name;
    AvHandle<AVFormatContext> m_format;
    AvHandle<AVCodecContext> m_codec;
    AvHandle<AVPacket> m_packet;
    AvHandle<AVFrame> m_frame;
    int m_stream = 0;
    WaveHeader m_header;
    uint64_t m_totalFrames = 0; ///< samples of every channel
    uint64_t m_decodedFrames = 0;
    std::vector<uint8_t> m_pcm;
};

} // namespace nurv

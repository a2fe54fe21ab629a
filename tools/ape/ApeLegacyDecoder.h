// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeFormat.h"
#include "ape/ApeSource.h"
#include "support/AvHandles.h"

#include <vector>

namespace nurv {

class InputFile;

/// Decodes files of the versions before 3990 with FFmpeg's libraries. Files of version
/// 3980 get the stored WAV header and trailing bytes back; the older ones a plain header.
class ApeLegacyDecoder final : public ApeSource {
public:
    /// `input` is a named file, at its start. Throws ApeError.
    explicit ApeLegacyDecoder(InputFile &input);

    [[nodiscard]] uint64_t totalBlocks() const override { return m_totalBlocks; }
    void decode(const ByteSink &sink, const std::function<void(size_t)> &onBlocks) override;

private:
    void open();
    void openCodec();
    void findStoredParts();
    void copyStored(uint64_t offset, uint64_t count, const ByteSink &sink);
    void receiveFrames(const ByteSink &sink, const std::function<void(size_t)> &onBlocks);
    void writeFrame(const ByteSink &sink);
    [[noreturn]] void failFrame() const;

    InputFile &m_input;
    AvHandle<AVFormatContext> m_format;
    AvHandle<AVCodecContext> m_codec;
    AvHandle<AVPacket> m_packet;
    AvHandle<AVFrame> m_frame;
    ApeHeader m_header; ///< sample rate, width, channels
    uint64_t m_totalBlocks = 0;
    uint64_t m_decodedBlocks = 0;
    uint64_t m_storedHeaderOffset = 0;
    uint64_t m_storedHeaderBytes = 0; ///< 0: none is stored
    uint64_t m_storedTrailingOffset = 0;
    uint64_t m_storedTrailingBytes = 0;
    std::vector<int32_t> m_samples;
    std::vector<uint8_t> m_pcm;
};

} // namespace nurv

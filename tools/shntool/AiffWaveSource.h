// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/WaveInfo.h"
#include "shntool/WaveSource.h"
#include "support/InputFile.h"

#include <memory>
#include <optional>
#include <vector>

namespace nurv {

/// The sound of an AIFF file, or of an AIFF-C file without compression, as a WAV file. A file that ends before the
/// frames that it counts is damaged.
class AiffWaveSource final : public PieceSource {
public:
    /// Throws ToolError: InvalidInput where this is none, UnsupportedFormat for compressed sound.
    AiffWaveSource(const std::string &name, uint64_t id3Bytes);

protected:
    bool makePiece() override;

private:
    struct Common {
        uint16_t channels = 0;
        uint32_t frames = 0;
        uint16_t bits = 0;
        uint32_t samplesPerSecond = 0;
        bool isLittleEndian = false;
    };

    void readChunks();
    void readCommon(uint32_t chunkBytes, bool isCompressedKind);
    void readSoundHead(uint32_t chunkBytes);
    void makeFrames();

    InputFile m_input;
    std::optional<Common> m_common;
    uint64_t m_soundOffset = 0;
    uint64_t m_soundBytes = 0; ///< as the chunk says; 0: no such chunk
    WaveHeader m_header;
    uint64_t m_dataBytes = 0;
    uint64_t m_bytesGiven = 0;
    std::vector<uint8_t> m_frames;
    enum class Part { Header, Frames, Nothing } m_next = Part::Header;
};

} // namespace nurv

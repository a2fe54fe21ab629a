// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/WaveInfo.h"
#include "shntool/WaveSource.h"

#include <array>
#include <memory>
#include <optional>

namespace nurv {

class FlacDecoder;

/// The sound of a FLAC file as a WAV file, with the header that `flac -d` gives it. Where the file does not tell
/// its length, it is decoded once to count.
class FlacWaveSource final : public PieceSource {
public:
    /// Reads the metadata. Throws ToolError.
    explicit FlacWaveSource(const std::string &name);
    ~FlacWaveSource() override;

    [[nodiscard]] std::optional<std::array<uint8_t, 16>> soundMd5() const override { return m_soundMd5; }

protected:
    bool makePiece() override;

private:
    void countSamples(const std::string &name);
    [[nodiscard]] uint64_t dataBytes() const;

    std::unique_ptr<FlacDecoder> m_decoder;
    WaveHeader m_header;
    uint64_t m_totalSamples = 0; ///< of every channel
    uint64_t m_samplesGiven = 0;
    std::optional<std::array<uint8_t, 16>> m_soundMd5;
    enum class Part { Header, Frames, Nothing } m_next = Part::Header;
};

} // namespace nurv

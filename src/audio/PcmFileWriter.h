// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/AudioContainerWriter.h"

#include <QByteArray>

#include <vector>

namespace nurv {

class AudioOutputFile;

/// Writes WAV and AIFF files.
///
/// WAV has the plain 44-byte header, which every reader knows; with more than two
/// channels WAVE_FORMAT_EXTENSIBLE, without which their order would be open; and
/// the 64-bit sizes of RF64 (EBU Tech 3306) when the sound will not fit into 4 GiB.
/// AIFF ends at 4 GiB.
class PcmFileWriter final : public AudioContainerWriter {
public:
    /// `expectedFrames`: the length to plan for, 0 when unknown. `file` outlives the writer.
    PcmFileWriter(AudioOutputFile &file, FourCharCode fileType, const AudioStreamDescription &format,
                  std::int64_t expectedFrames);

    /// Whether such a file can be written.
    [[nodiscard]] static AudioFileStatus check(FourCharCode fileType, const AudioStreamDescription &format,
                                               std::int64_t expectedFrames);

    [[nodiscard]] AudioFileStatus begin() override;
    [[nodiscard]] AudioFileStatus setClientFormat(const AudioStreamDescription &format) override;
    [[nodiscard]] AudioFileStatus write(const std::uint8_t *client, std::uint32_t frames) override;
    [[nodiscard]] AudioFileStatus finish() override;

private:
    [[nodiscard]] QByteArray header(std::int64_t dataBytes) const;
    [[nodiscard]] QByteArray wavHeader(std::int64_t dataBytes) const;
    [[nodiscard]] QByteArray aiffHeader(std::int64_t dataBytes) const;

    AudioOutputFile &m_file;
    FourCharCode m_fileType;
    AudioStreamDescription m_format;
    std::int64_t m_expectedBytes;
    std::int64_t m_writtenBytes = 0;
    bool m_is64Bit;
    std::vector<std::uint8_t> m_scratch;
};

} // namespace nurv

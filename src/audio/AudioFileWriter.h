// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/AudioEncoder.h"
#include "audio/AudioFileStatus.h"

#include <QString>

#include <cstdint>
#include <memory>

namespace nurv {

class AudioFileReader;
class AudioContainerWriter;
class AudioOutputFile;

/// Writes an audio file: Apple Lossless or AAC in MPEG-4, WAV, AIFF.
///
///     create ──> setClientFormat ──> [settings of the converter] ──> write, write, ... ──> close
///
/// Used by one thread at a time; every operation blocks for the file.
class AudioFileWriter {
public:
    AudioFileWriter();
    /// Leaves a file that was not closed as far as it got.
    ~AudioFileWriter();
    AudioFileWriter(const AudioFileWriter &) = delete;
    AudioFileWriter &operator=(const AudioFileWriter &) = delete;

    /// Creates the file, or empties an existing one. What cannot be written is refused
    /// before an existing file is touched; so is a file that is the open one of `source`
    /// by whatever name, and anything that is no regular file. The length of the source
    /// decides how the file is laid out.
    [[nodiscard]] AudioFileStatus create(const QString &path, FourCharCode fileType,
                                         const AudioStreamDescription &format, const AudioFileReader &source);

    /// Says how `write` gets samples: as AudioFileReader::setClientFormat. The sample
    /// rate may differ from that of an AAC file. Forms of which the file could not keep
    /// every bit are refused, but for AAC.
    [[nodiscard]] AudioFileStatus setClientFormat(const AudioStreamDescription &format);

    /// The encoder between the samples and the file, for its settings; null when there
    /// is none. Lives as long as the writer.
    [[nodiscard]] AudioEncoder *converter();
    /// Applies the settings to the file.
    [[nodiscard]] AudioFileStatus setConverterConfig(const AudioEncoderSettings &settings);

    [[nodiscard]] AudioFileStatus write(const std::uint8_t *buffer, std::uint32_t frames);

    /// Completes and closes the file. Every write that failed, also a late one of the
    /// system, is a failure here.
    [[nodiscard]] AudioFileStatus close();

private:
    std::unique_ptr<AudioOutputFile> m_file;
    std::unique_ptr<AudioContainerWriter> m_container;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/AudioFileStatus.h"
#include "audio/AudioStreamDescription.h"

#include <QString>

#include <cstdint>

namespace nurv {

class AudioFileReader;
class AudioFileWriter;
class NURVTask;

/// Converts one audio file to another in the process, on the caller's thread.
///
///     source ──> samples of the source's width, 32 KiB at a time ──> output
///                    └── status line and progress of the job, at each further percent
///
/// Sample for sample, unless the output or the source is lossy: what cannot be kept
/// exactly is refused. One object per conversion; the job outlives it.
class EncodeCoreAudioSync {
public:
    /// `formatType`: 'aac ', 'alac' or 'lpcm'; `fileType`: 'm4af', 'WAVE' or 'AIFF'.
    EncodeCoreAudioSync(NURVTask &task, const QString &fileName, const QString &outputFile, FourCharCode formatType,
                        FourCharCode fileType);

    // AAC only, and before the conversion.
    /// Bits per second; 0 leaves it to the encoder.
    void setBitrate(std::uint32_t bitrate) { m_bitrate = bitrate; }
    [[nodiscard]] std::uint32_t bitrate() const { return m_bitrate; }
    /// 1 to 127, for mode 3; 0 leaves it to the encoder.
    void setQuality(std::uint32_t quality) { m_quality = quality; }
    [[nodiscard]] std::uint32_t quality() const { return m_quality; }
    /// Bit-rate control: 0 constant, 1 long-term average, 2 constrained variable, 3 variable.
    void setMode(std::uint32_t mode) { m_mode = mode; }
    [[nodiscard]] std::uint32_t mode() const { return m_mode; }

    /// Samples of floating point and of more than 24 bits may be rounded to integers of 24: of a sound that a lossy encoder
    /// gets.
    void setMayRound(bool mayRound) { m_mayRound = mayRound; }

    /// The name of the output format in messages; null for a format type that is unknown.
    [[nodiscard]] const QString &formatStringValue() const { return m_formatStringValue; }

    /// Runs the conversion to its end. A failure sets the job's error flag and replaces
    /// the text of its result set; a cancelled job ends it after the buffer in hand, with
    /// no text. Either way the output stays as far as it got, for the job to remove; what
    /// is refused before the output is begun leaves an existing file as it was.
    void doEncodeCall();

    /// Whether the source holds sound that is not in the output: another track, or what
    /// its edit list hides.
    [[nodiscard]] bool leavesSoundBehind() const { return m_leavesSoundBehind; }

    /// What a failed conversion put into the result set; empty otherwise.
    [[nodiscard]] const QString &failureText() const { return m_failureText; }
    /// Why a conversion was refused, in a user's words: what the source has and the output
    /// cannot hold. Empty where it did not fail for that.
    [[nodiscard]] const QString &obstacle() const { return m_obstacle; }

private:
    void convert(AudioFileReader &source, AudioFileWriter &output);
    void copy(AudioFileReader &source, AudioFileWriter &output, const AudioStreamDescription &working,
              std::int64_t totalFrames);
    void showProgress(double percent);
    [[nodiscard]] bool isRounded(const AudioStreamDescription &source) const;
    [[nodiscard]] AudioStreamDescription outputFormat(const AudioStreamDescription &source,
                                                      const AudioStreamDescription &working) const;
    void setAACSettings(AudioFileWriter &output);
    void setAACSurroundChannelFormatSettings(AudioFileWriter &output) const;

    NURVTask &m_task;
    QString m_fileName;
    QString m_outFile;
    FourCharCode m_formatType;
    FourCharCode m_fileType;
    QString m_formatStringValue;
    QString m_failureText;
    QString m_obstacle;
    std::uint32_t m_bitrate = 0;
    std::uint32_t m_quality = 0;
    std::uint32_t m_mode = 0;
    bool m_mayRound = false;
    bool m_leavesSoundBehind = false;
};

} // namespace nurv

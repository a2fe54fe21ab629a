// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/StagedTask.h"

namespace nurv {

class TagsObject;

/// An encoding in stages: what its program cannot read comes by way of a temporary WAV.
class StagedEncodeTask : public StagedTask {
protected:
    using StagedTask::StagedTask;

    void convert() final { doEncodeCall(); }
    virtual void doEncodeCall() = 0;

    /// The program that decodes the source to a WAV file; nothing for a source that none of them reads.
    [[nodiscard]] std::optional<ProgramStage> decodingToWav(const QString &made) const;
    /// Makes a WAV file of what the audio service reads. A failure sets the error flag.
    /// `precision`: whether floating-point samples and those of more bits may be rounded to integers of 24.
    void convertToWav(const QString &source, const QString &wav,
                      AudioFileReader::Precision precision = AudioFileReader::Precision::Exact);
    /// AIFF sources by way of a temporary WAV, all others as they are.
    void encodeWav();
    /// Every source by way of a temporary WAV.
    void encodeThroughWav();
    /// A stage whose status does not make the job fail.
    [[nodiscard]] static ProgramStage withoutStatus(ProgramStage stage);
    /// What `writeFlacTags` starts.
    [[nodiscard]] static NeededPrograms flacTagPrograms();
    /// Writes the record to the FLAC file that was made. What writes it reports nothing:
    /// when the texts are not there afterwards, the source is kept for them.
    void writeFlacTags(const TagsObject &tags);
};

} // namespace nurv

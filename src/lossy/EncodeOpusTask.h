// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "lossy/LossyEncodeTask.h"
#include "programs/Opusenc.h"

namespace nurv {

/// Any file to Ogg Opus, with title and artist of FLAC and Apple Lossless files.
///
///     WAV, AIFF ─────────────────────────────> opusenc ──> opus
///     all others ──> temporary WAV ──> opusenc ──> opus with the name of the WAV ──> opus
class EncodeOpusTask final : public LossyEncodeTask {
public:
    /// `type`: "CBR", "VBR Constrained" or "VBR"; `bitRate` in kbit/s; `frameSize` in milliseconds: 2.5, 5, 10, 20,
    /// 40 or 60. A job with another type or size fails.
    EncodeOpusTask(NURVTaskQueue *queue, const QString &fileName, const QString &type, const QString &outputPath,
                   int bitRate, double frameSize);

    /// How it encodes.
    [[nodiscard]] const opusenc::OpusEncoding &settings() const { return m_encoding; }

protected:
    [[nodiscard]] QString openingStatus() const override;
    [[nodiscard]] std::optional<ProgramStage> decoding(const QString &made) const override;
    [[nodiscard]] std::optional<ProgramStage> encoding(const QString &input) const override;
    void doEncodeCall() override;
    void cleanup() override;

private:
    /// Whether opusenc cannot read the source itself.
    [[nodiscard]] bool goesThroughWav() const;
    void readTexts();
    void encode(const QString &input);

    opusenc::OpusEncoding m_encoding;
    opusenc::Texts m_texts;
    QString m_unreadTags; ///< why they could not be read
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "lossy/LossyEncodeTask.h"
#include "programs/Lame.h"

namespace nurv {

/// Any file to MP3, with the tags of FLAC and Apple Lossless files.
///
///     WAV ──────────────────────────────────> lame ──> mp3
///     Apple Lossless ──> temporary WAV ──> shntool | lame ──> mp3 with the name of the WAV ──> mp3
///     all others ────────────────────────> shntool | lame ──> mp3
class EncodeMP3Task final : public LossyEncodeTask {
public:
    /// `type`: "CBR" or "VBR"; `level`: kbit/s, or lame's quality.
    EncodeMP3Task(NURVTaskQueue *queue, const QString &fileName, const QString &type, const QString &outputPath,
                  int level);

    [[nodiscard]] QString intermediateFile() const override;
    /// How it encodes.
    [[nodiscard]] const lame::Mp3Encoding &settings() const { return m_encoding; }

protected:
    [[nodiscard]] QString openingStatus() const override;
    [[nodiscard]] std::optional<ProgramStage> encoding(const QString &input) const override;
    void doEncodeCall() override;
    void cleanup() override;

private:
    /// How the input is encoded, and the name that the program gives what it makes.
    struct Road {
        ProgramStage stage;
        QString made;
    };
    [[nodiscard]] Road roadFrom(const QString &input) const;
    /// Where the program is told the output's name: another file has the one that it would give.
    [[nodiscard]] Road roadWithName(const QString &input) const;
    void encode(const QString &input);
    void writeTags();

    lame::Mp3Encoding m_encoding;
};

} // namespace nurv

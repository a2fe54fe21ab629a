// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/AudioEncoder.h"
#include "lossy/LossyEncodeTask.h"

#include <optional>

namespace nurv {

class TagsObject;

/// Any file to AAC, with the tags of FLAC files and how it was encoded.
///
///     source ──> [its decoder ──> temporary WAV] ──> audio service ──> m4a ──> tags ──> gapless
class EncodeAACTask final : public LossyEncodeTask {
public:
    /// `type`: "CBR", "ABR", "VBR Constrained" or "VBR"; `level`: kbit/s, or with "VBR" the quality, 0 to 127.
    /// Another type leaves all to the encoder.
    EncodeAACTask(NURVTaskQueue *queue, const QString &fileName, const QString &type, const QString &outputPath,
                  int level);

    /// What the audio service is told.
    [[nodiscard]] AudioEncoderSettings settings() const;
    /// How it was encoded, for people; nothing for another type.
    [[nodiscard]] std::optional<QString> encoderSettingsForTag() const;

protected:
    [[nodiscard]] QString openingStatus() const override;
    [[nodiscard]] std::optional<ProgramStage> decoding(const QString &made) const override;
    [[nodiscard]] NeededPrograms tagPrograms() const override;
    void doEncodeCall() override;

private:
    [[nodiscard]] std::optional<QString> faultOfLevel() const;
    void encode(const QString &input);
    void finishOutput();
    void handleFlacTags();
    void setEncoderTag();
    void writeRecord(const TagsObject &tags);
    void optimizeFile();

    QString m_type;
    int m_level;
};

} // namespace nurv

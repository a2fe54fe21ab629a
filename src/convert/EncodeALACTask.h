// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/StagedEncodeTask.h"

namespace nurv {

class TagsObject;

/// WAV, AIFF, Shorten, FLAC, Monkey's Audio or WavPack to Apple Lossless, with the tags.
///
///     source ──> its decoder ──> temporary WAV ──> audio service ──> m4a ──> tags ──> gapless
///        └────────────── WAV, AIFF ──────────────────┘
class EncodeALACTask final : public StagedEncodeTask {
public:
    EncodeALACTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath);

protected:
    [[nodiscard]] QString openingStatus() const override;
    [[nodiscard]] std::optional<ProgramStage> decoding(const QString &made) const override;
    [[nodiscard]] NeededPrograms tagPrograms() const override;
    void doEncodeCall() override;
    void cleanup() override;

private:
    /// Converts the file to the output.
    void encode(const QString &input);
    /// Decodes the source by a program to a temporary WAV and encodes that. A cancelled
    /// job leaves the temporary WAV in place.
    void encodeDecoded(const QString &status);
    void finishOutput();
    void writeTags();
    void handleFlacTags();
    void handleAiffTags();
    void handleWavpackTags();
    void handleApeTags();
    void handleTtaTags();
    void setEncoderTag();
    void writeRecord(const TagsObject &tags);
    void optimizeFile(const QString &path);
};

} // namespace nurv

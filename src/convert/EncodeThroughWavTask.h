// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/StagedEncodeTask.h"
#include "programs/Flac.h"

#include <memory>

namespace nurv {

/// A lossless file to a format whose encoder cannot read it: decoded to a temporary WAV,
/// encoded from there, with the tags where the new format takes them.
class EncodeThroughWavTask final : public StagedEncodeTask {
public:
    /// What the encoders are told. Each takes what is its own.
    struct Encoding {
        QString format; ///< "SHN", "FLAC", "WV", "TTA" or "APE"
        QString level;  ///< WavPack: "-f" or "-h"; Monkey's Audio: 1000 to 5000
        flac::Encoding flac;
    };

    /// Whether this is the job for the pair: sources by their format word ("FLAC", "SHN",
    /// "WV", "TTA", "APE", "M4A") that the format's encoder does not read itself, and that
    /// no other job decodes for it.
    [[nodiscard]] static bool suits(const QString &sourceFormat, const QString &format);
    /// The same for a file that its format's encoder reads itself in other shapes: flac knows
    /// AIFF of one and two channels. A few reads.
    [[nodiscard]] static bool suitsShapeOf(const QString &source, const QString &format);

    /// `results`: the set of the batch, or null for a set of the job's own.
    EncodeThroughWavTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath, Encoding encoding,
                         std::shared_ptr<NURVTaskResults> results = nullptr);

    [[nodiscard]] const Encoding &encoding() const { return m_encoding; }

protected:
    [[nodiscard]] QString openingStatus() const override;
    [[nodiscard]] std::optional<ProgramStage> decoding(const QString &made) const override;
    [[nodiscard]] std::optional<ProgramStage> encoding(const QString &input) const override;
    [[nodiscard]] NeededPrograms tagPrograms() const override;
    void doEncodeCall() override;
    void cleanup() override;

private:
    [[nodiscard]] bool makeWav(const QString &wav);
    [[nodiscard]] bool takesTags() const;
    [[nodiscard]] TagsObject readTags() const;
    void writeTags();

    Encoding m_encoding;
};

} // namespace nurv

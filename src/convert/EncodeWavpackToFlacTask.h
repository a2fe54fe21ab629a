// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/StagedEncodeTask.h"

#include <memory>

namespace nurv {

/// WavPack to FLAC, with the tags. `flac` encodes at its own level.
class EncodeWavpackToFlacTask final : public StagedEncodeTask {
public:
    /// `level` is kept, not passed on. `results` is the set of the batch.
    EncodeWavpackToFlacTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath, int level,
                            bool verify, std::shared_ptr<NURVTaskResults> results);

    [[nodiscard]] int level() const { return m_level; }

protected:
    [[nodiscard]] QString openingStatus() const override;
    [[nodiscard]] std::optional<ProgramStage> decoding(const QString &made) const override;
    [[nodiscard]] std::optional<ProgramStage> encoding(const QString &input) const override;
    [[nodiscard]] NeededPrograms tagPrograms() const override { return flacTagPrograms(); }
    void doEncodeCall() override;
    void cleanup() override;

private:
    void convertWavpackToWav(const QString &wav);
    void getWavpackTags();

    int m_level;
    bool m_verify;
};

} // namespace nurv

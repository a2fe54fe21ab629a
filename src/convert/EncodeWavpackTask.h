// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/StagedEncodeTask.h"

namespace nurv {

/// WAV or AIFF to WavPack; whatever else the source is goes to `wavpack` as it is.
/// The status that the program ends with does not make the job fail.
class EncodeWavpackTask final : public StagedEncodeTask {
public:
    /// `level`: "-f" (fast) or "-h" (high).
    EncodeWavpackTask(NURVTaskQueue *queue, const QString &fileName, const QString &level, const QString &outputPath);

protected:
    [[nodiscard]] QString openingStatus() const override;
    [[nodiscard]] std::optional<ProgramStage> encoding(const QString &input) const override;
    void doEncodeCall() override;

private:
    QString m_level;
};

} // namespace nurv

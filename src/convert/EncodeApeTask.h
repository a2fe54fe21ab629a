// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/StagedEncodeTask.h"

namespace nurv {

/// WAV or AIFF to Monkey's Audio; whatever else the source is goes to `mac` as it is.
/// The status that the program ends with does not make the job fail.
class EncodeApeTask final : public StagedEncodeTask {
public:
    /// `level`: 1000, 2000, ... 5000.
    EncodeApeTask(NURVTaskQueue *queue, const QString &fileName, const QString &level, const QString &outputPath);

protected:
    [[nodiscard]] QString openingStatus() const override;
    [[nodiscard]] std::optional<ProgramStage> encoding(const QString &input) const override;
    void doEncodeCall() override;

private:
    QString m_level;
};

} // namespace nurv

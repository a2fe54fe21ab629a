// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/StagedEncodeTask.h"

namespace nurv {

/// Apple Lossless to Monkey's Audio, with the tags.
class EncodeALACToAPETask final : public StagedEncodeTask {
public:
    /// `level`: 1000, 2000, ... 5000.
    EncodeALACToAPETask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath, const QString &level);

protected:
    [[nodiscard]] QString openingStatus() const override;
    [[nodiscard]] std::optional<ProgramStage> encoding(const QString &input) const override;
    void doEncodeCall() override;
    void cleanup() override;

private:
    void getALACTags();

    QString m_level;
};

} // namespace nurv

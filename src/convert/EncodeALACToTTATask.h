// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/StagedEncodeTask.h"

namespace nurv {

/// Apple Lossless to TTA, without tags.
class EncodeALACToTTATask final : public StagedEncodeTask {
public:
    EncodeALACToTTATask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath);

protected:
    [[nodiscard]] QString openingStatus() const override;
    [[nodiscard]] std::optional<ProgramStage> encoding(const QString &input) const override;
    void doEncodeCall() override;
    void cleanup() override;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/StagedDecodeTask.h"

namespace nurv {

/// Monkey's Audio to WAV or AIFF.
class DecodeAPETask final : public StagedDecodeTask {
public:
    DecodeAPETask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath, const QString &format);

protected:
    [[nodiscard]] QString openingStatus() const override;
    [[nodiscard]] std::optional<ProgramStage> decoding(const QString &made) const override;
    void doDecodeCall() override;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/StagedDecodeTask.h"

namespace nurv {

/// WavPack to WAV or AIFF. An AIFF file is made of a WAV file of the same name, which is
/// then removed.
class DecodeWavpackTask final : public StagedDecodeTask {
public:
    DecodeWavpackTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath, const QString &format);

    [[nodiscard]] QString intermediateFile() const override;

protected:
    [[nodiscard]] QString openingStatus() const override;
    [[nodiscard]] std::optional<ProgramStage> decoding(const QString &made) const override;
    void doDecodeCall() override;
};

} // namespace nurv

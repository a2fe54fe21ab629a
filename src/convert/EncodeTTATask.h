// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/StagedEncodeTask.h"

namespace nurv {

/// WAV or AIFF to TTA; whatever else the source is goes to `ttaenc` as it is.
/// The status that the program ends with does not make the job fail.
class EncodeTTATask final : public StagedEncodeTask {
public:
    EncodeTTATask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath);

protected:
    [[nodiscard]] QString openingStatus() const override;
    [[nodiscard]] std::optional<ProgramStage> encoding(const QString &input) const override;
    void doEncodeCall() override;
};

} // namespace nurv

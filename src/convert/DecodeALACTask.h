// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/StagedDecodeTask.h"

namespace nurv {

/// Apple Lossless to WAV or AIFF. Copies the tags to AIFF outputs.
class DecodeALACTask final : public StagedDecodeTask {
public:
    DecodeALACTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath, const QString &format);

protected:
    [[nodiscard]] QString openingStatus() const override;
    void doDecodeCall() override;
    void cleanup() override;

private:
    void handleAlacTags();
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/ConversionTask.h"

namespace nurv {

/// FLAC to WAV or AIFF. Copies the tags to AIFF outputs.
class DecodeFlacTask final : public ConversionTask {
public:
    /// The output is the last argument.
    DecodeFlacTask(const QString &fileName, NURVTaskQueue *queue, const QString &launchPath,
                   const QStringList &arguments);

    [[nodiscard]] QString outputFile() const override;

protected:
    [[nodiscard]] ChunkReport parseOutput(const QString &chunk) const override;
    void finishOutput() override;
    void cleanup() override;

private:
    void getFlacTags();
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/ConversionTask.h"

namespace nurv {

/// WAV, AIFF and whatever else `flac` reads to FLAC. Copies the tags of AIFF sources.
class EncodeFlacTask final : public ConversionTask {
public:
    /// The output is the last argument. `results` is the set of the batch.
    EncodeFlacTask(const QString &fileName, NURVTaskQueue *queue, const QString &launchPath,
                   const QStringList &arguments, std::shared_ptr<NURVTaskResults> results);

    [[nodiscard]] QString outputFile() const override;

protected:
    [[nodiscard]] ChunkReport parseOutput(const QString &chunk) const override;
    [[nodiscard]] bool replacesOutput() const override;
    void finishOutput() override;
    void cleanup() override;
    void finalCleanup() override;

private:
    void getAiffTags();
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/ConversionTask.h"

namespace nurv {

/// Any file that `shntool` reads to Shorten.
class EncodeSHNTask final : public ConversionTask {
public:
    /// `arguments` as `conversionArguments::encodeShorten` gives them: the source is
    /// taken from them. `results` is the set of the batch.
    EncodeSHNTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments,
                  std::shared_ptr<NURVTaskResults> results);

    [[nodiscard]] QString outputFile() const override;
    [[nodiscard]] QString intermediateFile() const override;

protected:
    [[nodiscard]] std::optional<QString> refusal() const override;
    [[nodiscard]] toolOutput::ChunkReport parseOutput(const QString &chunk) const override;
    [[nodiscard]] bool leavesHalfMadeOutput() const override { return true; }
    void cleanup() override;
    void finalCleanup() override;
};

} // namespace nurv

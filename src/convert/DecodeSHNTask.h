// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/ConversionTask.h"

namespace nurv {

/// Shorten to WAV or AIFF through `shntool`.
class DecodeSHNTask final : public ConversionTask {
public:
    /// `arguments` as `conversionArguments::decodeShorten` gives them: the source is
    /// taken from them.
    DecodeSHNTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments);

    [[nodiscard]] QString outputFile() const override;
    [[nodiscard]] QString intermediateFile() const override;

protected:
    [[nodiscard]] toolOutput::ChunkReport parseOutput(const QString &chunk) const override;
    [[nodiscard]] bool leavesHalfMadeOutput() const override { return true; }
    void cleanup() override;
};

} // namespace nurv

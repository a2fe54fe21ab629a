// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/ShntoolConversionTask.h"

namespace nurv {

/// Shorten to WAV or AIFF through `shntool`.
class DecodeSHNTask final : public ShntoolConversionTask {
public:
    /// `arguments` as `shntool::fromShortenArguments` gives them: the source is
    /// taken from them.
    DecodeSHNTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments);

    [[nodiscard]] QString outputFile() const override;

protected:
    [[nodiscard]] ChunkReport parseOutput(const QString &chunk) const override;
    void cleanup() override;
};

} // namespace nurv

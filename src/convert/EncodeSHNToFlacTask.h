// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/ShntoolConversionTask.h"

namespace nurv {

/// Shorten or Monkey's Audio to FLAC through `shntool`. Copies the tags of Monkey's
/// Audio sources.
class EncodeSHNToFlacTask final : public ShntoolConversionTask {
public:
    /// `arguments` as `shntool::toFlacArguments` gives them: source and
    /// output folder are taken from them. `type` is the source's format word.
    /// `results` is the set of the batch.
    EncodeSHNToFlacTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments,
                        const QString &type, std::shared_ptr<NURVTaskResults> results);

    /// The output folder.
    [[nodiscard]] const QString &outputPath() const { return m_outputPath; }
    [[nodiscard]] const QString &type() const { return m_type; }
    [[nodiscard]] QString outputFile() const override;

protected:
    [[nodiscard]] ChunkReport parseOutput(const QString &chunk) const override;
    void finishOutput() override;
    void cleanup() override;
    void finalCleanup() override;

private:
    void getApeTags();

    QString m_outputPath;
    QString m_type;
};

} // namespace nurv

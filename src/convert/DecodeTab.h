// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/BaseTab.h"
#include "app/Control.h"
#include "originals/OriginalsControls.h"

#include <memory>
#include <optional>

namespace nurv {

class Conversion;
class NURVTaskQueue;

/// The tab that turns every lossless file of its list back into WAV or AIFF.
class DecodeTab final : public BaseTab {
    Q_OBJECT

public:
    explicit DecodeTab(NURVController &controller);

    /// "WAV", "AIFF": the title is the format word.
    ChoiceControl outputFormatMatrix;
    CheckControl decodeFlacThroughErrors;
    CheckControl flacKeepForeignMetadataButton;
    LabelControl flacOptionsLabel;
    /// Each output goes beside its source instead of into one chosen folder.
    CheckControl sourceDecodeButton;
    CheckControl deleteOriginalsButton;
    OriginalsControls originals;

    /// Shows or hides the two FLAC options and their label.
    void showFLacOptions(bool show);
    void clearFiles() override;
    void executeCommand() override;

    [[nodiscard]] std::shared_ptr<Conversion> decodeFlac(const QString &source, const QString &outputFolder,
                                                         const QString &format, NURVTaskQueue *queue) const;
    [[nodiscard]] std::shared_ptr<Conversion> decodeSHN(const QString &source, const QString &outputFolder,
                                                        const QString &format, NURVTaskQueue *queue) const;

protected:
    void filesAdded() override;

private:
    void queueTasks(const std::optional<QString> &chosenFolder);
    /// The job that suits the source; null for a source of another kind.
    [[nodiscard]] std::shared_ptr<Conversion> makeConversion(const QString &source, const QString &outputFolder) const;
};

} // namespace nurv

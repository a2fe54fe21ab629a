// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/ConversionTab.h"

#include <memory>

namespace nurv {

class NURVTaskQueue;

/// The tab that turns every lossless file of its list back into WAV or AIFF.
class DecodeTab final : public ConversionTab {
    Q_OBJECT

public:
    explicit DecodeTab(NURVController &controller);

    /// "WAV", "AIFF": the title is the format word.
    ChoiceControl outputFormatMatrix;
    CheckControl decodeFlacThroughErrors;
    CheckControl flacKeepForeignMetadataButton;
    LabelControl flacOptionsLabel;
    CheckControl &sourceDecodeButton = besideSourceButton;

    /// Shows or hides the two FLAC options and their label.
    void showFLacOptions(bool show);
    void clearFiles() override;

    [[nodiscard]] std::shared_ptr<Conversion> decodeFlac(const QString &source, const QString &outputFolder,
                                                         const QString &format, NURVTaskQueue *queue) const;
    [[nodiscard]] std::shared_ptr<Conversion> decodeSHN(const QString &source, const QString &outputFolder,
                                                        const QString &format, NURVTaskQueue *queue) const;

protected:
    void filesAdded() override;
    /// The job that suits the source; null for a source of another kind.
    [[nodiscard]] std::shared_ptr<Conversion> makeConversion(const Batch &batch, const QString &source) const override;
};

} // namespace nurv

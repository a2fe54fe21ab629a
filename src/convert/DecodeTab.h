// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/BaseTab.h"
#include "app/Control.h"

namespace nurv {

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

    void showFLacOptions(bool show);
    void clearFiles() override;
    void executeCommand() override;

protected:
    void filesAdded() override;
};

} // namespace nurv

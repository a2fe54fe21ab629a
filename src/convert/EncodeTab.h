// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/BaseTab.h"
#include "app/Control.h"

#include <memory>

namespace nurv {

class NURVTask;
class NURVTaskQueue;
class NURVTaskResults;

/// The tab that turns every file of its list into one lossless encoding job.
class EncodeTab final : public BaseTab {
    Q_OBJECT

public:
    explicit EncodeTab(NURVController &controller);

    /// Each output goes beside its source instead of into one chosen folder.
    CheckControl sourceEncodeButton;
    CheckControl deleteOriginalsButton;
    /// 3 rows x 2 columns: SHN, WV / FLAC, TTA / APE, M4A.
    ChoiceControl outputFormatMatrix;
    CheckControl generateMD5Button;
    CheckControl flacVerifyButton;
    CheckControl flacLaxButton;
    CheckControl flacKeepForeignMetadataButton;
    SliderControl flacSlider;
    SliderControl apeSlider;
    /// Column 0 is fast, column 1 high.
    ChoiceControl wavepackFormatMatrix;
    CheckControl generateFFPButton;

    /// The format word of the selected cell; empty when none is selected.
    [[nodiscard]] QString outputFormat() const;

    void displayRelevantOptions() override;
    void executeCommand() override;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/BaseTab.h"
#include "app/Control.h"
#include "originals/OriginalsControls.h"

#include <QString>

#include <memory>

namespace nurv {

class FixTask;

/// The tab that moves the borders between files of CD quality to borders of sectors: its whole list is one job.
class FixTab final : public BaseTab {
    Q_OBJECT

public:
    explicit FixTab(NURVController &controller);

    /// SHN, FLAC, AIFF, WAV.
    ChoiceControl outputFormatMatrix;
    /// Kept, and without effect: see shntool::fixArguments.
    SliderControl flacLevelSlider;
    /// "No MD5", "1 MD5", "MD5 by disc*".
    ChoiceControl shnMd5Option;
    CheckControl deleteOriginalsButton;
    CheckControl flacFingerprintButton;
    LabelControl md5Label;
    /// What a deletion takes; there are no folders to keep, and nothing is replaced.
    OriginalsControls originals;

    void displayRelevantOptions() override;
    void executeCommand() override;
    [[nodiscard]] NeededPrograms neededPrograms() const override;

private:
    /// The job of the list and the options.
    [[nodiscard]] std::shared_ptr<FixTask> makeTask(const QString &outputFolder);
    [[nodiscard]] QString md5Option() const;
};

} // namespace nurv

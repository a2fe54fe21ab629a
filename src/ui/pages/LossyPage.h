// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/pages/ConversionPage.h"

namespace nurv {

class LossyTab;

/// The page of the lossy tab.
class LossyPage final : public ConversionPage {
    Q_OBJECT

public:
    explicit LossyPage(LossyTab &tab, QWidget *parent = nullptr);

protected:
    [[nodiscard]] QString plan() const override;

private:
    void addModes();
    void addQuality();

    LossyTab &m_lossyTab;
};

} // namespace nurv

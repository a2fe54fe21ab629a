// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/pages/ConversionPage.h"

namespace nurv {

class SHNtoolTab;

/// The page that runs shntool: its command, and the options of that command alone.
class SHNtoolPage final : public ConversionPage {
    Q_OBJECT

public:
    explicit SHNtoolPage(SHNtoolTab &tab, QWidget *parent = nullptr);

protected:
    [[nodiscard]] QString plan() const override;

private:
    void addCommands();
    void addLengths();
    void addOutputs();

    SHNtoolTab &m_shntoolTab;
};

} // namespace nurv

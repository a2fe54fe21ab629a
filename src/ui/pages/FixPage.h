// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/pages/ConversionPage.h"

namespace nurv {

class FixTab;

/// The page of the fix tab.
class FixPage final : public ConversionPage {
    Q_OBJECT

public:
    explicit FixPage(FixTab &tab, QWidget *parent = nullptr);

protected:
    [[nodiscard]] QString plan() const override;

private:
    void addLists();
    void addFiles();

    FixTab &m_fixTab;
};

} // namespace nurv

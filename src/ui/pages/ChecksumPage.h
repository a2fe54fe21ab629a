// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/pages/TabPage.h"

namespace nurv {

class ChecksumTab;

/// The page of the checksum tool.
class ChecksumPage final : public TabPage {
    Q_OBJECT

public:
    /// The tab must outlive the page.
    explicit ChecksumPage(ChecksumTab &tab, QWidget *parent = nullptr);

protected:
    [[nodiscard]] QString plan() const override;

private:
    ChecksumTab &m_checksumTab;
};

} // namespace nurv

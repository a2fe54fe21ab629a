// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/pages/ConversionPage.h"

namespace nurv {

class DecodeTab;

/// The options of the decode tab.
class DecodePage final : public ConversionPage {
    Q_OBJECT

public:
    /// The tab must outlive the page.
    explicit DecodePage(DecodeTab &tab, QWidget *parent = nullptr);

protected:
    [[nodiscard]] QString plan() const override;

private:
    void addFlacOptions();

    DecodeTab &m_decodeTab;
};

} // namespace nurv

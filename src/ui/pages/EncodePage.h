// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/pages/ConversionPage.h"

namespace nurv {

class EncodeTab;

/// The options of the encode tab.
class EncodePage final : public ConversionPage {
    Q_OBJECT

public:
    /// The tab must outlive the page.
    explicit EncodePage(EncodeTab &tab, QWidget *parent = nullptr);

protected:
    [[nodiscard]] QString plan() const override;

private:
    void addFlacOptions();
    void addOtherOptions();

    EncodeTab &m_encodeTab;
};

} // namespace nurv

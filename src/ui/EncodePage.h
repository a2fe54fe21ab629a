// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/TabPage.h"

namespace nurv {

class EncodeTab;

/// The options of the encode tab.
class EncodePage final : public TabPage {
    Q_OBJECT

public:
    /// The tab must outlive the page.
    explicit EncodePage(EncodeTab &tab, QWidget *parent = nullptr);

private:
    void addFormats();
    void addFlacOptions();
    void addOtherOptions();
    void addOutputOptions();

    EncodeTab &m_encodeTab;
};

} // namespace nurv

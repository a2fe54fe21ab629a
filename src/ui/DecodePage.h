// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/TabPage.h"

namespace nurv {

class DecodeTab;

/// The options of the decode tab.
class DecodePage final : public TabPage {
    Q_OBJECT

public:
    /// The tab must outlive the page.
    explicit DecodePage(DecodeTab &tab, QWidget *parent = nullptr);

private:
    void addFormats();
    void addFlacOptions();
    void addOutputOptions();

    DecodeTab &m_decodeTab;
};

} // namespace nurv

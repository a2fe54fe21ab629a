// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/pages/TabPage.h"

namespace nurv {

class PresenceTab;

/// The page of the tab that looks whether files are there.
class PresencePage final : public TabPage {
    Q_OBJECT

public:
    explicit PresencePage(PresenceTab &tab, QWidget *parent = nullptr);
};

} // namespace nurv

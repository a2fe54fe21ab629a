// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/BaseTab.h"
#include "app/Control.h"

namespace nurv {

/// The tab that looks whether files are there.
class PresenceTab final : public BaseTab {
    Q_OBJECT

public:
    explicit PresenceTab(NURVController &controller);

    CheckControl strictButton;

    void executeCommand() override;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/pages/TabPage.h"

namespace nurv {

class LabelControl;
class UtilTab;

/// The page of the commands that no other page has: the command, and the options of that command alone.
class UtilPage final : public TabPage {
    Q_OBJECT

public:
    explicit UtilPage(UtilTab &tab, QWidget *parent = nullptr);

protected:
    [[nodiscard]] QString plan() const override;

private:
    void addCommands();
    void addExtraction();
    void addDisc();
    void addReplayGain();
    void addRename();

    UtilTab &m_utilTab;
};

} // namespace nurv

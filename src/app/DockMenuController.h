// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace nurv {

class NURVController;

/// The commands by which the desktop's menu of the application, the Go menu and the command line go to a page. GUI thread.
class DockMenuController {
public:
    explicit DockMenuController(NURVController &controller) : m_controller(controller) {}

    /// Selects the page with that index among all pages, as the controller does.
    void selectTab(int tag);
    /// Selects the page of that action: "fix-sbe". False when there is no such page, or its tool is not there.
    bool selectTab(const QString &action);
    /// The actions of the pages that can be selected, in their order.
    [[nodiscard]] QStringList actions() const;

    /// The name of the action for a page's label, in the letters that a desktop file allows.
    [[nodiscard]] static QString actionOf(const QString &label);

private:
    NURVController &m_controller;
};

} // namespace nurv

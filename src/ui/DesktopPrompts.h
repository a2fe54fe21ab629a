// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/UserPrompts.h"

#include <QPointer>
#include <QWidget>

namespace nurv {

/// Asks the user by dialogs; the only place that opens any.
class DesktopPrompts final : public UserPrompts {
public:
    /// The window that dialogs belong to while no other one is active.
    void setMainWindow(QWidget *window) { m_mainWindow = window; }

    QString ask(const Alert &alert) override;
    QStringList choose(const FileChooser &chooser) override;
    bool runPanel(const Panel &panel) override;
    /// Shows a dialog with "Cancel" when it takes longer than a moment.
    bool waitFor(const QString &what, const std::function<void(const std::function<bool()> &isUnwanted)> &work) override;

private:
    [[nodiscard]] QWidget *owner() const;

    QPointer<QWidget> m_mainWindow;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QLabel;
class QTreeWidget;

namespace nurv {

struct ProgramStatus;

/// The page that is no tool: what the application is, and which external
/// programs it has found. Asks the programs for their versions on another
/// thread when the page is first shown.
class AboutPage final : public QWidget {
    Q_OBJECT

public:
    explicit AboutPage(QWidget *parent = nullptr);

    /// Looks for the programs anew.
    void checkPrograms();

Q_SIGNALS:
    /// Every program has been looked for.
    void programsChecked();

protected:
    void showEvent(QShowEvent *event) override;

private:
    void createWidgets();
    void layOut();
    void showStatus(int row, const ProgramStatus &status);
    void finishCheck();

    QLabel *m_logo = nullptr;
    QLabel *m_titleLabel = nullptr;
    QLabel *m_buildLabel = nullptr;
    QLabel *m_licenseLabel = nullptr;
    QTreeWidget *m_programs = nullptr;
    QLabel *m_summary = nullptr;
    bool m_wasShown = false;
    bool m_isChecking = false;
    int m_missing = 0;
};

} // namespace nurv

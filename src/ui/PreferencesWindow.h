// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QVariantAnimation>

class QPushButton;
class QTabWidget;

namespace nurv {

class PreferencesController;
class PreferencesPage;

/// The preferences window: beside the main window, not in its way. What is changed counts at once, so there is nothing to
/// confirm; Escape closes it. It is as high as the page that shows.
class PreferencesWindow final : public QDialog {
    Q_OBJECT

public:
    /// The controller must outlive the window.
    explicit PreferencesWindow(PreferencesController &preferences, QWidget *parent = nullptr);

    [[nodiscard]] QTabWidget *preferencesTab() const { return m_tabs; }
    /// Shows the window in front of others, with the keyboard.
    void bringToFront();
    /// Keeps the place for the next time.
    void saveState() const;

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void addGeneralPage();
    void addMetadataPage();
    void addSetListRow(PreferencesPage &page);
    void addListRows(PreferencesPage &page);
    PreferencesPage *addPage(const QString &title, const QString &objectName);
    void showSelectedPage();
    /// Makes the window as high as the page, as far as the screen goes; its upper edge and its width stay.
    void resizePreferencesPane(bool animated);
    [[nodiscard]] int fittingHeight() const;
    [[nodiscard]] PreferencesPage *currentPage() const;

    PreferencesController &m_preferences;
    QTabWidget *m_tabs;
    QPushButton *m_closeButton;
    QVariantAnimation m_resizing;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QPlainTextEdit;

namespace nurv {

class UserPrompts;

/// A window with the report of a batch: read only, monospaced, can be searched,
/// copied and saved. Deletes itself when it is closed.
class OutputWindow final : public QWidget {
    Q_OBJECT

public:
    /// `prompts` must outlive the window.
    explicit OutputWindow(UserPrompts &prompts, QWidget *parent = nullptr);

    void setTextValue(const QString &text, const QString &title);
    [[nodiscard]] QString text() const;
    /// Keeps place and size for the next window; closing does so too.
    void saveState() const;
    /// Whether the window stands where an earlier one stood.
    [[nodiscard]] bool hasKeptPlace() const { return m_hasKeptPlace; }

    /// Asks where, and writes the text as UTF-8.
    void save();
    /// Copies the selection, or all of the text when nothing is selected.
    void copy();
    void showFindBar();
    /// Selects the next place of the searched text; goes on from the other end
    /// when there is none left.
    void findNext();
    void findPrevious();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void createWidgets();
    void layOut();
    void addShortcuts();
    void find(bool backwards);
    void hideFindBar();

    UserPrompts &m_prompts;
    QPlainTextEdit *m_textField = nullptr;
    QWidget *m_findBar = nullptr;
    QLineEdit *m_findField = nullptr;
    QLabel *m_findNote = nullptr;
    bool m_hasKeptPlace = false;
};

} // namespace nurv

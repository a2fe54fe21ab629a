// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QScrollArea>

class QGridLayout;
class QLabel;
class QVBoxLayout;

namespace nurv {

class CheckControl;
class LabelControl;

/// A page of the preferences: captions on the left, what they name on the right, and notes below. Scrolls up and down where
/// the screen is too small for it.
///
///         Jobs at once: [2  ^v]
///                       a note on it
///
///      Before deleting: [x] Ask
///                       [x] Prove
class PreferencesPage final : public QScrollArea {
    Q_OBJECT

public:
    explicit PreferencesPage(const QString &objectName, QWidget *parent = nullptr);

    /// The column of a new row. The first widget that is put there is reached by the caption's mnemonic.
    [[nodiscard]] QVBoxLayout *addRow(const QString &caption, QWidget *named = nullptr);
    /// A check box in the column.
    void addCheckBox(QVBoxLayout *column, CheckControl &control, const QString &title, const QString &objectName,
                     const QString &toolTip);
    /// Small print in the column.
    QLabel *addNote(QVBoxLayout *column, const QString &text, const QString &objectName);
    /// A line in the column that follows the control, and is not there while the control is hidden.
    QLabel *addLine(QVBoxLayout *column, LabelControl &control, const QString &objectName);
    /// The same with the sign of a warning before it.
    void addObjection(QVBoxLayout *column, LabelControl &control, const QString &objectName);
    [[nodiscard]] QWidget *contents() const { return widget(); }

    /// The height of all rows at that width.
    [[nodiscard]] int heightFor(int width) const;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// A line has come or gone.
    void heightChanged();

private:
    QGridLayout *m_form = nullptr;
};

} // namespace nurv

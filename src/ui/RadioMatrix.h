// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QButtonGroup>
#include <QStringList>
#include <QWidget>

class QRadioButton;

namespace nurv {

/// A grid of radio buttons of which one is chosen, counted row by row.
class RadioMatrix final : public QWidget {
    Q_OBJECT

public:
    explicit RadioMatrix(QWidget *parent = nullptr);

    /// Makes the buttons anew. Their object names are the matrix's own name and
    /// the index of the cell, so set that first.
    void setCells(const QStringList &titles, int columns);
    [[nodiscard]] QRadioButton *cell(int index) const;
    [[nodiscard]] int cellCount() const { return static_cast<int>(m_group.buttons().size()); }

    /// An index outside the cells leaves none chosen.
    void setSelectedIndex(int index);
    /// -1 when none is chosen.
    [[nodiscard]] int selectedIndex() const { return m_group.checkedId(); }

Q_SIGNALS:
    /// The user has chosen a cell.
    void cellChosen(int index);
    /// The user has clicked the cell that was chosen already.
    void cellClickedAgain(int index);

private:
    void focusChosen();

    QButtonGroup m_group;
    int m_lastChosen = -1; ///< by the click that goes on
};

} // namespace nurv

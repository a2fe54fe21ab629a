// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QScrollArea>

class QLineEdit;

namespace nurv {

/// Rows of two fields, a name and a value. Shows as many rows as there is room for and scrolls
/// to the field that has the keyboard.
class PairsEditor final : public QScrollArea {
    Q_OBJECT

public:
    PairsEditor(int rows, QWidget *parent);

    [[nodiscard]] int rowCount() const { return static_cast<int>(m_rows.size()); }
    [[nodiscard]] QLineEdit *nameField(int row) const { return m_rows.at(row).name; }
    [[nodiscard]] QLineEdit *valueField(int row) const { return m_rows.at(row).value; }
    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    /// The user has changed a field of the row.
    void rowEdited(int row);

private:
    struct Row {
        QLineEdit *name;
        QLineEdit *value;
    };

    [[nodiscard]] QLineEdit *addField(const QString &objectName, const QString &accessibleName, int row);

    QList<Row> m_rows;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Control.h"

#include <QList>
#include <QString>

namespace nurv {

/// A number that the user types or takes from a list of usual ones.
class ComboControl final : public Control {
    Q_OBJECT

public:
    ComboControl(QList<int> items, int value);

    [[nodiscard]] const QList<int> &items() const { return m_items; }
    /// The last text that began with a number above 0: a field that is being emptied is no number yet.
    [[nodiscard]] const QString &text() const { return m_text; }
    void setText(const QString &text);
    /// The number at the start of the text.
    [[nodiscard]] int integerValue() const;
    void setIntegerValue(int value) { setText(QString::number(value)); }

private:
    QList<int> m_items;
    QString m_text;
};

} // namespace nurv

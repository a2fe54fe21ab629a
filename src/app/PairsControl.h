// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Control.h"

#include <QList>

namespace nurv {

/// A table of a fixed number of rows, each with a name and a value that the user writes.
class PairsControl final : public Control {
    Q_OBJECT

public:
    struct Pair {
        QString name = {};
        QString value = {};

        bool operator==(const Pair &) const = default;
    };

    explicit PairsControl(int rows) : m_pairs(rows) {}
    [[nodiscard]] int rowCount() const { return static_cast<int>(m_pairs.size()); }
    /// One for each row, also for empty ones.
    [[nodiscard]] const QList<Pair> &pairs() const { return m_pairs; }
    /// Nothing for a row that is not there.
    void setPair(int row, const Pair &pair);
    /// Empties every row.
    void clear();

private:
    QList<Pair> m_pairs;
};

} // namespace nurv

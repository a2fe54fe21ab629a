// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace nurv {

/// Finds out of what `shntool fix` writes, piece by piece, in which order it takes its sources: by their names, not as
/// they were given.
class FixOrder {
public:
    explicit FixOrder(const QStringList &sources);

    /// Returns the places of the sources that the output has begun with, in the list given.
    QList<qsizetype> take(QStringView chunk);
    /// The places of all sources in their order; nothing as long as one of them was not seen.
    [[nodiscard]] std::optional<QList<qsizetype>> order() const;

private:
    QHash<QString, qsizetype> m_places; ///< of the sources not seen yet, as the program shows their paths
    QList<qsizetype> m_order;
    QString m_rest;
};

} // namespace nurv

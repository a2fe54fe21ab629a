// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QString>

#include <atomic>
#include <optional>

namespace nurv {

/// What the conversions of one press of the button have in common.
struct ConversionBatch {
    /// The source of every output that was begun, by the output's place.
    QHash<QString, QString> sourceOfOutput;
    /// Whether the program of a member told of damage and went on: the report is
    /// then shown at the end of the batch, although no job failed. Any thread.
    std::atomic<bool> toldOfDamage = false;
};

/// A conversion's right to make its output: no two make one file at the same time,
/// and of one batch only the first does. Any thread; with a batch only the
/// GUI thread takes.
class OutputClaim {
public:
    OutputClaim() = default;
    ~OutputClaim() { release(); }
    OutputClaim(const OutputClaim &) = delete;
    OutputClaim &operator=(const OutputClaim &) = delete;

    /// Takes `output` for `source`, as a member of `batch` if there is one. Returns
    /// nothing when it is granted, else the source that has it. One folder under two
    /// names is still one folder. At most once.
    [[nodiscard]] std::optional<QString> take(const QString &output, const QString &source, ConversionBatch *batch);
    /// Gives the output back to other batches; in its own batch it stays taken.
    void release();

private:
    QString m_place; ///< empty: nothing is held
};

} // namespace nurv

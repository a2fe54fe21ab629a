// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>

namespace nurv {

/// Decodes what went into a job and what came out of it, and compares every sample.
///
/// Blocks the calling thread; made for workers.
class SoundComparison {
public:
    /// What the outputs, one after the other, have to be.
    enum class Relation {
        Equal,     ///< the sources, one after the other: also splits, joins and concatenations
        Prefix,    ///< the sources, and silence (zeros) behind them
        Contained, ///< a stretch of the sources, nothing else
    };

    struct Result {
        bool isProven = false;
        /// One line without a full stop: what is different, where; which side cannot be
        /// decoded to its end, and why. Empty when proven, and when it was given up.
        QString difference;
        std::int64_t frames = 0; ///< of the outputs, all together
        bool wasGivenUp = false;
    };

    /// Told now and then, in percent of both sides; asked as often whether to give up.
    using Progress = std::function<void(double percent)>;
    using IsUnwanted = std::function<bool()>;

    [[nodiscard]] static Result compare(const QStringList &sources, const QStringList &outputs, Relation relation,
                                        const Progress &progress, const IsUnwanted &isUnwanted);
};

} // namespace nurv

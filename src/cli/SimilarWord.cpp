// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/SimilarWord.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace nurv {

namespace {

/// The number of letters to insert, remove or replace that make one word of the other.
qsizetype distance(const QString &from, const QString &to)
{
    std::vector<qsizetype> row(static_cast<std::size_t>(to.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const QChar letter : from) {
        qsizetype diagonal = row[0]++;
        for (std::size_t i = 1; i < row.size(); ++i) {
            const qsizetype replaced = diagonal + (letter == to[static_cast<qsizetype>(i) - 1] ? 0 : 1);
            diagonal = row[i];
            row[i] = std::min({replaced, row[i] + 1, row[i - 1] + 1});
        }
    }
    return row.back();
}

} // namespace

std::optional<QString> similarWord(const QString &written, const QStringList &known)
{
    constexpr qsizetype kLikelySlips = 2;
    constexpr qsizetype kShortestName = 3;
    // The work grows with the length, and nothing as long was meant.
    constexpr qsizetype kLongestName = 100;
    if (written.size() < kShortestName || written.size() > kLongestName)
        return std::nullopt;
    const QString lowered = written.toLower();
    for (const QString &word : known) {
        const QString loweredWord = word.toLower();
        if (loweredWord.startsWith(lowered) || distance(lowered, loweredWord) <= kLikelySlips)
            return word;
    }
    return std::nullopt;
}

} // namespace nurv

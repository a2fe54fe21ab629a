// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TextWidth.h"

#include <QFontMetricsF>
#include <QHash>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <vector>

namespace nurv {

namespace {

/// Kerning and shaping change a text's width a little against the sum of its
/// characters' widths, so that the first of the estimates need not be the widest.
constexpr std::size_t kMeasuredTexts = 200;

} // namespace

double widestText(const QStringList &texts, const QFont &font)
{
    const QFontMetricsF metrics(font);
    QHash<char16_t, double> widthOfCharacter;
    std::vector<double> estimates;
    estimates.reserve(static_cast<std::size_t>(texts.size()));
    for (const QString &text : texts) {
        double estimate = 0.0;
        for (const QChar character : text) {
            const char16_t code = character.unicode();
            auto known = widthOfCharacter.constFind(code);
            if (known == widthOfCharacter.constEnd())
                known = widthOfCharacter.insert(code, metrics.horizontalAdvance(character));
            estimate += *known;
        }
        estimates.push_back(estimate);
    }
    std::vector<qsizetype> order(estimates.size());
    std::iota(order.begin(), order.end(), 0);
    const std::size_t measured = std::min(kMeasuredTexts, order.size());
    std::partial_sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(measured), order.end(),
                      [&estimates](qsizetype left, qsizetype right) {
                          return estimates[static_cast<std::size_t>(left)] > estimates[static_cast<std::size_t>(right)];
                      });
    double widest = 0.0;
    for (std::size_t place = 0; place < measured; ++place)
        widest = std::max(widest, metrics.horizontalAdvance(texts.at(order[place])));
    return widest;
}

} // namespace nurv

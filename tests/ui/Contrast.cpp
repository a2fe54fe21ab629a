// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Contrast.h"

#include <QHash>

#include <algorithm>
#include <cmath>

namespace nurv::test {

namespace {

double linear(double value)
{
    return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * linear(color.red() / 255.0) + 0.7152 * linear(color.green() / 255.0)
           + 0.0722 * linear(color.blue() / 255.0);
}

} // namespace

double contrast(const QColor &one, const QColor &other)
{
    // The list form returns values; the other one would refer to what is gone.
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

double strongestContrast(const QImage &image)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ++counts[image.pixel(x, y)];
    }
    QRgb ground = 0;
    for (auto entry = counts.cbegin(); entry != counts.cend(); ++entry) {
        if (entry.value() > counts.value(ground))
            ground = entry.key();
    }
    double strongest = 1.0;
    for (auto entry = counts.cbegin(); entry != counts.cend(); ++entry)
        strongest = std::max(strongest, contrast(entry.key(), ground));
    return strongest;
}

} // namespace nurv::test

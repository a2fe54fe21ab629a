// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/LegiblePalette.h"

#include <QApplication>
#include <QEvent>
#include <QScopedValueRollback>

#include <algorithm>
#include <cmath>

namespace nurv {

namespace {

/// A little more than the guidelines ask for: what is painted is rounded.
constexpr double kLegible = 4.6;
constexpr float kStep = 0.02F;

double linear(float value)
{
    return value <= 0.03928F ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

float mixed(float from, float to, float share)
{
    return from + (to - from) * share;
}

/// The colour moved towards another by a share, 0 to 1.
QColor moved(const QColor &from, const QColor &to, float share)
{
    return QColor::fromRgbF(mixed(from.redF(), to.redF(), share), mixed(from.greenF(), to.greenF(), share),
                            mixed(from.blueF(), to.blueF(), share));
}

QColor quietText(const QPalette &palette, QPalette::ColorGroup group)
{
    QColor color = palette.color(group, QPalette::PlaceholderText);
    const auto isLegible = [&](QPalette::ColorRole role) {
        const QColor ground = palette.color(group, role);
        return contrastRatio(blended(color, ground), ground) >= kLegible;
    };
    const QColor from = blended(color, palette.color(group, QPalette::Base));
    const QColor to = palette.color(group, QPalette::Text);
    for (float share = 0.0F; share <= 1.0F; share += kStep) {
        if (isLegible(QPalette::Base) && isLegible(QPalette::Window) && isLegible(QPalette::AlternateBase))
            return color;
        color = moved(from, to, share + kStep);
    }
    return to;
}

QColor selection(const QPalette &palette, QPalette::ColorGroup group)
{
    const QColor text = palette.color(group, QPalette::HighlightedText);
    const QColor from = palette.color(group, QPalette::Highlight);
    const QColor to = luminance(text) > luminance(from) ? Qt::black : Qt::white;
    QColor color = from;
    for (float share = kStep; share <= 1.0F && contrastRatio(text, color) < kLegible; share += kStep)
        color = moved(from, to, share);
    return color;
}

} // namespace

double contrastRatio(const QColor &one, const QColor &other)
{
    const double first = luminance(one) + 0.05;
    const double second = luminance(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

QColor blended(const QColor &color, const QColor &ground)
{
    return moved(ground, color, color.alphaF());
}

LegiblePalette::LegiblePalette(QObject *parent) : QObject(parent)
{
    qApp->installEventFilter(this);
    correct();
}

QPalette LegiblePalette::corrected(QPalette palette)
{
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        palette.setColor(group, QPalette::PlaceholderText, quietText(palette, group));
        palette.setColor(group, QPalette::Highlight, selection(palette, group));
    }
    return palette;
}

bool LegiblePalette::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange && !m_isCorrecting)
        correct();
    return QObject::eventFilter(watched, event);
}

void LegiblePalette::correct()
{
    const QScopedValueRollback guard(m_isCorrecting, true);
    // Without what was corrected for the colours before.
    QApplication::setPalette(QPalette());
    const QPalette legible = corrected(QApplication::palette());
    QPalette changes;
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        for (const auto role : {QPalette::PlaceholderText, QPalette::Highlight})
            changes.setColor(group, role, legible.color(group, role));
    }
    QApplication::setPalette(changes);
}

} // namespace nurv

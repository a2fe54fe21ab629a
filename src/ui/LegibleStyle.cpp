// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/LegibleStyle.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

const QString kFusion = u"fusion"_s;
constexpr float kOutlineStrength = 0.55F;
constexpr float kDisabledStrength = 0.25F;

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

QColor outlineOf(const QStyleOption &option)
{
    if (option.state.testFlag(QStyle::State_HasFocus) && option.state.testFlag(QStyle::State_KeyboardFocusChange))
        return option.palette.color(QPalette::Highlight).lighter(120);
    QColor color = option.palette.color(QPalette::Active, QPalette::WindowText);
    color.setAlphaF(option.state.testFlag(QStyle::State_Enabled) ? kOutlineStrength : kDisabledStrength);
    return color;
}

} // namespace

LegibleStyle::LegibleStyle() : QProxyStyle(kFusion) {}

void LegibleStyle::install()
{
    if (QApplication::style()->name().compare(kFusion, Qt::CaseInsensitive) == 0)
        QApplication::setStyle(new LegibleStyle);
}

void LegibleStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                 const QWidget *widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool isField = element == PE_FrameLineEdit && !option->state.testFlag(QStyle::State_HasFocus);
    const bool isBox = element == PE_IndicatorCheckBox || isField;
    if ((!isBox && element != PE_IndicatorRadioButton) || !isDark(option->palette))
        return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(outlineOf(*option));
    const QRectF outline = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (isBox)
        painter->drawRoundedRect(outline, 2.0, 2.0);
    else
        painter->drawEllipse(outline);
    painter->restore();
}

} // namespace nurv

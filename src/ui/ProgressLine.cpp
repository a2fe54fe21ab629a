// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ProgressLine.h"

#include "ui/ToolTipText.h"

#include <QKeyEvent>
#include <QStyleOptionFocusRect>
#include <QStyleOptionProgressBar>
#include <QStyleOptionToolButton>
#include <QStylePainter>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kPadding = 6;
constexpr int kGap = 10;
constexpr int kBarHeight = 14;
constexpr int kWidestBar = 240;
constexpr int kSteps = 1000;

} // namespace

ProgressLine::ProgressLine(QWidget *parent) : QToolButton(parent)
{
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ProgressLine::setShare(std::optional<double> share)
{
    if (m_share == share)
        return;
    m_share = share;
    update();
}

void ProgressLine::setLine(const QString &text)
{
    if (text == m_line)
        return;
    m_line = text;
    // A folder named R&B gives no mnemonic.
    setText(QString(text).replace(u'&', u"&&"_s));
    setToolTip(toolTipText(text + u'\n' + tr("Show the status window")));
    setAccessibleDescription(text);
}

QSize ProgressLine::sizeHint() const
{
    return {kWidestBar + kGap + fontMetrics().horizontalAdvance(m_line) + 2 * kPadding,
            std::max(fontMetrics().height(), kBarHeight) + 2 * kPadding};
}

QSize ProgressLine::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * 20 + 2 * kPadding, sizeHint().height()};
}

QRect ProgressLine::barRect() const
{
    if (!m_share)
        return {};
    const int width = std::min(kWidestBar, this->width() / 3);
    return QStyle::visualRect(layoutDirection(), rect(),
                              QRect(kPadding, (height() - kBarHeight) / 2, width, kBarHeight));
}

QRect ProgressLine::textRect() const
{
    QRect room = rect().adjusted(kPadding, 0, -kPadding, 0);
    if (m_share)
        room.setLeft(kPadding + std::min(kWidestBar, width() / 3) + kGap);
    return QStyle::visualRect(layoutDirection(), rect(), room);
}

void ProgressLine::paintEvent(QPaintEvent * /*event*/)
{
    QStylePainter painter(this);
    QStyleOptionToolButton button;
    initStyleOption(&button);
    button.text.clear();
    painter.drawComplexControl(QStyle::CC_ToolButton, button);
    if (m_share) {
        QStyleOptionProgressBar bar;
        bar.initFrom(this);
        bar.state |= QStyle::State_Horizontal;
        bar.rect = barRect();
        bar.minimum = 0;
        bar.maximum = kSteps;
        bar.progress = static_cast<int>(std::lround(*m_share * kSteps));
        bar.textVisible = false;
        painter.drawControl(QStyle::CE_ProgressBar, bar);
    }
    const QRect room = textRect();
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(room, Qt::AlignVCenter | Qt::AlignLeading | Qt::TextSingleLine,
                     fontMetrics().elidedText(m_line, Qt::ElideRight, room.width()));
    if (!hasFocus())
        return;
    // Not every style shows it on a flat button.
    QStyleOptionFocusRect focus;
    focus.initFrom(this);
    focus.state |= QStyle::State_KeyboardFocusChange;
    focus.rect = rect().adjusted(1, 1, -1, -1);
    painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
}

void ProgressLine::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        click();
        return;
    }
    QToolButton::keyPressEvent(event);
}

} // namespace nurv

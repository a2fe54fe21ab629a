// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/OptionArea.h"

#include <QEvent>
#include <QScrollBar>

#include <algorithm>

namespace nurv {

namespace {

constexpr int kLeastCharacters = 30;

} // namespace

OptionArea::OptionArea(QWidget *options, QWidget *parent) : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    setWidget(options);
    // After it has got a widget, which the area fills the background of.
    viewport()->setAutoFillBackground(false);
    options->setAutoFillBackground(false);
    measure();
}

void OptionArea::align(const QList<OptionArea *> &areas)
{
    for (OptionArea *const area : areas) {
        area->m_aligned.clear();
        for (OptionArea *const other : areas) {
            if (other != area)
                area->m_aligned.append(other);
        }
        area->updateGeometry();
    }
}

QSize OptionArea::sizeHint() const
{
    int widest = m_ownWidth;
    for (const QPointer<OptionArea> &other : m_aligned) {
        if (other)
            widest = std::max(widest, other->m_ownWidth);
    }
    return {widest + verticalScrollBar()->sizeHint().width(), QScrollArea::sizeHint().height()};
}

QSize OptionArea::minimumSizeHint() const
{
    return {sizeHint().width(), 0};
}

bool OptionArea::eventFilter(QObject *object, QEvent *event)
{
    if (object == widget() && event->type() == QEvent::LayoutRequest)
        measure();
    return QScrollArea::eventFilter(object, event);
}

void OptionArea::showEvent(QShowEvent *event)
{
    QScrollArea::showEvent(event);
    // Another one may have grown while this page was out of sight.
    updateGeometry();
}

void OptionArea::measure()
{
    widget()->ensurePolished();
    const int least = fontMetrics().averageCharWidth() * kLeastCharacters;
    m_ownWidth = std::max({m_ownWidth, least, widget()->sizeHint().width()});
    updateGeometry();
    for (const QPointer<OptionArea> &other : std::as_const(m_aligned)) {
        if (other)
            other->updateGeometry();
    }
}

} // namespace nurv

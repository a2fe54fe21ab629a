// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ElidedLabel.h"

#include "ui/ToolTipText.h"

namespace nurv {

ElidedLabel::ElidedLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ElidedLabel::setLine(const QString &line)
{
    m_line = line;
    setAccessibleName(line);
    setToolTip(toolTipText(line));
    updateGeometry();
    showWhatFits();
}

QSize ElidedLabel::sizeHint() const
{
    // A pixel more than the text: what fits exactly must not be cut.
    return {fontMetrics().horizontalAdvance(m_line) + 1, QLabel::sizeHint().height()};
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    showWhatFits();
}

void ElidedLabel::showWhatFits()
{
    setText(fontMetrics().elidedText(m_line, Qt::ElideRight, width()));
}

} // namespace nurv

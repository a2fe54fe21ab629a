// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/StatusQueueCell.h"

#include "engine/NURVTask.h"
#include "text/PrintableText.h"
#include "ui/StatusListModel.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr double kPointsPerInch = 72.0;
constexpr double kLeftMargin = 10.0;
constexpr double kBottomMargin = 6.0;
constexpr double kCancelImageSize = 15.0;
constexpr double kBarInset = 3.5;
constexpr int kSweepMilliseconds = 1600;
constexpr double kSweepShare = 0.3;
constexpr float kStatusStrength = 0.8F;

QFont fontOf(const RowFont &rowFont)
{
    QFont font = QApplication::font();
    font.setPointSize(rowFont.pointSize);
    font.setBold(rowFont.bold);
    return font;
}

QColor colorOf(RowColor color, const QStyleOptionViewItem &option, bool isSelected)
{
    if (isSelected)
        return option.palette.color(QPalette::HighlightedText);
    switch (color) {
    case RowColor::SystemRed: return StatusQueueCell::systemRed(option.palette);
    case RowColor::DarkGreen: return StatusQueueCell::darkGreen(option.palette);
    case RowColor::Text: break;
    }
    return option.palette.color(QPalette::Text);
}

void paintLine(QPainter &painter, const QRectF &frame, const RowText &line, const QColor &color)
{
    const QFont font = fontOf(line.font);
    painter.setFont(font);
    painter.setPen(color);
    const QFontMetricsF metrics(font);
    painter.drawText(frame,
                     int(Qt::AlignLeft) | int(Qt::AlignVCenter) | int(Qt::TextSingleLine) | int(Qt::TextDontClip),
                     metrics.elidedText(printableLine(line.text), Qt::ElideMiddle, frame.width()));
}

/// A cross in a disc: the freestanding image that stops a progress.
void paintCancelImage(QPainter &painter, const QRectF &frame, const QColor &disc, const QColor &cross)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(disc);
    painter.drawEllipse(frame);
    QPen pen(cross, frame.width() / 9.0);
    pen.setCapStyle(Qt::RoundCap);
    painter.setPen(pen);
    const double inset = frame.width() * 0.32;
    const QRectF arms = frame.adjusted(inset, inset, -inset, -inset);
    painter.drawLine(arms.topLeft(), arms.bottomRight());
    painter.drawLine(arms.topRight(), arms.bottomLeft());
}

double luminance(const QColor &color)
{
    return 0.2126 * static_cast<double>(color.redF()) + 0.7152 * static_cast<double>(color.greenF())
           + 0.0722 * static_cast<double>(color.blueF());
}

bool isDark(const QPalette &palette)
{
    return luminance(palette.color(QPalette::Base)) < 0.5;
}

} // namespace

StatusQueueCell::StatusQueueCell(QObject *parent) : QStyledItemDelegate(parent)
{
    m_clock.start();
}

StatusRowLayout StatusQueueCell::layOut(const QRectF &frame, double pixelsPerPoint)
{
    const double s = pixelsPerPoint;
    const double textWidth = std::max(0.0, frame.width() - 40.0 * s);
    return {
        .mainLine = {frame.x(), frame.y() + 4.0 * s, textWidth, 18.0 * s},
        .progressBar = {frame.x(), frame.y() + 21.0 * s, textWidth, 15.0 * s},
        .statusLine = {frame.x(), frame.y() + 36.0 * s, textWidth, 10.0 * s},
        .cancelButton = {frame.x() + frame.width() - 25.0 * s, frame.y() + 21.0 * s, kCancelImageSize * s,
                         kCancelImageSize * s},
    };
}

QRectF StatusQueueCell::frameOf(const QRect &itemRect, double pixelsPerPoint)
{
    return QRectF(itemRect).adjusted(kLeftMargin * pixelsPerPoint, 0.0, 0.0, 0.0);
}

double StatusQueueCell::pixelsPerPoint(const QWidget *widget)
{
    return widget != nullptr ? widget->logicalDpiY() / kPointsPerInch : 1.0;
}

QColor StatusQueueCell::systemRed(const QPalette &palette)
{
    return isDark(palette) ? QColor(255, 105, 97) : QColor(200, 20, 20);
}

QColor StatusQueueCell::darkGreen(const QPalette &palette)
{
    return isDark(palette) ? QColor(110, 210, 120) : QColor::fromRgbF(0.0F, 0.5F, 0.0F, 1.0F);
}

/// What the job's own texts do not say is added: which file was cancelled, that a program still runs, why it failed.
void StatusQueueCell::paintTexts(QPainter &painter, const StatusRowLayout &parts, const NURVTask &task,
                                 const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    RowText mainLine = task.textField();
    // The main line of a waiting job is not shown yet; a running program's job may
    // not have written its own.
    if (mainLine.text.isEmpty() && task.isActive())
        mainLine.text = task.title();
    paintLine(painter, parts.mainLine, mainLine, colorOf(mainLine.color, option, isSelected));
    if (task.isDone() && task.cancelled() && !mainLine.text.contains(task.title())) {
        const double width = QFontMetricsF(fontOf(mainLine.font)).horizontalAdvance(mainLine.text + u' ');
        const RowText title{.text = u"– "_s + task.title(), .color = RowColor::Text, .font = mainLine.font};
        paintLine(painter, parts.mainLine.adjusted(width, 0.0, 0.0, 0.0), title,
                  colorOf(title.color, option, isSelected));
    }
    RowText status = task.topTextField();
    if (task.cancelled() && task.isActive() && !task.isDone())
        status.text = tr("Finishing the current file…");
    else if (const QString reason = index.data(StatusListModel::ReasonRole).toString(); !reason.isEmpty())
        status.text += u": "_s + reason;
    QColor statusColor = colorOf(status.color, option, isSelected);
    if (!isSelected && status.color == RowColor::Text)
        statusColor.setAlphaF(kStatusStrength);
    paintLine(painter, parts.statusLine, status, statusColor);
}

void StatusQueueCell::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    item.text.clear();
    item.state.setFlag(QStyle::State_HasFocus, false);
    const QWidget *const widget = option.widget;
    const QStyle *const style = widget != nullptr ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &item, painter, widget);

    const NURVTask *const task = StatusListModel::taskAt(index);
    if (task == nullptr)
        return;
    const double scale = pixelsPerPoint(widget);
    const StatusRowLayout parts = layOut(frameOf(option.rect, scale), scale);
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);

    painter->save();
    painter->setClipRect(option.rect);
    painter->setRenderHint(QPainter::Antialiasing);
    paintTexts(*painter, parts, *task, option, index);
    if (!task->progressIndicator().hidden)
        paintBar(*painter, parts.progressBar, *task, option.palette, isSelected);
    if (!task->cancelButton().hidden) {
        QColor disc = option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
        disc.setAlphaF(task->cancelled() ? 0.2F : 0.6F);
        paintCancelImage(*painter, parts.cancelButton, disc,
                         option.palette.color(isSelected ? QPalette::Highlight : QPalette::Base));
    }
    const bool isCurrent = option.state.testFlag(QStyle::State_HasFocus);
    if (isCurrent && !isSelected) {
        painter->setBrush(Qt::NoBrush);
        painter->setPen(option.palette.color(QPalette::Highlight));
        painter->drawRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -1.5));
    }
    const bool separates = index.row() + 1 < index.model()->rowCount();
    if (separates) {
        QColor line = option.palette.color(QPalette::Text);
        line.setAlphaF(0.12F);
        painter->setRenderHint(QPainter::Antialiasing, false);
        painter->setPen(line);
        painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    }
    painter->restore();
}

void StatusQueueCell::paintBar(QPainter &painter, const QRectF &frame, const NURVTask &task, const QPalette &palette,
                               bool isSelected) const
{
    const RowProgress &progress = task.progressIndicator();
    const double inset = kBarInset * frame.height() / 15.0;
    const QRectF groove = frame.adjusted(0.0, inset, 0.0, -inset);
    const double radius = groove.height() / 2.0;
    QColor grooveColor = palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
    QColor fillColor = palette.color(isSelected ? QPalette::HighlightedText : QPalette::Highlight);
    if (task.isDone()) {
        fillColor = grooveColor;
        fillColor.setAlphaF(0.35F);
    }
    grooveColor.setAlphaF(0.14F);

    QPainterPath outline;
    outline.addRoundedRect(groove, radius, radius);
    painter.fillPath(outline, grooveColor);
    QRectF filled = groove;
    if (progress.indeterminate) {
        const double length = groove.width() * kSweepShare;
        double phase = 0.5;
        if (progress.animated && task.isActive())
            phase = static_cast<double>(m_clock.elapsed() % kSweepMilliseconds) / kSweepMilliseconds;
        filled.setLeft(groove.left() + (groove.width() + length) * phase - length);
        filled.setWidth(length);
    } else {
        filled.setWidth(groove.width() * std::clamp(progress.value, 0.0, 100.0) / 100.0);
    }
    if (filled.width() <= 0.0)
        return;
    QPainterPath fill;
    fill.addRoundedRect(filled, radius, radius);
    painter.fillPath(fill.intersected(outline), fillColor);
}

QSize StatusQueueCell::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    const double scale = pixelsPerPoint(option.widget);
    return {static_cast<int>(std::ceil(160.0 * scale)),
            static_cast<int>(std::ceil((kContentHeight + kBottomMargin) * scale))};
}

bool StatusQueueCell::editorEvent(QEvent *event, QAbstractItemModel *, const QStyleOptionViewItem &option,
                                  const QModelIndex &index)
{
    if (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseButtonRelease)
        return false;
    const auto *const mouse = static_cast<QMouseEvent *>(event);
    if (mouse->button() != Qt::LeftButton)
        return false;
    const NURVTask *const task = StatusListModel::taskAt(index);
    const double scale = pixelsPerPoint(option.widget);
    const QRectF image = layOut(frameOf(option.rect, scale), scale).cancelButton;
    const bool isOnImage =
        task != nullptr && !task->cancelButton().hidden && !task->cancelled() && image.contains(mouse->position());
    if (event->type() == QEvent::MouseButtonPress) {
        m_pressed = isOnImage ? QPersistentModelIndex(index) : QPersistentModelIndex();
        return isOnImage;
    }
    const bool isClick = isOnImage && m_pressed == index;
    m_pressed = QPersistentModelIndex();
    if (isClick)
        Q_EMIT cancelClicked(index);
    return isClick;
}

bool StatusQueueCell::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                                const QModelIndex &index)
{
    const NURVTask *const task = StatusListModel::taskAt(index);
    if (event->type() == QEvent::ToolTip && task != nullptr && !task->cancelButton().hidden) {
        const double scale = pixelsPerPoint(option.widget);
        const QRectF image = layOut(frameOf(option.rect, scale), scale).cancelButton;
        if (image.contains(QPointF(event->pos()))) {
            QToolTip::showText(event->globalPos(), task->cancelButton().toolTip, view->viewport(),
                               image.toAlignedRect());
            return true;
        }
    }
    return QStyledItemDelegate::helpEvent(event, view, option, index);
}

} // namespace nurv

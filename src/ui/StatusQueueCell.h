// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QRectF>
#include <QStyledItemDelegate>

namespace nurv {

class NURVTask;

/// Where the four parts of a job's row stand, in logical pixels.
struct StatusRowLayout {
    QRectF mainLine;
    QRectF progressBar;
    QRectF statusLine;
    QRectF cancelButton;
};

/// Paints a job's row: the bold main line on top, the progress bar, the status
/// line under the bar, and the cancel image at the right.
///
/// Measures are in points of 1/72 inch; a point is `pixelsPerPoint` logical
/// pixels of the screen, so that the lines fit the fonts, whose sizes are in
/// points too.
class StatusQueueCell final : public QStyledItemDelegate {
    Q_OBJECT

public:
    /// The height that the four parts need.
    static constexpr double kContentHeight = 46.0;

    explicit StatusQueueCell(QObject *parent = nullptr);

    /// The parts' places in a frame, which is the row less its side margin.
    [[nodiscard]] static StatusRowLayout layOut(const QRectF &frame, double pixelsPerPoint);
    /// The frame of the parts within an item's rectangle.
    [[nodiscard]] static QRectF frameOf(const QRect &itemRect, double pixelsPerPoint);
    [[nodiscard]] static double pixelsPerPoint(const QWidget *widget);
    /// A red, and the dark green or one that can be read on a dark ground, for texts on the palette's background.
    [[nodiscard]] static QColor systemRed(const QPalette &palette);
    [[nodiscard]] static QColor darkGreen(const QPalette &palette);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

Q_SIGNALS:
    /// The user has clicked the cancel image of the row.
    void cancelClicked(const QModelIndex &index);

private:
    void paintTexts(QPainter &painter, const StatusRowLayout &parts, const NURVTask &task,
                    const QStyleOptionViewItem &option, const QModelIndex &index) const;
    void paintBar(QPainter &painter, const QRectF &frame, const NURVTask &task, const QPalette &palette,
                  bool isSelected) const;

    QElapsedTimer m_clock;
    QPersistentModelIndex m_pressed;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FileListView.h"

#include "app/BaseTab.h"
#include "app/NURVController.h"
#include "app/PathNames.h"
#include "text/PrintableText.h"
#include "ui/FileFactsReader.h"
#include "ui/FileListModel.h"
#include "ui/TextWidth.h"

#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr double kLeastColumnWidth = 211.0;
constexpr double kWidthFactor = 1.1;
constexpr int kRowPadding = 4;
constexpr int kHintInset = 12;
constexpr int kHintRadius = 8;
constexpr qreal kHintSpacing = 8.0;
constexpr int kHintFlags = int(Qt::AlignHCenter) | int(Qt::AlignTop) | int(Qt::TextWordWrap);
constexpr int kFactsGap = 24;
constexpr int kFactsMargin = 8;

QString hintText()
{
    return FileListView::tr("Drop files or folders here");
}

/// Gives the rows some air, and leaves their background to the view, which paints
/// it beyond the column.
class FileListCell final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, kRowPadding);
    }
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        QStyleOptionViewItem cell = option;
        if (cell.state.testFlag(QStyle::State_Selected)) {
            const bool hasKeyboard = option.widget != nullptr && option.widget->hasFocus();
            const auto group = hasKeyboard ? QPalette::Active : QPalette::Inactive;
            cell.palette.setColor(QPalette::Text, option.palette.color(group, QPalette::HighlightedText));
            cell.state.setFlag(QStyle::State_Selected, false);
            cell.state.setFlag(QStyle::State_HasFocus, false);
        }
        cell.state.setFlag(QStyle::State_MouseOver, false);
        QStyledItemDelegate::paint(painter, cell, index);
    }
};

} // namespace

FileListView::FileListView(BaseTab &tab, QWidget *parent)
    : QTreeView(parent), m_tab(tab), m_model(new FileListModel(tab, this))
{
    setModel(m_model);
    setItemDelegate(new FileListCell(this));
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setHeaderHidden(m_model->columnCount() == 1);
    setTextElideMode(Qt::ElideMiddle);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setAcceptDrops(true);
    setDropIndicatorShown(false);
    header()->setStretchLastSection(false);
    header()->setMinimumSectionSize(1);
    setAccessibleName(tr("Files to process"));
    setAccessibleDescription(tr("Drop files or folders here: %1").arg(kindsTaken()));
    widenColumn();
    connect(&tab, &BaseTab::filesWereAdded, this, &FileListView::widenColumn);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { m_tab.setSelectedRows(selectedRows()); });
    connect(&tab, &BaseTab::selectedRowsChanged, this, &FileListView::showSelection);
    connect(&tab, &BaseTab::columnsChanged, this, [this] {
        setHeaderHidden(m_model->columnCount() == 1);
        widenColumn();
    });
    connect(&tab, &BaseTab::columnTextsChanged, this, &FileListView::widenColumn);
    connect(&tab, &BaseTab::fileNamesChanged, this, [this] {
        // The names that were there need no room any more.
        if (m_model->rowCount() == 0)
            widenColumn();
        viewport()->update();
    });
    connect(&m_model->facts(), &FileFactsReader::factsChanged, viewport(), qOverload<>(&QWidget::update));
    if (tab.usesTableViewContextMenu())
        createContextMenu();
}

void FileListView::createContextMenu()
{
    m_menu = new QMenu(this);
    m_menu->setObjectName(u"fileListContextMenu"_s);
    m_deleteAction = m_menu->addAction(tr("Delete selected file(s)"));
    m_deleteAction->setObjectName(u"deleteSelectedFiles"_s);
    connect(m_deleteAction, &QAction::triggered, this, &FileListView::deleteSelectedRows);
    m_filterMenu = m_menu->addMenu(tr("Delete files with extension:"));
    m_filterMenu->setObjectName(u"deleteFilesWithExtension"_s);
    connect(m_menu, &QMenu::aboutToShow, this, &FileListView::rebuildFilterMenu);
}

void FileListView::rebuildFilterMenu()
{
    m_deleteAction->setEnabled(selectionModel()->hasSelection());
    m_filterMenu->clear();
    const QStringList extensions = m_tab.listedExtensions();
    for (const QString &extension : extensions) {
        // A name may hold the character that marks a mnemonic.
        QAction *const action = m_filterMenu->addAction(printableLine(extension).replace(u"&"_s, u"&&"_s));
        action->setData(extension);
        connect(action, &QAction::triggered, this, [this, extension] { m_tab.filterGivenExtension(extension); });
    }
    m_filterMenu->setEnabled(!extensions.isEmpty());
}

QList<int> FileListView::selectedRows() const
{
    const QModelIndexList selected = selectionModel()->selectedRows();
    QList<int> rows;
    rows.reserve(selected.size());
    for (const QModelIndex &index : selected)
        rows.append(index.row());
    return rows;
}

void FileListView::showSelection()
{
    const QList<int> &rows = m_tab.selectedRows();
    QList<int> shown = selectedRows();
    std::sort(shown.begin(), shown.end());
    if (shown == rows)
        return;
    QItemSelection selection;
    for (qsizetype first = 0; first < rows.size();) {
        qsizetype last = first;
        while (last + 1 < rows.size() && rows.at(last + 1) == rows.at(last) + 1)
            ++last;
        selection.select(m_model->index(rows.at(first), 0), m_model->index(rows.at(last), m_model->columnCount() - 1));
        first = last + 1;
    }
    // The keyboard goes on from the first of them.
    if (!rows.isEmpty())
        selectionModel()->setCurrentIndex(m_model->index(rows.first(), 0), QItemSelectionModel::NoUpdate);
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void FileListView::deleteSelectedRows()
{
    const QList<int> rows = selectedRows();
    if (rows.isEmpty())
        return;
    const int first = *std::min_element(rows.begin(), rows.end());
    m_tab.deleteSelectedRows(rows);
    clearSelection();
    // The keyboard goes on from where the files were.
    if (const int left = m_model->rowCount(); left > 0)
        selectionModel()->setCurrentIndex(m_model->index(std::min(first, left - 1), 0), QItemSelectionModel::NoUpdate);
}

double FileListView::neededColumnWidth() const
{
    QStringList names;
    names.reserve(m_tab.fileNames().size());
    for (const QString &path : m_tab.fileNames())
        names.append(printableLine(lastPathComponent(path)));
    return std::max(kLeastColumnWidth, kWidthFactor * widestText(names, font()));
}

void FileListView::widenColumn()
{
    header()->resizeSection(0, static_cast<int>(std::ceil(neededColumnWidth())));
    for (int column = 1; column < m_model->columnCount(); ++column)
        resizeColumnToContents(column);
}

void FileListView::changeEvent(QEvent *event)
{
    QTreeView::changeEvent(event);
    // Other programs may have moved files meanwhile.
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && m_model != nullptr)
        m_model->facts().refresh();
    if (event->type() == QEvent::FontChange && m_model != nullptr)
        widenColumn();
}

void FileListView::showEvent(QShowEvent *event)
{
    QTreeView::showEvent(event);
    m_model->facts().wake();
}

void FileListView::dragEnterEvent(QDragEnterEvent *event)
{
    if (!hasLocalFiles(event->mimeData())) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    setDragHovers(true);
}

void FileListView::dragMoveEvent(QDragMoveEvent *event)
{
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(hasLocalFiles(event->mimeData()));
}

void FileListView::dragLeaveEvent(QDragLeaveEvent *event)
{
    setDragHovers(false);
    event->accept();
}

void FileListView::dropEvent(QDropEvent *event)
{
    setDragHovers(false);
    const GivenFiles files = localFiles(event->mimeData());
    if (files.isEmpty()) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    Q_EMIT filesDropped(files);
}

void FileListView::setDragHovers(bool hovers)
{
    m_dragHovers = hovers;
    viewport()->update();
}

void FileListView::contextMenuEvent(QContextMenuEvent *event)
{
    if (m_menu == nullptr) {
        QTreeView::contextMenuEvent(event);
        return;
    }
    const bool byMouse = event->reason() == QContextMenuEvent::Mouse;
    m_menu->popup(byMouse ? event->globalPos() : viewport()->mapToGlobal(visualRect(currentIndex()).bottomLeft()));
}

void FileListView::keyPressEvent(QKeyEvent *event)
{
    if (m_menu != nullptr && (event->matches(QKeySequence::Delete) || event->key() == Qt::Key_Backspace)) {
        deleteSelectedRows();
        event->accept();
        return;
    }
    QTreeView::keyPressEvent(event);
}

void FileListView::drawRow(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    // The column is as wide as its names; a row goes on to the edge.
    if (index.row() % 2 == 1)
        painter->fillRect(option.rect, palette().brush(QPalette::AlternateBase));
    if (selectionModel()->isSelected(index)) {
        const auto group = hasFocus() ? QPalette::Active : QPalette::Inactive;
        painter->fillRect(option.rect, palette().brush(group, QPalette::Highlight));
    }
    QTreeView::drawRow(painter, option, index);
    if (m_model->columnCount() == 1)
        drawFacts(painter, option, index);
}

void FileListView::drawFacts(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QString facts = index.data(FileListModel::FactsRole).toString();
    const QFontMetrics metrics(font());
    const int nameWidth = metrics.horizontalAdvance(index.data(Qt::DisplayRole).toString());
    const int begin = visualRect(index).left() + nameWidth + kFactsGap;
    const QRect room(begin, option.rect.top(), viewport()->width() - kFactsMargin - begin, option.rect.height());
    const QString separator = u" · "_s;
    while (!facts.isEmpty() && metrics.horizontalAdvance(facts) > room.width()) {
        const qsizetype cut = facts.indexOf(separator);
        facts = cut < 0 ? QString() : facts.sliced(cut + separator.size());
    }
    if (facts.isEmpty())
        return;
    const bool isSelected = selectionModel()->isSelected(index);
    const auto group = hasFocus() ? QPalette::Active : QPalette::Inactive;
    painter->setPen(isSelected ? palette().color(group, QPalette::HighlightedText)
                               : palette().color(QPalette::PlaceholderText));
    painter->setFont(font());
    painter->drawText(room, int(Qt::AlignRight) | int(Qt::AlignVCenter) | int(Qt::TextSingleLine), facts);
}

FileFactsReader &FileListView::facts() const
{
    return m_model->facts();
}

void FileListView::paintEvent(QPaintEvent *event)
{
    QTreeView::paintEvent(event);
    const bool isEmpty = m_model->rowCount() == 0;
    if (!isEmpty && !m_dragHovers)
        return;
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = QRectF(viewport()->rect()).adjusted(kHintInset, kHintInset, -kHintInset, -kHintInset);
    QColor line = palette().color(m_dragHovers ? QPalette::Highlight : QPalette::PlaceholderText);
    if (!m_dragHovers)
        line.setAlphaF(line.alphaF() * 0.6F);
    painter.setPen(QPen(line, m_dragHovers ? 2.0 : 1.5, Qt::DashLine));
    painter.drawRoundedRect(frame, kHintRadius, kHintRadius);
    if (!isEmpty)
        return;
    const HintPlaces places = hintPlaces();
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.setFont(places.font);
    painter.drawText(places.hint, kHintFlags, hintText());
    painter.setFont(font());
    painter.drawText(places.kinds, kHintFlags, kindsTaken());
}

FileListView::HintPlaces FileListView::hintPlaces() const
{
    const qreal inset = 2.0 * kHintInset;
    const QRectF room = QRectF(viewport()->rect()).adjusted(inset, inset, -inset, -inset);
    HintPlaces places{.font = font(), .hint = {}, .kinds = {}};
    places.font.setPointSizeF(places.font.pointSizeF() * 1.25);
    const qreal hintHeight = QFontMetricsF(places.font).boundingRect(room, kHintFlags, hintText()).height();
    const qreal kindsHeight = QFontMetricsF(font()).boundingRect(room, kHintFlags, kindsTaken()).height();
    const qreal top = room.top() + std::max(0.0, (room.height() - hintHeight - kHintSpacing - kindsHeight) / 2.0);
    places.hint = QRectF(room.left(), top, room.width(), hintHeight);
    places.kinds = QRectF(room.left(), places.hint.bottom() + kHintSpacing, room.width(), kindsHeight);
    return places;
}

qreal FileListView::hintBottom() const
{
    return hintPlaces().kinds.bottom();
}

QString FileListView::kindsTaken() const
{
    const QStringList extensions = m_tab.nurvController().offeredExtensions(m_tab.label());
    return extensions.isEmpty() ? tr("Any kind of file") : extensions.join(u" · "_s);
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TrackNameEditor.h"

#include "app/LinesControl.h"
#include "app/TextHistory.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kGutterMargin = 8;
constexpr int kFewestDigits = 2;
constexpr int kLetters = 52;
constexpr int kLines = 20;

bool isOfHistory(const QKeyEvent &key)
{
    return key.matches(QKeySequence::Undo) || key.matches(QKeySequence::Redo);
}

/// A block has an end besides its text.
bool hasName(const QTextBlock &block)
{
    return block.length() > 1;
}

} // namespace

/// The column of numbers.
class TrackNameEditor::Gutter final : public QWidget {
public:
    explicit Gutter(TrackNameEditor &editor) : QWidget(&editor), m_editor(editor) {}

protected:
    void paintEvent(QPaintEvent *event) override { m_editor.paintNumbers(event); }

private:
    TrackNameEditor &m_editor;
};

TrackNameEditor::TrackNameEditor(QWidget *parent) : QPlainTextEdit(parent), m_gutter(new Gutter(*this))
{
    setUndoRedoEnabled(false);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setTabChangesFocus(true);
    connect(this, &QPlainTextEdit::blockCountChanged, this, &TrackNameEditor::placeGutter);
    connect(this, &QPlainTextEdit::updateRequest, m_gutter, [this](const QRect &, int scrolledBy) {
        if (scrolledBy != 0)
            m_gutter->update();
    });
    // A name that comes or goes moves the numbers of those below it.
    connect(this, &QPlainTextEdit::textChanged, m_gutter, qOverload<>(&QWidget::update));
    placeGutter();
}

QSize TrackNameEditor::sizeHint() const
{
    return {fontMetrics().averageCharWidth() * kLetters + gutterWidth(), fontMetrics().lineSpacing() * kLines};
}

QString TrackNameEditor::text() const
{
    return withLineFeeds(document()->toRawText());
}

void TrackNameEditor::showText(const QString &text)
{
    const TextChange change = changeBetween(this->text(), text);
    if (change.isEmpty())
        return;
    QTextCursor place(document());
    place.setPosition(static_cast<int>(change.start));
    place.setPosition(static_cast<int>(change.start + change.removed.size()), QTextCursor::KeepAnchor);
    place.insertText(change.inserted);
    // Of many lines the first is the one to go on with.
    if (change.inserted.contains(u'\n'))
        place.setPosition(static_cast<int>(change.start));
    setTextCursor(place);
}

int TrackNameEditor::gutterWidth() const
{
    const auto digits = std::max<qsizetype>(kFewestDigits, QString::number(blockCount()).size());
    return fontMetrics().horizontalAdvance(QString(digits, u'0')) + 2 * kGutterMargin;
}

void TrackNameEditor::placeGutter()
{
    setViewportMargins(gutterWidth(), 0, 0, 0);
    const QRect inside = contentsRect();
    m_gutter->setGeometry(inside.left(), inside.top(), gutterWidth(), inside.height());
    m_gutter->update();
}

void TrackNameEditor::paintNumbers(QPaintEvent *event)
{
    QPainter painter(m_gutter);
    painter.fillRect(event->rect(), palette().color(QPalette::AlternateBase));
    painter.setFont(font());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    int number = 0;
    const QTextBlock first = firstVisibleBlock();
    for (QTextBlock block = document()->begin(); block != first; block = block.next())
        number += hasName(block) ? 1 : 0;
    for (QTextBlock block = first; block.isValid(); block = block.next()) {
        const QRectF place = blockBoundingGeometry(block).translated(contentOffset());
        if (place.top() > m_gutter->height())
            break;
        if (hasName(block))
            painter.drawText(QRectF(0, place.top(), m_gutter->width() - kGutterMargin, place.height()),
                             Qt::AlignRight | Qt::AlignVCenter, QString::number(++number));
    }
}

bool TrackNameEditor::event(QEvent *event)
{
    // The text would take the keys for a history of its own, which is empty.
    if (event->type() == QEvent::ShortcutOverride && isOfHistory(*static_cast<QKeyEvent *>(event))) {
        event->ignore();
        return true;
    }
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        placeGutter();
    return QPlainTextEdit::event(event);
}

void TrackNameEditor::keyPressEvent(QKeyEvent *event)
{
    // A line break within a line would be a name without a number.
    if (event->matches(QKeySequence::InsertLineSeparator)) {
        textCursor().insertBlock();
        ensureCursorVisible();
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

void TrackNameEditor::resizeEvent(QResizeEvent *event)
{
    QPlainTextEdit::resizeEvent(event);
    placeGutter();
}

QMenu *TrackNameEditor::makeMenu()
{
    QMenu *const menu = createStandardContextMenu();
    const QList<QAction *> actions = menu->actions();
    for (QAction *const action : actions) {
        if (action->objectName() == u"edit-undo"_s || action->objectName() == u"edit-redo"_s)
            delete action;
    }
    menu->insertActions(menu->actions().value(0), m_historyActions);
    return menu;
}

void TrackNameEditor::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu *const menu = makeMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->globalPos());
}

void TrackNameEditor::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->ignore();
    else
        QPlainTextEdit::dragEnterEvent(event);
}

void TrackNameEditor::dragMoveEvent(QDragMoveEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->ignore();
    else
        QPlainTextEdit::dragMoveEvent(event);
}

void TrackNameEditor::dropEvent(QDropEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->ignore();
    else
        QPlainTextEdit::dropEvent(event);
}

void TrackNameEditor::insertFromMimeData(const QMimeData *source)
{
    if (!source->hasText())
        return;
    textCursor().insertText(withLineFeeds(source->text()));
    ensureCursorVisible();
}

} // namespace nurv

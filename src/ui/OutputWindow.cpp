// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/OutputWindow.h"

#include "app/LinesControl.h"
#include "app/UserPrompts.h"
#include "files/TextFile.h"
#include "text/PrintableText.h"
#include "ui/WindowPlace.h"

#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QFontInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTextCursor>
#include <QTextDocument>
#include <QVBoxLayout>

#include <optional>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kMargin = 10;
constexpr int kPointSize = 10;
constexpr QSize kFirstSize{720, 480};
const QString kGeometryKey = u"window/outputGeometry"_s;

/// Courier, or the system's own monospaced font where that is not installed.
QFont reportFont()
{
    QFont font(u"Courier"_s, kPointSize);
    font.setStyleHint(QFont::Monospace);
    font.setFixedPitch(true);
    if (QFontInfo(font).fixedPitch())
        return font;
    font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSize(kPointSize);
    return font;
}

QPushButton *makeButton(const QString &title, const QString &objectName, const QString &accessibleName, QWidget *parent)
{
    auto *const button = new QPushButton(title, parent);
    button->setObjectName(objectName);
    button->setAccessibleName(accessibleName);
    button->setAutoDefault(false);
    return button;
}

/// A name for the file that a title stands for.
QString fileNameFor(const QString &title)
{
    QString name = title;
    name.replace(u'/', u'-');
    return name + u".txt"_s;
}

} // namespace

OutputWindow::OutputWindow(UserPrompts &prompts, QWidget *parent) : QWidget(parent, Qt::Window), m_prompts(prompts)
{
    setObjectName(u"outputWindow"_s);
    setAttribute(Qt::WA_DeleteOnClose);
    createWidgets();
    layOut();
    addShortcuts();
    m_hasKeptPlace = windowPlace::restore(*this, kGeometryKey, kFirstSize);
    m_textField->setFocus();
}

void OutputWindow::createWidgets()
{
    m_textField = new QPlainTextEdit(this);
    m_textField->setObjectName(u"outputText"_s);
    m_textField->setAccessibleName(tr("Output"));
    m_textField->setReadOnly(true);
    m_textField->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_textField->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_textField->setFont(reportFont());
    m_textField->setFrameShape(QFrame::NoFrame);
    m_textField->setTabChangesFocus(true);
    m_textField->document()->setDocumentMargin(kMargin);

    m_findBar = new QWidget(this);
    m_findField = new QLineEdit(m_findBar);
    m_findField->setObjectName(u"findField"_s);
    m_findField->setAccessibleName(tr("Text to find"));
    m_findField->setPlaceholderText(tr("Find"));
    m_findField->setClearButtonEnabled(true);
    m_findNote = new QLabel(m_findBar);
    m_findNote->setObjectName(u"findNote"_s);
    m_findNote->setForegroundRole(QPalette::PlaceholderText);
    connect(m_findField, &QLineEdit::returnPressed, this, &OutputWindow::findNext);
    connect(m_findField, &QLineEdit::textChanged, m_findNote, &QLabel::clear);
    m_findBar->hide();
}

void OutputWindow::layOut()
{
    auto *const findRow = new QHBoxLayout(m_findBar);
    findRow->setContentsMargins(kMargin, kMargin, kMargin, 0);
    QPushButton *const previous = makeButton(tr("&Previous"), u"findPrevious"_s, tr("Find previous"), m_findBar);
    QPushButton *const next = makeButton(tr("&Next"), u"findNext"_s, tr("Find next"), m_findBar);
    connect(previous, &QPushButton::clicked, this, &OutputWindow::findPrevious);
    connect(next, &QPushButton::clicked, this, &OutputWindow::findNext);
    findRow->addWidget(m_findField, 1);
    findRow->addWidget(m_findNote);
    findRow->addWidget(previous);
    findRow->addWidget(next);

    QPushButton *const findButton = makeButton(tr("&Find…"), u"findButton"_s, tr("Find"), this);
    QPushButton *const copyButton = makeButton(tr("&Copy"), u"copyButton"_s, tr("Copy"), this);
    QPushButton *const saveButton = makeButton(tr("&Save As…"), u"saveButton"_s, tr("Save as"), this);
    copyButton->setToolTip(tr("Copy the selection, or everything when nothing is selected"));
    connect(findButton, &QPushButton::clicked, this, &OutputWindow::showFindBar);
    connect(copyButton, &QPushButton::clicked, this, &OutputWindow::copy);
    connect(saveButton, &QPushButton::clicked, this, &OutputWindow::save);
    auto *const buttons = new QHBoxLayout;
    buttons->setContentsMargins(kMargin, 0, kMargin, kMargin);
    buttons->addWidget(findButton);
    buttons->addStretch(1);
    buttons->addWidget(copyButton);
    buttons->addWidget(saveButton);

    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(kMargin);
    column->addWidget(m_findBar);
    column->addWidget(m_textField, 1);
    column->addLayout(buttons);
}

void OutputWindow::addShortcuts()
{
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, &OutputWindow::showFindBar);
    connect(new QShortcut(QKeySequence::FindNext, this), &QShortcut::activated, this, &OutputWindow::findNext);
    connect(new QShortcut(QKeySequence::FindPrevious, this), &QShortcut::activated, this, &OutputWindow::findPrevious);
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_S), this), &QShortcut::activated, this, &OutputWindow::save);
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
}

void OutputWindow::setTextValue(const QString &text, const QString &title)
{
    m_textField->setPlainText(printableText(text));
    setWindowTitle(printableLine(title));
}

QString OutputWindow::text() const
{
    return withLineFeeds(m_textField->document()->toRawText());
}

void OutputWindow::save()
{
    const std::optional<QString> path =
        m_prompts.chooseSavePath({.title = tr("Save output"), .suggestedName = fileNameFor(windowTitle())});
    if (!path)
        return;
    QString reason;
    if (!writeTextFileAtomically(*path, text(), &reason))
        m_prompts.ask({.title = tr("The output could not be saved"), .message = reason, .buttons = {u"OK"_s}});
}

void OutputWindow::copy()
{
    const QString selected = withLineFeeds(m_textField->textCursor().selectedText());
    QApplication::clipboard()->setText(selected.isEmpty() ? text() : selected);
}

void OutputWindow::showFindBar()
{
    m_findBar->show();
    m_findField->setFocus(Qt::ShortcutFocusReason);
    m_findField->selectAll();
}

void OutputWindow::hideFindBar()
{
    m_findBar->hide();
    m_textField->setFocus();
}

void OutputWindow::findNext()
{
    find(false);
}

void OutputWindow::findPrevious()
{
    find(true);
}

void OutputWindow::find(bool backwards)
{
    const QString wanted = m_findField->text();
    if (wanted.isEmpty()) {
        showFindBar();
        return;
    }
    const QTextDocument::FindFlags direction = backwards ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    m_findNote->clear();
    if (m_textField->find(wanted, direction))
        return;
    const QTextCursor start = m_textField->textCursor();
    m_textField->moveCursor(backwards ? QTextCursor::End : QTextCursor::Start);
    if (m_textField->find(wanted, direction)) {
        m_findNote->setText(backwards ? tr("Continued from the end") : tr("Continued from the start"));
        return;
    }
    m_textField->setTextCursor(start);
    m_findNote->setText(tr("Not found"));
}

void OutputWindow::saveState() const
{
    windowPlace::keep(*this, kGeometryKey);
}

void OutputWindow::closeEvent(QCloseEvent *event)
{
    saveState();
    QWidget::closeEvent(event);
}

void OutputWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        if (m_findBar->isVisible())
            hideFindBar();
        else
            close();
        event->accept();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TrackNameWindow.h"

#include "app/TrackNameInputController.h"
#include "files/FileStatus.h"
#include "ui/GivenFiles.h"
#include "ui/TrackNameEditor.h"
#include "ui/WindowPlace.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QTextCursor>
#include <QVBoxLayout>

#include <optional>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kMargin = 16;
constexpr int kSpacing = 10;
constexpr int kNoteGap = 24;
constexpr QSize kFirstSize{560, 520};
const QString kGeometryKey = u"window/trackNamesGeometry"_s;

/// The one file that is dragged; nothing when it is a folder, or one of several.
std::optional<QString> draggedFile(const QMimeData *data)
{
    if (!hasLocalFiles(data))
        return std::nullopt;
    const GivenFiles files = localFiles(data);
    if (files.paths.size() != 1 || !files.refused.isEmpty())
        return std::nullopt;
    const std::optional<struct stat> facts = statusOf(files.paths.first());
    return facts && S_ISDIR(facts->st_mode) ? std::nullopt : std::optional(files.paths.first());
}

/// "Undo" and the name of the step.
QString worded(const QString &verb, const std::optional<QString> &step)
{
    return step ? verb + u' ' + *step : verb;
}

} // namespace

TrackNameWindow::TrackNameWindow(TrackNameInputController &controller, QWidget *parent)
    : QDialog(parent), m_controller(controller)
{
    setObjectName(u"TrackNameInputWindow"_s);
    setWindowTitle(tr("Track Names"));
    setSizeGripEnabled(true);
    setAcceptDrops(true);
    createEditor();
    createHistory();
    createButtons();
    layOut();
    windowPlace::restore(*this, kGeometryKey, kFirstSize);
    connect(&controller, &TrackNameInputController::shown, this, &TrackNameWindow::bringToFront);
    connect(&controller, &TrackNameInputController::hidden, this, &QWidget::hide);
    connect(&controller, &TrackNameInputController::stateChanged, this, &TrackNameWindow::showState);
    connect(&controller.note, &Control::changed, this, &TrackNameWindow::showNote);
    showState();
}

void TrackNameWindow::createEditor()
{
    LinesControl &text = m_controller.inputText;
    m_editor = new TrackNameEditor(this);
    m_editor->setObjectName(u"trackNames"_s);
    m_editor->setAccessibleName(tr("Track names"));
    m_editor->setAccessibleDescription(tr("One name a line"));
    m_editor->setPlaceholderText(tr("Type the names, or drop a text file with a set list here."));
    m_editor->showText(text.text());
    connect(&text, &Control::valueChanged, m_editor, [this, &text] { m_editor->showText(text.text()); });
    connect(m_editor, &QPlainTextEdit::textChanged, &text, [this, &text] { text.setText(m_editor->text()); });
    connect(m_editor, &QPlainTextEdit::selectionChanged, this, [this, &text] {
        const QTextCursor cursor = m_editor->textCursor();
        text.setSelection(cursor.selectionStart(), cursor.selectionEnd() - cursor.selectionStart());
        m_trimButton->setEnabled(cursor.hasSelection());
    });

    m_count = new QLabel(this);
    m_count->setObjectName(u"nameCount"_s);
    m_note = new QLabel(this);
    m_note->setObjectName(u"note"_s);
    m_note->setTextFormat(Qt::PlainText);
    m_note->setForegroundRole(QPalette::PlaceholderText);
    m_note->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // What is too long is elided.
    m_note->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void TrackNameWindow::createHistory()
{
    m_undoAction = new QAction(this);
    m_undoAction->setObjectName(u"undoAction"_s);
    m_undoAction->setShortcuts(QKeySequence::Undo);
    connect(m_undoAction, &QAction::triggered, &m_controller, &TrackNameInputController::undo);
    m_redoAction = new QAction(this);
    m_redoAction->setObjectName(u"redoAction"_s);
    m_redoAction->setShortcuts(QKeySequence::Redo);
    connect(m_redoAction, &QAction::triggered, &m_controller, &TrackNameInputController::redo);
    addActions({m_undoAction, m_redoAction});
    m_editor->setHistoryActions({m_undoAction, m_redoAction});
}

QPushButton *TrackNameWindow::makeButton(const QString &title, const QString &objectName, const QString &hint)
{
    auto *const button = new QPushButton(title, this);
    button->setObjectName(objectName);
    button->setAccessibleName(QString(title).remove(u'&').remove(u'…'));
    button->setAccessibleDescription(hint);
    button->setToolTip(hint);
    return button;
}

void TrackNameWindow::createButtons()
{
    m_undoButton = makeButton(tr("&Undo"), u"undoButton"_s, {});
    m_redoButton = makeButton(tr("&Redo"), u"redoButton"_s, {});
    m_loadButton =
        makeButton(tr("&Load…"), u"loadButton"_s, tr("Take the track names from a text file with a set list"));
    m_trimButton = makeButton(tr("&Trim…"), u"trimButton"_s,
                              tr("Remove characters from the start or the end of the selected lines"));
    m_clearButton = makeButton(tr("Cl&ear"), u"clearButton"_s, tr("Remove all names"));
    m_cancelButton = makeButton(tr("&Cancel"), u"cancelButton"_s, tr("Close the window and hand on nothing"));
    m_okButton = makeButton(tr("&OK"), u"okButton"_s, tr("Close the window and use these names"));
    m_okButton->setDefault(true);
    m_trimButton->setEnabled(false);
    connect(m_undoButton, &QPushButton::clicked, m_undoAction, &QAction::trigger);
    connect(m_redoButton, &QPushButton::clicked, m_redoAction, &QAction::trigger);
    connect(m_loadButton, &QPushButton::clicked, &m_controller, &TrackNameInputController::loadTrackNamesFromFile);
    connect(m_trimButton, &QPushButton::clicked, &m_controller, &TrackNameInputController::removeCharactersFromText);
    connect(m_clearButton, &QPushButton::clicked, &m_controller, &TrackNameInputController::clear);
    connect(new QShortcut(QKeySequence::Open, this), &QShortcut::activated, m_loadButton, &QPushButton::click);
    for (const int key : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(QKeySequence(Qt::CTRL | key), this), &QShortcut::activated, this,
                &TrackNameWindow::accept);
}

void TrackNameWindow::layOut()
{
    auto *const caption = new QLabel(tr("&Names, one a line:"), this);
    caption->setBuddy(m_editor);
    auto *const head = new QHBoxLayout;
    head->addWidget(caption, 1);
    head->addWidget(m_undoButton);
    head->addWidget(m_redoButton);

    auto *const facts = new QHBoxLayout;
    facts->setSpacing(kNoteGap);
    facts->addWidget(m_count);
    facts->addWidget(m_note, 1);

    // The platform orders those that end the window.
    auto *const ending = new QDialogButtonBox(this);
    ending->addButton(m_cancelButton, QDialogButtonBox::RejectRole);
    ending->addButton(m_okButton, QDialogButtonBox::AcceptRole);
    connect(ending, &QDialogButtonBox::accepted, this, &TrackNameWindow::accept);
    connect(ending, &QDialogButtonBox::rejected, this, &TrackNameWindow::reject);
    auto *const buttons = new QHBoxLayout;
    buttons->addWidget(m_loadButton);
    buttons->addWidget(m_trimButton);
    buttons->addWidget(m_clearButton);
    buttons->addStretch(1);
    buttons->addWidget(ending);

    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kSpacing);
    column->addLayout(head);
    column->addWidget(m_editor, 1);
    column->addLayout(facts);
    column->addLayout(buttons);

    QList<QWidget *> stops{m_undoButton, m_redoButton, m_editor, m_loadButton, m_trimButton, m_clearButton};
    for (int index = 0; index < ending->layout()->count(); ++index) {
        if (QWidget *const button = ending->layout()->itemAt(index)->widget())
            stops.append(button);
    }
    for (qsizetype index = 1; index < stops.size(); ++index)
        setTabOrder(stops.at(index - 1), stops.at(index));
}

void TrackNameWindow::bringToFront()
{
    m_wasShown = true;
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    m_editor->setFocus();
}

void TrackNameWindow::showState()
{
    m_count->setText(m_controller.countText());
    m_clearButton->setEnabled(!m_controller.namesText().isEmpty());
    showHistory();
}

void TrackNameWindow::showHistory()
{
    const auto show = [](QAction *action, QPushButton *button, const QString &verb,
                         const std::optional<QString> &step) {
        const QString text = worded(verb, step);
        action->setText(text);
        action->setEnabled(step.has_value());
        button->setEnabled(step.has_value());
        button->setAccessibleName(text);
        button->setToolTip(text);
    };
    show(m_undoAction, m_undoButton, tr("Undo"), m_controller.undoName());
    show(m_redoAction, m_redoButton, tr("Redo"), m_controller.redoName());
}

void TrackNameWindow::showNote()
{
    const QString &note = m_controller.note.text();
    m_note->setText(m_note->fontMetrics().elidedText(note, Qt::ElideMiddle, m_note->width()));
    m_note->setToolTip(note);
    m_note->setAccessibleName(note);
}

void TrackNameWindow::saveState() const
{
    if (m_wasShown)
        windowPlace::keep(*this, kGeometryKey);
}

void TrackNameWindow::accept()
{
    m_controller.inputOK();
}

void TrackNameWindow::reject()
{
    m_controller.inputCancel();
}

void TrackNameWindow::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    showNote();
}

void TrackNameWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (!draggedFile(event->mimeData()))
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void TrackNameWindow::dropEvent(QDropEvent *event)
{
    const std::optional<QString> path = draggedFile(event->mimeData());
    if (!path)
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    // A message would hold up the program that the file comes from.
    QMetaObject::invokeMethod(
        &m_controller, [controller = &m_controller, path] { controller->loadTrackNames(*path); }, Qt::QueuedConnection);
}

} // namespace nurv

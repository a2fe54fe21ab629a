// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/PanelDialog.h"

#include "base/Log.h"
#include "text/PrintableText.h"
#include "ui/Bindings.h"
#include "ui/NumberBox.h"
#include "ui/PairsEditor.h"
#include "ui/RadioMatrix.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QVBoxLayout>

#include <algorithm>
#include <exception>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kMargin = 16;
constexpr int kSpacing = 10;
constexpr int kCaptionGap = 12;
constexpr int kLettersOfText = 44;
constexpr int kLinesOfText = 14;
constexpr int kLettersOfNumber = 9;
constexpr int kLettersOfMessage = 60;

QLabel *textLabel(const QString &text, const QString &objectName, QWidget *parent)
{
    auto *const label = new QLabel(printableText(text), parent);
    label->setObjectName(objectName);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setMinimumWidth(label->fontMetrics().averageCharWidth() * kLettersOfMessage);
    return label;
}

/// What grows with the dialog.
bool isTall(const PanelControl &control)
{
    return std::holds_alternative<LinesControl *>(control) || std::holds_alternative<PairsControl *>(control);
}

} // namespace

PanelDialog::PanelDialog(const Panel &panel, QWidget *parent) : QDialog(parent), m_panel(panel)
{
    setObjectName(u"panel"_s);
    setWindowTitle(panel.title.isEmpty() ? QApplication::applicationDisplayName() : printableLine(panel.title));
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kSpacing);
    addMessage();
    addFields();
    addObjection();
    addButtons();
    orderTabs();
    focusFirstField();
    showObjection();
}

void PanelDialog::addMessage()
{
    if (!m_panel.message.isEmpty())
        layout()->addWidget(textLabel(m_panel.message, u"message"_s, this));
}

/// Has its place where a field may object, so that nothing moves while the user types.
void PanelDialog::addObjection()
{
    m_objection = textLabel({}, u"objection"_s, this);
    m_objection->setMinimumHeight(m_objection->fontMetrics().lineSpacing());
    m_mayObject = std::any_of(m_panel.fields.begin(), m_panel.fields.end(),
                              [](const PanelField &field) { return static_cast<bool>(field.objection); });
    layout()->addWidget(m_objection);
}

void PanelDialog::tell(const QString &objection)
{
    m_objection->setText(printableText(objection));
    m_objection->setVisible(m_mayObject || !objection.isEmpty());
}

void PanelDialog::addFields()
{
    m_grid = new QGridLayout;
    m_grid->setHorizontalSpacing(kCaptionGap);
    m_grid->setVerticalSpacing(kSpacing);
    m_grid->setColumnStretch(1, 1);
    bool grows = false;
    for (const PanelField &field : m_panel.fields) {
        addField(field);
        grows = grows || isTall(field.control);
    }
    static_cast<QVBoxLayout *>(layout())->addLayout(m_grid, 1);
    if (!grows)
        m_grid->setRowStretch(m_grid->rowCount(), 1);
    setSizeGripEnabled(grows);
}

void PanelDialog::addField(const PanelField &field)
{
    QWidget *const widget = std::visit([&](auto *control) { return widgetFor(field, *control); }, field.control);
    if (widget->objectName().isEmpty())
        widget->setObjectName(field.name);
    widget->setAccessibleName(field.title());
    widget->setAccessibleDescription(field.hint);
    widget->setToolTip(field.hint);
    m_stops.append(widget);
    const bool isBox = std::holds_alternative<CheckControl *>(field.control);
    place(field, widget, isTall(field.control) || isBox || field.caption.isEmpty());
    connect(&field.base(), &Control::changed, this, &PanelDialog::showObjection);
}

void PanelDialog::place(const PanelField &field, QWidget *widget, bool isWide)
{
    int row = m_grid->rowCount();
    // A check box bears its caption itself.
    if (!field.caption.isEmpty() && !std::holds_alternative<CheckControl *>(field.control)) {
        auto *const caption = new QLabel(field.caption, this);
        caption->setBuddy(widget);
        follow(caption, field.base());
        m_grid->addWidget(caption, row, 0, 1, isWide ? 2 : 1);
        row += isWide ? 1 : 0;
    }
    m_grid->addWidget(widget, row, isWide ? 0 : 1, 1, isWide ? 2 : 1);
    if (isTall(field.control))
        m_grid->setRowStretch(row, 1);
}

QWidget *PanelDialog::widgetFor(const PanelField &field, CheckControl &control)
{
    auto *const box = new QCheckBox(field.caption, this);
    bind(box, control);
    return box;
}

QWidget *PanelDialog::widgetFor(const PanelField &field, ChoiceControl &control)
{
    auto *const matrix = new RadioMatrix(this);
    matrix->setObjectName(field.name); // the cells' own begin with it
    bind(matrix, control);
    // The mnemonic of the caption leads to the chosen cell, and chooses none.
    matrix->setFocusPolicy(Qt::ClickFocus);
    const auto leadToChosen = [matrix, &control] {
        QWidget *const chosen = matrix->cell(control.selectedIndex());
        matrix->setFocusProxy(chosen != nullptr ? chosen : matrix->cell(0));
    };
    leadToChosen();
    connect(&control, &Control::valueChanged, matrix, leadToChosen);
    return matrix;
}

QWidget *PanelDialog::widgetFor(const PanelField &field, SliderControl &control)
{
    auto *const row = new QWidget(this);
    auto *const slider = new QSlider(Qt::Horizontal, row);
    slider->setObjectName(field.name + u"Slider"_s);
    slider->setAccessibleName(field.title());
    slider->setTickPosition(QSlider::TicksBelow);
    auto *const value = new QLabel(row);
    value->setObjectName(field.name + u"Value"_s);
    auto *const across = new QHBoxLayout(row);
    across->setContentsMargins(0, 0, 0, 0);
    across->addWidget(slider, 1);
    across->addWidget(value);
    bind(slider, value, control);
    row->setFocusPolicy(Qt::ClickFocus);
    row->setFocusProxy(slider);
    return row;
}

QWidget *PanelDialog::widgetFor(const PanelField &, StepperControl &control)
{
    auto *const box = new NumberBox(this);
    box->setMinimumWidth(box->fontMetrics().averageCharWidth() * kLettersOfNumber);
    box->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    bind(box, control);
    return box;
}

QWidget *PanelDialog::widgetFor(const PanelField &, LabelControl &control)
{
    QLabel *const label = textLabel({}, {}, this);
    bind(label, control);
    return label;
}

QWidget *PanelDialog::widgetFor(const PanelField &, TextControl &control)
{
    auto *const field = new QLineEdit(this);
    field->setMinimumWidth(field->fontMetrics().averageCharWidth() * kLettersOfText);
    bind(field, control);
    return field;
}

QWidget *PanelDialog::widgetFor(const PanelField &, LinesControl &control)
{
    class LinesEditor final : public QPlainTextEdit {
    public:
        using QPlainTextEdit::QPlainTextEdit;
        [[nodiscard]] QSize sizeHint() const override
        {
            return {fontMetrics().averageCharWidth() * kLettersOfText, fontMetrics().lineSpacing() * kLinesOfText};
        }
    };
    auto *const editor = new LinesEditor(this);
    editor->setLineWrapMode(QPlainTextEdit::NoWrap);
    editor->setTabChangesFocus(true);
    bind(editor, control);
    return editor;
}

QWidget *PanelDialog::widgetFor(const PanelField &, PairsControl &control)
{
    auto *const editor = new PairsEditor(control.rowCount(), this);
    bind(editor, control);
    return editor;
}

/// The platform orders those that end the panel; the others stand at the other side.
void PanelDialog::addButtons()
{
    auto *const row = new QHBoxLayout;
    auto *const ending = new QDialogButtonBox(this);
    int number = 0;
    for (const PanelButton &button : m_panel.buttons) {
        auto *const shown = new QPushButton(button.title, this);
        shown->setObjectName(u"panelButton%1"_s.arg(++number));
        shown->setAccessibleName(QString(button.title).remove(u'&'));
        connect(shown, &QPushButton::clicked, this, [this, &button] { press(button); });
        if (button.role == PanelButton::Role::Stay) {
            shown->setAutoDefault(false);
            row->addWidget(shown);
            m_stops.append(shown);
        } else {
            const bool accepts = button.role == PanelButton::Role::Accept;
            ending->addButton(shown, accepts ? QDialogButtonBox::AcceptRole : QDialogButtonBox::RejectRole);
            if (accepts)
                m_acceptingButtons.append(shown);
        }
    }
    if (!m_acceptingButtons.isEmpty())
        m_acceptingButtons.first()->setDefault(true);
    for (int index = 0; index < ending->layout()->count(); ++index) {
        if (QWidget *const button = ending->layout()->itemAt(index)->widget())
            m_stops.append(button);
    }
    row->addStretch(1);
    row->addWidget(ending);
    static_cast<QVBoxLayout *>(layout())->addLayout(row);
}

void PanelDialog::orderTabs()
{
    QWidget *before = nullptr;
    for (QWidget *const stop : std::as_const(m_stops)) {
        if (before != nullptr)
            setTabOrder(before, stop);
        before = stop;
    }
}

/// What it holds is selected, so that typing replaces it.
void PanelDialog::focusFirstField()
{
    for (QWidget *const widget : std::as_const(m_stops)) {
        QWidget *const field = widget->focusProxy() != nullptr ? widget->focusProxy() : widget;
        if (field->focusPolicy() == Qt::NoFocus || !field->isEnabledTo(this) || !field->isVisibleTo(this))
            continue;
        field->setFocus();
        if (auto *const line = qobject_cast<QLineEdit *>(field))
            line->selectAll();
        else if (auto *const box = qobject_cast<QSpinBox *>(field))
            box->selectAll();
        return;
    }
}

void PanelDialog::press(const PanelButton &button)
{
    if (button.role == PanelButton::Role::Accept)
        return accept();
    if (button.role == PanelButton::Role::Dismiss)
        return QDialog::reject();
    try {
        if (button.action)
            button.action();
    } catch (const std::exception &failure) {
        qCCritical(appLog).noquote() << "A button of a panel:" << failure.what();
        tell(QString::fromUtf8(failure.what()));
    }
}

void PanelDialog::showObjection()
{
    const QString reason = m_panel.objection();
    tell(reason);
    for (QPushButton *const button : std::as_const(m_acceptingButtons)) {
        button->setEnabled(reason.isEmpty());
        button->setAccessibleDescription(reason);
        button->setToolTip(reason);
    }
}

void PanelDialog::accept()
{
    if (m_panel.objection().isEmpty())
        QDialog::accept();
}

void PanelDialog::reject()
{
    if (!m_panel.canBeDismissed() && m_panel.objection().isEmpty())
        QDialog::accept();
    else
        QDialog::reject();
}

void PanelDialog::keyPressEvent(QKeyEvent *event)
{
    // In a text of several lines Return alone is a line end.
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && event->modifiers().testFlag(Qt::ControlModifier)) {
        accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

} // namespace nurv

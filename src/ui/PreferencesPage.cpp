// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/PreferencesPage.h"

#include "app/Control.h"
#include "text/PrintableText.h"
#include "ui/Bindings.h"
#include "ui/OptionWidgets.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollBar>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kPageMargin = 18;
constexpr int kRowSpacing = 16;
constexpr int kCaptionGap = 12;
constexpr int kLineSpacing = 4;
/// What notes are as wide as, in characters.
constexpr int kNoteColumns = 46;

QLabel *textLabel(const QString &objectName, QWidget *parent)
{
    auto *const label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setMinimumWidth(kNoteColumns * label->fontMetrics().averageCharWidth());
    return label;
}

} // namespace

PreferencesPage::PreferencesPage(const QString &objectName, QWidget *parent) : QScrollArea(parent)
{
    setObjectName(objectName);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    auto *const rows = new QWidget(this);
    m_form = new QGridLayout(rows);
    m_form->setContentsMargins(kPageMargin, kPageMargin, kPageMargin, kPageMargin);
    m_form->setHorizontalSpacing(kCaptionGap);
    m_form->setVerticalSpacing(kRowSpacing);
    m_form->setColumnStretch(1, 1);
    m_form->setSizeConstraint(QLayout::SetMinimumSize);
    setWidget(rows);
    viewport()->setAutoFillBackground(false);
    rows->setAutoFillBackground(false);
}

QVBoxLayout *PreferencesPage::addRow(const QString &caption, QWidget *named)
{
    const int row = m_form->rowCount();
    auto *const label = new QLabel(caption, contents());
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto *const column = new QVBoxLayout;
    column->setSpacing(kLineSpacing);
    if (named != nullptr) {
        label->setBuddy(named);
        column->addWidget(named);
    }
    // As high as what it names, so that both texts stand on one line.
    label->setFixedHeight(std::max(label->sizeHint().height(), named ? named->sizeHint().height() : QCheckBox(caption).sizeHint().height()));
    m_form->addWidget(label, row, 0, Qt::AlignRight | Qt::AlignTop);
    m_form->addLayout(column, row, 1);
    // What is left of the page is below all rows.
    m_form->setRowStretch(row, 0);
    m_form->setRowStretch(row + 1, 1);
    return column;
}

void PreferencesPage::addCheckBox(QVBoxLayout *column, CheckControl &control, const QString &title,
                                  const QString &objectName, const QString &toolTip)
{
    nurv::addCheckBox(column, control, title, objectName, toolTip, contents());
}

QLabel *PreferencesPage::addNote(QVBoxLayout *column, const QString &text, const QString &objectName)
{
    QLabel *const label = textLabel(objectName, contents());
    label->setForegroundRole(QPalette::PlaceholderText);
    label->setText(text);
    column->addWidget(label);
    return label;
}

QLabel *PreferencesPage::addLine(QVBoxLayout *column, LabelControl &control, const QString &objectName)
{
    QLabel *const label = textLabel(objectName, contents());
    column->addWidget(label);
    const auto show = [this, label, &control] {
        label->setText(printableText(control.text()));
        label->setVisible(!control.isHidden());
        Q_EMIT heightChanged();
    };
    show();
    connect(&control, &Control::changed, label, show);
    return label;
}

void PreferencesPage::addObjection(QVBoxLayout *column, LabelControl &control, const QString &objectName)
{
    auto *const row = new QVBoxLayout;
    auto *const line = new QHBoxLayout;
    auto *const sign = new QLabel(contents());
    const int size = sign->fontMetrics().height();
    sign->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(QSize(size, size), devicePixelRatioF()));
    sign->setAccessibleName(tr("Warning"));
    line->setSpacing(kLineSpacing);
    line->addWidget(sign, 0, Qt::AlignTop);
    line->addLayout(row, 1);
    column->addLayout(line);
    follow(sign, control);
    // The window does not get wider when it appears.
    QLabel *const label = addLine(row, control, objectName);
    label->setMinimumWidth(label->minimumWidth() - sign->sizeHint().width() - kLineSpacing);
}

int PreferencesPage::heightFor(int width) const
{
    return m_form->totalHeightForWidth(width);
}

QSize PreferencesPage::sizeHint() const
{
    const int width = m_form->totalSizeHint().width();
    return {width, heightFor(width)};
}

QSize PreferencesPage::minimumSizeHint() const
{
    return {m_form->totalMinimumSize().width() + verticalScrollBar()->sizeHint().width(), 0};
}

} // namespace nurv

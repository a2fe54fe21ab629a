// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/PairsEditor.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kRowsShown = 10;
constexpr int kNameLetters = 16;
constexpr int kValueLetters = 32;

int widthOf(const QWidget &widget, int letters)
{
    return widget.fontMetrics().averageCharWidth() * letters;
}

} // namespace

PairsEditor::PairsEditor(int rows, QWidget *parent) : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // No stop on the way from field to field, yet the mnemonic of a caption leads here.
    setFocusPolicy(Qt::ClickFocus);
    auto *const table = new QWidget(this);
    auto *const grid = new QGridLayout(table);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(new QLabel(tr("Name"), table), 0, 0);
    grid->addWidget(new QLabel(tr("Value"), table), 0, 1);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 2);
    setWidget(table);
    for (int row = 0; row < rows; ++row) {
        const QString number = QString::number(row + 1);
        QLineEdit *const name = addField(u"name"_s + number, tr("Name %1").arg(number), row);
        QLineEdit *const value = addField(u"value"_s + number, tr("Value %1").arg(number), row);
        name->setMinimumWidth(widthOf(*name, kNameLetters));
        value->setMinimumWidth(widthOf(*value, kValueLetters));
        grid->addWidget(name, row + 1, 0);
        grid->addWidget(value, row + 1, 1);
        m_rows.append(Row{name, value});
    }
    grid->setRowStretch(rows + 1, 1);
    setFocusProxy(m_rows.isEmpty() ? nullptr : m_rows.first().name);
    viewport()->setAutoFillBackground(false);
    table->setAutoFillBackground(false);
    setMinimumWidth(table->sizeHint().width() + verticalScrollBar()->sizeHint().width());
}

QLineEdit *PairsEditor::addField(const QString &objectName, const QString &accessibleName, int row)
{
    auto *const field = new QLineEdit(widget());
    field->setObjectName(objectName);
    field->setAccessibleName(accessibleName);
    connect(field, &QLineEdit::textEdited, this, [this, row] { Q_EMIT rowEdited(row); });
    return field;
}

QSize PairsEditor::sizeHint() const
{
    const QSize whole = widget()->sizeHint();
    const int rows = std::max(rowCount(), 1);
    return {whole.width() + verticalScrollBar()->sizeHint().width(), whole.height() * std::min(rows, kRowsShown) / rows};
}

} // namespace nurv

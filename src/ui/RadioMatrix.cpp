// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/RadioMatrix.h"

#include <QGridLayout>
#include <QRadioButton>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

QString withoutMnemonic(QString text)
{
    return text.remove(u'&');
}

} // namespace

RadioMatrix::RadioMatrix(QWidget *parent) : QWidget(parent)
{
    connect(&m_group, &QButtonGroup::idToggled, this, [this](int index, bool checked) {
        if (!checked)
            return;
        m_lastChosen = index;
        focusChosen();
        Q_EMIT cellChosen(index);
    });
    // A click on another cell has chosen it by now.
    connect(&m_group, &QButtonGroup::idClicked, this, [this](int index) {
        if (std::exchange(m_lastChosen, -1) != index)
            Q_EMIT cellClickedAgain(index);
    });
}

void RadioMatrix::setCells(const QStringList &titles, int columns)
{
    const QList<QAbstractButton *> former = m_group.buttons();
    qDeleteAll(former);
    delete layout();
    auto *const grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(18);
    for (int index = 0; index < titles.size(); ++index) {
        auto *const button = new QRadioButton(titles.at(index), this);
        button->setObjectName(u"%1.%2"_s.arg(objectName()).arg(index));
        button->setAccessibleName(withoutMnemonic(titles.at(index)));
        m_group.addButton(button, index);
        grid->addWidget(button, index / columns, index % columns);
    }
    grid->setColumnStretch(columns, 1);
    focusChosen();
}

/// The Tab key goes to the chosen cell, or to the first.
void RadioMatrix::focusChosen()
{
    const int stop = std::max(selectedIndex(), 0);
    for (QAbstractButton *const button : m_group.buttons())
        button->setFocusPolicy(m_group.id(button) == stop ? Qt::StrongFocus : Qt::ClickFocus);
}

QRadioButton *RadioMatrix::cell(int index) const
{
    return qobject_cast<QRadioButton *>(m_group.button(index));
}

void RadioMatrix::setSelectedIndex(int index)
{
    const QSignalBlocker blocker(m_group);
    if (QAbstractButton *const button = m_group.button(index)) {
        button->setChecked(true);
    } else if (QAbstractButton *const checked = m_group.checkedButton()) {
        // An exclusive group keeps its last button down.
        m_group.setExclusive(false);
        checked->setChecked(false);
        m_group.setExclusive(true);
    }
    focusChosen();
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ComboControl.h"

#include "text/TextNumbers.h"

#include <utility>

namespace nurv {

ComboControl::ComboControl(QList<int> items, int value) : m_items(std::move(items)), m_text(QString::number(value)) {}

void ComboControl::setText(const QString &text)
{
    if (leadingInteger(text) <= 0)
        return;
    if (std::exchange(m_text, text) != text)
        announceValue();
}

int ComboControl::integerValue() const
{
    return leadingInteger(m_text);
}

} // namespace nurv

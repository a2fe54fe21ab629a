// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/NumberBox.h"

#include "text/TextNumbers.h"

#include <algorithm>

namespace nurv {

QValidator::State NumberBox::validate(QString &text, int &) const
{
    const int number = leadingInteger(text);
    if (number > maximum())
        return QValidator::Invalid;
    // More digits may follow.
    return number < minimum() ? QValidator::Intermediate : QValidator::Acceptable;
}

int NumberBox::valueFromText(const QString &text) const
{
    return std::clamp(leadingInteger(text), minimum(), maximum());
}

void NumberBox::fixup(QString &text) const
{
    text = QString::number(valueFromText(text));
}

} // namespace nurv

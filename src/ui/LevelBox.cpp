// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/LevelBox.h"

#include "text/TextNumbers.h"

namespace nurv {

int LevelBox::valueFromText(const QString &text) const
{
    const int typed = leadingInteger(text);
    return typed >= minimum() && typed <= maximum() ? typed : value();
}

QValidator::State LevelBox::validate(QString &text, int &position) const
{
    const int typed = leadingInteger(text);
    if (typed < minimum() || typed > maximum()) {
        text = textFromValue(value());
        position = static_cast<int>(text.size());
    }
    return QValidator::Acceptable;
}

} // namespace nurv

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
    const QString shown = textFromValue(valueFromText(text));
    if (text != shown) {
        text = shown;
        position = static_cast<int>(text.size());
    }
    return QValidator::Acceptable;
}

} // namespace nurv

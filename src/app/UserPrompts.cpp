// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/UserPrompts.h"

using namespace Qt::StringLiterals;

namespace nurv {

QString dismissingButton(const Alert &alert)
{
    for (const QString &button : {u"No"_s, u"Cancel"_s, u"Keep"_s, u"Not Now"_s}) {
        if (alert.buttons.contains(button))
            return button;
    }
    return alert.buttons.isEmpty() ? QString() : alert.buttons.last();
}

} // namespace nurv

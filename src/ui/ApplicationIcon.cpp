// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ApplicationIcon.h"

using namespace Qt::StringLiterals;

namespace nurv {

QIcon applicationIcon()
{
    return QIcon::fromTheme(u"org.nurvaudio.Workbench"_s, QIcon(u":/nurv/org.nurvaudio.Workbench.svg"_s));
}

} // namespace nurv

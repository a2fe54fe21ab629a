// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ToolTipText.h"

#include "text/PrintableText.h"

#include <QTextDocument>

namespace nurv {

namespace {

constexpr int kLongestToolTip = 1500;

} // namespace

QString toolTipText(const QString &plain)
{
    const QString cut = plain.size() > kLongestToolTip ? plain.left(kLongestToolTip) + u'…' : plain;
    const QString shown = printableText(cut);
    return Qt::mightBeRichText(shown) ? Qt::convertFromPlainText(shown, Qt::WhiteSpaceNormal) : shown;
}

} // namespace nurv

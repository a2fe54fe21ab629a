// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "DarkPalette.h"

namespace nurv::test {

QPalette darkPalette()
{
    const QColor window(0x2d, 0x2d, 0x30);
    QPalette palette(QColor(0x3e, 0x3e, 0x42), window);
    const QColor base(0x1e, 0x1e, 0x1e);
    const QColor text(232, 233, 235);
    const QColor accent(61, 126, 214);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, QColor(0x25, 0x25, 0x27));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, base);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, QColor(150, 153, 158));
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, accent);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(120, 123, 128));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(80, 83, 88));
    return palette;
}

} // namespace nurv::test

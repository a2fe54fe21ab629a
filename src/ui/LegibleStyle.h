// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProxyStyle>

namespace nurv {

/// Fusion with outlines around check boxes, radio buttons and fields of text that can be seen in
/// a dark palette, where its own are darker than what they surround.
class LegibleStyle final : public QProxyStyle {
    Q_OBJECT

public:
    LegibleStyle();

    /// Gives the application this style when Fusion is what it has; styles of a
    /// desktop look after themselves.
    static void install();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QPalette>

namespace nurv {

/// The ratio of two colours' luminances, 1 to 21, as the accessibility guidelines (WCAG 2.1) define it.
[[nodiscard]] double contrastRatio(const QColor &one, const QColor &other);

/// The colour that is seen where `color` is painted over an opaque ground.
[[nodiscard]] QColor blended(const QColor &color, const QColor &ground);

/// Keeps the quiet texts and the selected ones of the application's palette legible, also after the desktop
/// has changed its colours: a contrast of at least 4.5.
class LegiblePalette final : public QObject {
    Q_OBJECT

public:
    explicit LegiblePalette(QObject *parent = nullptr);

    /// The palette with its PlaceholderText and Highlight changed as far as the contrast needs it.
    [[nodiscard]] static QPalette corrected(QPalette palette);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void correct();

    bool m_isCorrecting = false;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

namespace nurv {

/// The colours of a row's texts. The view maps them to its palette.
enum class RowColor {
    Text,      ///< the palette's text colour
    SystemRed, ///< the platform's red
    DarkGreen, ///< device RGB (0.0, 0.5, 0.0), alpha 1.0
};

/// A system font of a row's text.
struct RowFont {
    int pointSize = 12;
    bool bold = false;
};

/// One line of text in a job's row.
struct RowText {
    QString text;
    RowColor color = RowColor::Text;
    RowFont font;
};

/// The progress bar of a job's row, from 0 to 100.
struct RowProgress {
    double value = 0.0;
    bool indeterminate = false;
    bool animated = true;
    bool hidden = true;
};

/// The cancel button of a job's row: an image only, 15 x 15 points.
struct RowButton {
    QString toolTip;
    std::function<void()> action;
    bool hidden = true;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QImage>

namespace nurv::test {

/// The contrast ratio of the accessibility guidelines, 1 to 21: they ask for 4.5 of texts and 3 around controls.
[[nodiscard]] double contrast(const QColor &one, const QColor &other);

/// The contrast of the pixel that stands out most from the colour that most pixels have.
[[nodiscard]] double strongestContrast(const QImage &image);

} // namespace nurv::test

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/LegibleStyle.h"

#include "ui/Contrast.h"

#include <QCheckBox>
#include <QImage>
#include <QLineEdit>
#include <QRadioButton>
#include <QStyleFactory>
#include <QStyleOptionButton>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

const QPalette kDark(QColor(60, 60, 64), QColor(0x2d, 0x2d, 0x30));
const QPalette kLight(QColor(240, 240, 240), QColor(239, 239, 239));

template<typename Button>
QImage pictureOf(QStyle &style, const QPalette &palette)
{
    Button button;
    button.setStyle(&style);
    button.setPalette(palette);
    button.resize(button.sizeHint());
    return button.grab().toImage();
}

/// The contrast of the strongest outline pixel in the middle row of an empty button.
template<typename Button>
double outlineContrast(QStyle &style, const QPalette &palette)
{
    const QImage image = pictureOf<Button>(style, palette);
    double strongest = 1.0;
    for (int x = 0; x < image.width(); ++x)
        strongest = std::max(strongest,
                             contrast(image.pixelColor(x, image.height() / 2), palette.color(QPalette::Window)));
    return strongest;
}

} // namespace

TEST(LegibleStyle, OutlinesTheBoxesOfADarkPaletteLegibly)
{
    LegibleStyle style;
    EXPECT_GE(outlineContrast<QCheckBox>(style, kDark), 3.0);
    EXPECT_GE(outlineContrast<QRadioButton>(style, kDark), 3.0);
}

TEST(LegibleStyle, OutlinesTheTextFieldsOfADarkPaletteLegibly)
{
    LegibleStyle style;
    EXPECT_GE(outlineContrast<QLineEdit>(style, kDark), 3.0);
}

TEST(LegibleStyle, LooksLikeFusionInALightPalette)
{
    LegibleStyle style;
    const std::unique_ptr<QStyle> fusion(QStyleFactory::create(u"Fusion"_s));
    EXPECT_EQ(pictureOf<QCheckBox>(style, kLight), pictureOf<QCheckBox>(*fusion, kLight));
    EXPECT_EQ(pictureOf<QRadioButton>(style, kLight), pictureOf<QRadioButton>(*fusion, kLight));
    EXPECT_EQ(pictureOf<QLineEdit>(style, kLight), pictureOf<QLineEdit>(*fusion, kLight));
}

} // namespace nurv::test

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/StatusPanelController.h"

#include <QLabel>
#include <QProgressBar>

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

class StatusPanelControllerTest : public ::testing::Test {
protected:
    /// How much of the bar is filled, from 0 to 1.
    [[nodiscard]] double share() const
    {
        const QProgressBar &bar = *panel.progressBar();
        return static_cast<double>(bar.value() - bar.minimum()) / (bar.maximum() - bar.minimum());
    }
    [[nodiscard]] bool movesByItself() const { return panel.progressBar()->minimum() == panel.progressBar()->maximum(); }

    StatusPanelController panel;
};

} // namespace

TEST_F(StatusPanelControllerTest, ShowsAPlainLineOfText)
{
    panel.setText(u"Reading <b>track</b> 3"_s);
    EXPECT_EQ(panel.textField()->text(), u"Reading <b>track</b> 3"_s);
    EXPECT_EQ(panel.textField()->textFormat(), Qt::PlainText);
}

TEST_F(StatusPanelControllerTest, FillsTheBarBetweenItsEnds)
{
    panel.setDeterminate(10.0, 30.0);
    panel.setProgress(10.0);
    EXPECT_DOUBLE_EQ(share(), 0.0);
    panel.setProgress(15.0);
    EXPECT_DOUBLE_EQ(share(), 0.25);
    panel.incrementProgress(5.0);
    EXPECT_DOUBLE_EQ(share(), 0.5);
    panel.incrementProgress(-2.5);
    EXPECT_DOUBLE_EQ(share(), 0.375);
}

TEST_F(StatusPanelControllerTest, StaysWithinItsEnds)
{
    panel.setDeterminate(0.0, 4.0);
    panel.setProgress(9.0);
    EXPECT_DOUBLE_EQ(share(), 1.0);
    panel.incrementProgress(-1.0);
    EXPECT_DOUBLE_EQ(share(), 0.75) << "what was too much is not remembered";
    panel.setProgress(-3.0);
    EXPECT_DOUBLE_EQ(share(), 0.0);
    panel.setProgress(std::numeric_limits<double>::quiet_NaN());
    EXPECT_DOUBLE_EQ(share(), 0.0);
    panel.setDeterminate(5.0, 5.0);
    panel.setProgress(5.0);
    EXPECT_DOUBLE_EQ(share(), 0.0);
    panel.setDeterminate(0.0, 1e12);
    panel.setProgress(5e11);
    EXPECT_DOUBLE_EQ(share(), 0.5);
}

TEST_F(StatusPanelControllerTest, MovesByItselfOnlyWhileItIsAnimatedAndHasNoEnds)
{
    panel.setInDeterminate();
    EXPECT_FALSE(movesByItself());
    panel.startAnimation();
    EXPECT_TRUE(movesByItself());
    panel.stopAnimation();
    EXPECT_FALSE(movesByItself());
    panel.startAnimation();
    panel.setDeterminate(0.0, 2.0);
    EXPECT_FALSE(movesByItself());
    panel.setProgress(1.0);
    EXPECT_DOUBLE_EQ(share(), 0.5);
}

} // namespace nurv::test

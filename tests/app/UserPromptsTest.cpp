// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/UserPrompts.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {

TEST(UserPrompts, DismissAnAlertWithTheButtonThatChangesNothing)
{
    const auto dismissing = [](const QStringList &buttons) {
        return dismissingButton({.title = u"?"_s, .message = {}, .buttons = buttons});
    };
    EXPECT_EQ(dismissing({u"No"_s, u"Yes"_s}), u"No"_s);
    EXPECT_EQ(dismissing({u"Yes"_s, u"No"_s}), u"No"_s);
    EXPECT_EQ(dismissing({u"Cancel"_s, u"Delete"_s}), u"Cancel"_s);
    EXPECT_EQ(dismissing({u"Keep"_s, u"Remove"_s}), u"Keep"_s);
    EXPECT_EQ(dismissing({u"Not Now"_s, u"Add Again"_s}), u"Not Now"_s);
    EXPECT_EQ(dismissing({u"Cancel"_s, u"No"_s, u"Yes"_s}), u"No"_s);
    EXPECT_EQ(dismissing({u"Once"_s, u"Twice"_s}), u"Twice"_s);
    EXPECT_EQ(dismissing({u"OK"_s}), u"OK"_s);
    EXPECT_EQ(dismissing({}), QString());
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/SessionIdentifier.h"

#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <unistd.h>

using namespace Qt::StringLiterals;
using nurv::sessionIdentifier;

TEST(SessionIdentifier, IsTheAuditSessionOfTheKernel)
{
    const nurv::test::TestFolder folder;
    EXPECT_EQ(sessionIdentifier(folder.write(u"plain"_s, "7")), 7U);
    EXPECT_EQ(sessionIdentifier(folder.write(u"largest"_s, "4294967294\n")), 4294967294U);
}

TEST(SessionIdentifier, IsTheUserWhereTheKernelHasSetNoSession)
{
    const nurv::test::TestFolder folder;
    EXPECT_EQ(sessionIdentifier(folder.write(u"unset"_s, "4294967295")), ::getuid());
    EXPECT_EQ(sessionIdentifier(folder.write(u"empty"_s, "")), ::getuid());
    EXPECT_EQ(sessionIdentifier(folder.path(u"missing"_s)), ::getuid());
}

TEST(SessionIdentifier, StaysTheSameWithinAProcess)
{
    EXPECT_EQ(sessionIdentifier(), sessionIdentifier());
}

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/CorpusReplay.h"

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

TEST(ApeCorpus, CostsNoCrashNoTimeAndNoMemory)
{
    EXPECT_TRUE(replayCorpus(QString::fromLocal8Bit(NURV_CORPUS)));
}

} // namespace

} // namespace nurv::test

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/CorpusReplay.h"

namespace nurv::test {

namespace {

/// Built once for each fuzzer of `src`, with its corpus.
TEST(ReplayedCorpus, CostsNoCrashNoTimeAndNoMemory)
{
    EXPECT_TRUE(replayCorpus(QString::fromLocal8Bit(NURV_CORPUS)));
}

} // namespace

} // namespace nurv::test

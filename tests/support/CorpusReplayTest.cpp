// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/CorpusReplay.h"

#include "support/TestFolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <ctime>
#include <string>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// A parser with the faults that its input asks for.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text(data, data + size);
    if (text == "memory")
        const std::vector<char> bytes(std::size_t{65} << 20);
    const std::clock_t start = std::clock();
    while (text == "slow" && std::clock() - start < CLOCKS_PER_SEC * 11 / 10) {
    }
    while (text == "hang")
        static_cast<void>(std::clock());
    return 0;
}

namespace nurv::test {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

TEST(CorpusReplay, FindsWhatCostsTooMuch)
{
    const TestFolder folder;
    folder.write(u"fine"_s, "fine");
    EXPECT_TRUE(replayCorpus(folder.path()));
    folder.write(u"large"_s, "memory");
    folder.write(u"late"_s, "slow");
    const ::testing::AssertionResult result = replayCorpus(folder.path(), {.time = 1s});
    EXPECT_FALSE(result);
    EXPECT_THAT(result.message(), HasSubstr("large: asks for "));
    EXPECT_THAT(result.message(), HasSubstr("late: takes "));
    EXPECT_THAT(result.message(), Not(HasSubstr("fine: ")));
}

TEST(CorpusReplay, FindsAnEmptyFolder)
{
    EXPECT_FALSE(replayCorpus(TestFolder().path()));
}

TEST(CorpusReplayDeathTest, NamesTheFileThatNeverEnds)
{
    const TestFolder folder;
    folder.write(u"endless"_s, "hang");
    EXPECT_DEATH(static_cast<void>(replayCorpus(folder.path(), {.time = 0s})), "the replay hangs at endless");
}

} // namespace

} // namespace nurv::test

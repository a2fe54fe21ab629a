// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dvda/AobFiles.h"
#include "support/TestFolder.h"
#include "support/ToolError.h"

#include <gtest/gtest.h>

#include <vector>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

constexpr size_t kSector = 2048;

/// Sectors that tell their numbers.
std::vector<uint8_t> numbered(size_t first, size_t count)
{
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < count; ++i)
        bytes.insert(bytes.end(), kSector, static_cast<uint8_t>(first + i));
    return bytes;
}

std::vector<uint8_t> contentsOf(const TemporaryFile &file)
{
    std::vector<uint8_t> bytes(1000 * kSector);
    const ssize_t count = ::pread(file.descriptor(), bytes.data(), bytes.size(), 0);
    bytes.resize(static_cast<size_t>(std::max<ssize_t>(count, 0)));
    return bytes;
}

TEST(AobFiles, GoOnInTheNextFileWhereOneIsFull)
{
    const TestFolder folder;
    AobFiles files(folder.path().toStdString(), "shown", 5);
    // Runs that end before, at and behind the ends of files, and one over several.
    size_t next = 0;
    for (const size_t count : {3U, 2U, 1U, 4U, 12U, 1U}) {
        files.write(numbered(next, count));
        next += count;
    }
    EXPECT_EQ(files.sectors(), 23U);
    ASSERT_EQ(files.files().size(), 5U);
    for (size_t i = 0; i < 5; ++i)
        EXPECT_EQ(contentsOf(*files.files()[i]), numbered(5 * i, i < 4 ? 5 : 3)) << i;
    EXPECT_EQ(folder.list(), QStringList());
}

TEST(AobFiles, AreNineAtMost)
{
    const TestFolder folder;
    AobFiles files(folder.path().toStdString(), "shown", 2);
    files.write(numbered(0, 18));
    EXPECT_EQ(files.files().size(), 9U);
    EXPECT_THROW(files.write(numbered(18, 1)), ToolError);
}

TEST(AobFiles, AreNoLargerThanOneExtentOfAnImage)
{
    // 30 bits count its bytes, whole sectors of them.
    EXPECT_EQ(uint64_t{AobFiles::kMostSectors} * kSector, (uint64_t{1} << 30) - kSector);
}

} // namespace

} // namespace nurv::test

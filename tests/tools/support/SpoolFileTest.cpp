// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/SpoolFile.h"

#include "support/TestFolder.h"
#include "support/ToolError.h"

#include <gtest/gtest.h>

#include <QString>

#include <string>

namespace nurv::test {

namespace {

std::string contentsOf(const SpoolFile &spool)
{
    std::string contents;
    spool.read([&](std::span<const uint8_t> bytes) { contents.append(bytes.begin(), bytes.end()); });
    return contents;
}

TEST(SpoolFile, GivesBackWhatWasWrittenAndHasNoName)
{
    const TestFolder folder;
    SpoolFile spool(folder.path().toStdString());
    EXPECT_EQ(contentsOf(spool), "");
    const std::string large(700'000, 'x');
    spool.write({reinterpret_cast<const uint8_t *>(large.data()), large.size()});
    EXPECT_EQ(contentsOf(spool), large);
    EXPECT_TRUE(folder.list().isEmpty());
}

TEST(SpoolFile, FailsInAFolderThatIsNotThere)
{
    const TestFolder folder;
    EXPECT_THROW(SpoolFile((folder.path() + QStringLiteral("/none")).toStdString()), ToolError);
}

} // namespace

} // namespace nurv::test

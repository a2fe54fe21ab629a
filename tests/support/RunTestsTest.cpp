// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestFolder.h"
#include "support/WaitUntil.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>
#include <QTimer>

#include <gtest/gtest.h>

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nurv::test {

TEST(RunTests, GivesTheProcessAHomeOfItsOwn)
{
    ASSERT_NE(QCoreApplication::instance(), nullptr);
    const QString home = QDir::homePath();
    EXPECT_TRUE(home.contains(u"/nurv-test-"_s)) << qPrintable(home);
    for (const auto location : {QStandardPaths::ConfigLocation, QStandardPaths::GenericDataLocation,
                                QStandardPaths::GenericCacheLocation, QStandardPaths::RuntimeLocation}) {
        EXPECT_TRUE(QStandardPaths::writableLocation(location).contains(u"/nurv-test-"_s));
    }
    EXPECT_TRUE(qEnvironmentVariable("NURV_SETTINGS").contains(u"/nurv-test-"_s));
    EXPECT_TRUE(qEnvironmentVariable("NURV_STATE").contains(u"/nurv-test-"_s));
    EXPECT_TRUE(QDir(qEnvironmentVariable("NURV_TOOLS")).isAbsolute());
}

TEST(WaitUntil, ReturnsWhenTheStateIsReached)
{
    bool fired = false;
    QTimer::singleShot(10ms, [&fired] { fired = true; });
    EXPECT_TRUE(waitUntil([&fired] { return fired; }));
}

TEST(WaitUntil, GivesUpAtTheLimit)
{
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(waitUntil([] { return false; }, 30ms));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 30ms);
}

TEST(TestFolder, ListsWhatWasWritten)
{
    const TestFolder folder;
    folder.write(u"b/c.txt"_s, "x");
    folder.write(u"a.txt"_s, "y");
    folder.write(u".hidden"_s, "");
    EXPECT_EQ(folder.list(), (QStringList{u".hidden"_s, u"a.txt"_s, u"b/c.txt"_s}));
    EXPECT_EQ(folder.read(u"b/c.txt"_s), "x");
    folder.remove(u"a.txt"_s);
    EXPECT_FALSE(folder.exists(u"a.txt"_s));
}

} // namespace nurv::test

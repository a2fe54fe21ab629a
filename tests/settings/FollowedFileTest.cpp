// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/SettingsStore.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"

#include <QFile>
#include <QFileSystemWatcher>
#include <QStringList>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

/// A store that follows its file, and another one in the place of another process.
class FollowedFile : public ::testing::Test {
protected:
    void SetUp() override
    {
        store.registerDefaults({{u"maxThreads"_s, 2}, {u"warnOnDelete"_s, true}});
        store.followFile();
    }
    [[nodiscard]] bool comesToBe(int jobs)
    {
        return waitUntil([this, jobs] { return store.integer(u"maxThreads"_s) == jobs; });
    }

    TestFolder folder;
    QString path = folder.write(u"nurv/workbench.ini"_s, "[General]\nmaxThreads=3\n");
    SettingsStore store{path};
    SettingsStore other{path};
};

} // namespace

TEST_F(FollowedFile, TakesWhatAnotherProcessStoresAndTellsOfIt)
{
    QStringList changed;
    QObject::connect(&store, &SettingsStore::changed, &store, [&changed](const QString &key) { changed.append(key); });
    other.setValue(u"maxThreads"_s, 7);
    ASSERT_TRUE(other.sync());
    EXPECT_TRUE(comesToBe(7));
    EXPECT_EQ(changed, QStringList{u"maxThreads"_s});
    other.remove(u"maxThreads"_s);
    ASSERT_TRUE(other.sync());
    EXPECT_TRUE(comesToBe(2)) << "the default counts again";
    EXPECT_EQ(changed.size(), 2);
}

TEST_F(FollowedFile, KeepsItsOwnValueThatIsStillToBeWritten)
{
    store.setValue(u"maxThreads"_s, 5);
    other.setValue(u"maxThreads"_s, 9);
    other.setValue(u"warnOnDelete"_s, false);
    ASSERT_TRUE(other.sync());
    // The other value arrives, this one does not.
    EXPECT_TRUE(waitUntil([this] { return !store.boolean(u"warnOnDelete"_s); }));
    EXPECT_EQ(store.integer(u"maxThreads"_s), 5);
    ASSERT_TRUE(store.sync());
    EXPECT_EQ(SettingsStore(path).integer(u"maxThreads"_s), 5);
}

TEST_F(FollowedFile, KeepsWhatIsInMemoryOnly)
{
    store.setPersistence(SettingsStore::Persistence::MemoryOnly);
    store.setValue(u"maxThreads"_s, 6);
    other.setValue(u"maxThreads"_s, 9);
    other.setValue(u"warnOnDelete"_s, false);
    ASSERT_TRUE(other.sync());
    EXPECT_TRUE(waitUntil([this] { return !store.boolean(u"warnOnDelete"_s); }));
    EXPECT_EQ(store.integer(u"maxThreads"_s), 6);
}

TEST_F(FollowedFile, KeepsItsValuesWhenTheFileIsDamagedOrGone)
{
    QFileSystemWatcher watcher({folder.path(u"nurv"_s)});
    int changes = 0;
    QObject::connect(&watcher, &QFileSystemWatcher::directoryChanged, &watcher, [&changes] { ++changes; });
    folder.write(u"nurv/damaged.ini"_s, QByteArray("\0\xff\0\xfe", 4));
    ASSERT_TRUE(QFile::remove(path));
    ASSERT_TRUE(waitUntil([&changes] { return changes > 0; }));
    EXPECT_EQ(store.integer(u"maxThreads"_s), 3);
    changes = 0;
    ASSERT_TRUE(QFile::rename(folder.path(u"nurv/damaged.ini"_s), path));
    ASSERT_TRUE(waitUntil([&changes] { return changes > 0; }));
    EXPECT_EQ(store.integer(u"maxThreads"_s), 3);
    folder.write(u"nurv/whole.ini"_s, "[General]\nmaxThreads=3\nwarnOnDelete=false\n");
    ASSERT_TRUE(QFile::remove(path));
    ASSERT_TRUE(QFile::rename(folder.path(u"nurv/whole.ini"_s), path));
    EXPECT_TRUE(waitUntil([this] { return !store.boolean(u"warnOnDelete"_s); }));
    EXPECT_EQ(store.integer(u"maxThreads"_s), 3);
}

TEST_F(FollowedFile, FollowsAFileWhoseFolderItHasToMakeItself)
{
    const QString late = folder.path(u"later/workbench.ini"_s);
    SettingsStore first(late);
    first.followFile();
    first.setValue(u"warnOnDelete"_s, true);
    ASSERT_TRUE(waitUntil([&late] { return QFile::exists(late); }));
    // The timer that has written the file then looks for its folder.
    SettingsStore second(late);
    EXPECT_TRUE(waitUntil([&] {
        second.setValue(u"maxThreads"_s, second.integer(u"maxThreads"_s) + 1);
        return second.sync() && first.integer(u"maxThreads"_s) > 0;
    }));
}

} // namespace nurv::test

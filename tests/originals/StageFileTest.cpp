// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "originals/StageFile.h"

#include "base/NurvFailure.h"
#include "journal/JournalFolder.h"
#include "support/TestFolder.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <optional>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

TEST(StageFile, IsMadeEmptyInItsFolderAndGoesWithItsObject)
{
    const test::TestFolder folder;
    {
        const StageFile file(folder.path());
        ASSERT_EQ(folder.list().size(), 1);
        EXPECT_EQ(folder.path(folder.list()[0]), file.path());
        EXPECT_TRUE(file.path().endsWith(u".wav"_s));
        EXPECT_EQ(folder.read(folder.list()[0]), "");
    }
    EXPECT_TRUE(folder.list().isEmpty());
}

/// How many lines of all journals tell that of the path.
qsizetype notesOf(const QByteArray &word, const QString &path)
{
    qsizetype count = 0;
    for (const QFileInfo &journal : QDir(journalFolderPath()).entryInfoList(QDir::Files)) {
        QFile file(journal.filePath());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const QByteArray &line : file.readAll().split('\n'))
            count += line.startsWith(word) && line.contains(QFile::encodeName(path)) ? 1 : 0;
    }
    return count;
}

TEST(StageFile, IsNotedInTheJournalWhileItIsThere)
{
    const test::TestFolder folder;
    QString path;
    {
        const StageFile file(folder.path());
        path = file.path();
        EXPECT_EQ(notesOf("temporary", path), 1);
        EXPECT_EQ(notesOf("gone", path), 0);
    }
    EXPECT_EQ(notesOf("gone", path), 1);
}

TEST(StageFile, StandsThatSomebodyElseRemovedIt)
{
    const test::TestFolder folder;
    std::optional<StageFile> file(std::in_place, folder.path());
    ASSERT_TRUE(QFile::remove(file->path()));
    file.reset();
    EXPECT_TRUE(folder.list().isEmpty());
}

TEST(StageFile, NamesTheFolderThatTakesNone)
{
    const test::TestFolder folder;
    try {
        const StageFile file(folder.path(u"gone"_s));
        FAIL() << "made in a folder that is not there";
    } catch (const NurvFailure &failure) {
        EXPECT_TRUE(failure.reason().contains(folder.path(u"gone"_s))) << qPrintable(failure.reason());
    }
}

TEST(StageFile, IsPrivateUntilItGetsThePermissionsOfNewFiles)
{
    const test::TestFolder folder;
    const mode_t former = ::umask(027);
    const StageFile file(folder.path());
    struct stat facts = {};
    EXPECT_EQ(::stat(QFile::encodeName(file.path()).constData(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0600U);
    file.grantUsualAccess();
    EXPECT_EQ(::stat(QFile::encodeName(file.path()).constData(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0640U);
    ::umask(former);
}

TEST(StageFile, TakesANameThatNothingHas)
{
    const test::TestFolder folder;
    {
        StageFile file(folder.path(), u"m4a"_s);
        file.place(folder.path(u"a.m4a"_s));
    }
    EXPECT_EQ(folder.list(), QStringList{u"a.m4a"_s});
    folder.write(u"a.m4a"_s, "somebody's");
    {
        StageFile file(folder.path(), u"m4a"_s);
        EXPECT_THROW(file.place(folder.path(u"a.m4a"_s)), NurvFailure);
    }
    EXPECT_EQ(folder.list(), QStringList{u"a.m4a"_s});
    EXPECT_EQ(folder.read(u"a.m4a"_s), "somebody's");
}

TEST(StageFile, StaysWhenItIsGivenUp)
{
    const test::TestFolder folder;
    {
        StageFile file(folder.path());
        file.giveUp();
    }
    EXPECT_EQ(folder.list().size(), 1);
}

} // namespace
} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/BatchRename.h"

#include "app/PathNames.h"
#include "journal/JournalFolder.h"
#include "originals/OutputClaim.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

QStringList newNames(const QStringList &paths, const QString &prefix)
{
    QStringList names;
    for (const Renaming &renaming : batchRename::plan(paths, prefix))
        names.append(renaming.to);
    return names;
}

TEST(BatchRename, NumbersFilesWithOneZeroAndTheirOwnExtensions)
{
    EXPECT_EQ(newNames({u"/m/a.flac"_s, u"/m/b.wav"_s}, u"Disc1-"_s),
              (QStringList{u"/m/Disc1-01.flac"_s, u"/m/Disc1-02.wav"_s}));
    EXPECT_EQ(newNames({u"/m/x/a.tar.gz"_s, u"/n/README"_s, u"/n/.hidden"_s, u"/o."_s}, u"p"_s),
              (QStringList{u"/m/x/p01.gz"_s, u"/n/p02"_s, u"/n/p03"_s, u"/p04"_s}));
    QStringList hundred;
    for (int i = 0; i < 100; ++i)
        hundred.append(u"/m/%1.wav"_s.arg(i));
    const QStringList names = newNames(hundred, u"t"_s);
    EXPECT_EQ(names.at(8), u"/m/t09.wav"_s);
    EXPECT_EQ(names.at(9), u"/m/t10.wav"_s);
    EXPECT_EQ(names.at(99), u"/m/t100.wav"_s);
}

TEST(BatchRename, ObjectsToNamesThatCannotBe)
{
    const QStringList paths{u"/m/a.flac"_s};
    EXPECT_EQ(batchRename::objection(batchRename::plan(paths, u"Disc 1 - "_s)), std::nullopt);
    EXPECT_EQ(batchRename::objection(batchRename::plan(paths, u".."_s)), std::nullopt) << "..01.flac";
    for (const QString &prefix : {u"sub/"_s, u"/"_s, u"../up"_s, u"/etc/x"_s})
        EXPECT_EQ(batchRename::objection(batchRename::plan(paths, prefix)), u"A name cannot hold \"/\"."_s) << qPrintable(prefix);
    EXPECT_EQ(batchRename::objection(batchRename::plan(paths, QString(248, u'x'))), std::nullopt);
    EXPECT_EQ(batchRename::objection(batchRename::plan(paths, QString(249, u'x'))),
              u"The names would be longer than a name can be."_s);
    EXPECT_TRUE(batchRename::objection(batchRename::plan(paths, QString(125, u'\u00e4'))).has_value()) << "two bytes each";
}

class BatchRenameFiles : public ::testing::Test {
protected:
    QStringList write(int count)
    {
        QStringList paths;
        for (int i = 1; i <= count; ++i)
            paths.append(folder.write(u"song %1.wav"_s.arg(i, 3, 10, QChar(u'0')), QByteArray::number(i)));
        return paths;
    }

    test::TestFolder folder;
};

TEST_F(BatchRenameFiles, RenamesHundredsOfFilesAndGivesThemTheirNamesBack)
{
    const QStringList paths = write(150);
    const QStringList before = folder.list();
    EXPECT_EQ(batchRename::rename(batchRename::plan(paths, u"x"_s)).done.size(), 150);
    for (int i = 1; i <= 150; ++i)
        EXPECT_EQ(folder.read(u"x%1.wav"_s.arg(i, 2, 10, QChar(u'0'))), QByteArray::number(i));
    EXPECT_TRUE(batchRename::canUndo());
    const batchRename::Outcome undone = batchRename::undo();
    EXPECT_EQ(undone.done.size(), 150);
    EXPECT_EQ(undone.problems, QStringList());
    EXPECT_EQ(folder.list(), before);
    EXPECT_EQ(folder.read(u"song 150.wav"_s), "150");
    EXPECT_FALSE(batchRename::canUndo());
}

TEST_F(BatchRenameFiles, LosesNoFileWhenNamesSwap)
{
    const QStringList paths{folder.write(u"p01.wav"_s, "first"), folder.write(u"p02.wav"_s, "second"),
                            folder.write(u"q.wav"_s, "third")};
    QStringList swapped{paths.at(2), paths.at(0), paths.at(1)};
    const QList<Renaming> plan = batchRename::plan(swapped, u"p"_s);
    EXPECT_EQ(batchRename::takenPath(plan), paths.at(0)) << "which is in the list itself";
    // Even where that was not asked.
    const batchRename::Outcome outcome = batchRename::rename(plan);
    EXPECT_EQ(outcome.problems.size(), 2);
    QList<QByteArray> contents;
    for (const QString &name : folder.list())
        contents.append(folder.read(name));
    std::sort(contents.begin(), contents.end());
    EXPECT_EQ(contents, (QList<QByteArray>{"first", "second", "third"}));
}

TEST_F(BatchRenameFiles, SeesEveryKindOfEntryThatHasANewName)
{
    const QStringList paths = write(2);
    EXPECT_EQ(batchRename::takenPath(batchRename::plan(paths, u"x"_s)), std::nullopt);
    folder.makeLink(u"x02.wav"_s, u"/nowhere"_s);
    EXPECT_EQ(batchRename::takenPath(batchRename::plan(paths, u"x"_s)), folder.path(u"x02.wav"_s));
    folder.remove(u"x02.wav"_s);
    folder.makeFolder(u"x01.wav"_s);
    EXPECT_EQ(batchRename::takenPath(batchRename::plan(paths, u"x"_s)), folder.path(u"x01.wav"_s));
}

TEST_F(BatchRenameFiles, GoesOnBehindAFileThatCannotBeRenamedAndTellsIt)
{
    const QStringList paths = write(3);
    const QList<Renaming> plan = batchRename::plan(paths, u"x"_s);
    folder.write(u"x02.wav"_s, "somebody was faster");
    folder.remove(u"song 001.wav"_s);
    const batchRename::Outcome outcome = batchRename::rename(plan);
    EXPECT_EQ(outcome.done.size(), 1);
    EXPECT_EQ(outcome.problems, (QStringList{paths.at(0) + u": No such file or directory"_s,
                                             paths.at(1) + u": x02.wav exists already"_s}));
    EXPECT_EQ(folder.read(u"x02.wav"_s), "somebody was faster");
    EXPECT_EQ(folder.read(u"song 002.wav"_s), "2");
    EXPECT_EQ(folder.read(u"x03.wav"_s), "3");
}

TEST_F(BatchRenameFiles, UndoesWhatCanBeUndoneAndKeepsTheRestForLater)
{
    const QStringList paths = write(4);
    static_cast<void>(batchRename::rename(batchRename::plan(paths, u"x"_s)));
    folder.write(u"song 001.wav"_s, "somebody's");
    folder.remove(u"x02.wav"_s);
    EXPECT_TRUE(QFile::rename(folder.path(u"x03.wav"_s), paths.at(2))) << "by hand";
    const batchRename::Outcome outcome = batchRename::undo();
    EXPECT_EQ(outcome.done.size(), 1);
    EXPECT_EQ(outcome.problems, (QStringList{folder.path(u"x02.wav"_s) + u": it is gone"_s,
                                             folder.path(u"x01.wav"_s) + u": song 001.wav exists already"_s}));
    EXPECT_EQ(folder.list(), (QStringList{u"song 001.wav"_s, u"song 003.wav"_s, u"song 004.wav"_s, u"x01.wav"_s}));
    EXPECT_EQ(folder.read(u"song 001.wav"_s), "somebody's");
    folder.remove(u"song 001.wav"_s);
    EXPECT_EQ(batchRename::undo().done.size(), 1) << "the rest was noted";
    EXPECT_EQ(folder.read(u"song 001.wav"_s), "1");
}

TEST_F(BatchRenameFiles, LeavesAnotherFileThatHasTheNewNameByNow)
{
    const QStringList paths = write(1);
    static_cast<void>(batchRename::rename(batchRename::plan(paths, u"x"_s)));
    EXPECT_TRUE(QFile::rename(folder.path(u"x01.wav"_s), folder.path(u"elsewhere.wav"_s)));
    folder.write(u"x01.wav"_s, "another");
    const batchRename::Outcome outcome = batchRename::undo();
    EXPECT_EQ(outcome.problems,
              QStringList(folder.path(u"x01.wav"_s) + u": it is no longer the file that was renamed"_s));
    EXPECT_EQ(folder.read(u"x01.wav"_s), "another");
}

TEST_F(BatchRenameFiles, KnowsNamesOfAnyCharacters)
{
    const QString path = folder.write(u"caf\u00e9 100%25 \"\n\u0001\U0001f3b5.wav"_s, "x");
    ASSERT_EQ(batchRename::rename(batchRename::plan({path}, u"x"_s)).done.size(), 1);
    EXPECT_EQ(batchRename::undo().done.size(), 1);
    EXPECT_TRUE(QFile::exists(path));
}

TEST_F(BatchRenameFiles, KnowsAFileThatItsDiskNumbersAnew)
{
    const QStringList paths = write(1);
    const QString renamed = folder.path(u"x01.wav"_s);
    static_cast<void>(batchRename::rename(batchRename::plan(paths, u"x"_s)));
    const QDateTime modified = QFileInfo(renamed).lastModified();
    ASSERT_TRUE(QFile::rename(renamed, folder.path(u"first"_s)));
    ASSERT_EQ(test::runProgram(u"cp"_s, {u"-p"_s, folder.path(u"first"_s), renamed}).exitStatus, 0);
    ASSERT_EQ(QFileInfo(renamed).lastModified(), modified);
    EXPECT_EQ(batchRename::undo().problems, QStringList());
    EXPECT_TRUE(QFile::exists(paths.first()));
}

TEST_F(BatchRenameFiles, KeepsANoteThatItCannotRead)
{
    const QStringList paths = write(1);
    static_cast<void>(batchRename::rename(batchRename::plan(paths, u"x"_s)));
    const QString note = joinPath(journalFolderPath(), u"renamed.json"_s);
    ASSERT_TRUE(QFile::resize(note, 20));
    const batchRename::Outcome outcome = batchRename::undo();
    ASSERT_EQ(outcome.problems.size(), 1);
    EXPECT_TRUE(outcome.problems.first().startsWith(u"the note of what was renamed, "_s));
    EXPECT_TRUE(outcome.done.isEmpty());
    EXPECT_EQ(QFileInfo(note).size(), 20);
    EXPECT_TRUE(QFile::remove(note));
}

TEST_F(BatchRenameFiles, ARenamingOfNothingLeavesTheOneBeforeToBeUndone)
{
    const QStringList paths = write(1);
    static_cast<void>(batchRename::rename(batchRename::plan(paths, u"x"_s)));
    EXPECT_TRUE(batchRename::rename(batchRename::plan({folder.path(u"gone.wav"_s)}, u"y"_s)).done.isEmpty());
    EXPECT_EQ(batchRename::undo().done.size(), 1);
    EXPECT_TRUE(QFile::exists(paths.first()));
}

TEST_F(BatchRenameFiles, StopsBetweenTwoFiles)
{
    const QStringList paths = write(3);
    int asked = 0;
    const batchRename::Outcome outcome =
        batchRename::rename(batchRename::plan(paths, u"x"_s), [&] { return ++asked > 1; });
    EXPECT_EQ(outcome.done.size(), 1);
    EXPECT_EQ(outcome.leftCount, 2);
    EXPECT_EQ(batchRename::undo([] { return true; }).leftCount, 3);
    EXPECT_EQ(batchRename::undo().done.size(), 1) << "it was noted";
}

TEST_F(BatchRenameFiles, LeavesAllWhenAJobWorksOnOne)
{
    const QStringList paths = write(2);
    OutputClaim job;
    ASSERT_FALSE(job.take(paths.at(1), paths.at(1), nullptr));
    const batchRename::Outcome outcome = batchRename::rename(batchRename::plan(paths, u"x"_s));
    EXPECT_TRUE(outcome.isRefused);
    EXPECT_EQ(outcome.problems, QStringList(paths.at(1) + u": a job works on it, so nothing was renamed"_s));
    EXPECT_TRUE(QFile::exists(paths.at(0)));
}

TEST_F(BatchRenameFiles, RenamesNothingThatCannotBeUndone)
{
    const QStringList paths = write(1);
    const QByteArray former = qgetenv("NURV_STATE");
    qputenv("NURV_STATE", QFile::encodeName(folder.write(u"a-file"_s, "no folder")));
    const batchRename::Outcome outcome = batchRename::rename(batchRename::plan(paths, u"x"_s));
    qputenv("NURV_STATE", former);
    EXPECT_TRUE(outcome.isRefused);
    EXPECT_EQ(outcome.done.size(), 0);
    ASSERT_EQ(outcome.problems.size(), 1);
    EXPECT_TRUE(
        outcome.problems.first().startsWith(u"nothing was renamed, since it could not be noted for an undo: "_s));
    EXPECT_TRUE(QFile::exists(paths.first()));
}

} // namespace
} // namespace nurv

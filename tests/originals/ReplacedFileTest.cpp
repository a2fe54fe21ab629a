// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "originals/ReplacedFile.h"

#include "files/FolderEntry.h"

#include "base/NurvFailure.h"
#include "journal/OutputJournal.h"
#include "settings/SettingsStore.h"
#include "support/LogLines.h"
#include "support/SystemCallRecorder.h"
#include "support/TestFolder.h"

#include <QFile>

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

/// Writes down what it is told.
class ToldJournal final : public OutputJournal {
public:
    void markBegun(const QString &) override {}
    void markEnded(const QString &) override {}
    void noteAside(const QString &output, const QString &aside) override
    {
        EXPECT_TRUE(QFile::exists(output)) << "noted before it is moved";
        told.append(u"aside "_s + aside);
    }
    void forgetAside(const QString &) override { told.append(u"forget"_s); }
    void flush() override {}

    QStringList told;
};

class ReplacedFileTest : public ::testing::Test {
protected:
    ReplacedFileTest() { SettingsStore::instance().setValue(u"trashOrDelete"_s, 0); }

    test::TestFolder folder;
    QString path = folder.write(u"a.tta"_s, "old");
    std::shared_ptr<ToldJournal> journal = std::make_shared<ToldJournal>();
};

TEST_F(ReplacedFileTest, FreesTheNameAndNotesWhereTheFileIs)
{
    ReplacedFile replaced(path, journal);
    EXPECT_FALSE(QFile::exists(path));
    ASSERT_EQ(folder.list().size(), 1);
    const QString aside = folder.list()[0];
    EXPECT_TRUE(aside.startsWith(u".nurv-"_s) && aside.endsWith(u".kept"_s)) << qPrintable(aside);
    EXPECT_EQ(journal->told, QStringList{u"aside "_s + folder.path(aside)});
    EXPECT_EQ(folder.read(aside), "old");
}

TEST_F(ReplacedFileTest, ComesBackWithTheObject)
{
    std::make_unique<ReplacedFile>(path, journal).reset();
    EXPECT_EQ(folder.read(u"a.tta"_s), "old");
    EXPECT_EQ(folder.list().size(), 1);
    EXPECT_EQ(journal->told.value(1), u"forget");
}

TEST_F(ReplacedFileTest, NeverTakesTheNameFromAnotherFile)
{
    const test::LogLines log;
    {
        ReplacedFile replaced(path, journal);
        folder.write(u"a.tta"_s, "somebody else's");
        EXPECT_THROW(replaced.putBack(), NurvFailure);
    }
    EXPECT_EQ(folder.read(u"a.tta"_s), "somebody else's");
    EXPECT_EQ(folder.list().size(), 2) << "the old file stays beside it";
    EXPECT_EQ(journal->told.size(), 1) << "and stays noted";
}

TEST_F(ReplacedFileTest, GoesForGoodOnceTheNewFileStands)
{
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0640), 0);
    const timespec start = FolderEntry::now();
    ReplacedFile replaced(path, journal);
    folder.write(u"a.tta"_s, "new");
    replaced.passOnPermissions(start);
    replaced.retire();
    EXPECT_EQ(folder.list(), QStringList{u"a.tta"_s});
    EXPECT_EQ(folder.read(u"a.tta"_s), "new");
    struct stat facts = {};
    ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0640U) << "the new one is as open as the old one was";
}

TEST_F(ReplacedFileTest, GoesWhenTheNewFileIsOnTheDisk)
{
    ReplacedFile replaced(path, journal);
    folder.write(u"a.tta"_s, "new");
    const test::SystemCallRecorder calls;
    replaced.retire();
    const qsizetype file = calls.indexOf(u"fsync "_s + path);
    const auto name = calls.calls().indexOf(u"fsync "_s + folder.path());
    const qsizetype gone = calls.indexOf(u"unlink "_s + folder.path(u".nurv-"_s));
    ASSERT_GE(file, 0);
    EXPECT_LT(file, name);
    EXPECT_LT(name, gone) << qPrintable(calls.calls().join(u'\n'));
}

TEST_F(ReplacedFileTest, StaysWhenTheNewFileMayNotBeOnTheDisk)
{
    for (const QString &call : {u"fsync "_s + path, u"fsync "_s + folder.path()}) {
        ReplacedFile replaced(path, journal);
        folder.write(u"a.tta"_s, "new");
        test::SystemCallRecorder calls;
        calls.fail(call, EIO);
        try {
            replaced.retire();
            ADD_FAILURE() << "it went";
        } catch (const NurvFailure &failure) {
            EXPECT_TRUE(failure.reason().contains(u".kept now, since the new one may not be on the disk"_s))
                << qPrintable(failure.reason());
        }
        EXPECT_EQ(folder.read(u"a.tta"_s), "new");
        const QString aside = folder.list().value(0);
        EXPECT_EQ(folder.read(aside), "old");
        EXPECT_NE(journal->told.last(), u"forget") << "and stays noted";
        ASSERT_TRUE(QFile::remove(path) && QFile::rename(folder.path(aside), path));
    }
}

TEST_F(ReplacedFileTest, GoesToTheTrashUnderItsOwnName)
{
    SettingsStore::instance().setValue(u"trashOrDelete"_s, 1);
    path = folder.write(u"into the trash.tta"_s, "old");
    ReplacedFile replaced(path, journal);
    folder.write(u"into the trash.tta"_s, "new");
    replaced.retire();
    const QString trash = QString::fromLocal8Bit(qgetenv("XDG_DATA_HOME")) + u"/Trash/"_s;
    QFile kept(trash + u"files/into the trash.tta"_s);
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), "old");
    QFile info(trash + u"info/into the trash.tta.trashinfo"_s);
    ASSERT_TRUE(info.open(QIODevice::ReadOnly));
    EXPECT_TRUE(info.readAll().contains("/into%20the%20trash.tta\n"));
}

TEST_F(ReplacedFileTest, RefusesAFolder)
{
    const QString place = folder.makeFolder(u"folder.tta"_s);
    EXPECT_THROW(ReplacedFile(place, journal), NurvFailure);
    EXPECT_TRUE(QFile::exists(place));
    EXPECT_TRUE(journal->told.isEmpty());
}

TEST_F(ReplacedFileTest, MovesALinkAndNotWhatItLeadsTo)
{
    const QString link = folder.makeLink(u"link.tta"_s, path);
    ReplacedFile replaced(link, nullptr);
    EXPECT_FALSE(QFile::exists(link));
    EXPECT_EQ(folder.read(u"a.tta"_s), "old");
    replaced.putBack();
    EXPECT_EQ(QFile::symLinkTarget(link), path);
}

} // namespace
} // namespace nurv

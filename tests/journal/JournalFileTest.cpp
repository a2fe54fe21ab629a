// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/JournalFile.h"

#include "journal/JournalFixture.h"
#include "journal/JournalFolder.h"
#include "journal/OutputJournal.h"
#include "journal/StaleJournal.h"
#include "support/LogLines.h"
#include "support/SystemCallRecorder.h"

#include <QFile>

#include <gmock/gmock.h>

#include <cerrno>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace nurv {
namespace {

class JournalFileTest : public test::JournalTest {
protected:
    [[nodiscard]] std::shared_ptr<OutputJournal> begin() const
    {
        return OutputJournal::begin({{.output = output, .source = folder.path(u"a.wav"_s)}});
    }
    /// The journal of a process that was killed at a.flac.
    [[nodiscard]] QByteArray killed() const
    {
        test::runAndKill({two("plan", u"a.flac"_s, u"a.wav"_s), u"begin"_s, step("begun", u"a.flac"_s)});
        return QFile::encodeName(shelf.journals().value(0));
    }

    QString output = folder.path(u"a.flac"_s);
};

} // namespace

TEST_F(JournalFileTest, IsOnTheDiskBeforeTheFirstJobStarts)
{
    const test::SystemCallRecorder calls;
    const auto journal = begin();
    const QString path = shelf.path(shelf.journals().value(0));
    const qsizetype written = calls.indexOf(u"pwrite "_s + shelf.path(u"?"_s));
    const qsizetype flushed = calls.indexOf(u"fsync "_s + shelf.path(u"?"_s));
    const qsizetype named = calls.indexOf(u"link "_s + shelf.path(u"? "_s) + path);
    ASSERT_GE(written, 0) << qPrintable(calls.calls().join(u'\n'));
    EXPECT_LT(written, flushed);
    EXPECT_LT(flushed, named) << "nobody finds one that is not whole";
    EXPECT_TRUE(calls.calls().mid(named).contains(u"fsync "_s + path.left(path.lastIndexOf(u'/'))))
        << qPrintable(calls.calls().join(u'\n'));
}

TEST_F(JournalFileTest, IsNotMadeWhereTheDiskTellsOfAnError)
{
    for (const QString &call : {u"fsync "_s, u"flock "_s}) {
        const test::LogLines log;
        test::SystemCallRecorder calls;
        calls.fail(call + shelf.path(), EIO);
        const auto journal = begin();
        EXPECT_THAT(shelf.journals(), IsEmpty());
        EXPECT_THAT(log.with(u"nothing will be known of this batch"_s), SizeIs(1));
    }
}

TEST_F(JournalFileTest, KnowsOfAFileOnTheDiskBeforeItIsMovedAside)
{
    const auto journal = begin();
    // To the system it is a file without a name for ever, since it was made so.
    const QString path = shelf.path(u"?"_s);
    const test::SystemCallRecorder calls;
    journal->noteAside(output, folder.path(u".nurv-1.kept"_s));
    const qsizetype written = calls.indexOf(u"pwrite "_s + path);
    ASSERT_GE(written, 0);
    EXPECT_LT(written, calls.indexOf(u"fdatasync "_s + path)) << qPrintable(calls.calls().join(u'\n'));
}

TEST_F(JournalFileTest, IsOnTheDiskWhenThatIsAskedFor)
{
    const auto journal = begin();
    const QString path = shelf.path(u"?"_s);
    journal->markBegun(output);
    test::SystemCallRecorder calls;
    journal->flush();
    EXPECT_GE(calls.indexOf(u"fdatasync "_s + path), 0);
    EXPECT_TRUE(shelf.read(shelf.journals().value(0)).contains("whole"));
    calls.fail(u"fdatasync "_s + path, EIO);
    const test::LogLines log;
    journal->flush();
    EXPECT_THAT(log.with(u"After a crash not every file will be known"_s), SizeIs(1));
    EXPECT_TRUE(shelf.read(shelf.journals().value(0)).contains("holey"));
}

TEST_F(JournalFileTest, GoesWhenItCannotEvenSayThatItHasAGap)
{
    const auto journal = begin();
    const test::LogLines log;
    test::SystemCallRecorder calls;
    calls.fail(u"pwrite "_s + shelf.path(), EIO);
    journal->markBegun(output);
    EXPECT_THAT(shelf.journals(), IsEmpty());
    EXPECT_THAT(log.with(u"After a crash not every file will be known"_s), SizeIs(1));
}

TEST_F(JournalFileTest, IsReadByOneAtATime)
{
    const QByteArray name = killed();
    const FileDescriptor place = openJournalFolder(false);
    std::optional<StaleJournal> first = StaleJournal::open(place, name);
    ASSERT_TRUE(first);
    EXPECT_FALSE(StaleJournal::open(place, name)) << "somebody cleans up after it";
    first.reset();
    EXPECT_TRUE(StaleJournal::open(place, name));
}

TEST_F(JournalFileTest, IsNotReadWhenItHasGoneBeforeItWasHeld)
{
    const QByteArray name = killed();
    const FileDescriptor place = openJournalFolder(false);
    const QString path = shelf.path(QFile::decodeName(name));
    test::SystemCallRecorder calls;
    calls.before(u"flock "_s + path, [&] { ASSERT_TRUE(QFile::remove(path)); });
    EXPECT_FALSE(StaleJournal::open(place, name));
}

} // namespace nurv

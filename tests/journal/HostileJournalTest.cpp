// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/JournalContents.h"
#include "journal/JournalFixture.h"
#include "journal/JournalLine.h"
#include "journal/OutputJournal.h"

#include <QRandomGenerator>

#include <gmock/gmock.h>

#include <ctime>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace nurv {

namespace {

const QString kName = u"0123456789abcdef0123456789abcdef.journal"_s;

class HostileJournalTest : public test::JournalTest {
protected:
    HostileJournalTest()
    {
        folder.write(u"a.wav"_s, "sound");
        folder.write(u"a.flac"_s, "precious");
        folder.makeFolder(u"out"_s);
    }
    /// What is said of the only journal, which must stay and do nothing.
    [[nodiscard]] QString defectOf() const
    {
        const UnfinishedWork work = UnfinishedWork::find().cleanUp();
        EXPECT_EQ(shelf.journals().size(), 1);
        EXPECT_EQ(folder.read(u"a.flac"_s), "precious");
        EXPECT_EQ(work.defects().size(), 1);
        return work.defects().value(0).section(u": "_s, 1);
    }
    /// The journal of a process that was killed in the middle of out/a.flac.
    [[nodiscard]] QByteArray trueJournal() const
    {
        test::runAndKill({two("plan", u"out/a.flac"_s, u"a.wav"_s), two("plan", u"out/b.flac"_s, u"a.wav"_s),
                          u"begin"_s, step("begun", u"out/a.flac"_s), write(u"out/a.flac"_s, u"half"_s),
                          step("begun", u"out/b.flac"_s), write(u"out/b.flac"_s, u"whole"_s),
                          step("ended", u"out/b.flac"_s)});
        const QString journal = shelf.journals().value(0);
        const QByteArray bytes = shelf.read(journal);
        EXPECT_EQ(::unlink(QFile::encodeName(shelf.path(journal)).constData()), 0);
        return bytes;
    }
};

} // namespace

TEST_F(HostileJournalTest, GarbageIsToldAndLeft)
{
    shelf.write(kName, "rm -rf /\nbegun 0 0\n");
    EXPECT_EQ(defectOf(), u"it is no journal"_s);
    shelf.write(kName, QByteArray(3'000'000, 'x'));
    EXPECT_EQ(defectOf(), u"it is no journal"_s);
    shelf.write(kName, QByteArray(3'000'000, '\0'));
    EXPECT_EQ(defectOf(), u"it is no journal"_s);
    shelf.write(kName, QByteArray(3'000'000, '\n'));
    EXPECT_EQ(defectOf(), u"it is no journal"_s);
    shelf.write(kName, "");
    EXPECT_EQ(defectOf(), u"it is no journal"_s);
}

TEST_F(HostileJournalTest, AJournalOfAnotherVersionIsLeft)
{
    shelf.write(kName, journalLine({"nurv-journal", "2", "and", "so", "on"}));
    EXPECT_EQ(defectOf(), u"it was written by another version"_s);
}

TEST_F(HostileJournalTest, AHugeFileIsNotRead)
{
    shelf.write(kName, "");
    ASSERT_EQ(::truncate(QFile::encodeName(shelf.path(kName)).constData(), 1'000'000'000), 0);
    EXPECT_EQ(defectOf(), u"it is too large"_s);
}

TEST_F(HostileJournalTest, WhatIsNoRegularFileIsNotRead)
{
    shelf.write(u"elsewhere"_s, "x");
    ASSERT_EQ(::symlink("elsewhere", QFile::encodeName(shelf.path(kName)).constData()), 0);
    EXPECT_EQ(UnfinishedWork::find().cleanUp().defects().size(), 1);
    EXPECT_EQ(shelf.read(u"elsewhere"_s), "x");
    ASSERT_EQ(::unlink(QFile::encodeName(shelf.path(kName)).constData()), 0);
    ASSERT_EQ(::unlink(QFile::encodeName(shelf.path(u"elsewhere"_s)).constData()), 0);

    ASSERT_EQ(::mkfifo(QFile::encodeName(shelf.path(kName)).constData(), 0600), 0);
    EXPECT_EQ(defectOf(), u"it is no regular file"_s);
    ASSERT_EQ(::unlink(QFile::encodeName(shelf.path(kName)).constData()), 0);

    ASSERT_EQ(::mkdir(QFile::encodeName(shelf.path(kName)).constData(), 0700), 0);
    EXPECT_EQ(defectOf(), u"Is a directory"_s);
}

TEST_F(HostileJournalTest, AFileWithASecondNameIsNotRead)
{
    const QString elsewhere = folder.write(u"elsewhere"_s, "x");
    shelf.write(u"another name"_s, "x"); // makes the folder
    ASSERT_EQ(::unlink(QFile::encodeName(shelf.path(u"another name"_s)).constData()), 0);
    ASSERT_EQ(::link(QFile::encodeName(elsewhere).constData(), QFile::encodeName(shelf.path(kName)).constData()), 0);
    EXPECT_EQ(defectOf(), u"it has other names"_s);
}

TEST_F(HostileJournalTest, OtherFilesOfTheFolderAreNotLookedAt)
{
    for (const QString &name : {u"notes.txt"_s, u".journal"_s, u"0123.journal"_s, kName.toUpper(), kName + u"~"_s})
        shelf.write(name, "x");
    EXPECT_TRUE(UnfinishedWork::find().isEmpty());
    EXPECT_EQ(shelf.journals().size(), 5);
}

TEST_F(HostileJournalTest, AJournalCutAnywhereRemovesNothingFinished)
{
    const QByteArray whole = trueJournal();
    for (qsizetype length = 0; length < whole.size(); ++length) {
        // At the end of a line it is the journal of an earlier moment.
        if (whole.first(length).endsWith('\n'))
            continue;
        shelf.write(kName, whole.first(length));
        const QStringList lines = cleaned();
        ASSERT_EQ(folder.read(u"out/b.flac"_s), "whole") << length << qPrintable(lines.join(u' '));
        folder.write(u"out/a.flac"_s, "half");
        ASSERT_EQ(folder.read(u"a.flac"_s), "precious") << length;
        ASSERT_EQ(folder.read(u"a.wav"_s), "sound") << length;
    }
    shelf.write(kName, whole);
    EXPECT_THAT(found(), ElementsAre(u"remove out/a.flac"_s));
}

TEST_F(HostileJournalTest, AJournalDamagedAnywhereRemovesNothingFinished)
{
    const QByteArray whole = trueJournal();
    QRandomGenerator random(7);
    for (qsizetype at = 0; at < whole.size(); ++at) {
        QByteArray damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ static_cast<char>(random.bounded(1, 256)));
        shelf.write(kName, damaged);
        const QStringList lines = cleaned();
        ASSERT_EQ(folder.read(u"out/b.flac"_s), "whole") << at << qPrintable(lines.join(u' '));
        folder.write(u"out/a.flac"_s, "half");
        ASSERT_EQ(folder.read(u"a.flac"_s), "precious") << at;
        ASSERT_EQ(folder.read(u"a.wav"_s), "sound") << at;
    }
}

TEST_F(HostileJournalTest, LinesThatAreWholeButMakeNoSenseAreLeftOut)
{
    const QByteArray whole = trueJournal();
    for (const QByteArray &line :
         {journalLine({"begun", "7", "0"}), journalLine({"begun", "x", "0"}), journalLine({"ended"}),
          journalLine({"begun", "99999999999999999999", "0"}), journalLine({"plan", "0", "/x", "-", "/y", "-"}),
          journalLine({"plan", "5", "relative", "-", "/y", "-"}),
          journalLine({"plan", "5", QByteArray("/a\0b", 4), "-", "/y", "-"}),
          journalLine({"plan", "-1", "/x", "1:2:3", "/y", "?"}), journalLine({"temporary", "Nurv-relative"}),
          journalLine({"unheard-of", "0"}), journalLine({"plan", "9", QByteArray(5000, '/'), "-", "/y", "-"})}) {
        shelf.write(kName, whole + line);
        const UnfinishedWork work = UnfinishedWork::find();
        EXPECT_THAT(work.defects(), IsEmpty()) << line.constData();
        EXPECT_EQ(told(work).size(), 1) << line.constData();
    }
}

TEST_F(HostileJournalTest, NamesThatAreNoTextAreFoundAndShown)
{
    const QByteArray name = QFile::encodeName(folder.path()) + "/caf\xE9.flac";
    test::runAndKill({two("plan", u"x.flac"_s, u"a.wav"_s), u"begin"_s, step("begun", u"x.flac"_s)});
    shelf.changeWord("plan", 2, name);
    const int file = ::open(name.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(file, 0);
    ::close(file);
    const UnfinishedWork done = UnfinishedWork::find().cleanUp();
    ASSERT_EQ(done.leftoversThatWere(Leftover::Outcome::Removed).size(), 1);
    EXPECT_EQ(done.leftoversThatWere(Leftover::Outcome::Removed).first().path, name);
    EXPECT_NE(::access(name.constData(), F_OK), 0);
}

TEST_F(HostileJournalTest, ManyLinesAreReadInTime)
{
    QByteArray bytes = trueJournal();
    for (int number = 10; number < 200'000; ++number) {
        bytes += journalLine({"plan", QByteArray::number(number), "/nowhere/" + QByteArray::number(number), "-",
                              "/nowhere/source", "-"});
    }
    shelf.write(kName, bytes);
    const std::clock_t before = std::clock();
    EXPECT_THAT(found(), ElementsAre(u"remove out/a.flac"_s));
    EXPECT_LT((std::clock() - before) / CLOCKS_PER_SEC, 20);
}

} // namespace nurv

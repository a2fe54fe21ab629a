// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/OutputJournal.h"

#include "journal/JournalFixture.h"
#include "support/FileSizeLimit.h"
#include "support/LogLines.h"

#include <QDir>

#include <gmock/gmock.h>

#include <ctime>
#include <thread>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace nurv {

namespace {

using OutputJournalTest = test::JournalTest;

mode_t modeOf(const QString &path)
{
    struct stat facts = {};
    EXPECT_EQ(::lstat(QFile::encodeName(path).constData(), &facts), 0);
    return facts.st_mode & 07777;
}

} // namespace

TEST_F(OutputJournalTest, IsOneFileThatOnlyItsOwnerMayReadAndGoesWithTheBatch)
{
    std::shared_ptr<OutputJournal> journal =
        OutputJournal::begin({{.output = folder.path(u"a.flac"_s), .source = folder.path(u"a.wav"_s)}});
    ASSERT_THAT(shelf.journals(), SizeIs(1));
    EXPECT_EQ(modeOf(shelf.path()), 0700u);
    EXPECT_EQ(modeOf(shelf.path(shelf.journals().first())), 0600u);
    const std::shared_ptr<OutputJournal> other =
        OutputJournal::begin({{.output = folder.path(u"b.flac"_s), .source = folder.path(u"a.wav"_s)}});
    EXPECT_THAT(shelf.journals(), SizeIs(2));
    journal.reset();
    EXPECT_THAT(shelf.journals(), SizeIs(1));
}

TEST_F(OutputJournalTest, LiesInTheStateFolderOfTheDesktop)
{
    qunsetenv("NURV_STATE");
    const QByteArray former = qgetenv("XDG_STATE_HOME");
    for (const QByteArray &named : {QByteArray("relative"), QByteArray(), QFile::encodeName(folder.path(u"state"_s))}) {
        qputenv("XDG_STATE_HOME", named);
        const QString state =
            named.startsWith('/') ? folder.path(u"state/nurv"_s) : QDir::homePath() + u"/.local/state/nurv"_s;
        const auto journal =
            OutputJournal::begin({{.output = folder.path(u"a.flac"_s), .source = folder.path(u"a.wav"_s)}});
        EXPECT_THAT(QDir(state).entryList(QDir::Files), SizeIs(1)) << named.constData();
    }
    former.isNull() ? qunsetenv("XDG_STATE_HOME") : qputenv("XDG_STATE_HOME", former);
}

TEST_F(OutputJournalTest, StaysWhileSomethingIsOpen)
{
    const QString output = folder.path(u"a.flac"_s);
    auto journal = OutputJournal::begin({{.output = output, .source = folder.path(u"a.wav"_s)}});
    journal->noteAside(output, folder.path(u".nurv-1.kept"_s));
    journal->markBegun(output);
    journal->markEnded(output);
    journal.reset();
    EXPECT_THAT(shelf.journals(), SizeIs(1));
    EXPECT_TRUE(UnfinishedWork::find().isEmpty()) << "its process lives";

    journal = OutputJournal::begin({{.output = output, .source = folder.path(u"a.wav"_s)}});
    journal->noteAside(output, folder.path(u".nurv-1.kept"_s));
    journal->markBegun(output);
    journal->markBegun(output);
    journal->markEnded(output);
    journal->forgetAside(output);
    journal->flush();
    journal.reset();
    EXPECT_THAT(shelf.journals(), SizeIs(1)) << "that of before";
}

TEST_F(OutputJournalTest, AnEmptyBatchNeedsNone)
{
    const auto journal = OutputJournal::begin({});
    ASSERT_NE(journal, nullptr);
    EXPECT_THAT(shelf.journals(), IsEmpty());
}

TEST_F(OutputJournalTest, WhatWasNotPlannedIsLoggedAndNothingElse)
{
    const test::LogLines log;
    const auto journal =
        OutputJournal::begin({{.output = folder.path(u"a.flac"_s), .source = folder.path(u"a.wav"_s)}});
    journal->markBegun(folder.path(u"b.flac"_s));
    EXPECT_THAT(log.of(u"nurv.journal"_s), ElementsAre(u"Not planned: "_s + folder.path(u"b.flac"_s)));
}

TEST_F(OutputJournalTest, WithoutAFolderWorkGoesOnWithOneLineInTheLog)
{
    folder.write(u"file"_s, "x");
    for (const QString &state : {folder.path(u"file"_s), folder.path(u"file/state"_s), u"/proc/state"_s}) {
        qputenv("NURV_STATE", QFile::encodeName(state));
        const test::LogLines log;
        const QString output = folder.path(u"a.flac"_s);
        const auto journal = OutputJournal::begin({{.output = output, .source = folder.path(u"a.wav"_s)}});
        ASSERT_NE(journal, nullptr);
        journal->markBegun(output);
        journal->noteAside(output, folder.path(u"aside"_s));
        journal->flush();
        journal->markEnded(output);
        EXPECT_THAT(log.of(u"nurv.journal"_s), SizeIs(1)) << qPrintable(state);
        EXPECT_TRUE(UnfinishedWork::find().isEmpty());
    }
    EXPECT_EQ(folder.read(u"file"_s), "x");
}

TEST_F(OutputJournalTest, OnAFullDiskWorkGoesOnAndNoFileIsLeft)
{
    const test::FileSizeLimit full(100);
    const test::LogLines log;
    const auto journal =
        OutputJournal::begin({{.output = folder.path(u"a.flac"_s), .source = folder.path(u"a.wav"_s)}});
    journal->markBegun(folder.path(u"a.flac"_s));
    EXPECT_THAT(log.of(u"nurv.journal"_s), SizeIs(1));
    EXPECT_THAT(shelf.journals(), IsEmpty());
}

TEST_F(OutputJournalTest, AMarkThatDidNotFitMakesTheOthersUncertain)
{
    folder.write(u"a.wav"_s, "sound");
    test::runAndKill({two("plan", u"a.flac"_s, u"a.wav"_s), u"begin"_s, step("begun", u"a.flac"_s),
                      write(u"a.flac"_s, u"whole"_s), u"full"_s, step("ended", u"a.flac"_s)});
    EXPECT_EQ(reason(), u"it may be complete"_s);
    EXPECT_THAT(cleaned(), ElementsAre(u"left a.flac"_s));
    EXPECT_EQ(folder.read(u"a.flac"_s), "whole");
}

TEST_F(OutputJournalTest, CountsFromManyThreads)
{
    constexpr int kThreads = 8;
    constexpr int kOutputs = 200;
    std::vector<OutputJournal::Planned> planned;
    for (int number = 0; number < kThreads * kOutputs; ++number)
        planned.push_back({.output = folder.path(u"%1.flac"_s.arg(number)), .source = folder.path(u"a.wav"_s)});
    auto journal = OutputJournal::begin(planned);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            for (int number = 0; number < kOutputs; ++number) {
                const QString &output = planned[static_cast<std::size_t>(thread * kOutputs + number)].output;
                const QString temporary =
                    u"/tmp/Nurv-00000000-%1.wav"_s.arg(number + 1000 * thread, 8, 10, QChar(u'0'));
                OutputJournal::noteTemporary(temporary);
                journal->markBegun(output);
                journal->markEnded(output);
                OutputJournal::forgetTemporary(temporary);
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    journal.reset();
    for (const QString &name : shelf.journals()) {
        EXPECT_FALSE(shelf.read(name).contains("plan ")) << "only that of the temporary files is left";
    }
}

TEST_F(OutputJournalTest, AHundredThousandOutputsArePlannedSoon)
{
    std::vector<OutputJournal::Planned> planned;
    for (int number = 0; number < 100'000; ++number) {
        const QString name = folder.path(u"disc %1/Track %2 of a show with a long name"_s.arg(number / 20).arg(number));
        planned.push_back({.output = name + u".flac"_s, .source = name + u".wav"_s});
    }
    const std::clock_t beginning = std::clock();
    const auto journal = OutputJournal::begin(planned);
    const std::clock_t marking = std::clock();
    for (const OutputJournal::Planned &one : planned) {
        journal->markBegun(one.output);
        journal->markEnded(one.output);
    }
    const auto planningMs = 1000 * (marking - beginning) / CLOCKS_PER_SEC;
    const auto markingMs = 1000 * (std::clock() - marking) / CLOCKS_PER_SEC;
    RecordProperty("planningMs", std::to_string(planningMs));
    RecordProperty("markingMs", std::to_string(markingMs));
    EXPECT_LT(planningMs, 20'000);
    EXPECT_LT(markingMs, 20'000);
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNToolCompareTask.h"

#include "shntool/SHNtoolFixture.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

/// The jobs of "info" and "cmp".
class SHNToolReportTaskTest : public test::SHNtoolFixture {
protected:
    std::shared_ptr<NURVTask> run(const QString &command, const QStringList &files)
    {
        const auto jobs = execute(command, files);
        EXPECT_EQ(jobs.size(), 1U);
        return jobs.empty() ? nullptr : jobs.front();
    }
};

TEST_F(SHNToolReportTaskTest, TellsOfEachFileInItsOrder)
{
    const QStringList files{test::writeFlac(folder.path(u"b.flac"_s), {.frames = 588 * 75}),
                            test::writeWav(folder.path(u"a.wav"_s), {.rate = 48'000, .bits = 24, .frames = 1000})};
    const auto job = run(u"info"_s, files);
    EXPECT_TRUE(isDone(job));
    ASSERT_EQ(windows.size(), 1);
    const qsizetype second = windows[0].indexOf(u"b.flac"_s);
    EXPECT_GE(windows[0].indexOf(u"a.wav"_s), 0);
    EXPECT_GT(second, windows[0].indexOf(u"a.wav"_s));
    EXPECT_EQ(windows[0].count(u"File name: "_s), 2);
    EXPECT_TRUE(windows[0].contains(u"Bits/sample:                  24\n"_s)) << qPrintable(windows[0]);
    EXPECT_TRUE(mainLines.contains(u"Running SHNTool Info"_s)) << qPrintable(mainLines.join(u'\n'));
}

TEST_F(SHNToolReportTaskTest, ShowsAComparisonAsATerminalEndsUpWithIt)
{
    const QStringList files{test::writeWav(folder.path(u"a.wav"_s), {.frames = 40 * 44'100}),
                            test::writeFlac(folder.path(u"b.flac"_s), {.frames = 40 * 44'100})};
    const auto job = run(u"cmp"_s, files);
    EXPECT_TRUE(isDone(job));
    EXPECT_EQ(windows,
              QStringList{u"Comparing [%1] (0:40.00) and [%2] (0:40.00) : 100% OK\n\nContents of these files are "
                          "identical.\n\n"_s.arg(files[0], files[1])});
    EXPECT_TRUE(statuses.contains(u"Comparing"_s)) << qPrintable(statuses.join(u'\n'));
    EXPECT_TRUE(mainLines.contains(u"Comparing"_s)) << qPrintable(mainLines.join(u'\n'));
}

TEST_F(SHNToolReportTaskTest, FailsForAnotherSoundAndSaysWhereItBegins)
{
    QByteArray samples = test::makeSamples({.frames = 44'100});
    const QString one = writeByFfmpegFromSamples(folder.path(u"a.wav"_s), samples, {});
    samples[1000] = static_cast<char>(samples[1000] ^ 1);
    const QString other = writeByFfmpegFromSamples(folder.path(u"b.wav"_s), samples, {});
    const auto job = run(u"cmp"_s, {one, other});
    EXPECT_TRUE(job->error());
    ASSERT_EQ(windows.size(), 1);
    EXPECT_TRUE(windows[0].contains(u" : 100% ERROR\n"_s) || windows[0].contains(u" :   0% ERROR\n"_s))
        << qPrintable(windows[0]);
    EXPECT_TRUE(windows[0].endsWith(u"WAVE data differs at byte offset: 1001\n\n"_s)) << qPrintable(windows[0]);
}

TEST_F(SHNToolReportTaskTest, KeepsWhatAProgramSaidThatWasKilled)
{
    tools.remove(u"shntool"_s);
    tools.addFake(u"shntool"_s, "out=Comparing :   0% \\b\\b\\b\\b\\b  7% ;signal=11");
    const QStringList files{folder.write(u"a.wav"_s, "x"), folder.write(u"b.wav"_s, "x")};
    const auto job = run(u"cmp"_s, files);
    EXPECT_TRUE(job->error());
    EXPECT_FALSE(job->report().contains(u'\b'));
    EXPECT_TRUE(job->report().startsWith(u"Comparing :   7% "_s)) << qPrintable(job->report());
    EXPECT_GT(job->report().size(), 20) << "how it ended stands below";
}

} // namespace
} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/VerifyFileTask.h"

#include "app/ScriptedPrompts.h"
#include "checksum/ChecksumFixture.h"
#include "checksum/ChecksumTab.h"
#include "checksum/LosslessFiles.h"
#include "engine/NURVTaskResults.h"
#include "programs/TestOutput.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using testOutput::FlacChunk;
using testOutput::parseFlac;

TEST(TestOutput, OfFlacWithoutAFigureIsALineOfItsOwn)
{
    EXPECT_EQ(parseFlac(u"\b\b hello \n", u"a.flac"_s).lines, u"a.flac: hello\n");
    EXPECT_FALSE(parseFlac(u"hello", u"a.flac"_s).hasProgress);
    EXPECT_EQ(parseFlac(u"\b\bok   \n", u"a.flac"_s).lines, u"a.flac: testing, 100% complete\na.flac: ok\n");
    EXPECT_EQ(parseFlac(u"a.flac: ok", u"a.flac"_s).lines, u"a.flac: testing, 100% complete\na.flac: ok\n");
}

TEST(TestOutput, OfFlacInOnePieceHasNoProgressToRead)
{
    const FlacChunk found = parseFlac(u"t01.flac: 42% complete", u"t01.flac"_s);
    EXPECT_TRUE(found.hasProgress);
    EXPECT_EQ(found.progress, -1.0);
    EXPECT_EQ(found.lines, u"t01.flac: t01.flac: 42% complete\n");
}

TEST(TestOutput, OfFlacCountsThePieceBeforeItsFigureAsNothing)
{
    const FlacChunk found = parseFlac(u"t01.flac: testing, 42% complete", u"t01.flac"_s);
    EXPECT_EQ(found.progress, 42.0);
    EXPECT_EQ(found.lines, u"t01.flac: testing, 0.000000% complete\nt01.flac: testing, 42.000000% complete\n");
}

TEST(TestOutput, OfFlacEndsAtItsOk)
{
    const FlacChunk found = parseFlac(u"t.flac: testing, 99% complete\b\b\bok", u"t.flac"_s);
    EXPECT_EQ(found.progress, 100.0);
    EXPECT_TRUE(found.lines.endsWith(u"t.flac: testing, 100% complete\nt.flac: ok\n"_s)) << qPrintable(found.lines);
}

TEST(TestOutput, KeepsTheEndOfALogFromItsLastFigureOn)
{
    EXPECT_EQ(testOutput::tailOf(u"a: 1% complete\na: 2% complete\na: ok\n"_s), u"a: 2% complete\na: ok\n");
    EXPECT_EQ(testOutput::tailOf(u"a: broken\nb\n"_s), u"\na: broken\nb\n");
    EXPECT_EQ(testOutput::tailOf(QString()), u"\n");
    EXPECT_EQ(testOutput::tailOfMac(u"x\nProgress: 1%\nProgress: 2%\nSuccess"_s, u"a.ape"_s), u"a.ape\nProgress: 2%\nSuccess\n");
    EXPECT_EQ(testOutput::tailOfMac(u"x\ny"_s, u"a.ape"_s), u"x\ny\n");
}

class VerifyFileTaskTest : public ::testing::Test {
protected:
    VerifyFileTaskTest()
    {
        NURVController::registerDefaults(toolbox());
        tools.addAllReal();
        tab.commandOptions.setSelectedIndex(ChecksumTab::VerifyLossless);
        QObject::connect(&controller.taskQueue(), &NURVTaskQueue::taskEnded, &controller,
                         [this](const std::shared_ptr<NURVTask> &task) { ended.push_back(task); });
        QObject::connect(&controller.taskQueue(), &NURVTaskQueue::outputWindowRequested, &controller,
                         [this](const QString &text, const QString &) { windows.append(text); });
    }
    /// Runs the tab over the files; returns the report.
    QString verify(const QStringList &files)
    {
        ended.clear();
        windows.clear();
        tab.addMatchedFiles(files);
        tab.executeCommand();
        EXPECT_TRUE(tab.fileNames().isEmpty());
        EXPECT_TRUE(test::waitUntil([this] { return controller.taskQueue().taskCount() == 0; }));
        EXPECT_EQ(windows.size(), 1);
        return windows.value(0);
    }
    [[nodiscard]] QString make(const QString &format)
    {
        return test::writeLossless(folder, tools, u"a"_s, format, {.seconds = 3.0});
    }

    test::TestFolder folder;
    test::ProgramFolder tools;
    test::ScriptedPrompts prompts;
    NullDesktopServices services;
    NURVController controller{prompts, services, toolbox()};
    ChecksumTab tab{controller};
    std::vector<std::shared_ptr<NURVTask>> ended;
    QStringList windows;
};

TEST_F(VerifyFileTaskTest, PassesGoodFilesOfEveryFormat)
{
    for (const QString &format : {u"flac"_s, u"ape"_s, u"wv"_s, u"tta"_s}) {
        const QString report = verify({make(format)});
        ASSERT_EQ(ended.size(), 1U);
        EXPECT_FALSE(ended[0]->error()) << qPrintable(report);
        EXPECT_FALSE(report.trimmed().isEmpty()) << qPrintable(format);
    }
    const QString report = verify({make(u"flac"_s)});
    EXPECT_EQ(ended[0]->title(), u"Verify FLAC");
    EXPECT_TRUE(report.contains(u"a.flac: ok\n"_s)) << qPrintable(report);
}

TEST_F(VerifyFileTaskTest, FailsFilesWithOneChangedBitInTheirMiddle)
{
    for (const QString &format : {u"flac"_s, u"ape"_s, u"wv"_s, u"tta"_s}) {
        const QString path = make(format);
        test::flipABit(folder, u"a."_s + format);
        const QString report = verify({path});
        EXPECT_TRUE(ended.at(0)->error()) << qPrintable(format) << qPrintable(report);
        test::truncate(folder, u"a."_s + format);
        const QString ofCut = verify({path});
        EXPECT_TRUE(ended.at(0)->error()) << qPrintable(format) << qPrintable(ofCut);
    }
}

TEST_F(VerifyFileTaskTest, PutsTheReportOfAnApeIntoTheFirstFilesEntry)
{
    const QString flac = make(u"flac"_s);
    const QString ape = folder.path(u"b.ape"_s);
    ASSERT_TRUE(QFile::rename(make(u"ape"_s), ape));
    const QString report = verify({flac, ape});
    ASSERT_EQ(ended.size(), 2U);
    const auto results = ended[0]->results();
    ASSERT_TRUE(results);
    const bool isFlacFirst = ended[0]->sourcePath() == flac;
    const NURVTask &ofFlac = *ended[isFlacFirst ? 0 : 1];
    const NURVTask &ofApe = *ended[isFlacFirst ? 1 : 0];
    EXPECT_EQ(results->results(ofApe), QString());
    EXPECT_TRUE(results->results(ofFlac).contains(u"b.ape\nProgress: "_s)) << qPrintable(report);
    EXPECT_TRUE(results->results(ofFlac).contains(u"a.flac: ok"_s));
}

TEST_F(VerifyFileTaskTest, TellsOfEachFileItsOwnReasonAlsoWhereTheReportOfAnotherStandsInItsEntry)
{
    const QString flac = make(u"flac"_s);
    test::flipABit(folder, u"a.flac"_s);
    const QString ape = folder.path(u"b.ape"_s);
    ASSERT_TRUE(QFile::rename(make(u"ape"_s), ape));
    test::flipABit(folder, u"b.ape"_s);
    verify({flac, ape});
    ASSERT_EQ(ended.size(), 2U);
    for (const auto &task : ended) {
        const bool isApe = task->sourcePath() == ape;
        EXPECT_EQ(task->report().contains(u"mac: "_s), isApe) << qPrintable(task->report());
        EXPECT_EQ(task->report().contains(u"ERROR while decoding data"_s), !isApe) << qPrintable(task->report());
    }
}

TEST_F(VerifyFileTaskTest, SkipsWhatItHasNoDecoderFor)
{
    tab.addMatchedFiles({folder.write(u"a.wav"_s, "x"), folder.write(u"b.txt"_s, "x")});
    tab.executeCommand();
    EXPECT_EQ(controller.taskQueue().panelArray().size(), 0U);
    EXPECT_TRUE(tab.fileNames().isEmpty());
}

TEST_F(VerifyFileTaskTest, TellsThatAFlacTestWasCanceled)
{
    tools.remove(u"flac"_s);
    tools.addFake(u"flac"_s, "out=a.flac: testing, 5% complete;create=" + folder.path(u"waits"_s).toUtf8() + ";wait-file="
                                 + folder.path(u"go-on"_s).toUtf8());
    tab.addMatchedFiles({make(u"flac"_s)});
    tab.executeCommand();
    ASSERT_TRUE(test::waitUntil([this] { return folder.exists(u"waits"_s); }));
    controller.taskQueue().panelArray()[0]->cancelTask();
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(test::waitUntil([this] { return controller.taskQueue().taskCount() == 0; }));
    EXPECT_TRUE(windows.value(0).endsWith(u"a.flac: testing, 5.000000% complete\na.flac canceled\n\n0 of 1 file good\n"_s)) << qPrintable(windows.value(0));
}

} // namespace
} // namespace nurv

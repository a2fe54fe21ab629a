// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConvertFixture.h"

#include "process/ChildProcess.h"

#include <QDir>

#include <sys/mount.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class ConversionBadLuckTest : public test::ConvertFixture {
protected:
    /// The job failed, its row says so, its report names all of this, and nothing
    /// was left behind or lost.
    void expectFailure(const QString &source, const QByteArray &sourceBytes, const QStringList &words)
    {
        ASSERT_EQ(endedTasks.size(), 1U);
        EXPECT_TRUE(endedTasks[0]->error());
        EXPECT_EQ(endedTasks[0]->topTextField().text, u"Error");
        ASSERT_EQ(outputWindows.size(), 1);
        for (const QString &word : words)
            EXPECT_TRUE(outputWindows[0].contains(word)) << qPrintable(word) << " in " << qPrintable(outputWindows[0]);
        EXPECT_TRUE(out.list().isEmpty()) << qPrintable(out.list().join(u' '));
        QFile file(source);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), sourceBytes);
        EXPECT_EQ(children::runningCount(), 0);
    }
};

TEST_F(ConversionBadLuckTest, NamesAProgramThatIsMissing)
{
    const test::ProgramFolder tools;
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    set(u"warnOnDelete", false);
    EncodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    run(tab, {wav});
    expectFailure(wav, test::wavBytes({}), {u"\"flac\""_s, tools.path(), u"package \"flac\""_s});
}

TEST_F(ConversionBadLuckTest, NamesAProgramThatMayNotBeRun)
{
    const test::ProgramFolder tools;
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    QFile program(tools.path(u"shntool"_s));
    ASSERT_TRUE(program.open(QIODevice::WriteOnly));
    program.close();
    EncodeTab tab(controller);
    ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(u"SHN"_s));
    run(tab, {wav});
    expectFailure(wav, test::wavBytes({}), {u"\"shntool\""_s, tools.path(), u"part of Nurv Audio Workbench"_s});
}

TEST_F(ConversionBadLuckTest, NamesTheSignalThatKilledTheProgramAndTheFile)
{
    const test::ProgramFolder tools;
    tools.addFake(u"flac"_s, "out=a.wav: 1% complete;signal=9");
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    EncodeTab tab(controller);
    run(tab, {wav});
    expectFailure(wav, test::wavBytes({}), {u"flac"_s, u"signal 9"_s, u"a.wav"_s});
}

TEST_F(ConversionBadLuckTest, GivesEveryFailedJobOfABatchAReportOfItsOwn)
{
    const test::ProgramFolder tools;
    tools.addReal(u"flac"_s);
    const QStringList sources{folder.write(u"1.wav"_s, test::wavBytes({}).first(16)), folder.write(u"2.wav"_s, ""),
                              folder.write(u"3.raw"_s, "raw")};
    NotificationCenter::instance().post(QString::fromUtf16(NURVMaxThreadsChangedNotification), 1);
    EncodeTab tab(controller);
    run(tab, sources);
    ASSERT_EQ(endedTasks.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        const QString report = endedTasks[i]->report();
        EXPECT_TRUE(report.startsWith(sources.at(static_cast<qsizetype>(i)) + u":\n"_s)) << qPrintable(report);
        EXPECT_EQ(report.count(u"ERROR"_s), 1) << qPrintable(report);
    }
    EXPECT_TRUE(endedTasks[0]->report().contains(u"1.wav: ERROR"_s));
    EXPECT_TRUE(endedTasks[1]->report().contains(u"2.wav is not a WAVE file"_s));
    // Of a raw file flac says what it needs, but not which file it is.
    EXPECT_TRUE(endedTasks[2]->report().contains(u"ERROR: for encoding a raw file"_s))
        << qPrintable(endedTasks[2]->report());
}

TEST_F(ConversionBadLuckTest, NamesTheFileWhenTheProgramFailsWithoutAWord)
{
    const test::ProgramFolder tools;
    tools.addFake(u"flac"_s, "exit=1");
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    EncodeTab tab(controller);
    run(tab, {wav});
    expectFailure(wav, test::wavBytes({}), {});
    EXPECT_EQ(endedTasks.at(0)->report(), wav + u":\n"_s);
}

TEST_F(ConversionBadLuckTest, ReportsTheLastFigureAndWhyTheJobFailed)
{
    const test::ProgramFolder tools;
    tools.addFake(u"flac"_s,
                  "out=a.wav: 1% complete\\b\\b\\b\\b\\b\\b\\b\\b\\b\\b\\b;until-read;out=57% complete;signal=9");
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    EncodeTab tab(controller);
    run(tab, {wav});
    const QStringList lines = endedTasks.at(0)->report().split(u'\n');
    ASSERT_GE(lines.size(), 3);
    EXPECT_EQ(lines[0], wav + u':');
    EXPECT_EQ(lines[1], u"a.wav: 57% complete");
    EXPECT_TRUE(lines[2].contains(u"signal 9"_s)) << qPrintable(lines[2]);
}

TEST_F(ConversionBadLuckTest, KeepsTheEndOfAnEndlessReport)
{
    const test::ProgramFolder tools;
    tools.addFake(u"flac"_s, "flood=300000;out=\\nthe end\\n;exit=1");
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    EncodeTab tab(controller);
    run(tab, {wav});
    const QString report = endedTasks.at(0)->report();
    EXPECT_EQ(report.size(), 65'536 + wav.size() + 2);
    EXPECT_TRUE(report.endsWith(u"\nthe end\n"_s));
}

TEST_F(ConversionBadLuckTest, RefusesEmptyFiles)
{
    const QString wav = folder.write(u"empty.wav"_s, "");
    EncodeTab tab(controller);
    run(tab, {wav});
    expectFailure(wav, "", {u"empty.wav"_s});
}

TEST_F(ConversionBadLuckTest, RefusesAnEmptyFlacFile)
{
    const QString flac = folder.write(u"empty.flac"_s, "");
    DecodeTab tab(controller);
    run(tab, {flac});
    expectFailure(flac, "", {u"empty.flac"_s, u"ERROR"_s});
}

TEST_F(ConversionBadLuckTest, ReportsASourceThatIsGone)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    EncodeTab tab(controller);
    tab.addFile(wav);
    folder.remove(u"a.wav"_s);
    run(tab, {});
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_TRUE(outputWindows.value(0).contains(u"a.wav"_s));
    EXPECT_TRUE(out.list().isEmpty());
}

TEST_F(ConversionBadLuckTest, ReportsAnOutputFolderThatIsGone)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    EncodeTab tab(controller);
    prompts.expectOutputFolder(out.path(u"gone"_s));
    runBeside(tab, {wav});
    expectFailure(wav, test::wavBytes({}), {u"a.wav"_s, u"directory does not exist"_s});
}

TEST_F(ConversionBadLuckTest, LeavesNothingOnAFullDisk)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can mount a small file system";
    const QString disk = folder.makeFolder(u"disk"_s);
    const QByteArray mountPoint = QFile::encodeName(disk);
    if (::mount("none", mountPoint.constData(), "tmpfs", 0, "size=64k") != 0)
        GTEST_SKIP() << "mounting is not allowed here";
    const test::SoundShape shape{.seconds = 5};
    const QString wav = test::writeWav(folder.path(u"a.wav"_s), shape);
    const QString flac = test::writeFlac(folder.path(u"b.flac"_s), shape);
    set(u"warnOnDelete", false);

    EncodeTab encode(controller);
    encode.deleteOriginalsButton.setOn(true);
    prompts.expectOutputFolder(disk);
    runBeside(encode, {wav});
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_TRUE(outputWindows.value(0).contains(u"a.wav: ERROR"_s)) << qPrintable(outputWindows.join(u'\n'));
    DecodeTab decode(controller);
    decode.deleteOriginalsButton.setOn(true);
    prompts.expectOutputFolder(disk);
    runBeside(decode, {flac});
    EXPECT_TRUE(endedTasks.at(1)->error());
    EXPECT_TRUE(outputWindows.value(1).contains(u"b.flac: ERROR"_s)) << qPrintable(outputWindows.join(u'\n'));

    const QStringList left = QDir(disk).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    EXPECT_TRUE(left.isEmpty()) << qPrintable(left.join(u' '));
    EXPECT_EQ(::umount(mountPoint.constData()), 0);
    EXPECT_EQ(folder.read(u"a.wav"_s), test::wavBytes(shape));
    EXPECT_TRUE(folder.exists(u"b.flac"_s));
}

TEST_F(ConversionBadLuckTest, TakesNamesOfAllKinds)
{
    const QStringList names{u"a b"_s,        u"it's \"it\""_s, u"line\nend"_s, u"-V"_s,
                            u"50% off %@"_s, u"音楽"_s,        u"a: b"_s,      QString(250, u'x')};
    QStringList sources;
    for (qsizetype i = 0; i < names.size(); ++i)
        sources.append(
            test::writeWav(folder.path(names.at(i) + u".wav"_s), {.seed = static_cast<std::uint32_t>(i + 1)}));
    EncodeTab encode(controller);
    run(encode, sources);
    EXPECT_TRUE(outputWindows.isEmpty()) << qPrintable(outputWindows.join(u'\n'));
    QStringList encoded;
    for (const QString &name : names)
        encoded.append(out.path(name + u".flac"_s));
    DecodeTab decode(controller);
    run(decode, encoded);
    EXPECT_TRUE(outputWindows.isEmpty()) << qPrintable(outputWindows.join(u'\n'));
    for (qsizetype i = 0; i < names.size(); ++i)
        EXPECT_TRUE(test::sameSound(sources.at(i), out.path(names.at(i) + u".wav"_s))) << qPrintable(names.at(i));
}

TEST_F(ConversionBadLuckTest, FailsForANameThatGrowsTooLong)
{
    const QString wav = test::writeWav(folder.path(QString(251, u'x') + u".wav"_s));
    EncodeTab tab(controller);
    run(tab, {wav});
    expectFailure(wav, test::wavBytes({}), {u".wav: ERROR"_s});
}

} // namespace
} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/StagedFixture.h"

#include "support/LogLines.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using StagedTaskTest = test::StagedFixture;

TEST_F(StagedTaskTest, HandsAWavFileToTheProgramDirectly)
{
    const QString wav = folder.write(u"a b.wav"_s, "of no known length");
    for (const QString &tool : {u"wavpack"_s, u"ttaenc"_s, u"mac"_s})
        addFake(tool, tool == u"mac" ? "append=@-2:made" : "append=@-1:made");
    runJob(std::make_shared<EncodeWavpackTask>(&queue(), wav, u"-h"_s, out.path()));
    runJob(makeEncoder(wav, u"TTA"_s));
    runJob(std::make_shared<EncodeApeTask>(&queue(), wav, u"4000"_s, out.path()));
    EXPECT_EQ(shortened(calls(u"wavpack"_s).join(u';')), u"-h|in/a b.wav|-o|out/a b.wv");
    EXPECT_EQ(shortened(calls(u"ttaenc"_s).join(u';')), u"in/a b.wav|-o|out/a b.tta");
    EXPECT_EQ(shortened(calls(u"mac"_s).join(u';')), u"in/a b.wav|out/a b.ape|-c4000");
    EXPECT_EQ(out.list(), (QStringList{u"a b.ape"_s, u"a b.tta"_s, u"a b.wv"_s}));
    for (const auto &task : endedTasks)
        EXPECT_EQ(task->topTextField().text, u"Complete; not proven") << "no reader knows what the stand-ins made";
}

TEST_F(StagedTaskTest, ShowsItsOpeningAndItsFigures)
{
    const QString wav = folder.write(u"a.wav"_s, "of no known length");
    setFake(u"wavpack"_s, "append=@-1:x;out=creating a.wv,;until-read;out=  2% done...;until-read;"
                          "out=\\b\\b\\b\\b 45% done...;until-read;out=\\rcreated a.wv\\n");
    const auto task = runJob(makeEncoder(wav, u"WV"_s));
    EXPECT_EQ(statuses, (QStringList{u"Waiting..."_s, u"Encoding Wavpack"_s, u"Encoding to Wavpack: 2.000000%"_s,
                                     u"Encoding to Wavpack: 45.000000%"_s, u"Complete; not proven"_s}));
    EXPECT_EQ(task->progressIndicator().value, 45.0);
    EXPECT_EQ(task->textField().text, u"a.wav");
    EXPECT_EQ(task->textField().color, RowColor::DarkGreen);
    EXPECT_EQ(task->results(), nullptr) << "nothing is to be reported";
    EXPECT_TRUE(outputWindows.isEmpty());
}

TEST_F(StagedTaskTest, OpensWithTheStatusOfItsClass)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    for (const QString &tool : {u"wavpack"_s, u"ttaenc"_s, u"mac"_s, u"wvunpack"_s})
        setFake(tool, "exit=1");
    const std::vector<std::pair<std::shared_ptr<StagedTask>, QString>> rows{
        {makeEncoder(wav, u"WV"_s), u"Encoding Wavpack"_s},
        {makeEncoder(wav, u"TTA"_s), u"Encoding to TTA"_s},
        {makeEncoder(wav, u"APE"_s), u"Encoding to Monkey's Audio"_s},
        {makeEncoder(wav, u"M4A"_s), u"Encoding to Apple Lossless"_s},
        {makeDecoder(folder.write(u"b.wv"_s, ""), u"WAV"_s), u"Decoding From Wavpack"_s},
        {makeDecoder(folder.write(u"b.tta"_s, ""), u"WAV"_s), u"Decoding from TTA"_s},
        {makeDecoder(folder.write(u"b.ape"_s, ""), u"WAV"_s), u"Decoding From Monkey's Audio"_s},
        {makeDecoder(folder.write(u"b.m4a"_s, ""), u"WAV"_s), u"Decoding From Apple Lossless"_s},
        {makeEncoder(folder.path(u"b.m4a"_s), u"WV"_s), u"Encoding Apple Lossless to Wavpack"_s},
        {makeEncoder(folder.path(u"b.m4a"_s), u"TTA"_s), u"Encoding Apple Lossless to TTA"_s},
        {makeEncoder(folder.path(u"b.m4a"_s), u"APE"_s), u"Encoding Apple Lossless to APE"_s},
        {makeEncoder(folder.path(u"b.m4a"_s), u"FLAC"_s), u"Encoding Apple Lossless to Flac"_s},
        {makeEncoder(folder.path(u"b.wv"_s), u"FLAC"_s), u"Encoding Wavpack to FLAC"_s},
    };
    for (const auto &[task, opening] : rows) {
        statuses.clear();
        runJob(task);
        ASSERT_GE(statuses.size(), 2);
        EXPECT_EQ(statuses.at(1), opening) << qPrintable(statuses.join(u", "_s));
        EXPECT_EQ(task->title(), task->fileName().section(u'/', -1));
    }
}

TEST_F(StagedTaskTest, DoesNotLookAtTheStatusOfThreeEncodersButKeepsTheSource)
{
    for (const QString &format : {u"WV"_s, u"TTA"_s, u"APE"_s}) {
        const test::LogLines log;
        const QString wav = folder.write(u"a.wav"_s, "of no known length");
        const QString tool = format == u"WV" ? u"wavpack"_s : format == u"TTA" ? u"ttaenc"_s : u"mac"_s;
        setFake(tool, QByteArray(tool == u"mac" ? "append=@-2:x" : "append=@-1:x") + ";out=odd;exit=3");
        const auto task = makeEncoder(wav, format);
        task->setDeleteOriginal(true);
        const auto unproven = std::make_shared<OutputBatch>();
        unproven->provesBeforeDeleting = false;
        task->setBatch(unproven);
        runJob(task);
        EXPECT_FALSE(task->error()) << qPrintable(format);
        EXPECT_EQ(task->topTextField().text, u"Complete; original kept: its program failed");
        EXPECT_TRUE(folder.exists(u"a.wav"_s));
        EXPECT_EQ(task->outcome().original, TaskOutcome::Original::Kept);
        EXPECT_EQ(log.with(u"Kept, since its program failed: "_s + wav).size(), 1);
        EXPECT_TRUE(outputWindows.value(0).contains(u"odd"_s)) << "a failure that the row does not show is reported";
        outputWindows.clear();
    }
}

TEST_F(StagedTaskTest, FailsWhenTheStatusOfAnyOtherProgramIsNotZero)
{
    const QByteArray makes = "append=@-1:x;exit=1";
    setFake(u"wvunpack"_s, makes);
    setFake(u"ttaenc"_s, makes);
    setFake(u"mac"_s, "append=@-2:x;exit=1");
    for (const QString &name : {u"b.wv"_s, u"b.tta"_s, u"b.ape"_s}) {
        const auto task = makeDecoder(folder.write(name, "sound"), u"WAV"_s);
        task->setDeleteOriginal(true);
        runJob(task);
        EXPECT_TRUE(task->error()) << qPrintable(name);
        EXPECT_EQ(task->topTextField().text, u"Error");
        EXPECT_TRUE(folder.exists(name));
        out.remove(u"b.wav"_s);
    }
}

TEST_F(StagedTaskTest, FailsWithoutAnOutputWhateverTheProgramSays)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    setFake(u"wavpack"_s, "out=fine");
    setFake(u"ttaenc"_s, "create=@-1");
    for (const QString &format : {u"WV"_s, u"TTA"_s}) {
        const auto task = makeEncoder(wav, format);
        task->setDeleteOriginal(true);
        runJob(task);
        EXPECT_TRUE(task->error()) << qPrintable(format);
        EXPECT_TRUE(task->report().contains(u"made no output"_s)) << qPrintable(task->report());
        EXPECT_TRUE(folder.exists(u"a.wav"_s));
        EXPECT_EQ(out.list(), QStringList()) << "an empty file is none either";
    }
}

TEST_F(StagedTaskTest, TakesAFileThatWasThereBeforeForNoOutput)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    out.write(u"a.tta"_s, "somebody's");
    setFake(u"ttaenc"_s, "out=no\\n;exit=1");
    const auto task = makeEncoder(wav, u"TTA"_s);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_EQ(out.read(u"a.tta"_s), "somebody's");
    EXPECT_TRUE(folder.exists(u"a.wav"_s));
}

TEST_F(StagedTaskTest, EndsAProgramThatAsksWhetherToOverwrite)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    out.write(u"a.wv"_s, "somebody's");
    // The question comes in two pieces, and nobody ends it but the job.
    setFake(u"wavpack"_s, "out=overwrite a.wv (yes/n;until-read;out=o/all)? ;hang");
    const auto task = makeEncoder(wav, u"WV"_s);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_EQ(task->topTextField().text, u"Error");
    EXPECT_EQ(out.read(u"a.wv"_s), "somebody's");
    EXPECT_TRUE(folder.exists(u"a.wav"_s));
    EXPECT_TRUE(task->report().contains(u"(yes/no/all)?"_s));
}

TEST_F(StagedTaskTest, LeavesWhatCameMeanwhileToWhoeverMadeIt)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    const QByteArray question = ";out=overwrite a.wv (yes/no/all)? ;hang";
    setFake(u"wavpack"_s, "append=" + out.path(u"a.wv"_s).toUtf8() + ":somebody's" + question);
    EXPECT_TRUE(runJob(makeEncoder(wav, u"WV"_s))->error());
    EXPECT_EQ(out.read(u"a.wv"_s), "somebody's");
    // A file that was there, and is another one now.
    setFake(u"wavpack"_s,
            "create=" + folder.path(u"waits"_s).toUtf8() + ";wait-file=" + folder.path(u"go-on"_s).toUtf8() + question);
    const auto task = makeEncoder(wav, u"WV"_s);
    queue().addTask(task);
    ASSERT_TRUE(test::waitUntil([&] { return folder.exists(u"waits"_s); }));
    out.remove(u"a.wv"_s);
    ASSERT_TRUE(QFile::rename(out.write(u"new"_s, "tagged anew"), out.path(u"a.wv"_s)));
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    EXPECT_TRUE(task->error());
    EXPECT_EQ(out.read(u"a.wv"_s), "tagged anew");
}

TEST_F(StagedTaskTest, GivesAnOutputThatWasThereItsNameBackWhenTheProgramIsKilled)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    out.write(u"a.tta"_s, "old");
    setFake(u"ttaenc"_s, "append=@-1:half;signal=9");
    const auto task = makeEncoder(wav, u"TTA"_s);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->report().contains(u"ended by signal 9"_s)) << qPrintable(task->report());
    EXPECT_EQ(out.list(), QStringList{u"a.tta"_s});
    EXPECT_EQ(out.read(u"a.tta"_s), "old");
    EXPECT_TRUE(folder.exists(u"a.wav"_s));
}

TEST_F(StagedTaskTest, EndsAnUnpackerThatAsksForEver)
{
    const QString wv = folder.write(u"a.wv"_s, "wvpk");
    out.write(u"a.wav"_s, "somebody's");
    setFake(u"wvunpack"_s, "out=overwrite a.wav (yes/no/all)? ;ignore-term;hang");
    const auto task = runJob(makeDecoder(wv, u"WAV"_s));
    EXPECT_TRUE(task->error());
    EXPECT_EQ(out.read(u"a.wav"_s), "somebody's");
}

TEST_F(StagedTaskTest, FailsForTheMarkersOfItsProgram)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    setFake(u"wavpack"_s, "append=@-1:x;out=couldn't read all samples, file may be corrupt!!\\n;hang");
    const auto wavpack = runJob(makeEncoder(wav, u"WV"_s));
    EXPECT_TRUE(wavpack->error());
    EXPECT_FALSE(out.exists(u"a.wv"_s)) << "half made by a program that was ended";
    for (const QByteArray &marker : {QByteArray("Error: 1002"), QByteArray("Err;until-read;out=or: 2000\\n")}) {
        setFake(u"mac"_s, "append=@-2:x;out=" + marker + ";hang");
        const auto task = runJob(makeEncoder(wav, u"APE"_s));
        EXPECT_TRUE(task->error()) << marker.constData();
        EXPECT_FALSE(out.exists(u"a.ape"_s));
        EXPECT_TRUE(outputWindows.last().contains(u"Error: "_s));
    }
}

TEST_F(StagedTaskTest, LetsTheEncoderOfTtaReadOnAfterAFailedConversionToWav)
{
    const QString aiff = folder.write(u"a.aiff"_s, "this is no sound");
    addFake(u"ttaenc"_s, "out=first;delay=300;out=second;append=@-1:made");
    const auto task = runJob(makeEncoder(aiff, u"TTA"_s));
    EXPECT_TRUE(task->error());
    ASSERT_EQ(calls(u"ttaenc"_s).size(), 1) << "the program runs on whatever there is";
    EXPECT_TRUE(shortened(calls(u"ttaenc"_s)[0]).startsWith(u"out/Nurv-"_s)) << qPrintable(calls(u"ttaenc"_s)[0]);
    EXPECT_EQ(out.list(), QStringList())
        << "what it made of half an input is no output, and the temporary file is gone";
    EXPECT_TRUE(task->report().contains(u"Error encoding "_s + aiff)) << qPrintable(task->report());
}

TEST_F(StagedTaskTest, EndsTheOtherEncodersAfterAFailedConversionToWav)
{
    const QString aiff = folder.write(u"a.aif"_s, "this is no sound");
    addFake(u"wavpack"_s, "append=@-1:half;out=x;hang");
    addFake(u"mac"_s, "append=@-2:half;out=x;hang");
    for (const QString &format : {u"WV"_s, u"APE"_s}) {
        const auto task = runJob(makeEncoder(aiff, format));
        EXPECT_TRUE(task->error());
        EXPECT_EQ(out.list(), QStringList());
    }
    EXPECT_EQ(calls(u"wavpack"_s).size(), 1);
    EXPECT_EQ(calls(u"mac"_s).size(), 1);
}

TEST_F(StagedTaskTest, LeavesAloneWhatGotItsNameBeforeItBegan)
{
    const QString flac = test::writeFlac(folder.path(u"a.flac"_s));
    addFake(u"flac"_s, "create=" + folder.path(u"waits"_s).toUtf8() + ";wait-file=" + folder.path(u"go-on"_s).toUtf8());
    const auto task = makeEncoder(flac, u"M4A"_s);
    queue().addTask(task);
    ASSERT_TRUE(test::waitUntil([&] { return folder.exists(u"waits"_s); }));
    out.write(u"a.m4a"_s, "somebody's");
    task->cancelTask();
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    EXPECT_EQ(out.read(u"a.m4a"_s), "somebody's");
}

TEST_F(StagedTaskTest, NamesAProgramThatIsMissing)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    for (const auto &[format, tool] :
         {std::pair{u"WV"_s, u"wavpack"_s}, std::pair{u"TTA"_s, u"ttaenc"_s}, std::pair{u"APE"_s, u"mac"_s}}) {
        const auto task = makeEncoder(wav, format);
        task->setDeleteOriginal(true);
        runJob(task);
        EXPECT_TRUE(task->error());
        for (const QString &text : {task->report(), outputWindows.last()}) {
            EXPECT_TRUE(text.contains(u'"' + tool + u'"')) << qPrintable(text);
            EXPECT_TRUE(text.contains(tools.path())) << qPrintable(text);
        }
        EXPECT_TRUE(folder.exists(u"a.wav"_s));
        EXPECT_EQ(out.list(), QStringList());
    }
}

TEST_F(StagedTaskTest, NamesADecoderThatIsMissingWhateverComesBehindIt)
{
    std::vector<std::pair<std::shared_ptr<StagedTask>, QString>> rows;
    for (const auto &[name, tool] :
         {std::pair{u"a.wv"_s, u"wvunpack"_s}, std::pair{u"a.tta"_s, u"ttaenc"_s}, std::pair{u"a.ape"_s, u"mac"_s}})
        rows.emplace_back(makeDecoder(folder.write(name, "source"), u"AIFF"_s), tool);
    rows.emplace_back(makeEncoder(folder.path(u"a.wv"_s), u"FLAC"_s), u"wvunpack"_s);
    for (const auto &[name, tool] : {std::pair{u"a.flac"_s, u"flac"_s}, std::pair{u"a.shn"_s, u"shntool"_s},
                                     std::pair{u"a.ape"_s, u"mac"_s}, std::pair{u"a.wv"_s, u"wvunpack"_s}})
        rows.emplace_back(makeEncoder(folder.write(name, "source"), u"M4A"_s), tool);
    for (const auto &[task, tool] : rows) {
        SCOPED_TRACE(qPrintable(task->fileName() + u" to "_s + task->outputFile()));
        outputWindows.clear();
        runJob(task);
        EXPECT_TRUE(task->error());
        ASSERT_EQ(outputWindows.size(), 1);
        EXPECT_TRUE(outputWindows[0].contains(u'"' + tool + u'"')) << qPrintable(outputWindows[0]);
        EXPECT_EQ(out.list(), QStringList());
    }
}

TEST_F(StagedTaskTest, SeesAMarkerThatStandsFarFromTheEndOfWhatWasRead)
{
    setFake(u"mac"_s, "append=@-2:x;out=Error: 1002" + QByteArray(20'000, ' ') + ";append=@-2:x");
    const auto task = runJob(makeEncoder(test::writeWav(folder.path(u"a.wav"_s)), u"APE"_s));
    EXPECT_TRUE(task->error());
}

TEST_F(StagedTaskTest, RunsTheEncoderAfterAppleLosslessThatCannotBeRead)
{
    const QString alac = folder.write(u"a.m4a"_s, "this is no sound");
    for (const auto &[format, tool] : {std::pair{u"WV"_s, u"wavpack"_s}, std::pair{u"TTA"_s, u"ttaenc"_s},
                                       std::pair{u"APE"_s, u"mac"_s}, std::pair{u"FLAC"_s, u"flac"_s}}) {
        SCOPED_TRACE(qPrintable(format));
        outputWindows.clear();
        addFake(tool, "out=cannot read that\\n;exit=1");
        const auto task = makeEncoder(alac, format);
        task->setDeleteOriginal(true);
        runJob(task);
        EXPECT_TRUE(task->error());
        EXPECT_EQ(calls(tool).size(), 1);
        ASSERT_EQ(outputWindows.size(), 1);
        const qsizetype service = outputWindows[0].indexOf(u"ExtAudioFileOpenURL failed"_s);
        EXPECT_GE(service, 0) << qPrintable(outputWindows[0]);
        EXPECT_GT(outputWindows[0].indexOf(u"cannot read that"_s), service) << qPrintable(outputWindows[0]);
        EXPECT_EQ(out.list(), QStringList());
        EXPECT_TRUE(folder.exists(u"a.m4a"_s));
    }
}

TEST_F(StagedTaskTest, NamesTheSignalThatKilledTheProgramAndRemovesWhatItLeft)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    setFake(u"wavpack"_s, "append=@-1:half;out=  5% done...;signal=9");
    const auto task = runJob(makeEncoder(wav, u"WV"_s));
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->report().contains(u"signal 9"_s)) << qPrintable(task->report());
    EXPECT_EQ(out.list(), QStringList());
    const QString wv = folder.write(u"b.wv"_s, "wvpk");
    setFake(u"wvunpack"_s, "append=@-1:half;signal=15");
    for (const QString &format : {u"WAV"_s, u"AIFF"_s}) {
        const auto decoder = runJob(makeDecoder(wv, format));
        EXPECT_TRUE(decoder->error());
        EXPECT_EQ(out.list(), QStringList()) << qPrintable(format);
    }
}

TEST_F(StagedTaskTest, RefusesToReplaceItsOwnSource)
{
    for (const auto &[name, format, tool] :
         {std::tuple{u"a.wv"_s, u"WV"_s, u"wavpack"_s}, std::tuple{u"a.tta"_s, u"TTA"_s, u"ttaenc"_s},
          std::tuple{u"a.ape"_s, u"APE"_s, u"mac"_s}}) {
        addFake(tool, "create=@1;create=@-1");
        const QString source = out.write(name, "the only copy");
        const auto task = makeEncoder(source, format);
        task->setDeleteOriginal(true);
        runJob(task);
        EXPECT_TRUE(task->error());
        EXPECT_EQ(out.read(name), "the only copy");
        EXPECT_TRUE(task->report().contains(u"its output would replace it"_s)) << qPrintable(task->report());
        EXPECT_TRUE(calls(tool).isEmpty());
    }
    const QString alac = out.write(u"a.m4a"_s, "the only copy");
    EXPECT_TRUE(runJob(makeEncoder(alac, u"M4A"_s))->error());
    const QString alias = folder.makeLink(u"b.m4a"_s, out.write(u"b.m4a"_s, "the only copy"));
    EXPECT_TRUE(runJob(makeEncoder(alias, u"M4A"_s))->error());
    EXPECT_EQ(out.read(u"a.m4a"_s), "the only copy");
    EXPECT_EQ(out.read(u"b.m4a"_s), "the only copy");
}

TEST_F(StagedTaskTest, FailsWhenTheOutputFolderTakesNoTemporaryFile)
{
    const QString aiff = test::writeAiff(folder.path(u"a.aiff"_s));
    addFake(u"wavpack"_s, "append=@-1:x");
    const auto task = std::make_shared<EncodeWavpackTask>(&queue(), aiff, u"-f"_s, out.path(u"gone"_s));
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(calls(u"wavpack"_s).isEmpty());
    EXPECT_TRUE(outputWindows.value(0).contains(out.path(u"gone"_s))) << qPrintable(outputWindows.value(0));
}

TEST_F(StagedTaskTest, ReportsAsItsParserSays)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    setFake(u"wavpack"_s, "out=\\b\\bword\\b;until-read;out=couldn't read all samples, file may be corrupt!!");
    runJob(makeEncoder(wav, u"WV"_s));
    EXPECT_EQ(outputWindows.last(), u"wordcouldn't read all samples, file may be corrupt!!\n");
    setFake(u"wvunpack"_s, "out=\\b\\bword\\b;exit=1");
    runJob(makeDecoder(folder.write(u"a.wv"_s, "x"), u"WAV"_s));
    EXPECT_EQ(outputWindows.last(), u"wordword\n");
    setFake(u"ttaenc"_s, "out=\\bPercent Progress: 7\\b;exit=1");
    runJob(makeDecoder(folder.write(u"a.tta"_s, "x"), u"WAV"_s));
    EXPECT_EQ(outputWindows.last(), u"Percent Progress: 7Percent Progress: 7\n");
    setFake(u"mac"_s, "out=\\bx\\b;exit=1");
    runJob(makeDecoder(folder.write(u"a.ape"_s, "x"), u"WAV"_s));
    EXPECT_EQ(outputWindows.last(), u"\bx\b\n") << "not trimmed, once";
}

TEST_F(StagedTaskTest, DropsItsSetOnlyWithoutAnError)
{
    const QString wav = folder.write(u"a.wav"_s, "of no known length");
    setFake(u"wavpack"_s, "append=@-1:x;out=all is well");
    EXPECT_EQ(runJob(makeEncoder(wav, u"WV"_s))->results(), nullptr);
    EXPECT_TRUE(outputWindows.isEmpty());
    setFake(u"wavpack"_s, "out=all is well");
    EXPECT_NE(runJob(makeEncoder(wav, u"WV"_s))->results(), nullptr);
    EXPECT_EQ(outputWindows.size(), 1);
}

class CancelledStage : public StagedTaskTest {
protected:
    /// Cancels the job once its program waits, and expects it to end at once with
    /// nothing left but what `stays`.
    void expectCancelled(const std::shared_ptr<StagedTask> &task, const QStringList &stays = {})
    {
        const QByteArray source = QFile::exists(task->fileName()) ? read(task->fileName()) : QByteArray();
        task->setDeleteOriginal(true);
        queue().addTask(task);
        ASSERT_TRUE(test::waitUntil([&] { return folder.exists(u"waits"_s); }));
        EXPECT_EQ(children::runningCount(), 1);
        task->cancelTask();
        ASSERT_TRUE(finish());
        ASSERT_TRUE(test::waitUntil([] { return workerThreads::runningCount() == 0; }));
        EXPECT_EQ(task->textField().text, u"Canceled");
        EXPECT_FALSE(task->error());
        EXPECT_EQ(children::runningCount(), 0);
        EXPECT_EQ(out.list(), stays);
        EXPECT_EQ(read(task->fileName()), source);
        EXPECT_TRUE(outputWindows.isEmpty()) << qPrintable(outputWindows.join(u'\n'));
        folder.remove(u"waits"_s);
    }
    [[nodiscard]] QByteArray waits() const { return "create=" + folder.path(u"waits"_s).toUtf8() + ";hang"; }

private:
    static QByteArray read(const QString &path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
};

TEST_F(CancelledStage, EndsTheProgramOfEveryEncoder)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    const QString alac = test::writeByFfmpeg(folder.path(u"b.m4a"_s), {}, {u"-c:a"_s, u"alac"_s});
    const QString aiff = test::writeAiff(folder.path(u"c.aiff"_s));
    setFake(u"wavpack"_s, "append=@-1:half;out=x;" + waits());
    setFake(u"ttaenc"_s, "append=@-1:half;out=x;" + waits());
    setFake(u"mac"_s, "append=@-2:half;out=x;" + waits());
    setFake(u"flac"_s, "append=@-1:half;out=x;" + waits());
    for (const QString &source : {wav, alac, aiff}) {
        for (const QString &format : {u"WV"_s, u"TTA"_s, u"APE"_s}) {
            SCOPED_TRACE(qPrintable(source + u" to "_s + format));
            expectCancelled(makeEncoder(source, format));
        }
    }
    expectCancelled(makeEncoder(alac, u"FLAC"_s));
}

TEST_F(CancelledStage, EndsTheProgramOfEveryDecoder)
{
    setFake(u"wvunpack"_s, "append=@-1:half;" + waits());
    setFake(u"ttaenc"_s, "append=@-1:half;" + waits());
    setFake(u"mac"_s, "append=@-2:half;" + waits());
    for (const QString &name : {u"a.wv"_s, u"a.tta"_s, u"a.ape"_s}) {
        for (const QString &format : {u"WAV"_s, u"AIFF"_s}) {
            SCOPED_TRACE(qPrintable(name + u" to "_s + format));
            expectCancelled(makeDecoder(folder.write(name, "source"), format));
        }
    }
}

TEST_F(CancelledStage, EndsBothProgramsOfWavpackToFlac)
{
    const QString wv = folder.write(u"a.wv"_s, "source");
    setFake(u"wvunpack"_s, "append=@-2:half;" + waits());
    addFake(u"flac"_s, "append=@-1:half;" + waits());
    expectCancelled(makeEncoder(wv, u"FLAC"_s));
    EXPECT_TRUE(calls(u"flac"_s).isEmpty()) << "nothing starts in a cancelled job";
    setFake(u"wvunpack"_s, "append=@-2:whole");
    expectCancelled(makeEncoder(wv, u"FLAC"_s));
}

TEST_F(CancelledStage, LetsTheDecoderForAppleLosslessFinishAndItsFileStay)
{
    for (const auto &[name, tool, script] : {std::tuple{u"a.flac"_s, u"flac"_s, QByteArray("append=@-2:sound")},
                                             std::tuple{u"a.wv"_s, u"wvunpack"_s, QByteArray("append=@-2:sound")},
                                             std::tuple{u"a.ape"_s, u"mac"_s, QByteArray("append=@-2:sound")},
                                             std::tuple{u"a.shn"_s, u"shntool"_s, QByteArray("append=@-2:sound")}}) {
        SCOPED_TRACE(qPrintable(name));
        const auto task = makeEncoder(folder.write(name, "source"), u"M4A"_s);
        task->setDeleteOriginal(true);
        setFake(tool, script + ";create=" + folder.path(u"waits"_s).toUtf8()
                          + ";wait-file=" + folder.path(u"go-on"_s).toUtf8());
        queue().addTask(task);
        ASSERT_TRUE(test::waitUntil([&] { return folder.exists(u"waits"_s); }));
        task->cancelTask();
        EXPECT_EQ(children::runningCount(), 1);
        EXPECT_FALSE(task->isDone());
        folder.write(u"go-on"_s, "");
        ASSERT_TRUE(finish());
        EXPECT_EQ(task->textField().text, u"Canceled");
        ASSERT_EQ(out.list().size(), 1);
        EXPECT_TRUE(out.list()[0].startsWith(u"Nurv-"_s) && out.list()[0].endsWith(u".wav"_s));
        EXPECT_EQ(out.read(out.list()[0]), "sound");
        EXPECT_TRUE(folder.exists(name));
        out.remove(out.list()[0]);
        folder.remove(u"waits"_s);
        folder.remove(u"go-on"_s);
    }
}

TEST_F(CancelledStage, IsNoFailureOfAProgramThatWentTheOtherWay)
{
    setFake(u"ttaenc"_s, "append=@-1:RIFF;" + waits());
    expectCancelled(makeEncoder(test::writeWav(folder.path(u"a.wav"_s)), u"TTA"_s));
    setFake(u"ttaenc"_s, "append=@-1:TTA1;" + waits());
    expectCancelled(makeDecoder(folder.write(u"b.tta"_s, "source"), u"WAV"_s));
}

TEST_F(CancelledStage, KeepsAnOutputThatWasThereBefore)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    out.write(u"a.tta"_s, "somebody's");
    setFake(u"ttaenc"_s, waits());
    expectCancelled(makeEncoder(wav, u"TTA"_s), {u"a.tta"_s});
    EXPECT_EQ(out.read(u"a.tta"_s), "somebody's");
}

TEST_F(CancelledStage, StartsNothingWhenCancelledWhileWaiting)
{
    NotificationCenter::instance().post(QString::fromUtf16(NURVMaxThreadsChangedNotification), 0);
    addFake(u"wavpack"_s, "append=@-1:x");
    const auto task = makeEncoder(test::writeWav(folder.path(u"a.wav"_s)), u"WV"_s);
    task->setDeleteOriginal(true);
    queue().addTask(task);
    task->cancelTask();
    ASSERT_TRUE(finish());
    EXPECT_EQ(task->textField().text, u"Canceled");
    EXPECT_TRUE(calls(u"wavpack"_s).isEmpty());
    EXPECT_TRUE(folder.exists(u"a.wav"_s));
    EXPECT_TRUE(outputWindows.isEmpty());
}

} // namespace
} // namespace nurv

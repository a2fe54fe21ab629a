// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/StagedFixture.h"

#include "support/LogLines.h"
#include "support/TwentyBitSound.h"

#include <QDir>
#include <QStandardPaths>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class StagedDeletionTest : public test::StagedFixture {
protected:
    StagedDeletionTest()
    {
        tools.addAllReal();
        QObject::connect(&queue(), &NURVTaskQueue::taskEnded, &controller,
                         [this](const std::shared_ptr<NURVTask> &task) {
                             wasThereWhenTheQueueWasTold = QFile::exists(task->sourcePath());
                         });
    }
    /// A fresh source of that kind.
    QString make(const QString &kind)
    {
        const QString path = folder.path(u"a."_s + kind);
        if (kind == u"wav")
            return test::writeWav(path);
        if (kind == u"aiff")
            return test::writeAiff(path);
        if (kind == u"m4a")
            return test::writeByFfmpeg(path, {}, {u"-c:a"_s, u"alac"_s});
        if (kind == u"ape") {
            const QString wav = test::writeWav(folder.path(u"plain.wav"_s));
            EXPECT_EQ(test::runProgram(tools.path(u"mac"_s), {wav, path, u"-c1000"_s}).exitStatus, 0);
            folder.remove(u"plain.wav"_s);
            return path;
        }
        return test::writeByFfmpeg(path);
    }
    std::shared_ptr<StagedTask> runDeleting(const std::shared_ptr<StagedTask> &task)
    {
        task->setDeleteOriginal(true);
        return runJob(task);
    }

    bool wasThereWhenTheQueueWasTold = false;
};

TEST_F(StagedDeletionTest, RemovesTheSourceOfEverySuccessfulJob)
{
    struct Row {
        QString source;
        QString format;
        bool isEncoding;
        bool goesBeforeTheQueueIsTold;
    };
    const std::vector<Row> rows{
        {u"wav"_s, u"WV"_s, true, false},    {u"wav"_s, u"TTA"_s, true, false},   {u"aiff"_s, u"APE"_s, true, false},
        {u"m4a"_s, u"WV"_s, true, true},     {u"m4a"_s, u"TTA"_s, true, true},    {u"m4a"_s, u"APE"_s, true, true},
        {u"m4a"_s, u"FLAC"_s, true, false},  {u"wv"_s, u"FLAC"_s, true, false},   {u"wav"_s, u"M4A"_s, true, false},
        {u"flac"_s, u"M4A"_s, true, false},  {u"wv"_s, u"WAV"_s, false, false},   {u"wv"_s, u"AIFF"_s, false, false},
        {u"tta"_s, u"WAV"_s, false, false},  {u"tta"_s, u"AIFF"_s, false, false}, {u"ape"_s, u"WAV"_s, false, false},
        {u"ape"_s, u"AIFF"_s, false, false}, {u"m4a"_s, u"WAV"_s, false, false},  {u"m4a"_s, u"AIFF"_s, false, false},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(qPrintable(row.source + u" to "_s + row.format));
        const QString source = make(row.source);
        const QByteArray sound = test::decodedMd5(source);
        const auto task =
            runDeleting(row.isEncoding ? makeEncoder(source, row.format) : makeDecoder(source, row.format));
        EXPECT_FALSE(task->error()) << qPrintable(task->report());
        EXPECT_EQ(folder.list(), QStringList());
        EXPECT_EQ(wasThereWhenTheQueueWasTold, !row.goesBeforeTheQueueIsTold);
        ASSERT_EQ(out.list().size(), 1);
        EXPECT_EQ(test::decodedMd5(out.path(out.list()[0])), sound);
        out.remove(out.list()[0]);
    }
}

TEST_F(StagedDeletionTest, RemovesATwentyBitSourceThatIsKeptInTwentyFour)
{
    for (const QString &format : {u"WAV"_s, u"AIFF"_s}) {
        const QString source = test::writeTwentyBitAppleLossless(folder.path(u"a.m4a"_s), 9000, 2);
        const auto task = runDeleting(makeDecoder(source, format));
        EXPECT_FALSE(task->error()) << qPrintable(task->report());
        EXPECT_FALSE(QFile::exists(source)) << qPrintable(task->report());
    }
}

TEST_F(StagedDeletionTest, MovesTheSourceToTheTrashWhenTheSettingSaysSo)
{
    set(u"trashOrDelete", 1);
    const QString wav = test::writeWav(folder.path(u"to the trash.wav"_s));
    runDeleting(makeEncoder(wav, u"TTA"_s));
    EXPECT_EQ(folder.list(), QStringList());
    EXPECT_TRUE(QFile::exists(QString::fromLocal8Bit(qgetenv("XDG_DATA_HOME")) + u"/Trash/files/to the trash.wav"_s));
}

TEST_F(StagedDeletionTest, MovesTheTemporaryWavForAppleLosslessToTheTrashToo)
{
    set(u"trashOrDelete", 1);
    const QDir trash(QString::fromLocal8Bit(qgetenv("XDG_DATA_HOME")) + u"/Trash/files"_s);
    const QStringList temporaries{u"Nurv-*.wav"_s};
    const qsizetype before = trash.entryList(temporaries).size();
    EXPECT_FALSE(runJob(makeEncoder(make(u"flac"_s), u"M4A"_s))->error());
    EXPECT_EQ(trash.entryList(temporaries).size(), before + 1);
    EXPECT_EQ(out.list(), QStringList{u"a.m4a"_s});
    // Also when there was nothing in it to encode.
    setFake(u"flac"_s, "exit=1");
    EXPECT_TRUE(runJob(makeEncoder(folder.write(u"b.flac"_s, "source"), u"M4A"_s))->error());
    EXPECT_EQ(trash.entryList(temporaries).size(), before + 2);
}

TEST_F(StagedDeletionTest, KeepsASourceThatWasNotReadToItsEnd)
{
    const test::LogLines log;
    QByteArray bytes = test::wavBytes({.seconds = 2.0});
    bytes.replace(bytes.indexOf("data") + 4, 4, QByteArray("\x00\x10\x00\x00", 4)); // 4096 of some 350,000 bytes
    const QString wav = folder.write(u"a.wav"_s, bytes);
    for (const QString &format : {u"WV"_s, u"TTA"_s, u"APE"_s, u"M4A"_s}) {
        runDeleting(makeEncoder(wav, format));
        EXPECT_EQ(folder.read(u"a.wav"_s), bytes) << qPrintable(format);
    }
}

TEST_F(StagedDeletionTest, KeepsAFileThatTookThePlaceOfItsSource)
{
    const test::LogLines log;
    const QString wav = make(u"wav"_s);
    setFake(u"ttaenc"_s, "append=@-1:made;create=" + folder.path(u"waits"_s).toUtf8()
                             + ";wait-file=" + folder.path(u"go-on"_s).toUtf8());
    const auto task = makeEncoder(wav, u"TTA"_s);
    task->setDeleteOriginal(true);
    queue().addTask(task);
    ASSERT_TRUE(test::waitUntil([&] { return folder.exists(u"waits"_s); }));
    folder.remove(u"a.wav"_s);
    ASSERT_TRUE(QFile::rename(folder.write(u"new"_s, "a new take"), wav));
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    ASSERT_TRUE(test::waitUntil([] { return workerThreads::runningCount() == 0; }));
    EXPECT_FALSE(task->error()) << qPrintable(task->report());
    EXPECT_EQ(folder.read(u"a.wav"_s), "a new take");
    EXPECT_EQ(log.with(u"Kept, since it has changed since the job began: "_s + wav).size(), 1);
}

TEST_F(StagedDeletionTest, KeepsASourceThatAnotherJobConverts)
{
    const test::LogLines log;
    const QString wav = make(u"wav"_s);
    setFake(u"mac"_s, "append=@-2:made;create=" + folder.path(u"waits"_s).toUtf8()
                          + ";wait-file=" + folder.path(u"go-on"_s).toUtf8());
    const auto other = makeEncoder(wav, u"APE"_s);
    queue().addTask(other);
    ASSERT_TRUE(test::waitUntil([&] { return folder.exists(u"waits"_s); }));
    const auto task = makeEncoder(wav, u"TTA"_s);
    task->setDeleteOriginal(true);
    queue().addTask(task);
    ASSERT_TRUE(test::waitUntil([&] { return log.with(u"Kept, since another job converts it, too: "_s).size() == 1; }));
    EXPECT_TRUE(QFile::exists(wav));
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    EXPECT_FALSE(task->error()) << qPrintable(task->report());
    EXPECT_EQ(task->outcome().original, TaskOutcome::Original::Kept);
    EXPECT_TRUE(QFile::exists(wav));
}

TEST_F(StagedDeletionTest, FailsWhenTheSourceIsGoneBeforeItsTagsAreCopied)
{
    const QString alac = make(u"m4a"_s);
    setFake(u"flac"_s, "append=@-1:made;delete=" + alac.toUtf8());
    const auto task = runJob(makeEncoder(alac, u"FLAC"_s));
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->report().contains(u"Error writing tags to file:\n"_s + alac + u" is gone"_s))
        << qPrintable(task->report());
    EXPECT_TRUE(outputWindows.value(0).contains(u"Error writing tags to file:\n"_s));
}

TEST_F(StagedDeletionTest, KeepsAppleLosslessThatHoldsMoreThanItsOutput)
{
    const QString twoTracks = folder.path(u"two.m4a"_s);
    const QString one = make(u"m4a"_s);
    ASSERT_EQ(test::runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, one, u"-map"_s, u"0:a"_s, u"-map"_s,
                                             u"0:a"_s, u"-c"_s, u"copy"_s, twoTracks})
                  .exitStatus,
              0);
    // An edit list that shows half of the sound: the size, "elst", the version, one entry, its
    // length, its begin, its speed (ISO/IEC 14496-12).
    QByteArray bytes = folder.read(u"a.m4a"_s);
    const qsizetype length = bytes.indexOf("elst") + 12;
    ASSERT_GT(length, 12);
    const auto shown = qFromBigEndian<quint32>(bytes.constData() + length);
    qToBigEndian<quint32>(shown / 2, bytes.data() + length);
    const QString trimmed = folder.write(u"trimmed.m4a"_s, bytes);
    for (const QString &source : {twoTracks, trimmed}) {
        for (const auto &task : {makeDecoder(source, u"WAV"_s), makeEncoder(source, u"TTA"_s)}) {
            outputWindows.clear();
            runDeleting(task);
            EXPECT_TRUE(task->error()) << "less sound than the source holds";
            EXPECT_TRUE(QFile::exists(source)) << qPrintable(task->outputFile());
            EXPECT_TRUE(task->report().contains(u"not all of it is in the output"_s)) << qPrintable(task->report());
            EXPECT_TRUE(outputWindows.value(0).contains(u"not all of it is in the output"_s));
        }
    }
    runDeleting(makeDecoder(one, u"WAV"_s));
    EXPECT_FALSE(QFile::exists(one));
}

TEST_F(StagedDeletionTest, ReplacesNoOutputByTheSoundOfADamagedSource)
{
    const QString good = make(u"flac"_s);
    ASSERT_FALSE(runJob(makeEncoder(good, u"M4A"_s))->error());
    const QByteArray before = out.read(u"a.m4a"_s);
    make(u"wv"_s);
    QByteArray bytes = folder.read(u"a.wv"_s);
    folder.write(u"a.wv"_s, bytes.replace(bytes.size() / 2, 4, "xxxx"));
    // The status of the program is not looked at, or it says so itself.
    const QString plain = make(u"wav"_s);
    setFake(u"mac"_s, "copy=" + plain.toUtf8() + ":@-2;out=Error: 1002\\n");
    EXPECT_TRUE(runDeleting(makeEncoder(folder.write(u"a.ape"_s, "source"), u"M4A"_s))->error());
    EXPECT_EQ(out.read(u"a.m4a"_s), before);
    folder.remove(u"a.ape"_s);
    const auto task = runDeleting(makeEncoder(folder.path(u"a.wv"_s), u"M4A"_s));
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->report().contains(u"stays as it was"_s)) << qPrintable(task->report());
    EXPECT_EQ(out.read(u"a.m4a"_s), before);
    EXPECT_EQ(out.list(), QStringList{u"a.m4a"_s});
    EXPECT_TRUE(folder.exists(u"a.wv"_s));
}

TEST_F(StagedDeletionTest, KeepsADamagedSourceThatWasDecodedAllTheSame)
{
    const QString wv = make(u"wv"_s);
    QByteArray bytes = folder.read(u"a.wv"_s);
    bytes.replace(bytes.size() / 2, 4, "xxxx");
    folder.write(u"a.wv"_s, bytes);
    // Of the decoder for Apple Lossless the status is not looked at.
    auto task = runDeleting(makeEncoder(wv, u"M4A"_s));
    EXPECT_TRUE(task->outcome().problem.contains(u"the source is damaged"_s)) << qPrintable(task->outcome().problem);
    EXPECT_EQ(task->outcome().original, TaskOutcome::Original::Kept);
    EXPECT_EQ(folder.read(u"a.wv"_s), bytes);
    EXPECT_TRUE(task->report().contains(u"crc errors"_s)) << qPrintable(task->report());
    EXPECT_TRUE(outputWindows.value(0).contains(u"crc errors"_s)) << "a failure that the row does not show is reported";
    // Of all others it is, once they have made what they could.
    task = runDeleting(makeEncoder(wv, u"FLAC"_s));
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(out.exists(u"a.flac"_s));
    for (const QString &format : {u"WAV"_s, u"AIFF"_s}) {
        task = runDeleting(makeDecoder(wv, format));
        EXPECT_TRUE(task->error());
        EXPECT_TRUE(out.exists(u"a."_s + format.toLower()));
    }
    EXPECT_EQ(folder.read(u"a.wv"_s), bytes);
    EXPECT_EQ(out.list(), (QStringList{u"a.aiff"_s, u"a.flac"_s, u"a.m4a"_s, u"a.wav"_s}));
}

TEST_F(StagedDeletionTest, KeepsATruncatedSource)
{
    for (const QString &kind : {u"tta"_s, u"ape"_s, u"m4a"_s}) {
        const QString source = make(kind);
        const QByteArray bytes = folder.read(u"a."_s + kind);
        folder.write(u"a."_s + kind, bytes.first(bytes.size() / 2));
        for (const QString &format : {u"WAV"_s, u"AIFF"_s}) {
            const auto task = runDeleting(makeDecoder(source, format));
            EXPECT_TRUE(QFile::exists(source)) << qPrintable(kind);
            EXPECT_TRUE(task->error()) << qPrintable(kind + u" to "_s + format);
        }
    }
}

TEST_F(StagedDeletionTest, KeepsASourceWhoseTagsDidNotReachTheFlacFile)
{
    const test::LogLines log;
    const QString alac =
        test::writeByFfmpeg(folder.path(u"a.m4a"_s), {},
                            {u"-c:a"_s, u"alac"_s, u"-metadata"_s, u"title=Song"_s, u"-metadata"_s, u"track=3"_s});
    const QByteArray real = QStandardPaths::findExecutable(u"metaflac"_s).toUtf8();
    for (const QByteArray &script : {QByteArray("exit=1"), "when=TRACKNUMBER;exit=1;end;exec=" + real}) {
        setFake(u"metaflac"_s, script);
        EXPECT_FALSE(runDeleting(makeEncoder(alac, u"FLAC"_s))->error());
        EXPECT_TRUE(QFile::exists(alac)) << script.constData();
        out.remove(u"a.flac"_s);
    }
    EXPECT_EQ(log.with(u"Kept, since only it has the tags: "_s + alac).size(), 2);
    tools.remove(u"metaflac"_s);
    tools.addReal(u"metaflac"_s);
    EXPECT_FALSE(runDeleting(makeEncoder(alac, u"FLAC"_s))->error());
    EXPECT_FALSE(QFile::exists(alac));
}

TEST_F(StagedDeletionTest, ConvertsOnlyTheFirstOfTwoSourcesWithOneOutput)
{
    for (const int threads : {1, 4}) {
        NotificationCenter::instance().post(QString::fromUtf16(NURVMaxThreadsChangedNotification), threads);
        for (const QString &format : {u"WV"_s, u"TTA"_s, u"APE"_s, u"M4A"_s}) {
            SCOPED_TRACE(qPrintable(format));
            endedTasks.clear();
            const QString aiff = test::writeAiff(folder.path(u"a.aiff"_s), {.seconds = 3, .seed = 1});
            const QString wav = test::writeWav(folder.path(u"a.wav"_s), {.seconds = 3, .seed = 2});
            EncodeTab tab(controller);
            tab.deleteOriginalsButton.setOn(true);
            ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(format));
            run(tab, {wav, aiff});
            ASSERT_TRUE(test::waitUntil([] { return workerThreads::runningCount() == 0; }));
            ASSERT_EQ(endedTasks.size(), 2U);
            for (const auto &task : endedTasks) {
                const bool isFirst = task->sourcePath() == aiff; // the list is in file-browser order
                EXPECT_EQ(task->error(), !isFirst);
                if (!isFirst) {
                    EXPECT_TRUE(task->report().contains(wav) && task->report().contains(aiff))
                        << qPrintable(task->report());
                }
            }
            ASSERT_EQ(out.list().size(), 1);
            EXPECT_TRUE(test::sameSound(aiff, out.path(out.list()[0])));
            EXPECT_EQ(folder.list(), (QStringList{u"a.aiff"_s, u"a.wav"_s})) << "originals that share an output stay";
            out.remove(out.list()[0]);
        }
    }
}

TEST_F(StagedDeletionTest, ReplacesNoOtherFileOfTheList)
{
    // In the list's order the AIFF file comes before the source that has its output's name.
    const QString aiff = make(u"aiff"_s);
    for (const auto &[kind, format] : {std::pair{u"m4a"_s, u"M4A"_s}, std::pair{u"tta"_s, u"TTA"_s},
                                       std::pair{u"ape"_s, u"APE"_s}, std::pair{u"wv"_s, u"WV"_s}}) {
        SCOPED_TRACE(qPrintable(kind));
        const QString other = make(kind);
        const QByteArray before = folder.read(u"a."_s + kind);
        endedTasks.clear();
        EncodeTab tab(controller);
        ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(format));
        tab.sourceEncodeButton.setOn(true);
        runBeside(tab, {aiff, other});
        ASSERT_TRUE(test::waitUntil([] { return workerThreads::runningCount() == 0; }));
        EXPECT_EQ(folder.read(u"a."_s + kind), before);
        ASSERT_EQ(endedTasks.size(), 2U);
        for (const auto &task : endedTasks)
            EXPECT_TRUE(task->error()) << qPrintable(task->title());
        EXPECT_EQ(folder.list().size(), 2);
        folder.remove(u"a."_s + kind);
    }
}

TEST_F(StagedDeletionTest, DecodesOnlyTheFirstOfTwoSourcesWithOneOutput)
{
    const QString flac = make(u"flac"_s);
    const QString m4a = make(u"m4a"_s);
    const QString wv = make(u"wv"_s);
    for (const QString &format : {u"WAV"_s, u"AIFF"_s}) {
        endedTasks.clear();
        DecodeTab tab(controller);
        ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(format));
        tab.deleteOriginalsButton.setOn(true);
        run(tab, {flac, m4a, wv});
        ASSERT_TRUE(test::waitUntil([] { return workerThreads::runningCount() == 0; }));
        int failed = 0;
        for (const auto &task : endedTasks)
            failed += task->error() ? 1 : 0;
        EXPECT_EQ(failed, 2);
        EXPECT_EQ(out.list(), QStringList{u"a."_s + format.toLower()});
        EXPECT_EQ(folder.list(), (QStringList{u"a.flac"_s, u"a.m4a"_s, u"a.wv"_s}));
        out.remove(u"a."_s + format.toLower());
    }
}

TEST_F(StagedDeletionTest, KeepsTheSourceWhenATtaDecoderFails)
{
    const QString tta = make(u"tta"_s);
    for (const QByteArray &script : {QByteArray("append=@-1:x;exit=1"), QByteArray("exit=0"), QByteArray("signal=9")}) {
        setFake(u"ttaenc"_s, script);
        EXPECT_TRUE(runDeleting(makeDecoder(tta, u"WAV"_s))->error()) << script.constData();
        EXPECT_TRUE(QFile::exists(tta));
        if (out.exists(u"a.wav"_s))
            out.remove(u"a.wav"_s);
    }
}

} // namespace
} // namespace nurv

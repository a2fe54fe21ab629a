// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/StagedFixture.h"

#include "support/FileSizeLimit.h"
#include "support/LogLines.h"
#include "tags/AACTagsHelper.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class StagesWithRealToolsTest : public test::StagedFixture {
protected:
    StagesWithRealToolsTest() { tools.addAllReal(); }

    QString makeAlac(const QString &name, const QStringList &more = {})
    {
        return test::writeByFfmpeg(folder.path(name), {},
                                   QStringList{u"-c:a"_s, u"alac"_s, u"-metadata"_s, u"title=Song"_s} + more);
    }
    QString makeWavpack(const QString &name, const test::SoundShape &shape = {})
    {
        const QString wav = test::writeWav(folder.path(u"plain.wav"_s), shape);
        EXPECT_EQ(test::runProgram(u"wavpack"_s, {u"-q"_s, u"-w"_s, u"Title=Song"_s, wav, u"-o"_s, folder.path(name)})
                      .exitStatus,
                  0);
        folder.remove(u"plain.wav"_s);
        return folder.path(name);
    }
    /// Replaces the tool by itself with its arguments logged.
    void logCalls(const QString &tool)
    {
        tools.remove(tool);
        tools.addLogged(tool, folder.path(tool + u".log"_s));
    }
    /// The call with the temporary file's name replaced.
    [[nodiscard]] QString call(const QString &tool) const
    {
        QString words = shortened(calls(tool).join(u';'));
        return words.replace(QRegularExpression(u"out/Nurv-[^|;]+\\.wav"_s), u"TEMP"_s);
    }
};

TEST_F(StagesWithRealToolsTest, RunsTheUnpackerForAiffWithYesAndRemovesItsWav)
{
    logCalls(u"wvunpack"_s);
    const QString wv = makeWavpack(u"a.wv"_s);
    const auto task = runJob(makeDecoder(wv, u"AIFF"_s));
    EXPECT_FALSE(task->error()) << qPrintable(task->report());
    EXPECT_EQ(call(u"wvunpack"_s), u"in/a.wv|-y|-o|out/a.wav");
    EXPECT_EQ(out.list(), QStringList{u"a.aiff"_s});
    EXPECT_TRUE(test::sameSound(wv, out.path(u"a.aiff"_s)));
}

TEST_F(StagesWithRealToolsTest, LeavesAWavAloneThatHasTheNameOfTheUnpackersOwn)
{
    logCalls(u"wvunpack"_s);
    const QString wv = makeWavpack(u"a.wv"_s);
    out.write(u"a.wav"_s, "somebody's");
    const auto task = runJob(makeDecoder(wv, u"AIFF"_s));
    EXPECT_FALSE(task->error()) << qPrintable(task->report());
    EXPECT_EQ(call(u"wvunpack"_s), u"in/a.wv|-y|-o|TEMP");
    EXPECT_EQ(out.list(), (QStringList{u"a.aiff"_s, u"a.wav"_s}));
    EXPECT_EQ(out.read(u"a.wav"_s), "somebody's");
    EXPECT_TRUE(test::sameSound(wv, out.path(u"a.aiff"_s)));
}

TEST_F(StagesWithRealToolsTest, RemovesTheUnpackersWavAlsoWhenTheAiffFileHasNoPlace)
{
    out.write(u"a.aiff/x"_s, "a folder has the name");
    const auto task = runJob(makeDecoder(makeWavpack(u"a.wv"_s), u"AIFF"_s));
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->report().contains(u"a.aiff is no file that could be replaced"_s)) << qPrintable(task->report());
    EXPECT_EQ(out.list(), QStringList{u"a.aiff/x"_s});
}

TEST_F(StagesWithRealToolsTest, LetsOthersReadFlacFilesMadeByWayOfATemporaryFile)
{
    const mode_t former = ::umask(022);
    runJob(makeEncoder(makeAlac(u"a.m4a"_s), u"FLAC"_s));
    runJob(makeEncoder(makeWavpack(u"b.wv"_s), u"FLAC"_s));
    ::umask(former);
    for (const QString &name : {u"a.flac"_s, u"b.flac"_s}) {
        struct stat facts = {};
        ASSERT_EQ(::stat(QFile::encodeName(out.path(name)).constData(), &facts), 0) << qPrintable(name);
        EXPECT_EQ(facts.st_mode & 0777, 0644U) << qPrintable(name);
    }
}

TEST_F(StagesWithRealToolsTest, OverwritesOnlyByFlacItself)
{
    logCalls(u"flac"_s);
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    const QString alac = makeAlac(u"b.m4a"_s);
    const QString wv = makeWavpack(u"c.wv"_s);
    test::writeFlac(folder.path(u"a.flac"_s), {.seconds = 0.5});
    folder.write(u"b.flac"_s, "somebody's");
    folder.write(u"c.flac"_s, "somebody's");
    EncodeTab tab(controller);
    ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(u"FLAC"_s));
    tab.sourceEncodeButton.setOn(true);
    prompts.expectAsk(u"One of the output files already exists and will be overwritten.  "
                      "Are you sure you want to continue?"_s,
                      {u"No"_s, u"Yes"_s}, u"Yes"_s);
    runBeside(tab, {wav, alac, wv});
    ASSERT_EQ(endedTasks.size(), 3U);
    QStringList forced = calls(u"flac"_s).filter(u"|-f|"_s);
    ASSERT_EQ(calls(u"flac"_s).size(), 3);
    ASSERT_EQ(forced.size(), 1) << qPrintable(calls(u"flac"_s).join(u'\n'));
    EXPECT_TRUE(shortened(forced[0]).endsWith(u"in/a.wav|-o|in/a.flac"_s)) << qPrintable(forced[0]);
    EXPECT_TRUE(test::sameSound(wav, folder.path(u"a.flac"_s)));
    EXPECT_EQ(folder.read(u"b.flac"_s), "somebody's");
    EXPECT_EQ(folder.read(u"c.flac"_s), "somebody's");
    for (const auto &task : endedTasks)
        EXPECT_EQ(task->error(), task->sourcePath() != wav) << qPrintable(task->report());
}

TEST_F(StagesWithRealToolsTest, PutsTheTemporaryWavOfAnAiffFileIntoTheOutputFolder)
{
    for (const QString &tool : {u"wavpack"_s, u"ttaenc"_s, u"mac"_s})
        logCalls(tool);
    const QString aiff = test::writeAiff(folder.path(u"a.AIF"_s));
    for (const QString &format : {u"WV"_s, u"TTA"_s, u"APE"_s})
        EXPECT_FALSE(runJob(makeEncoder(aiff, format))->error());
    EXPECT_EQ(call(u"wavpack"_s), u"-f|TEMP|-o|out/a.wv");
    EXPECT_EQ(call(u"ttaenc"_s), u"TEMP|-o|out/a.tta");
    EXPECT_EQ(call(u"mac"_s), u"TEMP|out/a.ape|-c2000");
    EXPECT_EQ(out.list(), (QStringList{u"a.ape"_s, u"a.tta"_s, u"a.wv"_s}));
    for (const QString &name : out.list())
        EXPECT_TRUE(test::sameSound(aiff, out.path(name))) << qPrintable(name);
}

TEST_F(StagesWithRealToolsTest, EncodesAppleLosslessToFlacWithoutALevel)
{
    logCalls(u"flac"_s);
    const QString alac = makeAlac(u"a.m4a"_s, {u"-metadata"_s, u"track=3/12"_s, u"-metadata"_s, u"genre=Jazz"_s});
    statuses.clear();
    auto task = runJob(makeEncoder(alac, u"FLAC"_s));
    EXPECT_FALSE(task->error()) << qPrintable(task->report());
    EXPECT_EQ(call(u"flac"_s), u"TEMP|-o|out/a.flac");
    EXPECT_TRUE(statuses.contains(u"Writing Flac Tags"_s)) << qPrintable(statuses.join(u'\n'));
    const QStringList tags = test::metaflacTags(out.path(u"a.flac"_s));
    EXPECT_TRUE(tags.contains(u"TITLE=Song"_s) && tags.contains(u"GENRE=Jazz"_s)) << qPrintable(tags.join(u'\n'));
    out.remove(u"a.flac"_s);
    folder.remove(u"flac.log"_s);
    task = runJob(makeEncoder(alac, u"FLAC"_s, true));
    EXPECT_EQ(call(u"flac"_s), u"-V|TEMP|-o|out/a.flac");
}

TEST_F(StagesWithRealToolsTest, EncodesWavpackToFlacByWayOfATemporaryWav)
{
    logCalls(u"wvunpack"_s);
    logCalls(u"flac"_s);
    const QString wv = makeWavpack(u"a.wv"_s, {.seconds = 20});
    const auto task = runJob(makeEncoder(wv, u"FLAC"_s));
    EXPECT_FALSE(task->error()) << qPrintable(task->report());
    EXPECT_EQ(call(u"wvunpack"_s), u"in/a.wv|-o|TEMP|-y");
    EXPECT_EQ(call(u"flac"_s), u"TEMP|-o|out/a.flac");
    EXPECT_FALSE(statuses.filter(QRegularExpression(u"^Decoding From Wavpack \\d+\\.000000%$"_s)).isEmpty())
        << qPrintable(statuses.join(u'\n'));
    EXPECT_TRUE(statuses.contains(u"Writing FLAC Tags"_s));
    EXPECT_EQ(out.list(), QStringList{u"a.flac"_s});
    EXPECT_TRUE(test::metaflacTags(out.path(u"a.flac"_s)).contains(u"TITLE=Song"_s));
}

TEST_F(StagesWithRealToolsTest, NamesWhatItDoesOnTheWayToAppleLossless)
{
    const test::SoundShape shape{.seconds = 2};
    logCalls(u"flac"_s);
    const QString flac = test::writeFlac(folder.path(u"a.flac"_s), shape);
    EXPECT_FALSE(runJob(makeEncoder(flac, u"M4A"_s))->error());
    EXPECT_EQ(call(u"flac"_s), u"-d|in/a.flac|-o|TEMP|-f");
    for (const QString &status :
         {u"Encoding to Apple Lossless"_s, u"Decoding FLAC to Wav"_s, u"Copying FLAC Tags"_s, u"Making Gapless"_s})
        EXPECT_TRUE(statuses.contains(status)) << qPrintable(status);
    EXPECT_EQ(out.list(), QStringList{u"a.m4a"_s});

    logCalls(u"wvunpack"_s);
    statuses.clear();
    EXPECT_FALSE(runJob(makeEncoder(makeWavpack(u"b.wv"_s, shape), u"M4A"_s))->error());
    EXPECT_EQ(call(u"wvunpack"_s), u"in/b.wv|-o|TEMP|-y");
    EXPECT_TRUE(statuses.contains(u"Decoding Wavepack to Wav"_s));
    EXPECT_TRUE(statuses.contains(u"Copying Wavpack Tags"_s));

    const QString wav = test::writeWav(folder.path(u"c.wav"_s), shape);
    ASSERT_EQ(test::runProgram(tools.path(u"mac"_s), {wav, folder.path(u"c.ape"_s), u"-c1000"_s}).exitStatus, 0);
    ASSERT_EQ(test::runProgram(tools.path(u"shorten"_s), {wav, folder.path(u"d.shn"_s)}).exitStatus, 0);
    logCalls(u"mac"_s);
    statuses.clear();
    EXPECT_FALSE(runJob(makeEncoder(folder.path(u"c.ape"_s), u"M4A"_s))->error());
    EXPECT_EQ(call(u"mac"_s), u"in/c.ape|TEMP|-d");
    EXPECT_TRUE(statuses.contains(u"Decoding APE to Wav"_s));
    EXPECT_TRUE(statuses.contains(u"Copying APE Tags"_s));

    logCalls(u"shntool"_s);
    statuses.clear();
    const auto fromShorten = runJob(makeEncoder(folder.path(u"d.shn"_s), u"M4A"_s));
    EXPECT_FALSE(fromShorten->error()) << qPrintable(fromShorten->report());
    EXPECT_EQ(call(u"shntool"_s), u"conv|-P|pct|-O|always|-o|wav|-n|TEMP|in/d.shn");
    EXPECT_TRUE(statuses.contains(u"Decoding SHN to Wav"_s));
    EXPECT_TRUE(test::sameSound(wav, out.path(u"d.m4a"_s)));
    EXPECT_EQ(out.list(), (QStringList{u"a.m4a"_s, u"b.m4a"_s, u"c.m4a"_s, u"d.m4a"_s})) << "no temporary file is left";
}

TEST_F(StagesWithRealToolsTest, RunsNoDecoderForAWavOnItsWayToAppleLossless)
{
    for (const QString &tool : {u"flac"_s, u"wvunpack"_s, u"mac"_s, u"shntool"_s})
        addFake(tool, "exit=1");
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    EXPECT_FALSE(runJob(makeEncoder(wav, u"M4A"_s))->error());
    EXPECT_EQ(test::ffprobeTags(out.path(u"a.m4a"_s)).value(u"title"_s), QString());
    // The short extension of AIFF files gets no tags either.
    const QString aif =
        test::writeByFfmpeg(folder.path(u"b.aiff"_s), {}, {u"-write_id3v2"_s, u"1"_s, u"-metadata"_s, u"title=Song"_s});
    ASSERT_TRUE(QFile::rename(aif, folder.path(u"b.aif"_s)));
    EXPECT_FALSE(runJob(makeEncoder(folder.path(u"b.aif"_s), u"M4A"_s))->error());
    EXPECT_EQ(test::ffprobeTags(out.path(u"b.m4a"_s)).value(u"title"_s), QString());
    EXPECT_FALSE(statuses.contains(u"Copying AIFF Tags"_s));
    for (const QString &tool : {u"flac"_s, u"wvunpack"_s, u"mac"_s, u"shntool"_s})
        EXPECT_TRUE(calls(tool).isEmpty());
}

TEST_F(StagesWithRealToolsTest, NamesTheEncodingToolInEveryAppleLosslessFile)
{
    AACTagsHelper::setQuickTimeVersionProvider([] { return std::optional<std::uint32_t>(0x07650000); });
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    const QString wordless = test::writeAiff(folder.path(u"b.aif"_s));
    const QString aiff = test::writeAiff(folder.path(u"c.aiff"_s));
    const QString flac = test::writeFlac(folder.path(u"d.flac"_s));
    const QString wv = makeWavpack(u"e.wv"_s);
    for (const QString &source : {wav, wordless, aiff, flac, wv}) {
        const auto task = runJob(makeEncoder(source, u"M4A"_s));
        const auto tags = test::ffprobeTags(task->outputFile());
        EXPECT_TRUE(tags.value(u"encoder"_s).contains(u"QuickTime 7.6.5"_s))
            << qPrintable(source + u": "_s + tags.value(u"encoder"_s));
        if (source != wv) {
            EXPECT_FALSE(tags.contains(u"title"_s));
        }
    }
    AACTagsHelper::setQuickTimeVersionProvider({});
}

TEST_F(StagesWithRealToolsTest, MarksAppleLosslessFilesAsGapless)
{
    addFake(u"AtomicParsley"_s, "exit=0");
    runJob(makeEncoder(test::writeWav(folder.path(u"a.wav"_s)), u"M4A"_s));
    ASSERT_EQ(calls(u"AtomicParsley"_s).size(), 1);
    EXPECT_TRUE(shortened(calls(u"AtomicParsley"_s)[0]).startsWith(u"out/a.m4a|"_s))
        << qPrintable(calls(u"AtomicParsley"_s)[0]);
}

TEST_F(StagesWithRealToolsTest, KeepsThePermissionsOfAnAppleLosslessFileThatItReplaces)
{
    const QString old = out.write(u"a.m4a"_s, "old");
    ASSERT_TRUE(QFile::setPermissions(old, QFile::ReadOwner | QFile::WriteOwner));
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    EXPECT_FALSE(runJob(makeEncoder(wav, u"M4A"_s))->error());
    EXPECT_TRUE(test::sameSound(wav, old));
    struct stat facts = {};
    ASSERT_EQ(::stat(QFile::encodeName(old).constData(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0600U);
}

TEST_F(StagesWithRealToolsTest, EndsAParsleyThatHangsOnAFullDisk)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    out.write(u"a-temp-1.m4a"_s, "somebody's");
    setFake(u"AtomicParsley"_s,
            "create=" + out.path(u"a-temp-57809.m4a"_s).toUtf8()
                + ";err=\\nspli;until-read;err=ce(write): -1 of 63044 (No space left on device)\\n;hang");
    const auto task = runJob(makeEncoder(wav, u"M4A"_s));
    EXPECT_FALSE(task->error()) << qPrintable(task->report());
    EXPECT_TRUE(test::sameSound(wav, out.path(u"a.m4a"_s)));
    EXPECT_EQ(out.list(), (QStringList{u"a-temp-1.m4a"_s, u"a.m4a"_s}));
}

TEST_F(StagesWithRealToolsTest, EndsAParsleyThatIsNotWantedAnyMore)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    setFake(u"AtomicParsley"_s,
            "create=" + out.path(u"a-temp-2.m4a"_s).toUtf8() + ";create=" + folder.path(u"waits"_s).toUtf8() + ";hang");
    const auto task = makeEncoder(wav, u"M4A"_s);
    queue().addTask(task);
    ASSERT_TRUE(test::waitUntil([&] { return folder.exists(u"waits"_s); }));
    task->cancelTask();
    ASSERT_TRUE(finish());
    EXPECT_EQ(task->textField().text, u"Canceled");
    EXPECT_EQ(out.list(), QStringList{u"a.m4a"_s}) << "sound and tags were whole before";
}

TEST_F(StagesWithRealToolsTest, RemovesTheOutputOfAJobThatIsCancelledBeforeItsTags)
{
    const QString m4a = test::writeByFfmpeg(folder.path(u"a.m4a"_s), {}, {u"-c:a"_s, u"alac"_s});
    // The encoder comes to its end, and the job is cancelled meanwhile.
    setFake(u"wavpack"_s, "append=@-1:made;create=" + folder.path(u"waits"_s).toUtf8() + ";wait-file="
                              + folder.path(u"go-on"_s).toUtf8());
    const auto task = makeEncoder(m4a, u"WV"_s);
    queue().addTask(task);
    ASSERT_TRUE(test::waitUntil([&] { return folder.exists(u"waits"_s); }));
    task->cancelTask();
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    EXPECT_EQ(task->textField().text, u"Canceled");
    EXPECT_EQ(out.list(), QStringList()) << "it would be taken for a finished one";
    EXPECT_TRUE(task->outcome().output.isEmpty());
    EXPECT_TRUE(folder.exists(u"a.m4a"_s));
}

TEST_F(StagesWithRealToolsTest, PutsBackWhatParsleyBroke)
{
    const test::LogLines log;
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    const QByteArray output = out.path(u"a.m4a"_s).toUtf8();
    for (const QByteArray &script :
         {"delete=" + output + ";append=" + output + ":broken", "delete=" + output,
          "delete=" + output + ";create=" + out.path(u"a-temp-5.m4a"_s).toUtf8() + ";signal=9"}) {
        setFake(u"AtomicParsley"_s, script);
        const auto task = runJob(makeEncoder(wav, u"M4A"_s));
        EXPECT_FALSE(task->error()) << qPrintable(task->report());
        EXPECT_TRUE(test::sameSound(wav, out.path(u"a.m4a"_s))) << script.constData();
        EXPECT_EQ(out.list(), QStringList{u"a.m4a"_s});
        out.remove(u"a.m4a"_s);
    }
    EXPECT_EQ(log.with(u"put back as it was"_s).size(), 3);
}

TEST_F(StagesWithRealToolsTest, MarksTheFileThatALinkLeadsTo)
{
    const test::TestFolder other;
    ASSERT_TRUE(QFile::rename(makeAlac(u"a.m4a"_s), other.path(u"b.m4a"_s)));
    ASSERT_TRUE(QFile::link(other.path(u"b.m4a"_s), folder.path(u"a.m4a"_s)));
    AACTagsHelper::makeGapless(folder.path(u"a.m4a"_s));
    EXPECT_EQ(QFile::symLinkTarget(folder.path(u"a.m4a"_s)), other.path(u"b.m4a"_s));
    EXPECT_TRUE(other.read(u"b.m4a"_s).contains("pgap"));
    EXPECT_EQ(other.list(), QStringList{u"b.m4a"_s});
}

TEST_F(StagesWithRealToolsTest, TakesAppleLosslessWithManyPicturesButNotWithManyTracks)
{
    const QString alac = makeAlac(u"a.m4a"_s);
    const QString picture = folder.path(u"p.png"_s);
    ASSERT_EQ(test::runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s, u"color=red:s=16x16"_s,
                                             u"-frames:v"_s, u"1"_s, picture})
                  .exitStatus,
              0);
    QStringList pictures{alac, u"--overWrite"_s};
    QStringList tracks{u"-v"_s, u"error"_s, u"-i"_s, alac};
    for (int i = 0; i < 12; ++i) {
        pictures << u"--artwork"_s << picture;
        tracks << u"-map"_s << u"0:a"_s;
    }
    ASSERT_EQ(test::runProgram(tools.path(u"AtomicParsley"_s), pictures).exitStatus, 0);
    EXPECT_FALSE(runJob(makeDecoder(alac, u"WAV"_s))->error());
    ASSERT_EQ(
        test::runProgram(u"ffmpeg"_s, tracks + QStringList{u"-c"_s, u"copy"_s, folder.path(u"b.m4a"_s)}).exitStatus, 0);
    EXPECT_TRUE(runJob(makeDecoder(folder.path(u"b.m4a"_s), u"WAV"_s))->error());
}

TEST_F(StagesWithRealToolsTest, EndsTheRealParsleyWhenTheDiskIsFull)
{
    const QString path = makeAlac(u"a.m4a"_s);
    const QByteArray before = folder.read(u"a.m4a"_s);
    {
        const test::FileSizeLimit limit(static_cast<rlim_t>(before.size() / 2));
        AACTagsHelper::makeGapless(path);
    }
    EXPECT_EQ(folder.read(u"a.m4a"_s), before);
    EXPECT_EQ(folder.list(), QStringList{u"a.m4a"_s});
}

TEST_F(StagesWithRealToolsTest, CopiesTagsOfAppleLosslessToAiffOnly)
{
    const QString alac = makeAlac(u"a.m4a"_s);
    EXPECT_FALSE(runJob(makeDecoder(alac, u"WAV"_s))->error());
    EXPECT_FALSE(statuses.contains(u"Copying ALAC Tags"_s));
    EXPECT_EQ(test::ffprobeTags(out.path(u"a.wav"_s)).value(u"title"_s), QString());
    EXPECT_FALSE(runJob(makeDecoder(alac, u"AIFF"_s))->error());
    EXPECT_TRUE(statuses.contains(u"Copying ALAC Tags"_s));
    EXPECT_EQ(test::ffprobeTags(out.path(u"a.aiff"_s)).value(u"title"_s), u"Song");
}

TEST_F(StagesWithRealToolsTest, NamesTheTagsThatItWrites)
{
    const QString alac = makeAlac(u"a.m4a"_s);
    for (const auto &[format, status] :
         {std::pair{u"WV"_s, u"Writing Wavpack Tags"_s}, std::pair{u"APE"_s, u"Writing APE Tags"_s}}) {
        statuses.clear();
        EXPECT_FALSE(runJob(makeEncoder(alac, format))->error());
        EXPECT_TRUE(statuses.contains(status)) << qPrintable(statuses.join(u'\n'));
        EXPECT_EQ(test::ffprobeTags(out.path(u"a."_s + format.toLower())).value(u"title"_s), u"Song");
    }
    statuses.clear();
    EXPECT_FALSE(runJob(makeEncoder(alac, u"TTA"_s))->error());
    EXPECT_TRUE(statuses.filter(u"Tags"_s).isEmpty());
}

TEST_F(StagesWithRealToolsTest, EndsInErrorWhenTheTagsCannotBeWritten)
{
    const test::LogLines log;
    const QString alac = makeAlac(u"a.m4a"_s);
    // What is no WavPack file takes no tags.
    setFake(u"wavpack"_s, "append=@-1:no sound");
    auto task = makeEncoder(alac, u"WV"_s);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->report().contains(u"Error writing tags to file:\n"_s)) << qPrintable(task->report());
    EXPECT_TRUE(outputWindows.isEmpty()) << "the set was dropped before";
    EXPECT_EQ(log.with(u"Exception "_s).size(), 1);
    EXPECT_TRUE(QFile::exists(alac));
    setFake(u"mac"_s, "append=@-2:no sound");
    task = runJob(makeEncoder(alac, u"APE"_s));
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(outputWindows.isEmpty());
}

TEST_F(StagesWithRealToolsTest, MakesAppleLosslessGaplessAlsoAfterFailedTags)
{
    const test::LogLines log;
    addFake(u"AtomicParsley"_s, "exit=0");
    // The sound finds room, the picture of noise beside it does not.
    const QString picture = folder.path(u"noise.png"_s);
    ASSERT_EQ(test::runProgram(u"ffmpeg"_s,
                               {u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                                u"nullsrc=s=500x500,geq=random(1)*255:128:128"_s, u"-frames:v"_s, u"1"_s, picture})
                  .exitStatus,
              0);
    const QString wav = test::writeWav(folder.path(u"plain.wav"_s));
    const QString aiff = folder.path(u"a.aiff"_s);
    ASSERT_EQ(test::runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, wav, u"-i"_s, picture, u"-map"_s, u"0"_s,
                                             u"-map"_s, u"1"_s, u"-write_id3v2"_s, u"1"_s, u"-disposition:v"_s,
                                             u"attached_pic"_s, u"-c:v"_s, u"copy"_s, aiff})
                  .exitStatus,
              0);
    ASSERT_GT(QFileInfo(aiff).size(), QFileInfo(wav).size() + 200'000);
    const auto task = makeEncoder(aiff, u"M4A"_s);
    task->setDeleteOriginal(true);
    {
        const test::FileSizeLimit limit(200'000);
        runJob(task);
    }
    EXPECT_EQ(out.list(), QStringList{u"a.m4a"_s});
    EXPECT_TRUE(test::sameSound(wav, out.path(u"a.m4a"_s)));
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(outputWindows.value(0).startsWith(u"Error writing tags to file %1:\n"_s.arg(out.path(u"a.m4a"_s))))
        << qPrintable(outputWindows.value(0));
    EXPECT_EQ(log.with(u"Exception "_s).size(), 1);
    EXPECT_EQ(calls(u"AtomicParsley"_s).size(), 1);
    EXPECT_TRUE(statuses.contains(u"Making Gapless"_s));
    EXPECT_TRUE(folder.exists(u"a.aiff"_s));
}

TEST_F(StagesWithRealToolsTest, AnswersNoQuestionOfTheRealWavpack)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    out.write(u"a.wv"_s, "somebody's");
    const auto task = makeEncoder(wav, u"WV"_s);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_EQ(task->topTextField().text, u"Error");
    EXPECT_EQ(out.list(), QStringList{u"a.wv"_s});
    EXPECT_EQ(out.read(u"a.wv"_s), "somebody's");
    EXPECT_TRUE(folder.exists(u"a.wav"_s));
    out.write(u"b.wav"_s, "somebody's");
    const auto decoder = runJob(makeDecoder(makeWavpack(u"b.wv"_s), u"WAV"_s));
    EXPECT_TRUE(decoder->error());
    EXPECT_EQ(out.read(u"b.wav"_s), "somebody's");
}

TEST_F(StagesWithRealToolsTest, ReplacesAnAppleLosslessFileOnlyByAWholeOne)
{
    out.write(u"a.m4a"_s, "old");
    const QString bad = folder.write(u"a.wav"_s, "this is no sound");
    EXPECT_TRUE(runJob(makeEncoder(bad, u"M4A"_s))->error());
    EXPECT_EQ(out.list(), QStringList{u"a.m4a"_s});
    EXPECT_EQ(out.read(u"a.m4a"_s), "old");
    const QString good = test::writeWav(folder.path(u"a.wav"_s));
    EXPECT_FALSE(runJob(makeEncoder(good, u"M4A"_s))->error());
    EXPECT_EQ(out.list(), QStringList{u"a.m4a"_s});
    EXPECT_TRUE(test::sameSound(good, out.path(u"a.m4a"_s)));
    EXPECT_EQ(QFileInfo(out.path(u"a.m4a"_s)).permissions() & QFile::ReadOther, QFile::ReadOther);
}

TEST_F(StagesWithRealToolsTest, LeavesNothingOfAFailedDecodingOfAppleLossless)
{
    const QString bad = folder.write(u"a.m4a"_s, "this is no sound");
    for (const QString &format : {u"WAV"_s, u"AIFF"_s}) {
        const auto task = makeDecoder(bad, format);
        task->setDeleteOriginal(true);
        runJob(task);
        EXPECT_TRUE(task->error());
        EXPECT_TRUE(outputWindows.last().startsWith(u"Error encoding %1 to %2:\n"_s.arg(bad, format)))
            << qPrintable(outputWindows.last());
        EXPECT_TRUE(task->report().contains(u"ExtAudioFileOpenURL failed"_s)) << qPrintable(task->report());
        EXPECT_EQ(out.list(), QStringList());
        EXPECT_TRUE(folder.exists(u"a.m4a"_s));
    }
}

TEST_F(StagesWithRealToolsTest, RefusesAFileOfTheOtherKind)
{
    // `ttaenc` goes by what a file is, not by what it is called.
    const QString tta = test::writeByFfmpeg(folder.path(u"a.tta"_s));
    const QString wav = test::writeWav(folder.path(u"b.wav"_s));
    ASSERT_TRUE(QFile::rename(tta, folder.path(u"a.wav"_s)));
    ASSERT_TRUE(QFile::rename(wav, folder.path(u"b.tta"_s)));
    auto task = runJob(makeEncoder(folder.path(u"a.wav"_s), u"TTA"_s));
    EXPECT_TRUE(task->error());
    task = runJob(makeDecoder(folder.path(u"b.tta"_s), u"WAV"_s));
    EXPECT_TRUE(task->error());
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(StagesWithRealToolsTest, LeavesNothingOnAFullDisk)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can mount a small file system";
    const test::SoundShape shape{.seconds = 5};
    const QString wav = test::writeWav(folder.path(u"a.wav"_s), shape);
    const QString aiff = test::writeAiff(folder.path(u"b.aiff"_s), shape);
    const QString alac = test::writeByFfmpeg(folder.path(u"c.m4a"_s), shape, {u"-c:a"_s, u"alac"_s});
    const QString wv = makeWavpack(u"d.wv"_s, shape);
    const QString tta = test::writeByFfmpeg(folder.path(u"e.tta"_s), shape);
    ASSERT_EQ(test::runProgram(tools.path(u"mac"_s), {wav, folder.path(u"f.ape"_s), u"-c1000"_s}).exitStatus, 0);
    const QString flac = test::writeFlac(folder.path(u"g.flac"_s), shape);
    const QStringList before = folder.list();

    const QByteArray disk = QFile::encodeName(out.path());
    if (::mount("none", disk.constData(), "tmpfs", 0, "size=64k") != 0)
        GTEST_SKIP() << "mounting is not allowed here";
    std::vector<std::shared_ptr<StagedTask>> tasks;
    for (const QString &source : {wav, aiff, alac}) {
        for (const QString &format : {u"WV"_s, u"TTA"_s, u"APE"_s, u"M4A"_s})
            tasks.push_back(makeEncoder(source, format));
    }
    tasks.push_back(makeEncoder(alac, u"FLAC"_s));
    tasks.push_back(makeEncoder(wv, u"FLAC"_s));
    for (const QString &source : {flac, wv, folder.path(u"f.ape"_s)})
        tasks.push_back(makeEncoder(source, u"M4A"_s));
    for (const QString &source : {wv, tta, folder.path(u"f.ape"_s), alac}) {
        for (const QString &format : {u"WAV"_s, u"AIFF"_s})
            tasks.push_back(makeDecoder(source, format));
    }
    for (const auto &task : tasks) {
        SCOPED_TRACE(qPrintable(task->fileName() + u" to "_s + task->outputFile()));
        task->setDeleteOriginal(true);
        runJob(task);
        EXPECT_TRUE(task->error());
        const QStringList left = QDir(out.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        EXPECT_TRUE(left.isEmpty()) << qPrintable(left.join(u' ')) << '\n' << qPrintable(task->report());
        for (const QString &name : left)
            QFile::remove(out.path(name));
    }
    EXPECT_EQ(::umount(disk.constData()), 0);
    EXPECT_EQ(folder.list(), before);
}

TEST_F(StagesWithRealToolsTest, CancelsTheAudioServiceBetweenItsBuffers)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s), {.seconds = 120});
    const QString alac = test::writeByFfmpeg(folder.path(u"b.m4a"_s), {.seconds = 120}, {u"-c:a"_s, u"alac"_s});
    const QString aiff = test::writeAiff(folder.path(u"c.aiff"_s), {.seconds = 120});
    for (const auto &task : {makeEncoder(wav, u"M4A"_s), makeDecoder(alac, u"WAV"_s), makeDecoder(alac, u"AIFF"_s),
                             makeEncoder(alac, u"WV"_s), makeEncoder(alac, u"FLAC"_s), makeEncoder(aiff, u"TTA"_s)}) {
        SCOPED_TRACE(qPrintable(task->outputFile()));
        statuses.clear();
        task->setDeleteOriginal(true);
        queue().addTask(task);
        const QRegularExpression figureOfTheService(u"^Encoding to .*%$"_s);
        ASSERT_TRUE(test::waitUntil([&] { return !statuses.filter(figureOfTheService).isEmpty(); }));
        task->cancelTask();
        ASSERT_TRUE(finish());
        ASSERT_TRUE(test::waitUntil([] { return workerThreads::runningCount() == 0; }));
        EXPECT_EQ(task->textField().text, u"Canceled");
        EXPECT_FALSE(task->error());
        EXPECT_EQ(out.list(), QStringList());
        EXPECT_TRUE(QFile::exists(task->fileName()));
    }
    EXPECT_TRUE(outputWindows.isEmpty());
}

} // namespace
} // namespace nurv

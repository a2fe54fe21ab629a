// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lossy/LossyFixture.h"

#include "lossy/LossyTab.h"
#include "support/FileSizeLimit.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QtEndian>

#include <algorithm>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class LossyJobsTest : public test::LossyFixture {
protected:
    void logCalls(const QString &program)
    {
        tools.remove(program);
        tools.addLogged(program, folder.path(program + u".log"_s));
    }
    /// The calls with the folders shortened and the name of the temporary WAV replaced.
    [[nodiscard]] QStringList calledWith(const QString &program) const
    {
        QStringList lines = calls(program);
        for (QString &line : lines)
            line = shortened(line).replace(QRegularExpression(u"Nurv-[0-9a-f]{8}-\\w{8}"_s), u"TEMP"_s).replace(out.path(), u"out"_s);
        return lines;
    }
    QString plainFlac(const QString &name) { return test::writeFlac(folder.path(name), {.seconds = 0.5}); }
};

TEST_F(LossyJobsTest, GivesShntoolTheFolderForFlacAndTheWholeNameInOtherCases)
{
    logCalls(u"shntool"_s);
    EXPECT_FALSE(runJob(makeMp3(plainFlac(u"a.flac"_s)))->error());
    EXPECT_FALSE(runJob(makeMp3(plainFlac(u"b.FLAC"_s), u"VBR"_s, 3))->error());
    EXPECT_FALSE(runJob(makeMp3(plainFlac(u"c.Flac"_s)))->error());
    EXPECT_EQ(calledWith(u"shntool"_s),
              (QStringList{u"conv|-P|pct|-O|never|-o|cust ext=mp3 lame -b 160 - %f|-d|out|in/a.flac"_s,
                           u"conv|-P|pct|-O|never|-o|cust ext=mp3 lame -V 3 - %f|-n|out/b.mp3|in/b.FLAC"_s,
                           u"conv|-P|pct|-O|never|-o|cust ext=mp3 lame -b 160 - %f|-n|out/c.mp3|in/c.Flac"_s}));
    EXPECT_EQ(out.list(), (QStringList{u"a.mp3"_s, u"b.mp3"_s, u"c.mp3"_s}));
}

TEST_F(LossyJobsTest, GivesLameAWavFileItself)
{
    logCalls(u"lame"_s);
    EXPECT_FALSE(runJob(makeMp3(test::writeWav(folder.path(u"a.wav"_s)), u"VBR"_s, 0))->error());
    EXPECT_EQ(calledWith(u"lame"_s), QStringList{u"--brief|-V|0|in/a.wav|out/a.mp3"_s});
}

TEST_F(LossyJobsTest, MakesAnMp3OfAppleLosslessUnderTheNameOfItsTemporaryWav)
{
    logCalls(u"shntool"_s);
    const auto task = runJob(makeMp3(makeSource(u"M4A"_s, {.seconds = 0.5})));
    EXPECT_FALSE(task->error()) << qPrintable(task->report());
    EXPECT_EQ(calledWith(u"shntool"_s),
              QStringList{u"conv|-P|pct|-O|never|-o|cust ext=mp3 lame -b 160 - %f|-d|out|out/TEMP.wav"_s});
    EXPECT_EQ(out.list(), QStringList{u"a.mp3"_s});
    EXPECT_TRUE(statuses.contains(u"Decoding ALAC to Wav"_s)) << qPrintable(statuses.join(u'|'));
    EXPECT_TRUE(statuses.contains(u"Encoding to LAME MP3"_s));
    EXPECT_TRUE(statuses.contains(u"Copying M4A Tags"_s));
}

TEST_F(LossyJobsTest, FloatingPointSamplesKeepTheirLevel)
{
    const auto peakOf = [](const QString &path) {
        const auto decoded =
            test::runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-i"_s, path, u"-f"_s, u"s16le"_s, u"-"_s});
        EXPECT_EQ(decoded.exitStatus, 0);
        int peak = 0;
        for (qsizetype at = 0; at + 1 < decoded.output.size(); at += 2)
            peak = std::max(peak, std::abs(int{qFromLittleEndian<qint16>(decoded.output.constData() + at)}));
        return peak;
    };
    for (const QString &coding : {u"pcm_f32le"_s, u"pcm_f64le"_s}) {
        const QString source = test::writeByFfmpeg(folder.path(u"a.wav"_s), {.seconds = 1.0},
                                                   {u"-af"_s, u"volume=0.1"_s, u"-c:a"_s, coding});
        const int before = peakOf(source);
        ASSERT_GT(before, 500);
        ASSERT_LT(before, 6000);
        for (const std::shared_ptr<StagedTask> &task :
             std::initializer_list<std::shared_ptr<StagedTask>>{makeMp3(source, u"CBR"_s, 320), makeMp3(source, u"VBR"_s, 0)}) {
            runJob(task);
            EXPECT_FALSE(task->error()) << qPrintable(task->report());
            EXPECT_NEAR(peakOf(output(u"mp3"_s)), before, before / 5) << qPrintable(coding);
            ASSERT_TRUE(QFile::remove(output(u"mp3"_s)));
        }
    }
}

TEST_F(LossyJobsTest, NamesTheMp3OfASourceWhoseExtensionShntoolDoesNotKnow)
{
    const auto task = runJob(makeMp3(test::writeAiff(folder.path(u"a.AIF"_s))));
    EXPECT_FALSE(task->error()) << qPrintable(task->report());
    EXPECT_EQ(out.list(), QStringList{u"a.mp3"_s});
}

TEST_F(LossyJobsTest, NamesTheMp3OfASourceThatIsNamedAsAnotherFormat)
{
    const QString source = folder.path(u"a.flac"_s);
    ASSERT_TRUE(QFile::rename(test::writeWav(folder.path(u"a.wav"_s)), source));
    const auto task = runJob(makeMp3(source));
    EXPECT_EQ(out.list(), QStringList{u"a.mp3"_s}) << qPrintable(task->report());
    EXPECT_TRUE(QFile::exists(source));
}

TEST_F(LossyJobsTest, GivesOpusencTitleAndArtistOfAFlacFile)
{
    logCalls(u"opusenc"_s);
    const QString flac = test::writeFlac(folder.path(u"a.flac"_s), {}, {u"-T"_s, u"TITLE=T"_s, u"-T"_s, u"ARTIST=A"_s});
    EXPECT_FALSE(runJob(makeOpus(flac, u"CBR"_s, 128, 20))->error());
    EXPECT_FALSE(runJob(makeOpus(plainFlac(u"b.flac"_s), u"VBR Constrained"_s, 96, 2.5))->error());
    EXPECT_FALSE(runJob(makeOpus(test::writeWav(folder.path(u"c.wav"_s)), u"VBR"_s, 64, 60))->error());
    EXPECT_EQ(calledWith(u"opusenc"_s),
              (QStringList{u"--hard-cbr|--bitrate|128|--framesize|20|--title|T|--artist|A|out/TEMP.wav|out/TEMP.opus"_s,
                           u"--cvbr|--bitrate|96|--framesize|2.5|--title||--artist||out/TEMP.wav|out/TEMP.opus"_s,
                           u"--vbr|--bitrate|64|--framesize|60|in/c.wav|out/c.opus"_s}));
    EXPECT_EQ(out.list(), (QStringList{u"a.opus"_s, u"b.opus"_s, u"c.opus"_s}));
    EXPECT_TRUE(statuses.contains(u"Encoding to Opus"_s)) << qPrintable(statuses.join(u'|'));
    EXPECT_TRUE(statuses.contains(u"Decoding FLAC to Wav"_s));
    EXPECT_TRUE(statuses.contains(u"Encoding To Opus"_s));
}

TEST_F(LossyJobsTest, RejectsWhatOpusDoesNotHave)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    for (const auto &task : {makeOpus(wav, u"ABR"_s, 128, 20), makeOpus(wav, u"VBR"_s, 128, 30)}) {
        runJob(task);
        EXPECT_TRUE(task->error());
        EXPECT_TRUE(task->report().contains(u"Opus has no mode"_s)) << qPrintable(task->report());
    }
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(LossyJobsTest, TellsTheAudioServiceByTypeAndLevel)
{
    const auto settings = [this](const QString &type, int level) { return makeAac(u"/a.wav"_s, type, level)->settings(); };
    EXPECT_EQ(settings(u"CBR"_s, 160).bitRate, 160000U);
    EXPECT_EQ(settings(u"CBR"_s, 160).bitRateMode, 0U);
    EXPECT_EQ(settings(u"ABR"_s, 160).bitRate, 160000U);
    EXPECT_EQ(settings(u"ABR"_s, 160).bitRateMode, 1U);
    EXPECT_EQ(settings(u"VBR Constrained"_s, 96).bitRate, 96000U);
    EXPECT_EQ(settings(u"VBR Constrained"_s, 96).bitRateMode, 2U);
    EXPECT_EQ(settings(u"VBR"_s, 88).quality, 88U);
    EXPECT_EQ(settings(u"VBR"_s, 88).bitRateMode, 3U);
    EXPECT_EQ(settings(u"VBR"_s, 88).bitRate, 0U);
    EXPECT_EQ(settings(u"?"_s, 88).quality, 0U);
    EXPECT_EQ(makeAac(u"/a.wav"_s, u"ABR"_s, 160)->encoderSettingsForTag(), u"ABR 160kbps"_s);
    EXPECT_EQ(makeAac(u"/a.wav"_s, u"VBR"_s, 88)->encoderSettingsForTag(), u"True VBR Quality 88"_s);
    EXPECT_EQ(makeAac(u"/a.wav"_s, u"?"_s, 88)->encoderSettingsForTag(), std::nullopt);
}

TEST_F(LossyJobsTest, MakesAnUnknownTypeGaplessAsWell)
{
    logCalls(u"AtomicParsley"_s);
    EXPECT_FALSE(runJob(makeAac(test::writeWav(folder.path(u"a.wav"_s)), u"?"_s, 7))->error());
    EXPECT_EQ(calledWith(u"AtomicParsley"_s).size(), 1);
    EXPECT_EQ(test::ffprobeTags(out.path(u"a.m4a"_s)).value(u"gapless_playback"_s), u"1");
}

TEST_F(LossyJobsTest, DeletesASourceWhoseOutputDecodesAndIsAsLong)
{
    set(u"trashOrDelete", 1);
    const auto make = [this](const QString &name) { return test::writeWav(folder.path(name), {.seconds = 2.0}); };
    for (const std::shared_ptr<StagedTask> &task : std::initializer_list<std::shared_ptr<StagedTask>>{
             makeMp3(make(u"a.wav"_s)), makeAac(make(u"b.wav"_s)), makeOpus(make(u"c.wav"_s))}) {
        task->setDeleteOriginal(true);
        runJob(task);
        EXPECT_FALSE(task->error()) << qPrintable(task->report());
        EXPECT_EQ(task->outcome().proof, TaskOutcome::Proof::Proven);
        EXPECT_FALSE(QFile::exists(task->fileName())) << qPrintable(task->outcome().problem);
    }
}

TEST_F(LossyJobsTest, KeepsASourceWhoseTagsHaveNoPlaceInTheOutput)
{
    const QString flac = makeSource(u"flac"_s, {.seconds = 1.0});
    const auto task = makeOpus(flac);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_FALSE(task->error()) << qPrintable(task->report());
    EXPECT_TRUE(QFile::exists(flac));
    EXPECT_EQ(task->outcome().original, TaskOutcome::Original::Kept);
}

TEST_F(LossyJobsTest, KeepsTheSourceOfAnEncoderThatWroteTooLittle)
{
    // Another sound's MP3, half as long, with status 0.
    const QString shorter = test::writeByFfmpeg(folder.path(u"short.mp3"_s), {.seconds = 1.0});
    const QString wav = test::writeWav(folder.path(u"a.wav"_s), {.seconds = 2.0});
    setFake(u"lame"_s, "copy=" + shorter.toUtf8() + ":" + out.path(u"a.mp3"_s).toUtf8());
    const auto task = makeMp3(wav);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->report().contains(u"lasts"_s)) << qPrintable(task->report());
    EXPECT_TRUE(QFile::exists(wav));
}

TEST_F(LossyJobsTest, EndsInErrorWithTheProgramsWordsForWhatItCannotEncode)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s), {.channels = 6, .seconds = 1.0, .extensible = true});
    const auto task = makeMp3(wav);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_FALSE(task->report().section(u'\n', 1).trimmed().isEmpty()) << "the report says why";
    EXPECT_TRUE(QFile::exists(wav));
    EXPECT_EQ(out.list(), QStringList());
}

/// The pitch of each channel by its crossings of zero, after ffmpeg in the order of WAV files: front left and right,
/// centre, low frequencies, back left and right.
QList<double> pitches(const QString &path)
{
    constexpr int kRate = 48000;
    constexpr int kChannels = 6;
    const auto decoded = test::runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, path, u"-f"_s, u"s16le"_s, u"-ar"_s,
                                                        QString::number(kRate), u"-"_s});
    const auto *const samples = reinterpret_cast<const qint16 *>(decoded.output.constData());
    const qsizetype frames = decoded.output.size() / 2 / kChannels;
    QList<double> pitches;
    for (int channel = 0; channel < kChannels; ++channel) {
        int crossings = 0;
        // A little noise is no crossing.
        int side = 0;
        for (qsizetype i = 0; i < frames; ++i) {
            const int value = samples[i * kChannels + channel];
            const int now = value > 1000 ? 1 : value < -1000 ? -1 : side;
            crossings += side != 0 && now != side;
            side = now;
        }
        pitches.append(frames > 0 ? crossings * kRate / (2.0 * static_cast<double>(frames)) : 0.0);
    }
    return pitches;
}

TEST_F(LossyJobsTest, EncodesSixChannelsInTheirOrderToAacAndOpus)
{
    const QString wav = folder.path(u"a.wav"_s);
    const QList<double> tones{440, 660, 880, 60, 1100, 1320};
    QStringList arguments{u"-R"_s, u"-n"_s, u"-r"_s, u"48000"_s, u"-c"_s, u"6"_s, u"-b"_s, u"16"_s, wav, u"synth"_s, u"1"_s};
    for (const double tone : tones)
        arguments << u"sine"_s << QString::number(tone);
    ASSERT_EQ(test::runProgram(u"sox"_s, arguments << u"vol"_s << u"0.5"_s).exitStatus, 0);
    EXPECT_FALSE(runJob(makeAac(wav, u"ABR"_s, 384))->error());
    EXPECT_EQ(test::ffprobeStream(out.path(u"a.m4a"_s))[u"channel_layout"_s], u"5.1");
    EXPECT_FALSE(runJob(makeOpus(wav, u"VBR"_s, 384))->error());
    EXPECT_EQ(test::ffprobeStream(out.path(u"a.opus"_s))[u"channels"_s], u"6");
    for (const QString &name : {u"a.m4a"_s, u"a.opus"_s}) {
        const QList<double> heard = pitches(out.path(name));
        for (qsizetype i = 0; i < tones.size(); ++i)
            EXPECT_NEAR(heard[i], tones[i], 0.05 * tones[i]) << qPrintable(name) << " channel " << i;
    }
}

TEST_F(LossyJobsTest, LeavesWhatAnotherGaveTheNameOfItsOutputMeanwhile)
{
    // The encoder behind shntool waits, and somebody makes a file of that name.
    const QString flac = plainFlac(u"a.flac"_s);
    const QString aiff = test::writeAiff(folder.path(u"b.AIF"_s));
    setFake(u"shntool"_s, "create=" + folder.path(u"waits"_s).toUtf8() + ";wait-file=" + folder.path(u"go-on"_s).toUtf8()
                              + ";out=ERROR\\n;exit=1");
    for (const auto &[source, name] : {std::pair{flac, u"a.mp3"_s}, std::pair{aiff, u"b.AIF.mp3"_s}}) {
        const auto task = makeMp3(source);
        queue().addTask(task);
        ASSERT_TRUE(test::waitUntil([&] { return folder.exists(u"waits"_s); }));
        out.write(name, "somebody's");
        folder.write(u"go-on"_s, "");
        ASSERT_TRUE(finish());
        EXPECT_TRUE(task->error());
        EXPECT_EQ(out.read(name), "somebody's");
        folder.remove(u"waits"_s);
        folder.remove(u"go-on"_s);
    }
}

TEST_F(LossyJobsTest, MakesBothOfTwoSourcesWhoseNamesMeetOnTheWay)
{
    // Without a name of its own the first one's output would be a.AIF.mp3 for a while.
    const QString first = test::writeAiff(folder.path(u"a.AIF"_s));
    const QString second = test::writeFlac(folder.path(u"a.AIF.flac"_s));
    LossyTab tab(controller);
    for (int round = 0; round < 3; ++round) {
        prompts.expectOutputFolder(out.path());
        tab.addMatchedFiles({first, second});
        tab.executeCommand();
        ASSERT_TRUE(finish());
        EXPECT_EQ(out.list(), (QStringList{u"a.AIF.mp3"_s, u"a.mp3"_s}));
        for (const QString &name : out.list())
            ASSERT_TRUE(QFile::remove(out.path(name)));
    }
    for (const auto &task : endedTasks)
        EXPECT_FALSE(task->error());
}

TEST_F(LossyJobsTest, ReplacesAnOutputWhenTold)
{
    const QString flac = plainFlac(u"a.flac"_s);
    const QString wav = test::writeWav(folder.path(u"b.wav"_s));
    LossyTab tab(controller);
    tab.originals.existingOutputs = ExistingOutputs::Replace;
    for (const QString &encoder : {u"LAME MP3"_s, u"AAC"_s, u"Opus"_s}) {
        tab.outputFormatMatrix.selectTitle(encoder);
        const QString extension = encoder == u"AAC" ? u"m4a"_s : encoder == u"Opus" ? u"opus"_s : u"mp3"_s;
        out.write(u"a."_s + extension, "former");
        out.write(u"b."_s + extension, "former");
        prompts.expectOutputFolder(out.path());
        tab.addMatchedFiles({flac, wav});
        tab.executeCommand();
        ASSERT_TRUE(finish());
        EXPECT_EQ(out.list(), (QStringList{u"a."_s + extension, u"b."_s + extension}));
        for (const QString &name : out.list()) {
            EXPECT_NEAR(decodedSeconds(out.path(name), 44100), name.startsWith(u'a') ? 0.5 : 1.0, 0.03);
            ASSERT_TRUE(QFile::remove(out.path(name)));
        }
    }
    for (const auto &task : endedTasks) {
        EXPECT_FALSE(task->error()) << qPrintable(task->sourcePath());
        EXPECT_FALSE(task->outcome().output.isEmpty());
    }
}

TEST_F(LossyJobsTest, PassesOverOutputsThatAreThereOnlyWhenTheyAreWhole)
{
    const QString flac = test::writeFlac(folder.path(u"a.flac"_s), {.rate = 96000, .seconds = 2.0});
    for (const QString &encoder : {u"LAME MP3"_s, u"AAC"_s, u"Opus"_s}) {
        SCOPED_TRACE(qPrintable(encoder));
        LossyTab tab(controller);
        tab.originals.existingOutputs = ExistingOutputs::Skip;
        tab.outputFormatMatrix.selectTitle(encoder);
        const auto run = [&] {
            prompts.expectOutputFolder(out.path());
            tab.addMatchedFiles({flac});
            endedTasks.clear();
            tab.executeCommand();
            EXPECT_TRUE(finish());
        };
        run();
        ASSERT_EQ(endedTasks.size(), 1U);
        EXPECT_FALSE(endedTasks[0]->error());
        run();
        EXPECT_TRUE(endedTasks.empty()) << "it is there already";
        const QString made = out.path(out.list().at(0));
        ASSERT_TRUE(QFile::resize(made, QFileInfo(made).size() / 2));
        run();
        ASSERT_EQ(endedTasks.size(), 1U);
        EXPECT_TRUE(endedTasks[0]->error());
        EXPECT_TRUE(endedTasks[0]->outcome().problem.contains(u"not whole"_s)) << qPrintable(endedTasks[0]->outcome().problem);
        ASSERT_TRUE(QFile::remove(made));
    }
}

TEST_F(LossyJobsTest, ASourceWithoutSoundBecomesNothing)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s), {.seconds = 0.0});
    for (const std::shared_ptr<StagedTask> &task :
         std::initializer_list<std::shared_ptr<StagedTask>>{makeMp3(wav), makeAac(wav), makeOpus(wav)}) {
        task->setDeleteOriginal(true);
        runJob(task);
        EXPECT_TRUE(task->error());
        EXPECT_TRUE(QFile::exists(wav));
        for (const QString &left : out.list())
            ASSERT_TRUE(QFile::remove(out.path(left)));
    }
}

TEST_F(LossyJobsTest, NamesRatesThatAacDoesNotHave)
{
    const auto task = runJob(makeAac(test::writeWav(folder.path(u"a.wav"_s), {.rate = 384000, .seconds = 0.2})));
    EXPECT_TRUE(task->error());
    EXPECT_EQ(task->outcome().problem, u"AAC has no sample rate of 384000 Hz"_s);
}

TEST_F(LossyJobsTest, OpusOfWideSamplesGoesByWayOfNarrowerOnes)
{
    for (const QString &source : {test::writeWav(folder.path(u"a.wav"_s), {.bits = 32}),
                                  test::writeAiff(folder.path(u"a.aiff"_s), {.bits = 32})}) {
        const auto task = runJob(makeOpus(source));
        EXPECT_FALSE(task->error()) << qPrintable(source) << qPrintable(task->report());
        EXPECT_NEAR(20.0 * std::log10(levels(output(u"opus"_s)).at(0) / levels(source).at(0)), 0.0, 0.5);
        ASSERT_TRUE(QFile::remove(output(u"opus"_s)));
    }
}

TEST_F(LossyJobsTest, RefusesRatesThatAacDoesNotHave)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s), {.rate = 8000, .channels = 1});
    for (const auto &[type, level, problem] :
         {std::tuple{u"CBR"_s, 160, u"AAC takes up to 48 kbit/s at its sample rate with its channels, not 160"_s},
          std::tuple{u"ABR"_s, 4'294'968, u"AAC has no rate of 4294968 kbit/s"_s},
          std::tuple{u"VBR Constrained"_s, 0, u"AAC has no rate of 0 kbit/s"_s},
          std::tuple{u"VBR"_s, 128, u"AAC has no quality 128"_s}, std::tuple{u"VBR"_s, -1, u"AAC has no quality -1"_s}}) {
        const auto task = runJob(makeAac(wav, type, level));
        EXPECT_TRUE(task->error());
        EXPECT_EQ(task->outcome().problem, problem);
        EXPECT_EQ(out.list(), QStringList());
    }
}

TEST_F(LossyJobsTest, FailsWithTheTagWritersWordsAndWithoutTheGaplessStep)
{
    logCalls(u"AtomicParsley"_s);
    const QString flac = makeSource(u"flac"_s, {.seconds = 0.5});
    // The output's folder takes the sound, but no file beside it, which the tags need.
    const auto task = makeAac(flac);
    bool isGone = false;
    QObject::connect(&queue(), &NURVTaskQueue::rowChanged, &controller, [&](int) {
        if (!isGone && statuses.contains(u"Copying FLAC Tags"_s))
            isGone = QFile::remove(out.path(u"a.m4a"_s)) && out.write(u"a.m4a"_s, "no MPEG-4 file").size() > 0;
    });
    runJob(task);
    ASSERT_TRUE(isGone);
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->report().contains(u"Error writing tags to file:\n"_s)) << qPrintable(task->report());
    EXPECT_TRUE(calls(u"AtomicParsley"_s).isEmpty());
}

TEST_F(LossyJobsTest, KeepsToTheRatesOfTheEncoders)
{
    for (const auto &[rate, aac] : {std::pair{8000, 8000}, std::pair{96000, 48000}, std::pair{176400, 44100}, std::pair{192000, 48000}}) {
        const QString wav = test::writeWav(folder.path(u"a.wav"_s), {.rate = rate, .channels = 1, .seconds = 1.0});
        // lame takes no rate above 48 kHz without a word, and brings it down itself.
        const auto mp3 = runJob(makeMp3(wav, u"VBR"_s, 2));
        EXPECT_FALSE(mp3->error()) << rate << qPrintable(mp3->report());
        const auto m4a = runJob(makeAac(wav, u"VBR"_s, 88));
        EXPECT_FALSE(m4a->error()) << rate << qPrintable(m4a->report());
        EXPECT_EQ(test::ffprobeStream(out.path(u"a.m4a"_s))[u"sample_rate"_s], QString::number(aac));
        const auto opus = runJob(makeOpus(wav));
        EXPECT_FALSE(opus->error()) << rate << qPrintable(opus->report());
        for (const QString &name : out.list()) {
            EXPECT_EQ(test::ffprobeStream(out.path(name))[u"channels"_s], u"1") << qPrintable(name);
            EXPECT_NEAR(decodedSeconds(out.path(name), 44100), 1.0, 0.061) << qPrintable(name) << rate;
            ASSERT_TRUE(QFile::remove(out.path(name)));
        }
    }
}

TEST_F(LossyJobsTest, ReplacesNothingThatIsInTheWayOfShntool)
{
    out.write(u"a.mp3"_s, "somebody's");
    const auto task = runJob(makeMp3(plainFlac(u"a.flac"_s)));
    EXPECT_TRUE(task->error());
    EXPECT_EQ(out.read(u"a.mp3"_s), "somebody's");
    EXPECT_EQ(out.list(), QStringList{u"a.mp3"_s});
}

TEST_F(LossyJobsTest, LeavesNothingOnAFullDisk)
{
    for (const QString &format : {u"WAV"_s, u"flac"_s, u"M4A"_s}) {
        const QString source = makeSource(format, {.seconds = 4.0});
        const test::FileSizeLimit limit(20000);
        for (const std::shared_ptr<StagedTask> &task :
             std::initializer_list<std::shared_ptr<StagedTask>>{makeMp3(source), makeAac(source), makeOpus(source)}) {
            task->setDeleteOriginal(true);
            runJob(task);
            EXPECT_TRUE(task->error()) << qPrintable(task->outputFile());
            EXPECT_TRUE(QFile::exists(source));
            EXPECT_EQ(out.list(), QStringList()) << qPrintable(task->report());
        }
    }
}

} // namespace
} // namespace nurv

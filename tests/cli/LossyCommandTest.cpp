// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

/// The notes among the lines on standard error.
QStringList notesOf(const QStringList &options, const TestFolder &folder)
{
    const ProgramResult result = runNurv(QStringList{u"lossy"_s, u"--output-dir"_s, folder.path(u"out"_s), u"--overwrite"_s,
                                                     u"--yes"_s, folder.path(u"a.wav"_s)}
                                         + options);
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    QStringList notes;
    for (const QByteArray &line : result.errors.split('\n')) {
        if (line.contains("no effect"))
            notes.append(QString::fromUtf8(line));
    }
    return notes;
}

} // namespace

TEST(LossyCommand, EncodesAFolderWithEveryEncoder)
{
    const TestFolder folder;
    writeWav(folder.path(u"in/a.wav"_s), {.seconds = 1.0});
    writeFlac(folder.path(u"in/deep/b.flac"_s), {.seconds = 1.0}, {u"-T"_s, u"TITLE=A song"_s});
    for (const auto &[encoder, extension, codec] :
         {std::tuple{u"mp3"_s, u"mp3"_s, u"mp3"_s}, std::tuple{u"aac"_s, u"m4a"_s, u"aac"_s},
          std::tuple{u"opus"_s, u"opus"_s, u"opus"_s}}) {
        const QString out = folder.makeFolder(encoder);
        const ProgramResult result =
            runNurv({u"lossy"_s, u"--encoder"_s, encoder, u"--output-dir"_s, out, folder.path(u"in"_s)});
        EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
        EXPECT_TRUE(result.errors.contains("\n2 of 2 done; ")) << result.errors.constData();
        for (const QString &name : {u"a"_s, u"b"_s})
            EXPECT_EQ(ffprobeStream(out + u'/' + name + u'.' + extension)[u"codec_name"_s], codec);
        EXPECT_EQ(ffprobeTags(out + u"/b."_s + extension).value(u"title"_s), u"A song");
    }
    EXPECT_EQ(folder.list().size(), 2 + 3 * 2) << qPrintable(folder.list().join(u'\n'));
}

TEST(LossyCommand, PassesEncoderModeAndRateOn)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.2});
    const ProgramFolder tools;
    tools.addLogged(u"lame"_s, folder.path(u"log"_s));
    tools.addLogged(u"opusenc"_s, folder.path(u"log"_s));
    const auto encode = [&](const QStringList &options) {
        const ProgramResult result = runNurv(QStringList{u"lossy"_s, u"--beside-source"_s, wav} + options);
        EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
        folder.remove(folder.exists(u"a.mp3"_s) ? u"a.mp3"_s : u"a.opus"_s);
    };
    encode({});
    encode({u"--quality=0"_s});
    encode({u"--mode=cbr"_s, u"--bitrate=320"_s});
    encode({u"--mode=cbr"_s});
    encode({u"--encoder=opus"_s});
    encode({u"--encoder=opus"_s, u"--mode=cvbr"_s, u"--bitrate=96"_s, u"--frame-size=2.5"_s});
    encode({u"--encoder=opus"_s, u"--mode=cbr"_s, u"--bitrate=64"_s, u"--frame-size=60"_s});
    const QByteArray mp3 = '\t' + wav.toUtf8() + '\t' + folder.path(u"a.mp3"_s).toUtf8();
    const QByteArray opus = '\t' + wav.toUtf8() + '\t' + folder.path(u"a.opus"_s).toUtf8();
    EXPECT_EQ(folder.read(u"log"_s).trimmed().split('\n'),
              (QList<QByteArray>{"--brief\t-V\t3" + mp3, "--brief\t-V\t0" + mp3, "--brief\t-b\t320" + mp3,
                                 "--brief\t-b\t160" + mp3, "--vbr\t--bitrate\t160\t--framesize\t20" + opus,
                                 "--cvbr\t--bitrate\t96\t--framesize\t2.5" + opus,
                                 "--hard-cbr\t--bitrate\t64\t--framesize\t60" + opus}));
}

TEST(LossyCommand, ChoicesStoredByTheWindowCountForNothingAndStayAsTheyAre)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.2});
    const QByteArray stored = "[General]\nencodeLossyToSourceDirectory=0\nlossyComboLevel=32\nlossySliderLevel=9\n"
                              "lossyStepperLevel=0\nopusFrameSizeIndex=5\n";
    folder.write(u"settings.ini"_s, stored);
    const ProgramFolder tools;
    tools.addLogged(u"lame"_s, folder.path(u"log"_s));
    const ProgramResult result = runProgram(u"env"_s, {u"NURV_SETTINGS="_s + folder.path(u"settings.ini"_s), nurvPath(),
                                                       u"lossy"_s, u"--beside-source"_s, wav});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_TRUE(folder.read(u"log"_s).startsWith("--brief\t-V\t3\t"));
    EXPECT_EQ(folder.read(u"settings.ini"_s), stored);
}

TEST(LossyCommand, SaysWhereAnOptionHasNoEffect)
{
    const TestFolder folder;
    writeWav(folder.path(u"a.wav"_s), {.seconds = 0.2});
    folder.makeFolder(u"out"_s);
    EXPECT_EQ(notesOf({u"--bitrate=128"_s}, folder),
              QStringList{u"nurv: --bitrate has no effect with --mode vbr: --quality counts"_s});
    EXPECT_EQ(notesOf({u"--mode=cbr"_s, u"--quality=2"_s}, folder),
              QStringList{u"nurv: --quality has no effect with --mode cbr: --bitrate counts"_s});
    EXPECT_EQ(notesOf({u"--encoder=aac"_s, u"--mode=abr"_s, u"--bitrate=128"_s}, folder), QStringList());
    EXPECT_EQ(notesOf({u"--encoder=opus"_s, u"--bitrate=128"_s}, folder), QStringList());
    EXPECT_EQ(notesOf({u"--bitrate=128"_s, u"--quiet"_s}, folder), QStringList());
}

TEST(LossyCommand, RefusesWhatAnEncoderDoesNotHave)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    const std::vector<std::pair<QStringList, QByteArray>> cases{
        {{u"--encoder=ogg"_s}, "nurv lossy: --encoder takes one of mp3, aac, opus, not \"ogg\"."},
        {{u"--mode=abr"_s}, "nurv lossy: --mode abr goes with --encoder aac only, not with mp3."},
        {{u"--mode=cvbr"_s}, "nurv lossy: --mode cvbr goes with --encoder aac or opus only, not with mp3."},
        {{u"--encoder=opus"_s, u"--mode=abr"_s}, "nurv lossy: --mode abr goes with --encoder aac only, not with opus."},
        {{u"--quality=10"_s}, "nurv lossy: --quality takes a whole number from 0 to 9, not \"10\"."},
        {{u"--encoder=aac"_s, u"--quality=128"_s},
         "nurv lossy: --quality takes a whole number from 0 to 127, not \"128\"."},
        {{u"--encoder=opus"_s, u"--quality=5"_s}, "nurv lossy: --quality goes with --encoder mp3 or aac only, not with opus."},
        {{u"--frame-size=20"_s}, "nurv lossy: --frame-size goes with --encoder opus only, not with mp3."},
        {{u"--encoder=opus"_s, u"--frame-size=30"_s},
         "nurv lossy: --frame-size takes one of 2.5, 5, 10, 20, 40, 60, not \"30\"."},
        {{u"--bitrate=7"_s}, "nurv lossy: --bitrate takes a whole number from 8 to 320, not \"7\"."},
        {{u"--bitrate=640"_s}, "nurv lossy: --bitrate takes a whole number from 8 to 320, not \"640\"."},
        {{u"--encoder=opus"_s, u"--bitrate=-1"_s}, "nurv lossy: --bitrate takes a whole number from 6 to 2048, not \"-1\"."},
    };
    for (const auto &[options, sentence] : cases) {
        const ProgramResult result = runNurv(QStringList{u"lossy"_s, u"--beside-source"_s, wav} + options);
        EXPECT_EQ(result.exitStatus, 2) << sentence.constData();
        EXPECT_EQ(result.errors.split('\n').first(), sentence);
    }
    EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s});
}

TEST(LossyCommand, TakesAppleLosslessButNoLossyM4A)
{
    const TestFolder folder;
    writeByFfmpeg(folder.path(u"in/a.m4a"_s), {.seconds = 0.5}, {u"-c:a"_s, u"alac"_s});
    writeByFfmpeg(folder.path(u"in/b.m4a"_s), {.seconds = 0.5}, {u"-c:a"_s, u"aac"_s});
    writeByFfmpeg(folder.path(u"in/c.mp3"_s), {.seconds = 0.5});
    const QString out = folder.makeFolder(u"out"_s);
    const ProgramResult result = runNurv({u"lossy"_s, u"--output-dir"_s, out, folder.path(u"in"_s)});
    EXPECT_EQ(folder.list(), (QStringList{u"in/a.m4a"_s, u"in/b.m4a"_s, u"in/c.mp3"_s, u"out/a.mp3"_s}));
    EXPECT_TRUE(result.errors.contains("1 of 1 done")) << result.errors.constData();
}

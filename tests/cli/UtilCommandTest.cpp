// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

class UtilCommandTest : public ::testing::Test {
protected:
    [[nodiscard]] ProgramResult util(const QStringList &arguments) const
    {
        return runNurv(QStringList(u"util"_s) + arguments);
    }
    [[nodiscard]] QString path(const QString &name) const { return folder.path(name); }

    TestFolder folder;
};

} // namespace

TEST_F(UtilCommandTest, RenamesAndUndoes)
{
    folder.write(u"in/a.flac"_s, "1");
    folder.write(u"in/b.wav"_s, "2");
    const QStringList rename{u"rename"_s, u"--prefix"_s, u"Disc1-"_s, path(u"in"_s)};
    const ProgramResult trial = util(rename + QStringList(u"--dry-run"_s));
    EXPECT_EQ(trial.exitStatus, 0) << trial.errors.constData();
    const QString told = u"%1 -> Disc1-01.flac\n%2 -> Disc1-02.wav\n"_s.arg(path(u"in/a.flac"_s), path(u"in/b.wav"_s));
    EXPECT_EQ(QString::fromUtf8(trial.output), told);
    EXPECT_EQ(folder.list(), (QStringList{u"in/a.flac"_s, u"in/b.wav"_s}));
    const ProgramResult done = util(rename);
    EXPECT_EQ(done.exitStatus, 0);
    EXPECT_EQ(QString::fromUtf8(done.output), told);
    EXPECT_EQ(done.errors, "nurv: 2 files renamed\n");
    EXPECT_EQ(folder.list(), (QStringList{u"in/Disc1-01.flac"_s, u"in/Disc1-02.wav"_s}));
    const ProgramResult undone = util({u"rename"_s, u"--undo"_s});
    EXPECT_EQ(undone.exitStatus, 0) << undone.errors.constData();
    EXPECT_EQ(folder.list(), (QStringList{u"in/a.flac"_s, u"in/b.wav"_s}));
    const ProgramResult again = util({u"rename"_s, u"--undo"_s});
    EXPECT_EQ(again.exitStatus, 1);
    EXPECT_TRUE(again.errors.contains("there is nothing to undo")) << again.errors.constData();
}

TEST_F(UtilCommandTest, RenamesNothingWhereANameIsTakenOrAFileIsMissing)
{
    folder.write(u"a.flac"_s, "1");
    folder.write(u"x01.flac"_s, "mine");
    const ProgramResult taken = util({u"rename"_s, u"--prefix=x"_s, path(u"a.flac"_s)});
    EXPECT_EQ(taken.exitStatus, 1);
    EXPECT_EQ(taken.errors, "nurv: File at \"" + path(u"x01.flac"_s).toUtf8() + "\" already exists\nnurv: nothing was renamed\n");
    const ProgramResult missing = util({u"rename"_s, u"--prefix=y"_s, path(u"a.flac"_s), path(u"gone.flac"_s)});
    EXPECT_EQ(missing.exitStatus, 1);
    EXPECT_TRUE(missing.errors.contains("nothing was renamed")) << missing.errors.constData();
    EXPECT_EQ(folder.list(), (QStringList{u"a.flac"_s, u"x01.flac"_s}));
}

TEST_F(UtilCommandTest, TellsRenamingsInJson)
{
    folder.write(u"a.flac"_s, "1");
    const ProgramResult done = util({u"rename"_s, u"--json"_s, u"--prefix=x"_s, path(u"a.flac"_s)});
    const QList<QByteArray> lines = done.output.split('\n');
    const QJsonObject file = QJsonDocument::fromJson(lines.first()).object();
    EXPECT_EQ(file[u"type"_s].toString(), u"renamed");
    EXPECT_EQ(file[u"path"_s].toString(), path(u"a.flac"_s));
    EXPECT_EQ(file[u"newPath"_s].toString(), path(u"x01.flac"_s));
    EXPECT_EQ(QJsonDocument::fromJson(lines.at(1)).object()[u"files"_s].toInt(), 1);
}

TEST_F(UtilCommandTest, RefusesWrongUse)
{
    folder.write(u"a.flac"_s, "1");
    const QString file = path(u"a.flac"_s);
    for (const auto &[arguments, words] : std::vector<std::pair<QStringList, QByteArray>>{
             {{u"rename"_s, file}, "--prefix TEXT is needed"},
             {{u"rename"_s, u"--prefix="_s, file}, "the value of --prefix is empty"},
             {{u"rename"_s, u"--prefix=a/b"_s, file}, "A name cannot hold \"/\""},
             {{u"rename"_s, u"--prefix=x"_s}, "no files are given"},
             {{u"rename"_s, u"--undo"_s, file}, "--undo takes no paths"},
             {{u"rename"_s, u"--undo"_s, u"--prefix=x"_s}, "cannot both be given"},
             {{u"replaygain"_s, u"--add"_s, u"--remove"_s, file}, "cannot both be given"},
             {{u"deemphasis"_s, file}, "--output-dir DIR is needed"},
             {{u"dvda"_s, file}, "--output-dir DIR is needed"}}) {
        const ProgramResult refused = util(arguments);
        EXPECT_EQ(refused.exitStatus, 2) << words.constData();
        EXPECT_TRUE(refused.errors.contains(words)) << refused.errors.constData();
    }
    EXPECT_EQ(folder.list(), QStringList(u"a.flac"_s));
}

TEST_F(UtilCommandTest, AddsAndRemovesReplayGain)
{
    const QString flac = writeFlac(path(u"a.flac"_s), {}, {u"-T"_s, u"TITLE=T"_s});
    EXPECT_EQ(util({u"replaygain"_s, flac}).exitStatus, 0);
    EXPECT_EQ(metaflacTags(flac).filter(u"REPLAYGAIN_TRACK_GAIN="_s).size(), 1);
    const ProgramResult removed = util({u"replaygain"_s, u"--remove"_s, flac});
    EXPECT_EQ(removed.errors.split('\n').first(), "Removing FLAC replay gain: Complete");
    EXPECT_EQ(metaflacTags(flac), QStringList(u"TITLE=T"_s));
    const QString wav = writeWav(path(u"b.wav"_s));
    const ProgramResult refused = util({u"replaygain"_s, wav});
    EXPECT_EQ(refused.exitStatus, 1);
    EXPECT_TRUE(refused.errors.contains("b.wav: not a file of a kind that this command takes")) << refused.errors.constData();
}

TEST_F(UtilCommandTest, MakesNoSetWithoutOneOfItsFiles)
{
    const QString a = writeFlac(path(u"a.flac"_s));
    const QString b = writeFlac(path(u"b.flac"_s), {.seed = 2});
    const QString gone = path(u"gone.flac"_s);
    folder.makeFolder(u"out"_s);
    const QString out = path(u"out"_s);
    const QByteArray before = folder.read(u"a.flac"_s);
    const QList<QStringList> commands{{u"util"_s, u"replaygain"_s, a, gone, b},
                                      {u"util"_s, u"dvda"_s, u"--output-dir"_s, out, a, gone, b},
                                      {u"shntool"_s, u"join"_s, u"--output-dir"_s, out, a, gone, b},
                                      {u"shntool"_s, u"cue"_s, u"--output"_s, path(u"out/x.cue"_s), a, gone, b},
                                      {u"fix"_s, u"--output-dir"_s, out, a, gone, b}};
    for (const QStringList &command : commands) {
        const ProgramResult refused = runNurv(command);
        EXPECT_EQ(refused.exitStatus, 1) << qPrintable(command.join(u' '));
        EXPECT_TRUE(refused.errors.contains("nothing was done, since not all files can be worked on"))
            << qPrintable(command.join(u' ')) << refused.errors.constData();
        EXPECT_EQ(folder.list(), (QStringList{u"a.flac"_s, u"b.flac"_s}));
        EXPECT_TRUE(folder.read(u"a.flac"_s) == before);
    }
    // Without tags there is nothing that all of them have together.
    EXPECT_TRUE(
        runNurv({u"util"_s, u"replaygain"_s, u"--remove"_s, a, gone}).errors.contains("1 of 1 done, 1 refused"));
}

TEST_F(UtilCommandTest, TellsWhyFilesMakeNoDisc)
{
    folder.makeFolder(u"out"_s);
    const QStringList author{u"dvda"_s, u"--json"_s, u"--output-dir"_s, path(u"out"_s), writeWav(path(u"a.wav"_s))};
    const ProgramResult mixed = util(author + QStringList(writeWav(path(u"b.wav"_s), {.rate = 96000})));
    EXPECT_EQ(mixed.exitStatus, 1);
    const QString reason = u"The Files in the list must match in sample rate, bit depth and number of channels. "
                           "b.wav: 96000 Hz, 16 bits, 2 channels. Before it: 44100 Hz, 16 bits, 2 channels."_s;
    EXPECT_EQ(mixed.errors, u"nurv: %1\nnurv: nothing was done\n"_s.arg(reason).toUtf8());
    EXPECT_EQ(QJsonDocument::fromJson(mixed.output).object()[u"refused"_s].toArray(), QJsonArray{reason});
    const ProgramResult damaged = util(author + QStringList(folder.write(u"c.wav"_s, "no sound")));
    EXPECT_EQ(damaged.exitStatus, 1);
    EXPECT_TRUE(damaged.errors.contains("c.wav is of a kind that a disc does not take, or its format cannot be read"))
        << damaged.errors.constData();
    EXPECT_EQ(folder.list(), (QStringList{u"a.wav"_s, u"b.wav"_s, u"c.wav"_s}));
}

TEST_F(UtilCommandTest, DeEmphasisesAndTellsWhatItCannot)
{
    folder.makeFolder(u"out"_s);
    const ProgramResult mixed = util({u"deemphasis"_s, u"--output-dir"_s, path(u"out"_s), writeWav(path(u"a.wav"_s)),
                                      writeWav(path(u"b.wav"_s), {.rate = 96000})});
    EXPECT_EQ(mixed.exitStatus, 1);
    EXPECT_TRUE(mixed.errors.contains("a.wav: Complete\n")) << mixed.errors.constData();
    EXPECT_TRUE(mixed.errors.contains("b.wav: sample rate must be 44100 (audio-CD) or 48000 (DAT)\n"))
        << mixed.errors.constData();
    EXPECT_EQ(folder.list(), (QStringList{u"a.wav"_s, u"b.wav"_s, u"out/a-deemph.wav"_s}));
}

TEST_F(UtilCommandTest, AuthorsADiscOnce)
{
    folder.makeFolder(u"out"_s);
    const QStringList author{u"dvda"_s, u"--output-dir"_s, path(u"out"_s), writeWav(path(u"a.wav"_s)),
                             writeFlac(path(u"b.flac"_s))};
    const ProgramResult done = util(author);
    EXPECT_EQ(done.exitStatus, 0) << done.errors.constData();
    EXPECT_TRUE(done.errors.startsWith("Authoring AUDIO_TS directory: Complete\n2 of 2 done; ")) << done.errors.constData();
    EXPECT_TRUE(folder.exists(u"out/image.iso"_s));
    EXPECT_FALSE(folder.exists(u"out/DVD-AUDIO"_s));
    const ProgramResult again = util(author);
    EXPECT_EQ(again.exitStatus, 1);
    EXPECT_TRUE(again.errors.contains("image.iso is there already: move it away, or choose another folder"))
        << again.errors.constData();
}

TEST_F(UtilCommandTest, AuthorsNothingOfFilesThatDoNotMatch)
{
    folder.makeFolder(u"out"_s);
    const ProgramResult mixed = util({u"dvda"_s, u"--output-dir"_s, path(u"out"_s), writeWav(path(u"a.wav"_s)),
                                      writeWav(path(u"b.wav"_s), {.rate = 48000})});
    EXPECT_EQ(mixed.exitStatus, 1);
    EXPECT_TRUE(mixed.errors.contains(
        "The Files in the list must match in sample rate, bit depth and number of channels."))
        << mixed.errors.constData();
    const ProgramResult aiff = util({u"dvda"_s, u"--output-dir"_s, path(u"out"_s), writeAiff(path(u"c.aiff"_s))});
    EXPECT_EQ(aiff.exitStatus, 1);
    EXPECT_TRUE(aiff.errors.contains("c.aiff: not a file of a kind that this command takes")) << aiff.errors.constData();
    EXPECT_EQ(folder.list(), (QStringList{u"a.wav"_s, u"b.wav"_s, u"c.aiff"_s}));
}

TEST_F(UtilCommandTest, ExtractsNothingWithoutADrive)
{
    folder.makeFolder(u"out"_s);
    folder.write(u"disc/1 Track.aiff"_s, "x");
    const ProgramResult result = util({u"rip"_s, u"--output-dir"_s, path(u"out"_s), path(u"disc/1 Track.aiff"_s)});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.errors.contains("No drive is known that holds the disc of \"" + path(u"disc"_s).toUtf8()))
        << result.errors.constData();
    EXPECT_EQ(folder.list(), QStringList(u"disc/1 Track.aiff"_s));
}

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "TagFixtures.h"

#include <QFile>
#include <QJsonArray>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

class TagsCommand : public ::testing::Test {
protected:
    QString flac(const QString &name, const QStringList &fields = {})
    {
        const QString path = writeTaggableFlac(folder, name);
        for (const QString &field : fields)
            EXPECT_EQ(runProgram(u"metaflac"_s, {u"--set-tag="_s + field, path}).exitStatus, 0);
        return path;
    }
    /// One of each kind, with more tags than the fields have.
    QStringList tagged()
    {
        const QString cover = folder.write(u"cover.png"_s, encodedPicture(picture(9, 9, Qt::blue), "png"));
        const QString one = flac(u"a.flac"_s, {u"ARTIST=A"_s, u"ARTIST=B"_s, u"MOOD=a=b"_s, u"DATE=1977"_s});
        EXPECT_EQ(runProgram(u"metaflac"_s, {u"--import-picture-from="_s + cover, one}).exitStatus, 0);
        return {one,
                writeMp3(folder, u"b.mp3"_s, {u"--tt"_s, u"T"_s, u"--ty"_s, u"1999"_s, u"--tv"_s, u"TXXX=MOOD=x"_s, u"--ti"_s, cover}),
                writeWavpack(folder, u"c.wv"_s, {u"-w"_s, u"Title=T"_s, u"-w"_s, u"Mood=m"_s}),
                writeByFfmpeg(folder.path(u"d.m4a"_s), {.seconds = 0.5},
                              {u"-c:a"_s, u"alac"_s, u"-metadata"_s, u"title=T"_s, u"-metadata"_s, u"track=3/12"_s})};
    }

    TestFolder folder;
};

TEST_F(TagsCommand, SetsWhatIsGivenAndKeepsAllElse)
{
    const QString path = flac(u"a.flac"_s, {u"ARTIST=A"_s, u"MOOD=m"_s});
    const QString image = folder.write(u"c.jpg"_s, encodedPicture(picture(20, 10, Qt::red), "jpeg"));
    const QByteArray sound = decodedMd5(path);
    const ProgramResult result = runNurv({u"tags"_s, u"set"_s, u"--album"_s, u"Al"_s, u"--custom"_s, u"KEY=C=d"_s, u"--picture"_s,
                                          image, u"--title=T"_s, path});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains("nurv: 1 file written\n")) << result.errors.constData();
    const QStringList tags = metaflacTags(path);
    for (const QString &field : {u"ARTIST=A"_s, u"MOOD=m"_s, u"ALBUM=Al"_s, u"KEY=C=d"_s, u"TITLE=T"_s})
        EXPECT_TRUE(tags.contains(field)) << qPrintable(field);
    EXPECT_TRUE(runProgram(u"metaflac"_s, {u"--list"_s, u"--block-type=PICTURE"_s, path}).output.contains("image/png"));
    EXPECT_EQ(decodedMd5(path), sound);
}

TEST_F(TagsCommand, ADryRunTellsOldAndNewAndWritesNothing)
{
    const QStringList paths = tagged();
    const QByteArray before = folder.read(u"a.flac"_s);
    const ProgramResult result = runNurv(QStringList{u"tags"_s, u"set"_s, u"--dry-run"_s, u"--empty"_s, u"--album=Al"_s} + paths);
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    for (const char *line : {"    Album: (none) → “Al”\n", "    Artist: “A”, “B” → (removed)\n", "    MOOD: “a=b” → (removed)\n",
                             "    Track: “3/12” → “0/0”\n"})
        EXPECT_TRUE(result.output.contains(line)) << line << result.output.constData();
    EXPECT_FALSE(result.output.contains("1977"));
    EXPECT_EQ(folder.read(u"a.flac"_s), before);
}

TEST_F(TagsCommand, ABackupBringsEveryTagBack)
{
    const QStringList paths = tagged();
    const ProgramResult backup = runNurv(QStringList{u"tags"_s, u"show"_s, u"--json"_s} + paths);
    ASSERT_EQ(backup.exitStatus, 0) << backup.errors.constData();
    ASSERT_EQ(jsonLines(backup.output).size(), 5);
    const QString file = folder.write(u"backup.json"_s, backup.output);
    QList<QByteArray> sounds;
    for (const QString &path : paths)
        sounds.append(decodedMd5(path));
    ASSERT_EQ(runNurv(QStringList{u"tags"_s, u"set"_s, u"--empty"_s, u"--album=Other"_s} + paths).exitStatus, 0);
    EXPECT_NE(runNurv(QStringList{u"tags"_s, u"show"_s, u"--json"_s} + paths).output, backup.output);
    const ProgramResult restored = runNurv({u"tags"_s, u"set"_s, u"--from-json"_s, file});
    EXPECT_EQ(restored.exitStatus, 0) << restored.errors.constData();
    EXPECT_EQ(runNurv(QStringList{u"tags"_s, u"show"_s, u"--json"_s} + paths).output, backup.output);
    for (qsizetype i = 0; i < paths.size(); ++i)
        EXPECT_EQ(decodedMd5(paths.at(i)), sounds.at(i)) << qPrintable(paths.at(i));
}

TEST_F(TagsCommand, ABackupIsReadFromStandardInputAndFollowsFilesThatHaveMoved)
{
    const QString path = flac(u"a.flac"_s, {u"TITLE=T"_s});
    const ProgramResult backup = runNurv({u"tags"_s, u"show"_s, u"--json"_s, path});
    folder.makeFolder(u"new"_s);
    ASSERT_TRUE(QFile::rename(path, folder.path(u"new/a.flac"_s)));
    ASSERT_EQ(runProgram(u"metaflac"_s, {u"--remove-all-tags"_s, folder.path(u"new/a.flac"_s)}).exitStatus, 0);
    const QString file = folder.write(u"b.json"_s, backup.output);
    const QString script = u"\"$0\" tags set --from-json - \"$2\" < \"$1\""_s;
    const ProgramResult result = runProgram(u"sh"_s, {u"-c"_s, script, nurvPath(), file, folder.path(u"new"_s)});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_TRUE(metaflacTags(folder.path(u"new/a.flac"_s)).contains(u"TITLE=T"_s));
}

TEST_F(TagsCommand, ABackupOfEqualNamesGivesNoFileTheTagsOfAnother)
{
    folder.makeFolder(u"d1"_s);
    folder.makeFolder(u"d2"_s);
    const QString one = flac(u"d1/t01.flac"_s, {u"TITLE=One"_s});
    const QString two = flac(u"d2/t01.flac"_s, {u"TITLE=Two"_s});
    const QString file = folder.write(u"b.json"_s, runNurv({u"tags"_s, u"show"_s, u"--json"_s, one, two}).output);
    const ProgramResult named = runNurv({u"tags"_s, u"set"_s, u"--from-json"_s, file, one});
    EXPECT_EQ(named.exitStatus, 0) << named.errors.constData();
    EXPECT_TRUE(named.errors.contains("1 more file in the backup are of files that are not named"))
        << named.errors.constData();
    EXPECT_TRUE(metaflacTags(one).contains(u"TITLE=One"_s));
    // Nobody can tell which of the two has moved there.
    ASSERT_TRUE(QFile::rename(one, folder.path(u"t01.flac"_s)));
    const QByteArray before = folder.read(u"t01.flac"_s);
    const ProgramResult moved = runNurv({u"tags"_s, u"set"_s, u"--from-json"_s, file, folder.path(u"t01.flac"_s)});
    EXPECT_EQ(moved.exitStatus, 1);
    EXPECT_TRUE(moved.errors.contains("the backup has the tags of several files for it")) << moved.errors.constData();
    EXPECT_EQ(folder.read(u"t01.flac"_s), before);
}

TEST_F(TagsCommand, ABackupThatMakesNoSenseWritesNothing)
{
    const QString path = flac(u"a.flac"_s, {u"TITLE=T"_s});
    const QByteArray before = folder.read(u"a.flac"_s);
    const QByteArray head = "{\"type\":\"tags\",\"path\":\"" + path.toUtf8() + "\"";
    for (const char *rest : {",\"stored\":null}", ",\"stored\":{}}", ",\"stored\":[7]}", ",\"fields\":{\"track\":7}}",
                             ",\"fields\":{\"titel\":\"x\"}}", ",\"custom\":{\"MOOD\":1}}", ",\"fields\":[]}", "}"}) {
        const QString file = folder.write(u"b.json"_s, head + rest + '\n');
        const ProgramResult result = runNurv({u"tags"_s, u"set"_s, u"--from-json"_s, file});
        EXPECT_EQ(result.exitStatus, 2) << rest << result.errors.constData();
        EXPECT_EQ(folder.read(u"a.flac"_s), before) << rest;
    }
}

TEST_F(TagsCommand, KeepsTheOtherHalfOfNumberAndTotal)
{
    const QString mp3 = writeMp3(folder, u"b.mp3"_s, {u"--tn"_s, u"3/10"_s});
    ASSERT_EQ(runNurv({u"tags"_s, u"set"_s, u"--track=4"_s, mp3}).exitStatus, 0);
    EXPECT_EQ(ffprobeTags(mp3).value(u"track"_s), u"4/10");
    ASSERT_EQ(runNurv({u"tags"_s, u"set"_s, u"--track-total=12"_s, mp3}).exitStatus, 0);
    EXPECT_EQ(ffprobeTags(mp3).value(u"track"_s), u"4/12");
    const QString m4a =
        writeByFfmpeg(folder.path(u"d.m4a"_s), {.seconds = 0.5},
                      {u"-c:a"_s, u"alac"_s, u"-metadata"_s, u"track=3/12"_s, u"-metadata"_s, u"disc=1/2"_s});
    ASSERT_EQ(runNurv({u"tags"_s, u"set"_s, u"--track=4"_s, u"--disc-total=3"_s, m4a}).exitStatus, 0);
    EXPECT_EQ(ffprobeTags(m4a).value(u"track"_s), u"4/12");
    EXPECT_EQ(ffprobeTags(m4a).value(u"disc"_s), u"1/3");
}

TEST_F(TagsCommand, ACueSheetIsNotWrittenWhenAFileOfTheOrderIsMissing)
{
    const QString one = flac(u"1.flac"_s);
    const QString three = flac(u"3.flac"_s);
    const QString cue = folder.write(u"a.cue"_s, "TRACK 01 AUDIO\nTITLE \"One\"\nTRACK 02 AUDIO\nTITLE \"Two\"\n"
                                                 "TRACK 03 AUDIO\nTITLE \"Three\"\n");
    const ProgramResult result = runNurv({u"tags"_s, u"import-cue"_s, cue, one, folder.path(u"2.flac"_s), three});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.errors.contains("nothing is written")) << result.errors.constData();
    EXPECT_FALSE(metaflacTags(three).contains(u"TITLE=Two"_s));
}

TEST_F(TagsCommand, ATotalWithoutANumberIsToldAndNotWritten)
{
    const QString mp3 = writeMp3(folder, u"b.mp3"_s, {u"--tt"_s, u"T"_s});
    const QByteArray before = folder.read(u"b.mp3"_s);
    for (const QString &total : {u"--track-total=12"_s, u"--disc-total=2"_s}) {
        const ProgramResult result = runNurv({u"tags"_s, u"set"_s, total, mp3});
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_TRUE(result.errors.contains("its kind takes a total only beside one")) << result.errors.constData();
        EXPECT_EQ(folder.read(u"b.mp3"_s), before);
    }
}

TEST_F(TagsCommand, FieldsOfABackupGoTheWayOfOptions)
{
    const QString mp3 = writeMp3(folder, u"b.mp3"_s, {u"--tn"_s, u"3/10"_s});
    const auto restore = [&](const QByteArray &fields) {
        const QString file =
            folder.write(u"b.json"_s, "{\"type\":\"tags\",\"path\":\"" + mp3.toUtf8() + "\"," + fields + "}\n");
        return runNurv({u"tags"_s, u"set"_s, u"--from-json"_s, file});
    };
    EXPECT_EQ(restore("\"fields\":{\"track\":\"4\"}").exitStatus, 0);
    EXPECT_EQ(ffprobeTags(mp3).value(u"track"_s), u"4/10");
    const ProgramResult none = restore("\"custom\":{\"MOOD\":\"x\"}");
    EXPECT_EQ(none.exitStatus, 1);
    EXPECT_TRUE(none.errors.contains("files of its kind take none of these tags")) << none.errors.constData();
    const ProgramResult name = restore("\"custom\":{\"G\xc3\xaanero\":\"x\"}");
    EXPECT_EQ(name.exitStatus, 2);
    EXPECT_TRUE(name.errors.contains("no field of a FLAC file can be called")) << name.errors.constData();
}

TEST_F(TagsCommand, ACueSheetWithOtherTracksThanTitlesIsNotWritten)
{
    const QStringList paths{flac(u"1.flac"_s), flac(u"2.flac"_s)};
    const auto import = [&](const QByteArray &sheet) {
        return runNurv(QStringList{u"tags"_s, u"import-cue"_s, folder.write(u"a.cue"_s, sheet)} + paths);
    };
    const ProgramResult unnumbered = import("TITLE \"Al\"\nTRACK 1 AUDIO\nTITLE \"One\"\nTRACK 2 AUDIO\nTITLE \"Two\"\n");
    EXPECT_EQ(unnumbered.exitStatus, 1);
    EXPECT_TRUE(unnumbered.errors.contains("its tracks do not begin with \"TRACK 01 AUDIO\": nothing is written"))
        << unnumbered.errors.constData();
    const ProgramResult untitled =
        import("TRACK 01 AUDIO\nTITLE \"One\"\nTRACK 02 AUDIO\nTRACK 03 AUDIO\nTITLE \"Three\"\n");
    EXPECT_EQ(untitled.exitStatus, 1);
    EXPECT_TRUE(untitled.errors.contains("there are 2 titles for its 3 tracks: nothing is written"))
        << untitled.errors.constData();
    EXPECT_TRUE(metaflacTags(paths.first()).filter(u"ALBUM="_s).isEmpty());
    EXPECT_TRUE(metaflacTags(paths.last()).filter(u"TITLE="_s).isEmpty());
    const ProgramResult album = import("TITLE \"Al\"\n");
    EXPECT_EQ(album.exitStatus, 0);
    EXPECT_TRUE(album.errors.contains("it has no tracks: only album and artist are written")) << album.errors.constData();
    EXPECT_TRUE(metaflacTags(paths.last()).contains(u"ALBUM=Al"_s));
}

TEST_F(TagsCommand, TellsOfFilesThatAreNone)
{
    const QString bad = folder.write(u"a.flac"_s, "no sound");
    for (const QStringList &arguments :
         {QStringList{u"show"_s, bad}, QStringList{u"set"_s, u"--dry-run"_s, u"--album=A"_s, bad}}) {
        const ProgramResult result = runNurv(QStringList(u"tags"_s) + arguments);
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_TRUE(result.errors.contains("a.flac: Unable to open the file for reading\n"))
            << result.errors.constData();
    }
}

TEST_F(TagsCommand, ImportsACueSheet)
{
    const QStringList paths{flac(u"1.flac"_s), flac(u"2.flac"_s)};
    const QString cue = folder.write(u"a.cue"_s, "TITLE \"Al\"\nPERFORMER \"P\"\nTRACK 01 AUDIO\nTITLE \"One\"\n"
                                                 "TRACK 02 AUDIO\nTITLE \"Two\"\n");
    const ProgramResult result = runNurv(QStringList{u"tags"_s, u"import-cue"_s, cue, paths.at(1), paths.at(0)});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    const QStringList tags = metaflacTags(paths.at(1));
    for (const QString &field : {u"TITLE=Two"_s, u"TRACKNUMBER=2"_s, u"ALBUM=Al"_s, u"ARTIST=P"_s})
        EXPECT_TRUE(tags.contains(field)) << qPrintable(field);
    const ProgramResult fewer = runNurv(QStringList{u"tags"_s, u"import-cue"_s, cue, flac(u"3.flac"_s)} + paths);
    EXPECT_EQ(fewer.exitStatus, 1);
    EXPECT_TRUE(fewer.errors.contains("Number of selected files to tag is greater than number of track names entered"));
    EXPECT_FALSE(metaflacTags(folder.path(u"3.flac"_s)).contains(u"ALBUM=Al"_s));
}

TEST_F(TagsCommand, ACueSheetIsNotWrittenIntoAFolderWithASoundThatTakesNoTags)
{
    const QString one = flac(u"album/1.flac"_s);
    const QString three = flac(u"album/3.flac"_s);
    const QString cue = folder.write(u"album/a.cue"_s, "TRACK 01 AUDIO\nTITLE \"One\"\nTRACK 02 AUDIO\nTITLE \"Two\"\n"
                                                       "TRACK 03 AUDIO\nTITLE \"Three\"\n");
    folder.write(u"album/cover.jpg"_s, "a picture");
    folder.write(u"album/2.wav"_s, "a sound");
    const QStringList command{u"tags"_s, u"import-cue"_s, cue, folder.path(u"album"_s)};
    const ProgramResult refused = runNurv(command);
    EXPECT_EQ(refused.exitStatus, 1);
    EXPECT_TRUE(refused.errors.contains("a sound that takes no tags has a place in the order"))
        << refused.errors.constData();
    EXPECT_FALSE(metaflacTags(three).contains(u"TITLE=Two"_s));
    // Of pictures and texts nobody thinks that they count.
    ASSERT_TRUE(QFile::remove(folder.path(u"album/2.wav"_s)));
    EXPECT_EQ(runNurv(command).exitStatus, 0);
    EXPECT_TRUE(metaflacTags(three).contains(u"TITLE=Two"_s));
}

TEST_F(TagsCommand, TellsOfAFileThatFailsAndWritesTheOthers)
{
    const QString bad = folder.write(u"a.flac"_s, "no sound");
    const QString good = flac(u"b.flac"_s);
    const ProgramResult result = runNurv({u"tags"_s, u"set"_s, u"--json"_s, u"--album=Al"_s, bad, good});
    EXPECT_EQ(result.exitStatus, 1);
    const QList<QJsonObject> lines = jsonLines(result.output);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines.at(0).value(u"type"_s), u"problem"_s);
    EXPECT_EQ(lines.at(0).value(u"problem"_s), u"Unable to open the output file for tagging"_s);
    EXPECT_EQ(lines.at(1).value(u"type"_s), u"written"_s);
    EXPECT_EQ(lines.at(2).value(u"exitStatus"_s).toInt(), 1);
    EXPECT_TRUE(metaflacTags(good).contains(u"ALBUM=Al"_s));
    EXPECT_EQ(folder.read(u"a.flac"_s), "no sound");
}

TEST_F(TagsCommand, TellsWhatAKindOfFileDoesNotTake)
{
    const QString wavpack = writeWavpack(folder, u"a.wv"_s, {u"-w"_s, u"Title=T"_s});
    const QString good = flac(u"b.flac"_s);
    const ProgramResult result =
        runNurv({u"tags"_s, u"set"_s, u"--composer=C"_s, u"--album=Al"_s, u"--date=1977-05-08"_s, wavpack, good});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_TRUE(
        result.errors.contains("nurv: --composer has no effect on 1 of 2 files: Monkey's Audio and WavPack files "
                               "do not take it\n"))
        << result.errors.constData();
    EXPECT_TRUE(
        result.errors.contains("nurv: --date: Monkey's Audio and WavPack files get the number that it begins with\n"))
        << result.errors.constData();
    EXPECT_TRUE(metaflacTags(good).contains(u"COMPOSER=C"_s));
    const QByteArray before = folder.read(u"a.wv"_s);
    const ProgramResult none = runNurv({u"tags"_s, u"set"_s, u"--composer=C"_s, wavpack});
    EXPECT_EQ(none.exitStatus, 1);
    EXPECT_TRUE(none.errors.contains("a.wv: files of its kind take none of these tags\n")) << none.errors.constData();
    EXPECT_EQ(folder.read(u"a.wv"_s), before);
}

TEST_F(TagsCommand, RefusesWhatCannotBeMeant)
{
    const QString a = flac(u"a.flac"_s);
    const QString b = flac(u"b.flac"_s);
    const QString text = folder.write(u"x.png"_s, "no picture");
    const QString broken = folder.write(u"x.json"_s, "{\"type\":\"tags\"}\n");
    const QList<std::pair<QStringList, QByteArray>> cases{
        {{u"set"_s, a},
         "nurv tags set: nothing is to be set: give a tag, --picture, --custom, --empty or --from-json."},
        {{u"set"_s, u"--album=A"_s}, "nurv tags set: no files are given."},
        {{u"set"_s, u"--tittle=A"_s, a}, "nurv tags set: unknown option \"--tittle\" (did you mean --title?)."},
        {{u"set"_s, u"--title=A"_s, a, b}, "nurv tags set: --title goes with one file, and there are 2."},
        {{u"set"_s, u"--title="_s, a}, "nurv tags set: the value of --title is empty."},
        {{u"set"_s, u"--custom=date=1999"_s, a}, "nurv tags set: --custom date: there is --date for it."},
        {{u"set"_s, u"--custom=A=1"_s, u"--custom=a=2"_s, a}, "nurv tags set: --custom: a is given twice."},
        {{u"set"_s, u"--custom=MOOD"_s, a}, "nurv tags set: --custom takes NAME=VALUE, not \"MOOD\"."},
        {{u"set"_s, u"--picture"_s, text, a},
         "nurv tags set: --picture " + text.toUtf8() + ": it is of no known kind."},
        {{u"set"_s, u"--from-json"_s, broken, u"--album=A"_s},
         "nurv tags set: --album and --from-json cannot both be given."},
        {{u"set"_s, u"--from-json"_s, broken},
         "nurv tags set: --from-json " + broken.toUtf8() + ": line 1: an object names no path."},
        {{u"import-cue"_s, text},
         "nurv tags import-cue: the cue sheet must be followed by the files that its names are for."},
        {{u"show"_s}, "nurv tags show: no files are given."},
        {{u"shwo"_s}, "nurv tags: unknown command \"shwo\"; there are show, set, import-cue."},
    };
    for (const auto &[arguments, message] : cases) {
        const ProgramResult result = runNurv(QStringList(u"tags"_s) + arguments);
        EXPECT_EQ(result.exitStatus, 2) << message.constData();
        EXPECT_TRUE(result.errors.startsWith(message)) << result.errors.constData() << message.constData();
    }
}

} // namespace

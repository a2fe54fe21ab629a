// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagsTabFixture.h"

#include "app/Panel.h"
#include "base/NotificationCenter.h"
#include "base/NurvFailure.h"
#include "support/ProgramFolder.h"
#include "tags/StoredTags.h"
#include "tags/TagTrial.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QtEndian>

#include <functional>
#include <utility>
#include <vector>

namespace nurv::test {
namespace {

class TagsTabWritingTest : public TagsTabFixture {
protected:
    void enterNames(const QStringList &names)
    {
        NotificationCenter::instance().post(QString::fromUtf16(NURVTrackNamesEnteredNotification), names);
    }
    QString titleOf(const QString &path) { return *tagFiles::read(path)->titleText(); }
    QString trackOf(const QString &path) { return *tagFiles::read(path)->trackText(); }
    /// The digest of the packets of the sound.
    static QByteArray soundOf(const QString &path)
    {
        const ProgramResult result =
            runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-i"_s, path, u"-map"_s, u"0:a"_s, u"-c"_s,
                                     u"copy"_s, u"-f"_s, u"hash"_s, u"-"_s});
        EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
        return result.output;
    }
};

TEST_F(TagsTabWritingTest, WritesEveryKindOfFileForOtherReaders)
{
    const QStringList paths{flac(u"a.flac"_s), writeMp3(folder, u"b.mp3"_s), writeWavpack(folder, u"c.wv"_s),
                            m4a(u"d.m4a"_s)};
    for (const QString &path : paths) {
        add({path});
        const QByteArray before = soundOf(path);
        tab.titleText.setText(u"Título"_s);
        tab.artistText.setText(u"Artist = one"_s);
        tab.albumText.setText(u"Album"_s);
        tab.dateText.setText(u"1977"_s);
        tab.genreText.setText(u"Rock"_s);
        tab.trackText.setText(u"3"_s);
        tab.commentText.setText(u"Com"_s);
        tab.executeCommand();
        EXPECT_EQ(soundOf(path), before);
        const QMap<QString, QString> tags = ffprobeTags(path);
        EXPECT_EQ(tags.value(u"title"_s), u"Título") << qPrintable(path);
        EXPECT_EQ(tags.value(u"artist"_s), u"Artist = one") << qPrintable(path);
        EXPECT_EQ(tags.value(u"album"_s), u"Album") << qPrintable(path);
        EXPECT_EQ(tags.value(u"genre"_s), u"Rock") << qPrintable(path);
        const QString date = tags.contains(u"date"_s) ? tags.value(u"date"_s) : tags.value(u"year"_s);
        EXPECT_EQ(date, u"1977") << qPrintable(path);
        EXPECT_EQ(tab.note.text(), u"The tags of 1 file were written.");
    }
}

TEST_F(TagsTabWritingTest, WritesADiscTotalThatWasThereBefore)
{
    const QString path = flac(u"a.flac"_s);
    ASSERT_EQ(runProgram(u"metaflac"_s, {u"--set-tag=DISCTOTAL=2"_s, u"--set-tag=MOOD=m"_s, path}).exitStatus, 0);
    add({path});
    EXPECT_EQ(tab.discTotalText.text(), u"2");
    tab.discTotalText.setText(u"3"_s);
    tab.executeCommand();
    EXPECT_TRUE(metaflacTags(path).contains(u"DISCTOTAL=3"_s));
    EXPECT_TRUE(metaflacTags(path).contains(u"MOOD=m"_s));
}

TEST_F(TagsTabWritingTest, LeavesADateAsItIsThatNobodyChanged)
{
    const QString path = flac(u"a.flac"_s);
    ASSERT_EQ(runProgram(u"metaflac"_s, {u"--set-tag=DATE=1977-05-08"_s, path}).exitStatus, 0);
    const ProgramFolder tools;
    tools.addAllReal();
    tools.remove(u"metaflac"_s);
    static_cast<void>(tools.addLogged(u"metaflac"_s, folder.path(u"log"_s)));
    TagsObject record;
    record.setAlbumText(u"Album"_s);
    tagFiles::write(path, record, false);
    EXPECT_FALSE(folder.read(u"log"_s).contains("--remove-tag"));
    EXPECT_TRUE(metaflacTags(path).contains(u"DATE=1977-05-08"_s));
    EXPECT_TRUE(metaflacTags(path).contains(u"ALBUM=Album"_s));
}

TEST_F(TagsTabWritingTest, ADateThatCannotBeSetTakesNothingAway)
{
    const QString path = flac(u"a.flac"_s, {u"DATE=1977-05-08"_s, u"ALBUM=Old"_s});
    const QByteArray before = folder.read(u"a.flac"_s);
    const QString metaflac = QStandardPaths::findExecutable(u"metaflac"_s);
    const ProgramFolder tools;
    tools.addAllReal();
    tools.remove(u"metaflac"_s);
    QFile script(tools.path(u"metaflac"_s));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly | QIODevice::NewOnly));
    script.write("#!/bin/sh\ncase \"$1\" in --set-tag=*) exit 1 ;; esac\nexec '" + metaflac.toUtf8() + "' \"$@\"\n");
    script.close();
    ASSERT_TRUE(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    TagsObject record;
    record.setAlbumText(u"New"_s);
    record.setDateText(u"1978"_s);
    for (const bool writesEmpty : {false, true}) {
        EXPECT_THROW(tagFiles::write(path, record, writesEmpty), NurvFailure);
        EXPECT_TRUE(folder.read(u"a.flac"_s) == before);
        EXPECT_EQ(folder.list(), QStringList{u"a.flac"_s});
    }
}

TEST_F(TagsTabWritingTest, ADiscTotalWinsOverOneThatThePanelHasNoRowFor)
{
    QStringList fields{u"DISCTOTAL=2"_s};
    for (int i = 1; i <= 8; ++i)
        fields.append(u"A%1=V"_s.arg(i));
    const QString path = flac(u"a.flac"_s, fields);
    add({path});
    tab.discTotalText.setText(u"3"_s);
    tab.setWriteEmptyTags(true);
    tab.executeCommand();
    EXPECT_TRUE(metaflacTags(path).contains(u"DISCTOTAL=3"_s));
    EXPECT_FALSE(metaflacTags(path).contains(u"DISCTOTAL=2"_s));
    EXPECT_TRUE(metaflacTags(path).contains(u"A8=V"_s));
}

TEST_F(TagsTabWritingTest, AFlacFileWithAFieldOfAnotherEncodingStaysAsItIs)
{
    const QString path = flac(u"a.flac"_s, {u"ARTIST=CafXX"_s, u"TITLE=T"_s});
    const QByteArray made = folder.read(u"a.flac"_s);
    ASSERT_EQ(made.count("ARTIST=CafXX"), 1);
    TagsObject record;
    record.setAlbumText(u"Album"_s);
    const std::vector<std::pair<QByteArray, QString>> fields{
        {"ARTIST=Caf\xe9\xe9",
         u"Its field ARTIST is not in UTF-8, as fields of FLAC files have to be, and would be lost."_s},
        {"ARTIST:CafXX", u"Its tags hold a field without a name, which would be lost."_s}};
    for (const auto &[field, reason] : fields) {
        const QByteArray bytes = QByteArray(made).replace("ARTIST=CafXX", field);
        folder.write(u"a.flac"_s, bytes);
        for (const auto &work : std::vector<std::function<void()>>{
                 [&] { tagFiles::write(path, record, false); }, [&] { tagFiles::write(path, record, true); },
                 [&] { static_cast<void>(storedTags::read(TagFormat::Flac, path)); }}) {
            try {
                work();
                ADD_FAILURE() << field.constData();
            } catch (const NurvFailure &failure) {
                EXPECT_EQ(failure.reason(), reason);
            }
            EXPECT_TRUE(folder.read(u"a.flac"_s) == bytes);
        }
    }
    // As it should be.
    folder.write(u"a.flac"_s, QByteArray(made).replace("ARTIST=CafXX", "ARTIST=Caf\xc3\xa9"));
    tagFiles::write(path, record, false);
    EXPECT_EQ(ffprobeTags(path).value(u"artist"_s), u"Café");
}

/// An APE tag of version 2 without a header.
QByteArray apeTag(const QList<std::pair<QByteArray, QByteArray>> &items)
{
    const auto number = [](qsizetype value) {
        QByteArray bytes(4, '\0');
        qToLittleEndian<quint32>(static_cast<quint32>(value), bytes.data());
        return bytes;
    };
    QByteArray tag;
    for (const auto &[key, value] : items)
        tag += number(value.size()) + number(0) + key + '\0' + value;
    return tag + "APETAGEX" + number(2000) + number(tag.size() + 32) + number(items.size()) + QByteArray(12, '\0');
}

TEST_F(TagsTabWritingTest, AFileWithAnApeItemOfAnotherEncodingStaysAsItIs)
{
    const QByteArray foreign = apeTag({{"Title", "T"}, {"Venue", "Caf\xe9\xe9"}});
    const QByteArray fine = apeTag({{"Title", "T"}, {"Venue", "Caf\xc3\xa9"}});
    const QByteArray id3v1 = QByteArray("TAG").leftJustified(128, '\0');
    TagsObject record;
    record.setAlbumText(u"Album"_s);
    const QString wav = test::writeWav(folder.path(u"sound.wav"_s));
    const QString wavpack = folder.path(u"plain.wv"_s);
    ASSERT_EQ(test::runProgram(u"wavpack"_s, {u"-q"_s, u"-y"_s, wav, u"-o"_s, wavpack}).exitStatus, 0);
    const QString mp3 = folder.path(u"plain.mp3"_s);
    ASSERT_EQ(test::runProgram(u"lame"_s, {u"--quiet"_s, wav, mp3}).exitStatus, 0);
    const QString reason = u"Its item Venue is not in UTF-8, as items of APE tags have to be, and would be lost."_s;
    for (const auto &[plain, format] : {std::pair(wavpack, TagFormat::Wavpack), std::pair(mp3, TagFormat::Mp3)}) {
        const QString name = u"tagged."_s + QFileInfo(plain).suffix();
        const QString path = folder.path(name);
        for (const QByteArray &end : {QByteArray(), id3v1}) {
            const QByteArray bytes = folder.read(QFileInfo(plain).fileName()) + foreign + end;
            folder.write(name, bytes);
            for (const auto &work : std::vector<std::function<void()>>{
                     [&] { tagFiles::write(path, record, false); }, [&] { static_cast<void>(storedTags::read(format, path)); }}) {
                try {
                    work();
                    ADD_FAILURE() << qPrintable(name);
                } catch (const NurvFailure &failure) {
                    EXPECT_EQ(failure.reason(), reason);
                }
                EXPECT_TRUE(folder.read(name) == bytes);
            }
            folder.write(name, folder.read(QFileInfo(plain).fileName()) + fine + end);
            tagFiles::write(path, record, false);
            EXPECT_TRUE(folder.read(name).contains("Caf\xc3\xa9"));
        }
    }
}

TEST_F(TagsTabWritingTest, ACustomNameThatNoFlacFileTakesIsTold)
{
    const QString path = flac(u"a.flac"_s);
    const QByteArray before = folder.read(u"a.flac"_s);
    for (const QString &name : {u"Gênero"_s, u"A=B"_s}) {
        add({path});
        tab.customTagsPanel().fillTags({{name, u"value"_s}});
        prompts.expectAsk(
            {.title = u"No custom tag can be called “%1”."_s.arg(name),
             .message = u"FLAC files take names of the letters, digits and signs of ASCII, but for “=” and “~”."_s,
             .buttons = {u"OK"_s}},
            u"OK"_s);
        tab.executeCommand();
        EXPECT_TRUE(folder.read(u"a.flac"_s) == before);
        tab.clearFiles();
    }
    // Other kinds have no use for it.
    const QString mp3 = writeMp3(folder, u"b.mp3"_s);
    add({mp3});
    tab.customTagsPanel().fillTags({{u"Gênero"_s, u"value"_s}});
    tab.albumText.setText(u"Album"_s);
    tab.executeCommand();
    EXPECT_EQ(ffprobeTags(mp3).value(u"album"_s), u"Album");
}

TEST_F(TagsTabWritingTest, AnM4aFileThatCannotBePutInOrderIsToldToBeWritten)
{
    const QString path = m4a(u"a.m4a"_s);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write(QByteArray("\0\0\0\x0cmdatmor", 11));
    file.close();
    add({path});
    tab.albumText.setText(u"Album"_s);
    prompts.expectAsk({.title = u"The tags of “a.m4a” were written, but its parts are in their old order."_s,
                       .message = u"unable to optimize @% file\nNo other file was written."_s,
                       .buttons = {u"OK"_s}},
                      u"OK"_s);
    tab.executeCommand();
    EXPECT_EQ(ffprobeTags(path).value(u"album"_s), u"Album");
}

TEST_F(TagsTabWritingTest, WritesAMonkeysAudioFile)
{
    const QString path = writeApe(folder, u"a.ape"_s);
    add({path});
    tab.titleText.setText(u"T"_s);
    tab.dateText.setText(u"1977-05-08"_s);
    tab.executeCommand();
    const ProgramResult seen = runProgram(u"mediainfo"_s, {u"--Inform=General;%Track%|%Recorded_Date%"_s, path});
    EXPECT_EQ(seen.output.trimmed(), "T|1977");
}

TEST_F(TagsTabWritingTest, EmptyFieldsChangeNothingUnlessTheyAreWritten)
{
    const QString path = flac(u"a.flac"_s, {u"ARTIST=A"_s, u"MOOD=m"_s, u"DATE=1977"_s, u"ALBUMARTIST=AA"_s});
    add({path});
    tab.artistText.setText({});
    tab.executeCommand();
    EXPECT_EQ(ffprobeTags(path).value(u"artist"_s), u"A");
    EXPECT_EQ(ffprobeTags(path).value(u"mood"_s), u"m");
    select({});
    select({0});
    tab.artistText.setText({});
    tab.setWriteEmptyTags(true);
    tab.executeCommand();
    const QStringList left = metaflacTags(path);
    EXPECT_FALSE(left.contains(u"ARTIST=A"_s));
    EXPECT_TRUE(left.contains(u"MOOD=m"_s));
    EXPECT_TRUE(left.contains(u"DATE=1977"_s));
    EXPECT_FALSE(left.contains(u"ALBUMARTIST=AA"_s));
}

TEST_F(TagsTabWritingTest, KeepsCustomTagsThatThePanelHasNoRowFor)
{
    QStringList fields;
    for (int i = 1; i <= 11; ++i)
        fields.append(u"N%1=V%1"_s.arg(i, 2, 10, QChar(u'0')));
    const QString path = flac(u"a.flac"_s, fields);
    add({path});
    EXPECT_EQ(tab.customTagsNote.text(), u"3 more than the panel shows; they are kept");
    for (const bool writesEmpty : {false, true}) {
        tab.setWriteEmptyTags(writesEmpty);
        tab.executeCommand();
        QStringList left = metaflacTags(path);
        left.removeIf([](const QString &field) { return !field.startsWith(u'N'); });
        left.sort();
        EXPECT_EQ(left, fields) << writesEmpty;
    }
}

TEST_F(TagsTabWritingTest, NamesGoByThePlaceInTheWholeList)
{
    QStringList paths;
    for (int i = 0; i < 4; ++i)
        paths.append(flac(u"%1.flac"_s.arg(i)));
    add(paths);
    select({1, 3});
    enterNames({u"zero"_s, u"one"_s, u"two"_s, u"three"_s});
    tab.setAutoName(true);
    tab.executeCommand();
    EXPECT_EQ(titleOf(paths.at(1)), u"one");
    EXPECT_EQ(trackOf(paths.at(1)), u"2");
    EXPECT_EQ(titleOf(paths.at(3)), u"three");
    EXPECT_EQ(trackOf(paths.at(3)), u"4");
    EXPECT_EQ(titleOf(paths.at(0)), QString());
    EXPECT_FALSE(tab.autoName());
}

TEST_F(TagsTabWritingTest, FewerNamesThanFilesWriteNothing)
{
    const QStringList paths{flac(u"0.flac"_s), flac(u"1.flac"_s)};
    add(paths);
    enterNames({u"zero"_s});
    tab.setAutoName(true);
    tab.albumText.setText(u"A"_s);
    expectNamesError();
    tab.executeCommand();
    EXPECT_EQ(*tagFiles::read(paths.at(0))->albumText(), QString());
}

TEST_F(TagsTabWritingTest, AFileBeyondTheLastNameEndsTheActionThere)
{
    const QStringList paths{flac(u"0.flac"_s), flac(u"1.flac"_s), flac(u"2.flac"_s)};
    add(paths);
    select({1, 2});
    enterNames({u"zero"_s, u"one"_s});
    tab.setAutoName(true);
    expectNamesError();
    tab.executeCommand();
    EXPECT_EQ(titleOf(paths.at(1)), u"one");
    EXPECT_EQ(titleOf(paths.at(2)), QString());
}

TEST_F(TagsTabWritingTest, AFailureEndsItWithTheWritersMessageAndKeepsWhatWasWritten)
{
    const QStringList paths{flac(u"0.flac"_s), folder.write(u"1.flac"_s, "no sound"), flac(u"2.flac"_s)};
    add(paths);
    tab.albumText.setText(u"A"_s);
    const Alert alert{.title = u"The tags of “1.flac” could not be written."_s,
                      .message =
                          u"Unable to open the output file for tagging.\n1 file before it were written, and stay so."_s,
                      .buttons = {u"OK"_s}};
    prompts.expectAsk(alert, u"OK"_s);
    tab.executeCommand();
    EXPECT_EQ(*tagFiles::read(paths.at(0))->albumText(), u"A");
    EXPECT_EQ(*tagFiles::read(paths.at(2))->albumText(), QString());
    EXPECT_EQ(folder.read(u"1.flac"_s), "no sound");
    ASSERT_TRUE(tab.previousTagsObject());
    select({2});
    tab.executeCommand();
    EXPECT_EQ(*tab.previousTagsObject()->albumText(), QString());
}

TEST_F(TagsTabWritingTest, SkipsFilesOfOtherKinds)
{
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.2});
    const QByteArray before = folder.read(u"a.wav"_s);
    add({wav, flac(u"b.flac"_s)});
    tab.albumText.setText(u"A"_s);
    tab.executeCommand();
    EXPECT_EQ(folder.read(u"a.wav"_s), before);
}

TEST_F(TagsTabWritingTest, FillsFromWhatWasWrittenLast)
{
    add({flac(u"0.flac"_s), flac(u"1.flac"_s)});
    EXPECT_TRUE(tab.usePreviousTagsButton.isHidden());
    select({0});
    tab.titleText.setText(u"T"_s);
    tab.albumText.setText(u"A"_s);
    tab.executeCommand();
    EXPECT_FALSE(tab.usePreviousTagsButton.isHidden());
    tab.clearFiles();
    add({flac(u"2.flac"_s)});
    EXPECT_EQ(tab.albumText.text(), QString());
    tab.usePreviousTags();
    EXPECT_EQ(tab.albumText.text(), u"A");
    EXPECT_EQ(tab.titleText.text(), u"T");
}

TEST_F(TagsTabWritingTest, AsksWhetherTheOnlyPictureBesideIsTheCover)
{
    const QString image = imageFile(u"front.JPG"_s, "jpeg");
    const QStringList paths{flac(u"0.flac"_s), flac(u"1.flac"_s)};
    add(paths);
    prompts.expectAsk(QString::fromUtf16(kArtQuestion), {u"Yes"_s, u"No"_s}, u"No"_s);
    tab.executeCommand();
    EXPECT_FALSE(prompts.shownAlerts().last().picture.isEmpty());
    EXPECT_EQ(tagFiles::read(paths.at(0))->albumArt(), nullptr);
    const LogCapture log;
    prompts.expectAsk(QString::fromUtf16(kArtQuestion), {u"Yes"_s, u"No"_s}, u"Yes"_s);
    tab.executeCommand();
    EXPECT_TRUE(log.texts(u"nurv.tagging"_s).contains(u"use album art: "_s + image));
    const AlbumArt written = tagFiles::read(paths.at(1))->albumArt();
    ASSERT_TRUE(written);
    EXPECT_EQ(written->size(), QSize(32, 16));
    // Now they have one.
    tab.executeCommand();
}

TEST_F(TagsTabWritingTest, AsksNothingAboutTwoPicturesOrTwoFolders)
{
    imageFile(u"a/front.png"_s);
    imageFile(u"b/front.png"_s);
    imageFile(u"b/back.gif"_s);
    const QString one = flac(u"one.flac"_s);
    for (const QString &name : {u"a/1.flac"_s, u"b/1.flac"_s, u"b/2.flac"_s})
        ASSERT_TRUE(QFile::copy(one, folder.path(name)));
    add({folder.path(u"b/1.flac"_s), folder.path(u"b/2.flac"_s)});
    tab.executeCommand();
    tab.clearFiles();
    add({folder.path(u"a/1.flac"_s), folder.path(u"b/1.flac"_s)});
    tab.executeCommand();
    EXPECT_TRUE(prompts.shownAlerts().isEmpty());
}

TEST_F(TagsTabWritingTest, WritesNothingWhenThePreviewWasGivenUp)
{
    const QString path = flac(u"0.flac"_s, {u"ARTIST=A"_s});
    const QByteArray before = folder.read(u"0.flac"_s);
    add({path});
    tab.previewButton.setOn(true);
    tab.albumText.setText(u"New"_s);
    prompts.expectGivingUp(u"Looking at what will change…"_s);
    tab.executeCommand();
    EXPECT_TRUE(folder.read(u"0.flac"_s) == before);
    EXPECT_EQ(tab.albumText.text(), u"New");
}

TEST_F(TagsTabWritingTest, ThePreviewTellsOldAndNewAndWritesNothingWhenItIsDismissed)
{
    const QString path = flac(u"0.flac"_s, {u"ARTIST=A"_s, u"ARTIST=B"_s, u"MOOD=m"_s});
    const QByteArray before = folder.read(u"0.flac"_s);
    add({path, flac(u"1.flac"_s, {u"ARTIST=Z"_s})});
    tab.previewButton.setOn(true);
    tab.albumText.setText(u"New"_s);
    QString shown;
    const auto note = [&shown](const Panel &panel) { shown = fieldOf<LinesControl>(panel, u"changes"_s).text(); };
    const PanelQuestion question{.title = u"These tags will be written"_s,
                                 .message = u"Empty fields change nothing."_s,
                                 .fields = {u"changes"_s},
                                 .buttons = {u"Cancel"_s, u"Write"_s}};
    prompts.expectPanel(question, note, u"Cancel"_s);
    tab.executeCommand();
    EXPECT_EQ(folder.read(u"0.flac"_s), before);
    EXPECT_TRUE(shown.contains(u"0.flac\n    Album: (none) → “New”\n"_s)) << qPrintable(shown);
    EXPECT_FALSE(shown.contains(u"MOOD"_s)) << qPrintable(shown);

    tab.setWriteEmptyTags(true);
    PanelQuestion second = question;
    second.message = u"Empty fields are written, too."_s;
    prompts.expectPanel(second, note, u"Write"_s);
    tab.executeCommand();
    EXPECT_TRUE(shown.contains(u"    Artist: “A”, “B” → (removed)\n"_s)) << qPrintable(shown);
    EXPECT_TRUE(shown.contains(u"    MOOD: “m” → (removed)\n"_s)) << qPrintable(shown);
    EXPECT_TRUE(shown.contains(u"    Artist: “Z” → (removed)\n"_s)) << qPrintable(shown);
    EXPECT_EQ(ffprobeTags(path).value(u"album"_s), u"New");
    EXPECT_FALSE(ffprobeTags(path).contains(u"mood"_s));
}

TEST_F(TagsTabWritingTest, ThePreviewIsWhatIsWritten)
{
    const QStringList paths{flac(u"a.flac"_s, {u"TITLE=Old"_s, u"MOOD=m"_s, u"DATE=1970"_s}),
                            writeMp3(folder, u"b.mp3"_s, {u"--tt"_s, u"Old"_s, u"--tg"_s, u"Rock"_s}),
                            writeWavpack(folder, u"c.wv"_s, {u"-w"_s, u"Title=Old"_s}), writeApe(folder, u"d.ape"_s),
                            m4a(u"e.m4a"_s)};
    for (const bool writesEmpty : {false, true}) {
        TagsObject record = fullRecord();
        record.setTitleText(writesEmpty ? u""_s : u"New"_s);
        for (const QString &path : paths) {
            const TagTrial trial = tryTags(*tagFiles::formatOf(path), path, record, writesEmpty);
            EXPECT_EQ(storedTags::read(*tagFiles::formatOf(path), path), trial.before) << qPrintable(path);
            tagFiles::write(path, record, writesEmpty);
            EXPECT_EQ(tagPreview::differences(trial.after, storedTags::read(*tagFiles::formatOf(path), path)),
                      QStringList())
                << qPrintable(path) << writesEmpty;
        }
    }
}

} // namespace
} // namespace nurv::test

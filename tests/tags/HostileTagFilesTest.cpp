// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagLibTagsHelper.h"

#include "support/AudioFixtures.h"
#include "TagFixtures.h"

#include <QFile>
#include <QProcess>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

/// One format's operations, for what holds for all of them.
struct Format {
    const char *name;
    QString fileName;
    QString (*make)(const TestFolder &, const QString &);
    TagsObject (*read)(const QString &);
    void (*write)(const QString &, const TagsObject &);
};

void PrintTo(const Format &format, std::ostream *stream)
{
    *stream << format.name;
}

class TagFiles : public ::testing::TestWithParam<Format> {
protected:
    TestFolder folder;
    QString name = GetParam().fileName;

    /// A file with tags and, where the format takes one, a picture.
    QByteArray taggedFile()
    {
        const QString path = GetParam().make(folder, name);
        TagsObject record = fullRecord();
        record.setAlbumArt(noisePicture(20, 20));
        record.customTagsDictionary().insert(u"MOOD"_s, u"calm"_s);
        GetParam().write(path, record);
        return folder.read(name);
    }

    static TagsObject blank()
    {
        TagsObject tags;
        TagLibTagsHelper::setBlankTags(tags);
        return tags;
    }

    /// Reads and writes; what fails must leave the file as it was.
    void readAndWrite(const QByteArray &bytes)
    {
        const QString path = folder.write(name, bytes);
        static_cast<void>(failureOf([&] { static_cast<void>(GetParam().read(path)); }));
        if (failureOf([&] { GetParam().write(path, fullRecord()); })) {
            EXPECT_EQ(folder.read(name), bytes);
        }
    }
};

/// The formats that are known by their first bytes; MPEG sound may follow any bytes.
class RecognisableTagFiles : public TagFiles {};

} // namespace

TEST_P(TagFiles, GivesTheBlankRecordForWhatCannotBeRead)
{
    const QString junk = folder.write(u"junk"_s, QByteArray(5000, 'j'));
    const QString empty = folder.write(u"empty"_s, {});
    for (const QString &path : {folder.path(u"missing"_s), folder.path(), junk, empty})
        EXPECT_TRUE(GetParam().read(path).isEqualToTagsObject(blank())) << qPrintable(path);
}

TEST_P(TagFiles, FailsWithTheTextForWhatCannotBeOpened)
{
    for (const QString &path : {folder.path(u"missing"_s), folder.path()})
        EXPECT_EQ(failureOf([&] { GetParam().write(path, fullRecord()); }),
                  u"Unable to open the output file for tagging."_s);
    EXPECT_TRUE(folder.list().isEmpty());
}

TEST_P(TagFiles, FailsWithTheTextForAFileThatCannotBeWritten)
{
    // A running program's file cannot be written even by the superuser.
    const QString path = folder.path(name);
    ASSERT_TRUE(QFile::copy(u"/usr/bin/sleep"_s, path));
    const QByteArray before = folder.read(name);
    QProcess sleeper;
    sleeper.start(path, {u"60"_s});
    ASSERT_TRUE(sleeper.waitForStarted());
    EXPECT_EQ(failureOf([&] { GetParam().write(path, fullRecord()); }),
              u"Unable to open the output file for tagging."_s);
    sleeper.kill();
    ASSERT_TRUE(sleeper.waitForFinished());
    EXPECT_EQ(folder.read(name), before);
}

TEST_P(RecognisableTagFiles, RefusesAFileOfAnotherFormat)
{
    const QByteArray before = wavBytes({.seconds = 0.1});
    const QString path = folder.write(name, before);
    EXPECT_EQ(failureOf([&] { GetParam().write(path, fullRecord()); }),
              u"Unable to open the output file for tagging."_s);
    EXPECT_EQ(folder.read(name), before);
}

TEST_P(TagFiles, SurvivesFilesCutAtManyPlaces)
{
    const QByteArray whole = taggedFile();
    for (qsizetype length = 0; length < whole.size(); length += 1 + length / 12)
        readAndWrite(whole.left(length));
    for (qsizetype cut = 1; cut < 400 && cut < whole.size(); cut += 23)
        readAndWrite(whole.left(whole.size() - cut));
}

TEST_P(TagFiles, SurvivesFilesWithWrongBytes)
{
    const QByteArray whole = taggedFile();
    std::minstd_rand random(11);
    for (int round = 0; round < 60; ++round) {
        QByteArray ruined = whole;
        for (int i = 0; i < 8; ++i) {
            // Heads and tags stand at either end.
            const auto distance = static_cast<qsizetype>(random() % 600);
            const qsizetype place = (round & 1) != 0 ? distance : ruined.size() - 1 - distance;
            ruined[std::clamp<qsizetype>(place, 0, ruined.size() - 1)] = static_cast<char>(random() & 0xffU);
        }
        readAndWrite(ruined);
    }
}

namespace {

const Format kMp3Formats[] = {
    Format{
        "Mp3", u"a.mp3"_s, [](const TestFolder &folder, const QString &name) { return writeMp3(folder, name); },
        TagLibTagsHelper::tagsForMP3File,
        [](const QString &path, const TagsObject &tags) { TagLibTagsHelper::writeTagsForMP3File(path, tags, false); }},
    Format{
        "Mp3Stripped", u"a.mp3"_s, [](const TestFolder &folder, const QString &name) { return writeMp3(folder, name); },
        TagLibTagsHelper::tagsForMP3File,
        [](const QString &path, const TagsObject &tags) { TagLibTagsHelper::writeTagsForMP3File(path, tags, true); }}};

const Format kRecognisableFormats[] = {
    Format{"Aiff", u"a.aiff"_s, writeTaggableAiff, TagLibTagsHelper::tagsForAIFFFile,
           TagLibTagsHelper::writeTagsForAIFFFile},
    Format{"Flac", u"a.flac"_s,
           [](const TestFolder &folder, const QString &name) { return writeTaggableFlac(folder, name); },
           TagLibTagsHelper::tagsForFlacFile,
           [](const QString &path, const TagsObject &tags) {
               // A date would start metaflac for each of many files.
               TagsObject undated = tags;
               undated.setDateText(std::nullopt);
               TagLibTagsHelper::writeTagsForFLACFile(path, undated, true);
           }},
    Format{
        "MonkeysAudio", u"a.ape"_s, writeApe, TagLibTagsHelper::tagsForAPEFile,
        [](const QString &path, const TagsObject &tags) { TagLibTagsHelper::writeTagsForAPEFile(path, tags, true); }},
    Format{"WavPack", u"a.wv"_s,
           [](const TestFolder &folder, const QString &name) { return writeWavpack(folder, name); },
           TagLibTagsHelper::tagsForWavpackFile,
           [](const QString &path, const TagsObject &tags) {
               TagLibTagsHelper::writeTagsForWavpackFile(path, tags, true);
           }}};

std::string formatName(const ::testing::TestParamInfo<Format> &format)
{
    return format.param.name;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Mpeg, TagFiles, ::testing::ValuesIn(kMp3Formats), formatName);
INSTANTIATE_TEST_SUITE_P(Recognisable, TagFiles, ::testing::ValuesIn(kRecognisableFormats), formatName);
INSTANTIATE_TEST_SUITE_P(Recognisable, RecognisableTagFiles, ::testing::ValuesIn(kRecognisableFormats), formatName);

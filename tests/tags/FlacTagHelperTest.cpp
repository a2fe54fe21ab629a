// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/FlacTagHelper.h"

#include "base/NurvFailure.h"
#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"
#include "TagFixtures.h"

#include <QFile>

#include <gtest/gtest.h>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

void metaflac(const QStringList &arguments)
{
    const ProgramResult result = runProgram(u"metaflac"_s, QStringList{u"--no-utf8-convert"_s} + arguments);
    ASSERT_EQ(result.exitStatus, 0) << result.errors.constData();
}

/// Sets an environment variable for the life of one test.
class Variable {
public:
    Variable(const char *name, const QByteArray &value)
        : m_name(name), m_former(qgetenv(name)), m_wasSet(qEnvironmentVariableIsSet(name))
    {
        qputenv(name, value);
    }
    ~Variable()
    {
        if (m_wasSet)
            qputenv(m_name, m_former);
        else
            qunsetenv(m_name);
    }

private:
    const char *m_name;
    QByteArray m_former;
    bool m_wasSet;
};

} // namespace

TEST(FlacTagHelper, ReadsAValueWithAnEqualsSignFromTheLastOne)
{
    const TestFolder folder;
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    metaflac({u"--set-tag=TITLE=a=b"_s, path});
    EXPECT_EQ(FlacTagHelper::tagForFile(path, FlacTagHelper::kTitle), u"b"_s);
}

TEST(FlacTagHelper, ReadsTheLastOfSeveralValues)
{
    const TestFolder folder;
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    metaflac({u"--set-tag=ARTIST=first"_s, u"--set-tag=ARTIST=second"_s, path});
    EXPECT_EQ(FlacTagHelper::tagForFile(path, FlacTagHelper::kArtist), u"second"_s);
}

TEST(FlacTagHelper, ReadsAMissingKeyAsEmptyAndLeavesOtherFieldsAbsent)
{
    const TestFolder folder;
    const TagsObject tags = FlacTagHelper::tagsForFile(writeTaggableFlac(folder, u"a.flac"_s));
    for (const auto &text : {tags.titleText(), tags.artistText(), tags.dateText(), tags.albumText(), tags.discText(),
                             tags.trackText(), tags.commentText(), tags.genreText(), tags.composerText()})
        EXPECT_EQ(text, u""_s);
    EXPECT_FALSE(tags.albumArtistText() || tags.discTotalText() || tags.trackTotalText() || tags.encoderSettings());
    EXPECT_EQ(tags.albumArt(), nullptr);
}

TEST(FlacTagHelper, WritesTheNineKeysAndNothingElse)
{
    const TestFolder folder;
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    const QByteArray sound = decodedMd5(path);
    TagsObject record = fullRecord();
    record.setCommentText(u"one line"_s);
    record.customTagsDictionary().insert(u"MOOD"_s, u"calm"_s);
    record.setAlbumArt(picture(4, 4, Qt::red));
    FlacTagHelper::writeTagsForFile(path, record, false);
    EXPECT_EQ(metaflacTags(path),
              (QStringList{u"TITLE=Änderung \u6771\u4eac \U0001F3B5"_s, u"ARTIST=Sigur Rós"_s, u"DATE=1999"_s,
                           u"ALBUM=a=b \"quoted\""_s, u"DISCNUMBER=2"_s, u"TRACKNUMBER=7"_s, u"GENRE=Rímur"_s,
                           u"COMPOSER=Dvořák"_s, u"COMMENT=one line"_s}));
    EXPECT_EQ(decodedMd5(path), sound);
    const TagsObject read = FlacTagHelper::tagsForFile(path);
    EXPECT_EQ(read.titleText(), record.titleText());
    EXPECT_EQ(read.composerText(), record.composerText());
    EXPECT_EQ(read.albumText(), u"b \"quoted\""_s);
}

TEST(FlacTagHelper, RunsMetaflacOncePerKeyInTheSetOrder)
{
    const TestFolder folder;
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    const ProgramFolder tools;
    const QString log = folder.path(u"log"_s);
    static_cast<void>(tools.addLogged(u"metaflac"_s, log));
    const auto calls = [&] {
        const QString text = QString::fromUtf8(folder.read(u"log"_s));
        folder.remove(u"log"_s);
        return text.split(u'\n', Qt::SkipEmptyParts);
    };
    const auto withPath = [&](QStringList switches) {
        for (QString &line : switches)
            line += u'\t' + path;
        return switches;
    };

    TagsObject record;
    record.setTitleText(u"T"_s);
    record.setCommentText(u"C"_s);
    record.setDiscText(u""_s);
    FlacTagHelper::writeTagsForFile(path, record, false);
    EXPECT_EQ(calls(), withPath({u"--remove-tag=TITLE"_s, u"--set-tag=TITLE=T"_s, u"--remove-tag=COMMENT"_s,
                                 u"--set-tag=COMMENT=C"_s}));

    FlacTagHelper::writeTagsForFile(path, record, true);
    EXPECT_EQ(calls(), withPath({u"--remove-tag=TITLE"_s, u"--set-tag=TITLE=T"_s, u"--remove-tag=ARTIST"_s,
                                 u"--set-tag=ARTIST="_s, u"--remove-tag=DATE"_s, u"--set-tag=DATE="_s,
                                 u"--remove-tag=ALBUM"_s, u"--set-tag=ALBUM="_s, u"--remove-tag=DISCNUMBER"_s,
                                 u"--set-tag=DISCNUMBER="_s, u"--remove-tag=TRACKNUMBER"_s, u"--set-tag=TRACKNUMBER="_s,
                                 u"--remove-tag=GENRE"_s, u"--set-tag=GENRE="_s, u"--remove-tag=COMPOSER"_s,
                                 u"--set-tag=COMPOSER="_s, u"--remove-tag=COMMENT"_s, u"--set-tag=COMMENT=C"_s}));

    static_cast<void>(FlacTagHelper::tagsForFile(path));
    EXPECT_EQ(calls(), withPath({u"--show-tag=TITLE"_s, u"--show-tag=ARTIST"_s, u"--show-tag=DATE"_s,
                                 u"--show-tag=ALBUM"_s, u"--show-tag=DISCNUMBER"_s, u"--show-tag=TRACKNUMBER"_s,
                                 u"--show-tag=COMMENT"_s, u"--show-tag=GENRE"_s, u"--show-tag=COMPOSER"_s}));

    static_cast<void>(FlacTagHelper::getFormatInfo(path));
    EXPECT_EQ(calls(),
              withPath({u"--show-sample-rate"_s, u"--show-channels"_s, u"--show-bps"_s, u"--show-total-samples"_s}));
}

TEST(FlacTagHelper, LeavesAKeyAloneWhenTheValueIsEmptyAndEmptyOnesAreNotWritten)
{
    const TestFolder folder;
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    metaflac({u"--set-tag=TITLE=old"_s, path});
    const QByteArray before = folder.read(u"a.flac"_s);
    FlacTagHelper::writeTagForFile(path, FlacTagHelper::kTitle, u""_s, false);
    FlacTagHelper::writeTagForFile(path, FlacTagHelper::kTitle, std::nullopt, false);
    EXPECT_EQ(folder.read(u"a.flac"_s), before);
}

TEST(FlacTagHelper, LeavesAnEmptyKeyWhenEmptyOnesAreWritten)
{
    const TestFolder folder;
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    metaflac({u"--set-tag=TITLE=old"_s, u"--set-tag=ARTIST=old"_s, path});
    FlacTagHelper::writeTagForFile(path, FlacTagHelper::kTitle, u""_s, true);
    FlacTagHelper::writeTagForFile(path, FlacTagHelper::kArtist, std::nullopt, true);
    EXPECT_EQ(metaflacTags(path), (QStringList{u"TITLE="_s, u"ARTIST="_s}));
}

TEST(FlacTagHelper, ReplacesAllValuesOfAKeyAndRemovesOne)
{
    const TestFolder folder;
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    metaflac({u"--set-tag=GENRE=one"_s, u"--set-tag=genre=two"_s, u"--set-tag=DATE=1"_s, path});
    FlacTagHelper::writeTagForFile(path, FlacTagHelper::kGenre, u"three"_s, false);
    EXPECT_EQ(metaflacTags(path), (QStringList{u"DATE=1"_s, u"GENRE=three"_s}));
    FlacTagHelper::removeTagForFile(path, FlacTagHelper::kDate);
    EXPECT_EQ(metaflacTags(path), QStringList{u"GENRE=three"_s});
}

TEST(FlacTagHelper, KeepsEveryCharacterInThePlainestLocale)
{
    const Variable all("LC_ALL", "C");
    const Variable language("LANG", "C");
    const TestFolder folder;
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    const QString value = u"Änderung \u6771\u4eac \U0001F3B5"_s;
    FlacTagHelper::writeTagForFile(path, FlacTagHelper::kTitle, value, false);
    EXPECT_EQ(metaflacTags(path), QStringList{u"TITLE="_s + value});
    EXPECT_EQ(FlacTagHelper::tagForFile(path, FlacTagHelper::kTitle), value);
}

TEST(FlacTagHelper, TakesValuesOfSeveralLinesAndVeryLongOnes)
{
    const TestFolder folder;
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    FlacTagHelper::writeTagForFile(path, FlacTagHelper::kComment, u"one\ntwo"_s, false);
    EXPECT_EQ(FlacTagHelper::tagForFile(path, FlacTagHelper::kComment), u"one\ntwo"_s);
    const QString longValue(100'000, u'x');
    FlacTagHelper::writeTagForFile(path, FlacTagHelper::kComment, longValue, false);
    EXPECT_EQ(FlacTagHelper::tagForFile(path, FlacTagHelper::kComment), longValue);
}

TEST(FlacTagHelper, KeepsTheOldValueWhenTheNewOneDoesNotFitACommandLine)
{
    const TestFolder folder;
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    metaflac({u"--set-tag=COMMENT=old"_s, path});
    const LogCapture log;
    FlacTagHelper::writeTagForFile(path, FlacTagHelper::kComment, QString(200'000, u'x'), false);
    EXPECT_EQ(metaflacTags(path), QStringList{u"COMMENT=old"_s});
    EXPECT_EQ(log.texts(u"nurv.tags"_s).size(), 1);
}

TEST(FlacTagHelper, KnowsTheLongestValueThatFitsACommandLineToTheByte)
{
    const TestFolder folder;
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    metaflac({u"--set-tag=COMMENT=old"_s, path});
    // What the kernel takes as one argument, with its end mark (execve(2)).
    const qsizetype longest = 32LL * ::sysconf(_SC_PAGESIZE) - 1 - u"--set-tag=COMMENT="_s.size();
    const LogCapture log;
    FlacTagHelper::writeTagForFile(path, FlacTagHelper::kComment, QString(longest + 1, u'x'), false);
    EXPECT_EQ(metaflacTags(path), QStringList{u"COMMENT=old"_s});
    EXPECT_EQ(log.texts(u"nurv.tags"_s).size(), 1);
    FlacTagHelper::writeTagForFile(path, FlacTagHelper::kComment, QString(longest, u'x'), false);
    EXPECT_EQ(metaflacTags(path), QStringList{u"COMMENT="_s + QString(longest, u'x')});
}

TEST(FlacTagHelper, TakesFileNamesWithBlanksQuotesNewlinesAndDashes)
{
    const TestFolder folder;
    for (const QString &name :
         {u"-a b'\"c.flac"_s, u"line\nbreak.flac"_s, u"\u6771\u4eac ä.flac"_s, u"a=b$(x).flac"_s}) {
        const QString path = writeTaggableFlac(folder, name);
        FlacTagHelper::writeTagForFile(path, FlacTagHelper::kTitle, u"named"_s, false);
        EXPECT_EQ(FlacTagHelper::tagForFile(path, FlacTagHelper::kTitle), u"named"_s) << qPrintable(name);
    }
}

TEST(FlacTagHelper, ReadsTheStreamFormat)
{
    const TestFolder folder;
    const QString path =
        writeFlac(folder.path(u"a.flac"_s), {.rate = 96000, .bits = 24, .channels = 1, .frames = 12345});
    const AudioFormatObject format = FlacTagHelper::getFormatInfo(path);
    EXPECT_EQ(format.sampleRate, 96000);
    EXPECT_EQ(format.bitsPerChannel, 24);
    EXPECT_EQ(format.channels, 1);
    EXPECT_EQ(format.totalSamples, 12345);
}

TEST(FlacTagHelper, ReadsATotalBeyond32Bits)
{
    const ProgramFolder tools;
    static_cast<void>(tools.addFake(u"metaflac"_s, "out=8589934592\\n"));
    EXPECT_EQ(FlacTagHelper::getFormatInfo(u"/nowhere/a.flac"_s).totalSamples, 8589934592LL);
}

TEST(FlacTagHelper, GivesEmptyValuesAndZeroesForAFileThatIsMissingOrNoFlac)
{
    const TestFolder folder;
    const QString junk = folder.write(u"junk=x.flac"_s, "TITLE=not a tag");
    for (const QString &path : {folder.path(u"missing.flac"_s), junk}) {
        EXPECT_TRUE(FlacTagHelper::tagForFile(path, FlacTagHelper::kTitle).isEmpty());
        const AudioFormatObject format = FlacTagHelper::getFormatInfo(path);
        EXPECT_EQ(format.sampleRate, 0);
        EXPECT_EQ(format.channels, 0);
        EXPECT_EQ(format.bitsPerChannel, 0);
        EXPECT_EQ(format.totalSamples, 0);
        FlacTagHelper::writeTagForFile(path, FlacTagHelper::kTitle, u"x"_s, false);
    }
    EXPECT_EQ(folder.read(u"junk=x.flac"_s), QByteArray("TITLE=not a tag"));
    EXPECT_FALSE(folder.exists(u"missing.flac"_s));
}

TEST(FlacTagHelper, GivesEmptyValuesAndLeavesTheFileWithoutMetaflac)
{
    const TestFolder folder;
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    metaflac({u"--set-tag=TITLE=old"_s, path});
    const QByteArray before = folder.read(u"a.flac"_s);
    const ProgramFolder noTools;
    EXPECT_TRUE(FlacTagHelper::tagForFile(path, FlacTagHelper::kTitle).isEmpty());
    FlacTagHelper::writeTagForFile(path, FlacTagHelper::kTitle, u"new"_s, false);
    EXPECT_EQ(FlacTagHelper::getFormatInfo(path).sampleRate, 0);
    EXPECT_EQ(folder.read(u"a.flac"_s), before);
}

TEST(FlacTagHelper, WritesThroughNoLinkWithTheNameOfATemporaryFile)
{
    ProgramFolder tools;
    tools.addAllReal();
    const TestFolder folder;
    const QString victim = folder.write(u"victim"_s, "somebody's");
    const QString path = writeFlac(folder.path(u"a.flac"_s));
    const QByteArray before = folder.read(u"a.flac"_s);
    // Too long for the room that flac leaves for tags, so that all has to be written anew.
    const QString comment(30'000, u'c');
    for (const QString &target : {victim, folder.path(u"nowhere"_s)}) {
        folder.makeLink(u"a.flac.metadata_edit"_s, target);
        try {
            FlacTagHelper::writeTagForFile(path, FlacTagHelper::kComment, comment, false);
            ADD_FAILURE() << "it went through";
        } catch (const NurvFailure &failure) {
            EXPECT_EQ(failure.reason(),
                      u"a.flac.metadata_edit is there already, and has the name of a temporary file of metaflac"_s);
        }
        folder.remove(u"a.flac.metadata_edit"_s);
    }
    EXPECT_EQ(folder.read(u"victim"_s), "somebody's");
    EXPECT_EQ(folder.list(), (QStringList{u"a.flac"_s, u"victim"_s}));
    EXPECT_EQ(folder.read(u"a.flac"_s), before);
    FlacTagHelper::writeTagForFile(path, FlacTagHelper::kComment, comment, false);
    EXPECT_EQ(FlacTagHelper::tagForFile(path, FlacTagHelper::kComment), comment);
}

TEST(FlacTagHelper, NoticesWhenMetaflacLeavesNoFile)
{
    const TestFolder folder;
    const QString path = writeFlac(folder.path(u"a.flac"_s));
    ProgramFolder tools;
    tools.addFake(u"metaflac"_s, "delete=@-1");
    EXPECT_THROW(FlacTagHelper::writeTagForFile(path, FlacTagHelper::kDate, u"1999"_s, false), NurvFailure);
}

TEST(FlacTagHelper, WritesIntoTheFileThatALinkLeadsTo)
{
    const TestFolder folder;
    const QString path = writeFlac(folder.path(u"real/a.flac"_s));
    const QString link = folder.makeLink(u"a.flac"_s, path);
    // Too long for the room that flac leaves for tags, so that all has to be written anew.
    const QString comment(30'000, u'c');
    FlacTagHelper::writeTagForFile(link, FlacTagHelper::kComment, comment, false);
    FlacTagHelper::writeTagForFile(link, FlacTagHelper::kDate, u"1999"_s, false);
    EXPECT_EQ(QFile::symLinkTarget(link), path);
    EXPECT_EQ(FlacTagHelper::tagForFile(path, FlacTagHelper::kComment), comment);
    EXPECT_EQ(FlacTagHelper::tagForFile(path, FlacTagHelper::kDate), u"1999"_s);
}

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TrackNamesFile.h"

#include "support/LogLines.h"
#include "support/TestFolder.h"

#include <QFile>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace nurv::test {

namespace {

constexpr qsizetype kMebibyte = 1024 * 1024;

class TrackNamesFileTest : public ::testing::Test {
protected:
    /// The names in a file of these bytes.
    QString namesOf(const QByteArray &bytes)
    {
        const TrackNamesFile file = readTrackNamesFile(folder.write(u"set.txt"_s, bytes));
        EXPECT_EQ(file.problem, QString());
        return file.names.value_or(u"nothing"_s);
    }

    /// Why nothing is read.
    static QString problemOf(const QString &path)
    {
        const TrackNamesFile file = readTrackNamesFile(path);
        EXPECT_FALSE(file.names);
        return file.problem;
    }

    TestFolder folder;
};

/// Every second byte is one of the text, the other one is zero.
QByteArray utf16(const QByteArray &text, bool isLittleEndian)
{
    QByteArray bytes;
    for (const char byte : text)
        bytes.append(isLittleEndian ? byte : '\0').append(isLittleEndian ? '\0' : byte);
    return bytes;
}

} // namespace

TEST_F(TrackNamesFileTest, ReadsUtf8WithAndWithoutAMark)
{
    EXPECT_EQ(namesOf("1. R\xC3\xA9 mineur 2:10\r\n2. \xE6\x9D\xB1\xE4\xBA\xAC\r\n"), u"Ré mineur \n東京\n"_s);
    EXPECT_EQ(namesOf("\xEF\xBB\xBF"
                      "1. R\xC3\xA9 mineur 2:10\n"),
              u"Ré mineur \n"_s)
        << "the mark stands before the number";
}

TEST_F(TrackNamesFileTest, ReadsUtf16OfBothOrdersWithAndWithoutAMark)
{
    const QByteArray text("1. R\xE9 mineur 2:10\r\n2. Paper Boats\r\n");
    const QString names = u"Ré mineur \nPaper Boats\n"_s;
    EXPECT_EQ(namesOf("\xFF\xFE" + utf16(text, true)), names);
    EXPECT_EQ(namesOf("\xFE\xFF" + utf16(text, false)), names);
    EXPECT_EQ(namesOf(utf16(text, true)), names);
    EXPECT_EQ(namesOf(utf16(text, false)), names);
}

TEST_F(TrackNamesFileTest, ReadsLatin1AndWindows1252)
{
    EXPECT_EQ(namesOf("1. R\xE9 mineur 2:10\n2. Stra\xDF"
                      "e\n"),
              u"Ré mineur \nStraße\n"_s);
    EXPECT_EQ(namesOf("1. \x93Waltz\x94 \x96 Sleepwalker\x92s (3:00)\n2. 5 \x80\n"),
              u"“Waltz” – Sleepwalker’s \n5 €\n"_s);
}

TEST_F(TrackNamesFileTest, ReadsShiftJis)
{
    EXPECT_EQ(namesOf("1. \x93\x8C\x8B\x9E\x82\xCC\x96\xE9 3:10\n2. \x82\xB3\x82\xAD\x82\xE7\n"
                      "3. \x83\x49\x81\x5B\x83\x76\x83\x6A\x83\x93\x83\x4F\n"),
              u"東京の夜 \nさくら\nオープニング\n"_s);
}

TEST_F(TrackNamesFileTest, FindsASetListInFiftyMegabytes)
{
    QByteArray bytes("1. First 1:00\n");
    const QByteArray note("Notes on the lineage, the taper and the weather of that night. 12:00\n");
    bytes.reserve(50 * kMebibyte);
    while (bytes.size() + 100 < 50 * kMebibyte)
        bytes += note;
    bytes += "2. Last\n";
    EXPECT_EQ(namesOf(bytes), u"First \nLast\n"_s);
}

TEST_F(TrackNamesFileTest, TakesFiftyMebibytesAndNoByteMore)
{
    const QString path = folder.write(u"large.txt"_s, "1. A\n2. B");
    ASSERT_EQ(::truncate(QFile::encodeName(path).constData(), 50 * kMebibyte + 1), 0);
    EXPECT_EQ(problemOf(path), u"It is larger than 50 MB."_s);
    ASSERT_EQ(::truncate(QFile::encodeName(path).constData(), 50 * kMebibyte), 0);
    EXPECT_EQ(problemOf(path), u"One of its track names has more than 10,000 characters."_s) << "it has been read";
}

TEST_F(TrackNamesFileTest, TakesAHundredThousandNamesAndNotOneMore)
{
    const QByteArray names = QByteArray("1\n").repeated(100'000);
    EXPECT_EQ(namesOf(names), u"(blank)\n"_s.repeated(100'000));
    EXPECT_EQ(problemOf(folder.write(u"more.txt"_s, names + "1\n")), u"It has more than 100,000 track names."_s);
}

TEST_F(TrackNamesFileTest, TakesNamesOfTenThousandCharactersAndNoLongerOne)
{
    const QByteArray name = "1. " + QByteArray(10'000, 'a');
    EXPECT_EQ(namesOf(name).size(), 10'001);
    EXPECT_EQ(problemOf(folder.write(u"longer.txt"_s, name + 'a')),
              u"One of its track names has more than 10,000 characters."_s);
    EXPECT_EQ(namesOf("1. A\n" + QByteArray(20'000, 'a') + "\n2. B"), u"A\nB\n"_s) << "a long line is no name";
}

TEST_F(TrackNamesFileTest, RefusesWhatIsNoFileInPlainWords)
{
    EXPECT_EQ(problemOf(folder.path(u"missing.txt"_s)), u"There is no such file."_s);
    EXPECT_EQ(problemOf(folder.makeLink(u"link"_s, folder.path(u"missing.txt"_s))), u"There is no such file."_s);
    EXPECT_EQ(problemOf(folder.makeFolder(u"folder"_s)), u"It is a folder."_s);
    EXPECT_EQ(problemOf(u"/dev/zero"_s), u"It is no regular file."_s);
    EXPECT_EQ(problemOf(folder.write(u"empty.txt"_s, {})), u"It is empty."_s);
    const QString pipe = folder.path(u"pipe"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_EQ(problemOf(pipe), u"It is no regular file."_s) << "nobody writes to it: whoever opens it waits";
}

TEST_F(TrackNamesFileTest, LogsEveryAttemptToReadAFile)
{
    const QString path = folder.path(u"missing.txt"_s);
    const LogLines log;
    problemOf(path);
    EXPECT_THAT(log.of(u"nurv.files.unread"_s),
                ElementsAre(u"error There is no such file."_s, u"Trying to open as unicode..."_s,
                            u"error There is no such file."_s, u"Last hope: opening using NSASCIIStringEncoding..."_s,
                            u"Could not open file..."_s + path + u" There is no such file. There is no such file."_s));
}

TEST_F(TrackNamesFileTest, LogsNothingOfAFileThatIsRead)
{
    const LogLines log;
    EXPECT_EQ(namesOf("no set list"), QString());
    EXPECT_THAT(log.of(u"nurv.files.unread"_s), IsEmpty());
}

} // namespace nurv::test

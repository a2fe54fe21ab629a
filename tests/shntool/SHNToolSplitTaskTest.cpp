// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNToolSplitTask.h"

#include "programs/ShntoolModes.h"
#include "shntool/SHNtoolFixture.h"
#include "support/LogLines.h"

#include <QStringEncoder>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class SHNToolSplitTaskTest : public test::SHNtoolFixture {
protected:
    std::shared_ptr<NURVTask> split(const QString &source, const QByteArray &points, const QString &format = u"flac"_s)
    {
        const QString path = folder.write(u"points.cue"_s, points);
        const auto jobs = execute(u"split"_s, {source}, format, [&](SHNtoolTab &) {
            prompts.expectFile({.title = u"Choose file with split point data"_s,
                                .extensions = {u"cue"_s, u"txt"_s},
                                .option = u"points"_s},
                               path);
        });
        EXPECT_EQ(jobs.size(), 1U);
        return jobs.empty() ? nullptr : jobs.front();
    }
    static QByteArray sheet(const QStringList &titles, int seconds = 1)
    {
        QString text = u"FILE \"a.wav\" WAVE\n"_s;
        for (qsizetype i = 0; i < titles.size(); ++i)
            text += u"  TRACK %1 AUDIO\n    TITLE \"%2\"\n    INDEX 01 00:%3:00\n"_s.arg(
                QString::number(i + 1).rightJustified(2, u'0'), titles.at(i),
                QString::number(i * seconds).rightJustified(2, u'0'));
        return text.toUtf8();
    }
    [[nodiscard]] QStringList outputs() const
    {
        QStringList paths;
        for (const QString &name : out.list())
            paths.append(out.path(name));
        return paths;
    }
};

TEST_F(SHNToolSplitTaskTest, GivesPiecesTheirTitlesAndLosesNoSample)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 3 * 44'100 + 17});
    const auto job = split(source, sheet({u"One"_s, u"Zwölf Lieder"_s, u"3 & \"3\""_s}));
    EXPECT_TRUE(isDone(job));
    EXPECT_EQ(out.list(), (QStringList{u"01 One.flac"_s, u"02 Zwölf Lieder.flac"_s, u"03 3 & \"3\".flac"_s}));
    EXPECT_EQ(job->outcome().output, out.path());
    EXPECT_EQ(job->outcome().outputFiles, 3);
    EXPECT_TRUE(sound(outputs()) == sound({source}));
    EXPECT_TRUE(windows.isEmpty());
    EXPECT_TRUE(QFile::exists(source));
    EXPECT_TRUE(std::any_of(statuses.begin(), statuses.end(),
                            [](const QString &line) { return line.startsWith(u"Splitting: "_s); }));
}

TEST_F(SHNToolSplitTaskTest, SplitsAndJoinsSoundOf24Bits)
{
    const QString source = test::writeFlac(folder.path(u"a.flac"_s), {.rate = 48'000, .bits = 24, .frames = 150'000});
    EXPECT_TRUE(isDone(split(source, sheet({u"A"_s, u"B"_s}))));
    const QStringList pieces = outputs();
    ASSERT_EQ(pieces.size(), 2);
    EXPECT_TRUE(sound(pieces, u"s32le"_s) == sound({source}, u"s32le"_s));
    const auto joined = execute(u"join"_s, pieces);
    ASSERT_EQ(joined.size(), 1U);
    EXPECT_TRUE(isDone(joined.front()));
    EXPECT_TRUE(test::sameSound(out.path(u"joined.flac"_s), source));
}

TEST_F(SHNToolSplitTaskTest, RenamesNoPieceOfAnotherSplitWhenItDoesNotStart)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    out.write(u"split-track02.flac"_s, "mine");
    ASSERT_EQ(::symlink("/nowhere", QFile::encodeName(out.path(u"split-track01.flac"_s)).constData()), 0);
    const auto job = split(source, sheet({u"One"_s, u"Two"_s}));
    EXPECT_TRUE(job->error());
    EXPECT_EQ(job->outcome().problem, u"split-track01.flac: its output name is a link");
    EXPECT_EQ(out.read(u"split-track02.flac"_s), "mine");
}

TEST_F(SHNToolSplitTaskTest, SaysInItsOwnWordsThatAPieceIsThereAlready)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    out.write(u"split-track02.flac"_s, "mine");
    const auto job = split(source, sheet({u"One"_s, u"Two"_s}));
    EXPECT_TRUE(job->error());
    EXPECT_EQ(job->outcome().problem, u"a file of the name of its output exists already");
    EXPECT_EQ(out.read(u"split-track02.flac"_s), "mine");
    EXPECT_EQ(job->outcome().output, QString());
    EXPECT_EQ(out.list(), QStringList{u"split-track02.flac"_s});
}

TEST_F(SHNToolSplitTaskTest, KeepsTheNamesOfPiecesWithoutTitles)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    EXPECT_TRUE(isDone(split(source, "0:01\n", u"wav"_s)));
    EXPECT_EQ(out.list(), (QStringList{u"split-track01.wav"_s, u"split-track02.wav"_s}));
}

TEST_F(SHNToolSplitTaskTest, LeavesPiecesTheirNamesWhoseTracksHaveNoTitles)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    const test::LogLines log;
    EXPECT_TRUE(isDone(split(source, "FILE \"a.wav\" WAVE\n TRACK 01 AUDIO\n INDEX 01 00:00:00\n TRACK 02 AUDIO\n INDEX 01 00:01:00\n")));
    EXPECT_EQ(out.list(), (QStringList{u"split-track01.flac"_s, u"split-track02.flac"_s}));
    EXPECT_TRUE(log.with(u"keeps its name"_s).isEmpty());
}

TEST_F(SHNToolSplitTaskTest, PassesOverTitlesWithoutAPoint)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    EXPECT_TRUE(isDone(split(source, sheet({u"One"_s, u"Two"_s}) + "  TRACK 03 AUDIO\n    TITLE \"Three\"\n")));
    EXPECT_EQ(out.list(), (QStringList{u"01 One.flac"_s, u"02 Two.flac"_s}));
    EXPECT_TRUE(windows.isEmpty());
}

TEST_F(SHNToolSplitTaskTest, ReadsLinesThatEndInCarriageReturnsAlone)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    EXPECT_TRUE(isDone(split(source, sheet({u"One"_s, u"Two"_s}).replace('\n', '\r'))));
    EXPECT_EQ(out.list(), (QStringList{u"01 One.flac"_s, u"02 Two.flac"_s}));
    EXPECT_TRUE(sound(outputs()) == sound({source}));
}

TEST_F(SHNToolSplitTaskTest, RenamesNothingOfAJobThatWasCancelledWhileItWaited)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    out.write(u"split-track01.flac"_s, "mine");
    const auto job = std::make_shared<SHNToolSplitTask>(
        &queue(), tools.path() + u"/shntool"_s,
        shntool::splitArguments(folder.write(u"points.txt"_s, "0:01\n"), u"flac"_s, out.path(), source));
    job->setTrackTitleMap({{u"split-track01.flac"_s, u"01 One.flac"_s}});
    queue().hold();
    queue().addTask(job);
    job->cancelTask();
    queue().release();
    settle();
    EXPECT_TRUE(job->cancelled());
    EXPECT_EQ(out.list(), QStringList{u"split-track01.flac"_s});
}

TEST_F(SHNToolSplitTaskTest, LeavesPiecesTheirNamesWhoseTitlesCannotBeNames)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 5 * 44'100});
    out.makeFolder(u"02 .."_s);
    const test::LogLines log;
    EXPECT_TRUE(isDone(split(source, sheet({u"AC/DC"_s, u"../../x"_s, QString(300, u'x'), u"Song"_s}))));
    EXPECT_EQ(out.list(), (QStringList{u"04 Song.flac"_s, u"split-track01.flac"_s, u"split-track02.flac"_s,
                                       u"split-track03.flac"_s}));
    EXPECT_EQ(log.with(u"keeps its name"_s).size(), 3);
    EXPECT_FALSE(QFile::exists(folder.path(u"x.flac"_s)));
}

TEST_F(SHNToolSplitTaskTest, ReplacesNoFileThatHasTheNameOfATitle)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    out.write(u"01 One.flac"_s, "mine");
    EXPECT_TRUE(isDone(split(source, sheet({u"One"_s, u"Two"_s}))));
    EXPECT_EQ(out.read(u"01 One.flac"_s), "mine");
    EXPECT_EQ(out.list(), (QStringList{u"01 One.flac"_s, u"02 Two.flac"_s, u"split-track01.flac"_s}));
}

TEST_F(SHNToolSplitTaskTest, RenamesNoPieceOfAnEarlierSplit)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    out.write(u"split-track01.flac"_s, "of an earlier one");
    const auto job = split(source, sheet({u"One"_s, u"Two"_s}));
    EXPECT_TRUE(job->error());
    EXPECT_EQ(out.list(), QStringList{u"split-track01.flac"_s});
    EXPECT_EQ(out.read(u"split-track01.flac"_s), "of an earlier one");
    EXPECT_EQ(windows.size(), 1) << "the report stays";
}

TEST_F(SHNToolSplitTaskTest, FailsForPointsThatDoNotFit)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    for (const char *points : {"0:09\n", "0:01\n0:01\n", "0:01.50\n0:01\n", "later\n"}) {
        SCOPED_TRACE(points);
        const auto job = split(source, points);
        EXPECT_TRUE(job->error());
        EXPECT_FALSE(job->outcome().problem.isEmpty());
        EXPECT_EQ(out.list(), QStringList());
    }
}

TEST_F(SHNToolSplitTaskTest, ReadsCueSheetsInEveryEncoding)
{
    const QString text = QString::fromUtf8(sheet({u"Größe"_s, u"Zwei"_s}));
    QByteArray utf16 = QByteArray("\xFF\xFE") + QStringEncoder(QStringEncoder::Utf16LE).encode(text);
    QByteArray utf16BigEndian = QByteArray("\xFE\xFF") + QStringEncoder(QStringEncoder::Utf16BE).encode(text);
    for (const QByteArray &bytes :
         {text.toUtf8(), QByteArray("\xEF\xBB\xBF") + text.toUtf8(), text.toLatin1(), utf16, utf16BigEndian}) {
        const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
        EXPECT_TRUE(isDone(split(source, bytes)));
        EXPECT_EQ(out.list(), (QStringList{u"01 Größe.flac"_s, u"02 Zwei.flac"_s}))
            << bytes.left(4).toHex().constData();
        for (const QString &path : outputs())
            QFile::remove(path);
    }
}

TEST_F(SHNToolSplitTaskTest, ReadsACueSheetOfWindows)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    // With a dash of Windows-1252.
    EXPECT_TRUE(isDone(split(source, "FILE \"a.wav\" WAVE\r\nTRACK 01 AUDIO\r\nTITLE \"A \x96 B\"\r\nINDEX 01 "
                                     "00:00:00\r\nTRACK 02 AUDIO\r\nTITLE \"C\"\r\nINDEX 01 00:01:00\r\n")));
    EXPECT_EQ(out.list(), (QStringList{u"01 A \u2013 B.flac"_s, u"02 C.flac"_s}));
}

TEST_F(SHNToolSplitTaskTest, GivesNoFileTheTitleOfAnAlbum)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    out.write(u"split-track00.flac"_s, "mine");
    EXPECT_TRUE(isDone(split(source, "TITLE \"Album\"\nINDEX 01 00:00:00\nINDEX 01 00:01:00\n")));
    EXPECT_EQ(out.list(), (QStringList{u"split-track00.flac"_s, u"split-track01.flac"_s, u"split-track02.flac"_s}));
    EXPECT_EQ(out.read(u"split-track00.flac"_s), "mine");
}

TEST_F(SHNToolSplitTaskTest, ReadsACueSheetInShiftJis)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    // "東京の夜は静かです" and "雨が降っています".
    const QByteArray tokyo = QByteArray::fromHex("938c8b9e82cc96e982cd90c382a982c582b7");
    const QByteArray rain = QByteArray::fromHex("894a82aa8d7e82c182c482a282dc82b7");
    EXPECT_TRUE(isDone(split(source, "FILE \"a.wav\" WAVE\nTRACK 01 AUDIO\nTITLE \"" + tokyo
                                         + "\"\nINDEX 01 00:00:00\nTRACK 02 AUDIO\nTITLE \"" + rain
                                         + "\"\nINDEX 01 00:01:00\n")));
    EXPECT_EQ(out.list(), (QStringList{u"01 東京の夜は静かです.flac"_s, u"02 雨が降っています.flac"_s}));
    EXPECT_TRUE(sound(outputs()) == sound({source}));
}

TEST_F(SHNToolSplitTaskTest, LosesNoPieceWhateverTheBytesOfTitlesMean)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    // Bytes that are a backslash, a quotation mark or half a letter, by encoding; and such as no encoding has.
    for (const QByteArray &title : {QByteArray("\x83\x5c"), QByteArray("\x81\x22"), QByteArray("\xff\xfe\xc0\x80"),
                                    QByteArray("\x1b$B\x21\x21\x1b(B")}) {
        SCOPED_TRACE(title.toHex().constData());
        EXPECT_TRUE(
            isDone(split(source, "FILE \"a.wav\" WAVE\nTRACK 01 AUDIO\nTITLE \"" + title
                                     + "\"\nINDEX 01 00:00:00\nTRACK 02 AUDIO\nTITLE \"Two\"\nINDEX 01 00:01:00\n")));
        ASSERT_EQ(out.list().size(), 2) << qPrintable(out.list().join(u'\n'));
        EXPECT_TRUE(out.exists(u"02 Two.flac"_s)) << qPrintable(out.list().join(u'\n'));
        QStringList pieces = outputs();
        if (pieces.first().endsWith(u"02 Two.flac"))
            pieces.swapItemsAt(0, 1);
        EXPECT_TRUE(sound(pieces) == sound({source}));
        for (const QString &path : outputs())
            QFile::remove(path);
    }
}

TEST_F(SHNToolSplitTaskTest, FailsWhenPiecesAreMissing)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    const QString piece = test::writeFlac(folder.path(u"made/piece.flac"_s), {.frames = 44'100});
    tools.remove(u"shntool"_s);
    tools.addFake(u"shntool"_s, "copy=" + piece.toUtf8() + ':' + out.path(u"split-track01.flac"_s).toUtf8());
    const auto job = split(source, sheet({u"One"_s, u"Two"_s}));
    EXPECT_TRUE(job->error());
    EXPECT_FALSE(job->outcome().problem.isEmpty());
    EXPECT_EQ(out.list(), QStringList{u"01 One.flac"_s}) << "renamed all the same";
}

TEST_F(SHNToolSplitTaskTest, TakesCueSheetsOfTheTabBack)
{
    const QStringList tracks{test::writeWav(folder.path(u"t1.wav"_s), {.frames = 588 * 100, .seed = 1}),
                             test::writeWav(folder.path(u"t2.wav"_s), {.frames = 588 * 120, .seed = 2}),
                             test::writeWav(folder.path(u"t3.wav"_s), {.frames = 588 * 90, .seed = 3})};
    const QString cue = folder.path(u"made.cue"_s);
    const auto sheets = execute(u"cue"_s, tracks, u"flac"_s, [&](SHNtoolTab &) {
        prompts.expectSavePath(u"cuesheet.cue"_s, u"Save CUE sheet as"_s, cue);
    });
    ASSERT_EQ(sheets.size(), 1U);
    EXPECT_TRUE(isDone(sheets.front()));
    EXPECT_TRUE(isDone(execute(u"join"_s, tracks, u"wav"_s).front()));
    const QString joined = folder.write(u"joined.wav"_s, out.read(u"joined.wav"_s));
    out.remove(u"joined.wav"_s);
    QFile sheetFile(cue);
    ASSERT_TRUE(sheetFile.open(QIODevice::ReadOnly));
    EXPECT_TRUE(isDone(split(joined, sheetFile.readAll(), u"wav"_s)));
    ASSERT_EQ(out.list().size(), 3);
    for (qsizetype i = 0; i < 3; ++i)
        EXPECT_TRUE(test::sameSound(outputs().at(i), tracks.at(i)));
}

} // namespace
} // namespace nurv

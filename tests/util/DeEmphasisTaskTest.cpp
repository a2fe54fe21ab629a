// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/UtilFixture.h"

#include "files/ReservedFile.h"

#include "util/DeEmphasisTask.h"

#include <QtEndian>

#include <algorithm>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class DeEmphasisTaskTest : public test::UtilFixture {
protected:
    DeEmphasisTaskTest() { tools.addAllReal(); }

    std::vector<std::shared_ptr<NURVTask>> run(const QStringList &paths)
    {
        prompts.expectOutputFolder(out.path());
        return execute(UtilTab::kDeEmphasis, paths);
    }
    /// Up to the noise that sox adds below 24 bits, which is another one each time.
    static void expectNearlySame(const QString &left, const QString &right, int bits)
    {
        if (bits == 24) {
            EXPECT_TRUE(test::sameSound(left, right));
            return;
        }
        const auto samplesOf = [](const QString &path) {
            const auto decoded = test::runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-i"_s, path, u"-f"_s,
                                                                u"s16le"_s, u"-"_s});
            EXPECT_EQ(decoded.exitStatus, 0) << decoded.errors.constData();
            return decoded.output;
        };
        constexpr int kMostNoise = 3;
        const QByteArray first = samplesOf(left);
        const QByteArray second = samplesOf(right);
        ASSERT_EQ(first.size(), second.size());
        for (qsizetype at = 0; at < first.size(); at += 2) {
            ASSERT_LE(std::abs(qFromLittleEndian<qint16>(first.constData() + at)
                               - qFromLittleEndian<qint16>(second.constData() + at)),
                      kMostNoise);
        }
    }
    /// What sox makes of the file when it is run by hand.
    QString byHand(const QString &source)
    {
        const QString made = folder.path(u"by-hand."_s + QFileInfo(source).suffix());
        EXPECT_EQ(test::runProgram(u"sox"_s, {source, made, u"deemph"_s}).exitStatus, 0);
        return made;
    }
};

TEST_F(DeEmphasisTaskTest, MakesWhatSoxMakesByHand)
{
    for (const test::SoundShape &shape : {test::SoundShape{}, {.rate = 48000, .bits = 24}, {.channels = 1, .seed = 3}}) {
        for (const bool isAiff : {false, true}) {
            const QString source = isAiff ? test::writeAiff(folder.path(u"song.aiff"_s), shape)
                                          : test::writeWav(folder.path(u"song.wav"_s), shape);
            const QByteArray before = folder.read(QFileInfo(source).fileName());
            const auto jobs = run({source});
            ASSERT_EQ(jobs.size(), 1U);
            const QString output = out.path(u"song-deemph."_s + QFileInfo(source).suffix());
            EXPECT_TRUE(isDone(jobs.front()));
            EXPECT_EQ(jobs.front()->outcome().output, output);
            expectNearlySame(output, byHand(source), shape.bits);
            EXPECT_FALSE(test::sameSound(output, source));
            EXPECT_TRUE(folder.read(QFileInfo(source).fileName()) == before);
            EXPECT_TRUE(QFile::remove(output));
        }
    }
}

TEST_F(DeEmphasisTaskTest, ReadsTheFileThatIsMeantWhateverItsNameIsAsAPattern)
{
    test::writeWav(folder.path(u"Show S.wav"_s), {.bits = 24, .seed = 5});
    test::writeWav(folder.path(u"axbx.wav"_s), {.bits = 24, .seed = 6});
    const QString plain = test::writeWav(folder.path(u"plain.wav"_s), {.bits = 24});
    for (const QString &name : {u"Show [SBD].wav"_s, u"a*b?.wav"_s, u"br{a,b}ce.wav"_s, u"q\\[z].wav"_s,
                                u"back\\slash.wav"_s, u"~x[y.wav"_s}) {
        const QString source = folder.path(name);
        ASSERT_TRUE(QFile::copy(plain, source));
        const auto job = run({source}).front();
        EXPECT_TRUE(isDone(job));
        EXPECT_EQ(job->title(), name);
        expectNearlySame(out.path(QFileInfo(name).completeBaseName() + u"-deemph.wav"_s), byHand(plain), 24);
    }
}

TEST_F(DeEmphasisTaskTest, BelievesTheFileWhereAPipeHasWrittenItsHeader)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s));
    QFile file(source);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const qint64 sizeAt = file.readAll().indexOf("data") + 4;
    ASSERT_GT(sizeAt, 4);
    ASSERT_TRUE(file.seek(sizeAt));
    ASSERT_EQ(file.write("\x00\xf0\xff\x7f", 4), 4);
    file.close();
    EXPECT_TRUE(isDone(run({source}).front()));
}

TEST_F(DeEmphasisTaskTest, ShowsHowFarSoxIs)
{
    setFake(u"sox"_s, "out=\\nInput File : 'x'\\n\\n;until-read;out=\\rIn:42.50% 00:00:10.22 ;until-read;out=\\rIn:100% x"
                      "\\nDone.\\n;until-read;exit=2");
    const auto jobs = run({test::writeWav(folder.path(u"song.wav"_s))});
    EXPECT_TRUE(statuses.contains(u"Applying de-emphasis: 42.500000%"_s)) << qPrintable(statuses.join(u'\n'));
    EXPECT_TRUE(bars.contains(42.5));
    EXPECT_EQ(jobs.front()->title(), u"song.wav");
    EXPECT_TRUE(mainLines.contains(u"song.wav"_s));
}

TEST_F(DeEmphasisTaskTest, TheReportsFollowEachOtherInOneSlot)
{
    const QStringList sources{test::writeWav(folder.path(u"a.wav"_s)), test::writeWav(folder.path(u"b.wav"_s))};
    setFake(u"sox"_s, "out=Input\\n;until-read;out=\\rIn:100% x\\nDone.\\n;until-read;exit=1");
    const auto jobs = run(sources);
    ASSERT_EQ(outputWindows.size(), 1);
    QStringList reports;
    for (const QString &source : sources)
        reports.append(u"Input%1  - Done\n\n"_s.arg(source));
    const QString emptySlots = u"\n\n"_s;
    const QString both = outputWindows.first();
    EXPECT_TRUE(both == reports.at(0) + reports.at(1) + emptySlots || both == reports.at(1) + reports.at(0) + emptySlots)
        << qPrintable(both);
}

TEST_F(DeEmphasisTaskTest, TellsWhatSoxDoesNotTake)
{
    const auto jobs = run({test::writeWav(folder.path(u"a.wav"_s), {.rate = 96000})});
    EXPECT_TRUE(jobs.front()->error());
    EXPECT_TRUE(jobs.front()->outcome().problem.startsWith(u"sample rate must be 44100"_s))
        << qPrintable(jobs.front()->outcome().problem);
    EXPECT_EQ(out.list(), QStringList());
    EXPECT_EQ(outputWindows.size(), 1);
}

TEST_F(DeEmphasisTaskTest, LeavesWhatHasTheOutputsName)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s));
    out.write(u"a-deemph.wav"_s, "mine");
    EXPECT_EQ(run({source}).front()->outcome().problem, u"its output a-deemph.wav exists already");
    EXPECT_EQ(out.read(u"a-deemph.wav"_s), "mine");
    out.remove(u"a-deemph.wav"_s);
    out.makeLink(u"a-deemph.wav"_s, folder.write(u"precious"_s, "precious"));
    EXPECT_EQ(run({source}).front()->outcome().problem, u"its output name is a link");
    EXPECT_EQ(folder.read(u"precious"_s), "precious");
}

TEST_F(DeEmphasisTaskTest, HoldsTheNameOfItsOutputFromTheBeginning)
{
    const QString waits = folder.path(u"waits"_s);
    setFake(u"sox"_s, "create=" + waits.toUtf8() + ";wait-file=" + folder.path(u"go-on"_s).toUtf8() + ";exit=1");
    prompts.expectOutputFolder(out.path());
    tab.setCommand(UtilTab::kDeEmphasis);
    tab.addMatchedFiles({test::writeWav(folder.path(u"a.wav"_s))});
    tab.executeCommand();
    ASSERT_TRUE(test::waitUntil([&] { return QFile::exists(waits); }));
    ReservedFile other;
    EXPECT_FALSE(other.make(out.path(u"a-deemph.wav"_s)));
    folder.write(u"go-on"_s, "");
    settle();
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(DeEmphasisTaskTest, LeavesWhatTookTheNameOfItsOutput)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s));
    const QString other = folder.path(u"other.wav"_s);
    for (const QByteArray &ending : {QByteArray("exit 0\n"), QByteArray("exit 1\n")}) {
        ASSERT_TRUE(QFile::copy(source, other));
        setScript(u"sox"_s, "mv '" + other.toUtf8() + "' \"$3\"; " + ending);
        const auto job = run({source}).front();
        EXPECT_TRUE(job->error());
        EXPECT_EQ(job->outcome().output, QString());
        EXPECT_TRUE(out.read(u"a-deemph.wav"_s) == folder.read(u"a.wav"_s));
        if (ending.startsWith("exit 0")) {
            EXPECT_EQ(job->outcome().problem, u"something else has the name of its output a-deemph.wav now, and stays");
        }
        out.remove(u"a-deemph.wav"_s);
    }
}

TEST_F(DeEmphasisTaskTest, LeavesNothingWhereItsProgramIsMissing)
{
    tools.remove(u"sox"_s);
    setScript(u"sox"_s, "");
    ASSERT_TRUE(QFile(tools.path(u"sox"_s)).setPermissions(QFile::ReadOwner));
    EXPECT_TRUE(run({test::writeWav(folder.path(u"a.wav"_s))}).front()->error());
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(DeEmphasisTaskTest, TellsWhyTheOutputCannotBeMade)
{
    const QString source = test::writeWav(folder.path(u"%1.wav"_s.arg(QString(250, u'a'))));
    const auto job = run({source}).front();
    EXPECT_TRUE(job->error());
    EXPECT_TRUE(job->outcome().problem.endsWith(u" cannot be made: File name too long"_s))
        << qPrintable(job->outcome().problem);
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(DeEmphasisTaskTest, MakesOneOfTwoFilesOfOneName)
{
    folder.makeFolder(u"x"_s);
    const auto jobs = run({test::writeWav(folder.path(u"a.wav"_s)), test::writeWav(folder.path(u"x/a.wav"_s))});
    ASSERT_EQ(jobs.size(), 2U);
    EXPECT_EQ(std::count_if(jobs.begin(), jobs.end(), [](const auto &job) { return job->error(); }), 1);
    EXPECT_EQ(out.list(), QStringList(u"a-deemph.wav"_s));
}

TEST_F(DeEmphasisTaskTest, RemovesWhatIsHalfMade)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s));
    for (const QByteArray &ending : {QByteArray("exit=2"), QByteArray("signal=9")}) {
        setFake(u"sox"_s, "append=@-2:half;" + ending);
        EXPECT_TRUE(run({source}).front()->error());
        EXPECT_EQ(out.list(), QStringList());
    }
    // A full disk, of which it may not tell.
    setFake(u"sox"_s, "copy=" + test::writeWav(folder.path(u"short.wav"_s), {.seconds = 0.5}).toUtf8() + ":@-2");
    const auto cut = run({source}).front();
    EXPECT_TRUE(cut->error());
    EXPECT_EQ(cut->outcome().problem, u"the output has 22050 samples, and the source 44100");
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(DeEmphasisTaskTest, ACancelledOneLeavesNothing)
{
    const QString waits = folder.path(u"waits"_s);
    setFake(u"sox"_s, "append=@-2:half;create=" + waits.toUtf8() + ";wait-file=" + folder.path(u"go-on"_s).toUtf8());
    prompts.expectOutputFolder(out.path());
    tab.setCommand(UtilTab::kDeEmphasis);
    tab.addMatchedFiles({test::writeWav(folder.path(u"a.wav"_s))});
    tab.executeCommand();
    ASSERT_TRUE(test::waitUntil([&] { return QFile::exists(waits); }));
    queue().panelArray().front()->cancelTask();
    folder.write(u"go-on"_s, "");
    settle();
    EXPECT_EQ(out.list(), QStringList());
}

} // namespace
} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fix/FixFixture.h"

#include "support/FileSizeLimit.h"

#include <csignal>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

/// What is in the way, what ends too early, what cannot be read.
class FixBadLuckTest : public test::FixFixture {
protected:
    /// Expects a job that fails before shntool is started, with that problem.
    void expectRefused(const QStringList &sources, const QString &format, const QString &problem)
    {
        const QString log = folder.path(u"log"_s);
        setFake(u"shntool"_s, "log=" + log.toUtf8());
        const QStringList before = out.list();
        const auto task = make(sources, format);
        task->setDeleteOriginal(true);
        runJob(task);
        EXPECT_TRUE(task->error());
        EXPECT_EQ(task->outcome().problem, problem);
        EXPECT_EQ(task->outcome().original, TaskOutcome::Original::Kept);
        EXPECT_TRUE(areThere(sources));
        EXPECT_EQ(out.list(), before);
        EXPECT_FALSE(QFile::exists(log)) << "nothing was started";
    }
    void cancelWhileItWaits(const std::shared_ptr<FixTask> &task, const QString &waits)
    {
        task->setDeleteOriginal(true);
        queue().addTask(task);
        ASSERT_TRUE(test::waitUntil([&] { return folder.exists(waits); }));
        task->cancelTask();
        settle();
        EXPECT_EQ(task->textField().text, u"Canceled");
        EXPECT_FALSE(task->error());
    }
};

TEST_F(FixBadLuckTest, NamesTheOutputThatExists)
{
    const QStringList wavs = makeWavs();
    out.write(u"show-d1t02.wav"_s, "mine");
    expectRefused(wavs, u"wav"_s, u"show-d1t02.wav: its output show-d1t02.wav exists already"_s);
    out.write(u"show-d1t03.wav"_s, "mine");
    expectRefused(wavs, u"wav"_s, u"show-d1t02.wav: its output show-d1t02.wav exists already (and 1 more)"_s);
    EXPECT_EQ(out.read(u"show-d1t02.wav"_s), "mine");
}

TEST_F(FixBadLuckTest, NamesTheFileThatHasTheNameBetween)
{
    const QStringList wavs = makeWavs();
    out.write(u"show-d1t01-fixed.flac"_s, "mine");
    expectRefused(wavs, u"flac"_s,
                  u"show-d1t01.wav: show-d1t01-fixed.flac, as its program calls what it makes, exists already"_s);
    EXPECT_EQ(out.read(u"show-d1t01-fixed.flac"_s), "mine");
}

TEST_F(FixBadLuckTest, FollowsNoLink)
{
    const QStringList wavs = makeWavs();
    const QString target = folder.path(u"target"_s);
    out.makeLink(u"show-d1t01.wav"_s, target);
    expectRefused(wavs, u"wav"_s, u"show-d1t01.wav: its output name show-d1t01.wav is a link"_s);
    out.remove(u"show-d1t01.wav"_s);
    out.makeLink(u"show-d1t03-fixed.wav"_s, target);
    expectRefused(wavs, u"wav"_s,
                  u"show-d1t03.wav: show-d1t03-fixed.wav, as its program calls what it makes, exists already"_s);
    EXPECT_FALSE(QFile::exists(target));
}

TEST_F(FixBadLuckTest, PutsALinkThatHasTheNameOfAListOutOfTheWay)
{
    const QString target = folder.write(u"target"_s, "mine");
    out.makeLink(u"md5sum.md5"_s, target);
    const auto task = runJob(make(makeWavs(), u"shn"_s, u"1 MD5"_s));
    EXPECT_FALSE(task->error()) << qPrintable(task->report());
    EXPECT_EQ(folder.read(u"target"_s), "mine");
    EXPECT_TRUE(out.read(u"md5sum.md5"_s).startsWith("#MD5"));
}

TEST_F(FixBadLuckTest, NeverFixesAFileInItsPlace)
{
    const QStringList wavs = makeWavs();
    const auto task = std::make_shared<FixTask>(&queue(), wavs, u"wav"_s, folder.path(), u"No MD5"_s, 4, nullptr);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(areThere(wavs));
    EXPECT_EQ(folder.list().size(), 3);
}

TEST_F(FixBadLuckTest, TakesNoTwoSourcesWithOneOutput)
{
    const QStringList sources{test::writeWav(folder.path(u"a/t.wav"_s)), test::writeWav(folder.path(u"b/t.wav"_s))};
    expectRefused(sources, u"flac"_s, u"t.wav: t.flac is also what becomes of %1"_s.arg(sources.first()));
    const QStringList others{test::writeWav(folder.path(u"c.wav"_s)), test::writeWav(folder.path(u"c-fixed.wav"_s))};
    expectRefused(others, u"flac"_s, u"c-fixed.wav: c-fixed.flac is also what becomes of %1"_s.arg(others.first()));
}

TEST_F(FixBadLuckTest, LeavesWhatAnotherJobMakes)
{
    const QStringList wavs = makeWavs(2);
    OutputClaim other;
    ASSERT_EQ(other.take(out.path(u"show-d1t02.flac"_s), folder.path(u"other.wav"_s), nullptr), std::nullopt);
    expectRefused(wavs, u"flac"_s,
                  u"show-d1t02.wav: its output show-d1t02.flac is made from %1"_s.arg(folder.path(u"other.wav"_s)));
    other.release();
    tools.remove(u"shntool"_s);
    tools.addReal(u"shntool"_s);
    const auto task = runJob(make(wavs, u"flac"_s));
    EXPECT_FALSE(task->error()) << "nothing was kept of the refused job: " << qPrintable(task->report());
}

TEST_F(FixBadLuckTest, LeavesTheListOfTheTabWhenItCouldNotBegin)
{
    FixTab tab(controller);
    tab.outputFormatMatrix.selectTitle(u"WAV"_s);
    out.write(u"show-d1t02.wav"_s, "mine");
    run(tab, makeWavs());
    settle();
    EXPECT_EQ(tab.fileNames().size(), 3);
}

TEST_F(FixBadLuckTest, FailsWhenSomethingTakesTheNameMeanwhile)
{
    const QStringList wavs = makeWavs();
    const QString real = QFileInfo(tools.path(u"shntool"_s)).canonicalFilePath();
    setFake(u"shntool"_s, "append=" + out.path(u"show-d1t02.wav"_s).toUtf8() + ":mine;exec=" + real.toUtf8());
    const auto task = make(wavs, u"wav"_s);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_EQ(task->outcome().problem, u"show-d1t02.wav: its output could not get its name: File exists");
    EXPECT_EQ(out.list(), QStringList{u"show-d1t02.wav"_s}) << "of its own files none is left";
    EXPECT_EQ(out.read(u"show-d1t02.wav"_s), "mine");
    EXPECT_TRUE(areThere(wavs));
}

TEST_F(FixBadLuckTest, FailsWhenAnOutputIsMissing)
{
    const QStringList wavs = makeWavs(2);
    setFake(u"shntool"_s, makes(wavs.at(0), wavs.at(0), u"wav"_s));
    const auto task = make(wavs, u"wav"_s);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_EQ(task->outcome().problem, u"show-d1t02.wav: its program made no output");
    EXPECT_EQ(out.list(), QStringList());
    EXPECT_TRUE(areThere(wavs));
}

TEST_F(FixBadLuckTest, TellsWhatAKilledShntoolLeft)
{
    const QStringList wavs = makeWavs(2);
    setFake(u"shntool"_s, makes(wavs.at(0), wavs.at(0), u"wav"_s) + "signal=9");
    const auto task = make(wavs, u"wav"_s);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->outcome().problem.contains(u"shntool"_s)) << qPrintable(task->outcome().problem);
    EXPECT_TRUE(task->report().contains(u"show-d1t01-fixed.wav was left there"_s)) << qPrintable(task->report());
    EXPECT_TRUE(areThere(wavs));
}

TEST_F(FixBadLuckTest, TellsWhatShntoolLeftWhenItIsEndedByACancellation)
{
    const QStringList wavs = makeWavs(3);
    setFake(u"shntool"_s, makes(wavs.at(0), wavs.at(0), u"wav"_s) + makes(wavs.at(1), wavs.at(0), u"wav"_s)
                              + "create=" + folder.path(u"waits"_s).toUtf8() + ";hang");
    const auto task = make(wavs, u"wav"_s);
    cancelWhileItWaits(task, u"waits"_s);
    EXPECT_EQ(task->outcome().problem, u"show-d1t01-fixed.wav and 1 more were left");
    for (const QString &name : {u"show-d1t01-fixed.wav"_s, u"show-d1t02-fixed.wav"_s}) {
        EXPECT_TRUE(task->report().contains(out.path(name) + u" was left there; "_s)) << qPrintable(task->report());
        EXPECT_TRUE(out.exists(name));
    }
    EXPECT_TRUE(outputWindows.join(QString()).contains(u"was left there"_s)) << "and a window shows it";
    EXPECT_TRUE(areThere(wavs));
}

TEST_F(FixBadLuckTest, RemovesNoFileOfOthersWithANameThatItsProgramMayGive)
{
    const QStringList wavs = makeWavs(2);
    // The second name that an output may have, taken while the program works.
    const QString second = u"show-d1t01.wav-fixed.wav"_s;
    setFake(u"shntool"_s, makes(wavs.at(0), wavs.at(0), u"wav"_s) + "append=" + out.path(second).toUtf8() + ":mine");
    const auto task = make(wavs, u"wav"_s);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_EQ(out.read(second), "mine");
    EXPECT_EQ(task->outcome().problem, u"show-d1t01.wav: another file has a name that its output may have");
    for (const QString &name : {second, u"show-d1t01-fixed.wav"_s})
        EXPECT_TRUE(task->report().contains(out.path(name) + u" is there: whose it is, this job does not know\n"_s))
            << qPrintable(task->report());
    EXPECT_TRUE(areThere(wavs));
}

TEST_F(FixBadLuckTest, RemovesNoFileThatWasPutInThePlaceOfItsOwn)
{
    const QStringList wavs = makeWavs(2);
    // The first output gets its name, the second has none; meanwhile nothing may be removed but what this job has made.
    setFake(u"shntool"_s, makes(wavs.at(0), wavs.at(0), u"wav"_s) + "append=" + out.path(u"show-d1t02.wav"_s).toUtf8() + ":mine;"
                              + makes(wavs.at(1), wavs.at(1), u"wav"_s));
    const auto task = make(wavs, u"wav"_s);
    runJob(task);
    EXPECT_EQ(task->outcome().problem, u"show-d1t02.wav: its output could not get its name: File exists");
    EXPECT_EQ(out.list(), QStringList{u"show-d1t02.wav"_s});
    EXPECT_EQ(out.read(u"show-d1t02.wav"_s), "mine");
}

TEST_F(FixBadLuckTest, ShowsNamesWithPlaceholdersAsTheyAre)
{
    QStringList wavs;
    for (int i = 1; i <= 2; ++i)
        wavs.append(test::writeWav(folder.path(u"t%1 100%2 %1.wav"_s.arg(i)), shapeOf(i)));
    runJob(make(wavs, u"wav"_s));
    EXPECT_TRUE(mainLines.contains(u"t1 100%2 1 (1 of 2)"_s)) << qPrintable(mainLines.join(u'|'));
    QStringList odd;
    for (int i = 1; i <= 2; ++i)
        odd.append(test::writeWav(folder.path(u"%3 %1 %"_s + QString::number(i) + u".wav"_s), shapeOf(i)));
    runJob(make(odd, u"wav"_s));
    EXPECT_TRUE(mainLines.contains(u"%3 %1 %1 (1 of 2)"_s)) << qPrintable(mainLines.join(u'|'));
}

TEST_F(FixBadLuckTest, TellsOfANameThatItsListDoesNotGiveBack)
{
    const QString wav = test::writeWav(folder.path(u"a: b.wav"_s), shapeOf(1));
    const auto task = runJob(make({wav}, u"flac"_s, u"FFP"_s));
    EXPECT_EQ(task->warnings(), QStringList{out.path(u"a: b.flac"_s)
                                            + u" has a name that its list gives back only to 'Understand lists of other programs'"_s});
}

TEST_F(FixBadLuckTest, TellsThatShntoolIsMissing)
{
    tools.remove(u"shntool"_s);
    const QStringList wavs = makeWavs(2);
    const auto task = runJob(make(wavs, u"wav"_s));
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->outcome().problem.contains(tools.path(u"shntool"_s))
                || task->outcome().problem.contains(u"shntool"_s));
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(FixBadLuckTest, LeavesNothingWhenTheDiskIsFull)
{
    const QStringList wavs = makeWavs();
    for (const QString &format : {u"wav"_s, u"flac"_s, u"shn"_s, u"aiff"_s}) {
        SCOPED_TRACE(qPrintable(format));
        const test::FileSizeLimit limit(20'000);
        const auto task = make(wavs, format, u"1 MD5"_s);
        task->setDeleteOriginal(true);
        runJob(task);
        EXPECT_TRUE(task->error());
        EXPECT_FALSE(task->outcome().problem.isEmpty());
        EXPECT_EQ(out.list(), QStringList());
        EXPECT_TRUE(areThere(wavs));
    }
}

TEST_F(FixBadLuckTest, EndsShntoolWhenItIsCancelled)
{
    const QStringList wavs = makeWavs(2);
    FixTab tab(controller);
    tab.addMatchedFiles(wavs);
    setFake(u"shntool"_s, "create=" + folder.path(u"waits"_s).toUtf8() + ";hang");
    cancelWhileItWaits(make(wavs, u"shn"_s, u"1 MD5"_s, &tab), u"waits"_s);
    EXPECT_EQ(out.list(), QStringList()) << "and no list";
    EXPECT_TRUE(areThere(wavs));
    EXPECT_EQ(tab.fileNames(), QStringList());
}

TEST_F(FixBadLuckTest, RemovesWhatHasNotAllOfItsTagsWhenItIsCancelled)
{
    const QStringList flacs = makeFlacs();
    // The date of the first file is written by metaflac.
    setFake(u"metaflac"_s, "create=" + folder.path(u"waits"_s).toUtf8() + ";wait-file=" + folder.path(u"go-on"_s).toUtf8());
    const auto task = make(flacs, u"flac"_s);
    task->setDeleteOriginal(true);
    queue().addTask(task);
    ASSERT_TRUE(test::waitUntil([&] { return folder.exists(u"waits"_s); }));
    task->cancelTask();
    folder.write(u"go-on"_s, "");
    settle();
    EXPECT_EQ(out.list(), QStringList());
    EXPECT_TRUE(areThere(flacs));
}

TEST_F(FixBadLuckTest, DoesNothingWhenItIsCancelledBeforeItsTurn)
{
    const QStringList wavs = makeWavs(2);
    FixTab tab(controller);
    tab.addMatchedFiles(wavs);
    queue().hold();
    const auto task = make(wavs, u"wav"_s, u"No MD5"_s, &tab);
    queue().addTask(task);
    task->cancelTask();
    settle();
    EXPECT_EQ(out.list(), QStringList());
    EXPECT_EQ(tab.fileNames().size(), 2);
}

TEST_F(FixBadLuckTest, TellsOfAFileThatTheListDoesNotTell)
{
    const QStringList wavs = makeWavs(2);
    const QString empty = folder.write(u"made/empty"_s, "");
    const QString odd = folder.write(u"made/odd"_s, "x");
    setFake(u"shntool"_s, makes(wavs.at(0), empty, u"shn"_s) + makes(wavs.at(1), odd, u"shn"_s));
    const auto task = make(wavs, u"shn"_s, u"1 MD5"_s);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_EQ(task->outcome().problem, u"the list does not tell what is in show-d1t01.shn: it is empty");
    // As told of files that cannot be read: the digest of zero bytes (RFC 1321, A.5).
    EXPECT_TRUE(out.read(u"md5sum.md5"_s).contains("\nd41d8cd98f00b204e9800998ecf8427e *show-d1t01.shn\n"));
    EXPECT_TRUE(areThere(wavs));
}

TEST_F(FixBadLuckTest, TellsOfAFingerprintThatIsNone)
{
    const QStringList wavs = makeWavs(2);
    const QString odd = folder.write(u"made/odd"_s, "no FLAC file");
    const QString whole = test::writeFlac(folder.path(u"made/a.flac"_s), {.frames = 100'000});
    setFake(u"shntool"_s, makes(wavs.at(0), odd, u"flac"_s) + makes(wavs.at(1), whole, u"flac"_s));
    const auto task = make(wavs, u"flac"_s, u"FFP"_s);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->outcome().problem.startsWith(u"the list does not tell what is in show-d1t01.flac: "_s));
    EXPECT_TRUE(task->outcome().problem.contains(u"FLAC__METADATA_CHAIN_STATUS_NOT_A_FLAC_FILE"_s));
    const QByteArray list = out.read(u"fingerprint.ffp.txt"_s);
    EXPECT_TRUE(list.contains("FLAC__METADATA_CHAIN")) << list.constData();
    EXPECT_FALSE(list.contains("show-d1t01.flac:1"));
    EXPECT_TRUE(list.contains("\nshow-d1t02.flac:"));
    EXPECT_TRUE(areThere(wavs));
}

TEST_F(FixBadLuckTest, ListsNoNameThatWouldBeTwoLines)
{
    const QStringList sources{test::writeWav(folder.path(u"a\nb.wav"_s), shapeOf(1)), test::writeWav(folder.path(u"c.wav"_s), shapeOf(2))};
    const auto task = runJob(make(sources, u"shn"_s, u"1 MD5"_s));
    EXPECT_FALSE(task->error()) << qPrintable(task->report());
    EXPECT_EQ(task->warnings(),
              QStringList{u"%1 is not in the list: its name holds a line break"_s.arg(out.path(u"a\nb.shn"_s))});
    EXPECT_EQ(out.read(u"md5sum.md5"_s).count('\n'), 3);
    EXPECT_TRUE(out.exists(u"a\nb.shn"_s));
}

TEST_F(FixBadLuckTest, TakesNamesThatLookLikeOutput)
{
    QStringList sources;
    for (const QString &name : {u"-o 50% [x] (1:00.00) --> [y] :"_s, u"Fixing [a] (b"_s, u"{ %f }"_s, u"\u00e9t\u00e9 \u4e2d"_s}) {
        sources.append(test::writeWav(folder.path(name + u".wav"_s), shapeOf(static_cast<int>(sources.size()) + 1)));
    }
    const auto task = make(sources, u"flac"_s);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_FALSE(task->error()) << qPrintable(task->report());
    EXPECT_EQ(task->outcome().proof, TaskOutcome::Proof::Proven) << qPrintable(task->outcome().problem);
    EXPECT_TRUE(areGone(sources));
    EXPECT_EQ(out.list().size(), 4);
}

} // namespace
} // namespace nurv

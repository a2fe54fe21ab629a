// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fix/FixFixture.h"

#include "support/LogLines.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using Original = TaskOutcome::Original;
using Proof = TaskOutcome::Proof;

/// When sources go, and when they stay: all of them together.
class FixDeletionTest : public test::FixFixture {
protected:
    std::shared_ptr<FixTask> runDeleting(const QStringList &sources, const QString &format, bool proof = true,
                                         bool metadata = true)
    {
        const auto task = make(sources, format);
        task->setDeleteOriginal(true);
        task->setDeletionNeeds(proof, metadata);
        return runJob(task);
    }
    static void expectKept(const std::shared_ptr<FixTask> &task, const QStringList &sources, const QString &reason)
    {
        EXPECT_TRUE(areThere(sources)) << "every one";
        EXPECT_EQ(task->outcome().original, Original::Kept);
        EXPECT_EQ(task->outcome().problem, reason);
        EXPECT_TRUE(task->report().contains(reason)) << qPrintable(task->report());
    }
};

TEST_F(FixDeletionTest, DeletesAllSourcesOfAProvenSet)
{
    const QStringList flacs = makeFlacs();
    const QByteArray before = sound(flacs);
    const auto task = runDeleting(flacs, u"flac"_s);
    EXPECT_FALSE(task->error()) << qPrintable(task->report());
    EXPECT_EQ(task->outcome().original, Original::Deleted);
    EXPECT_EQ(task->outcome().proof, Proof::Proven);
    EXPECT_TRUE(areGone(flacs));
    EXPECT_TRUE(statuses.contains(u"Proving: 100%"_s));
    expectFixed(before, outputs(u"flac"_s));
}

TEST_F(FixDeletionTest, ProvesEveryFormatOfTheOutputs)
{
    for (const QString &format : {u"wav"_s, u"aiff"_s, u"shn"_s}) {
        SCOPED_TRACE(qPrintable(format));
        const QStringList wavs = makeWavs();
        const auto task = runDeleting(wavs, format);
        EXPECT_EQ(task->outcome().proof, Proof::Proven) << qPrintable(task->report());
        EXPECT_TRUE(areGone(wavs));
    }
}

TEST_F(FixDeletionTest, ProvesInTheOrderInWhichShntoolTakesThem)
{
    QStringList wavs = makeWavs();
    std::reverse(wavs.begin(), wavs.end());
    const auto task = runDeleting(wavs, u"wav"_s);
    EXPECT_EQ(task->outcome().proof, Proof::Proven) << qPrintable(task->report());
    EXPECT_TRUE(areGone(wavs));
}

TEST_F(FixDeletionTest, ProvesFilesThatAreShorterThanASector)
{
    QStringList wavs;
    for (int i = 1; i <= 4; ++i)
        wavs.append(test::writeWav(folder.path(u"a%1.wav"_s.arg(i)), {.frames = 150 * i, .seed = static_cast<unsigned>(i)}));
    const QByteArray before = sound(wavs);
    const auto task = runDeleting(wavs, u"wav"_s);
    EXPECT_EQ(out.list().size(), 4) << qPrintable(task->report());
    QByteArray joined;
    for (const QString &name : out.list())
        joined += out.read(name).sliced(44);
    EXPECT_EQ(joined.first(before.size()), before);
    EXPECT_EQ(joined.sliced(before.size()).count('\0'), joined.size() - before.size());
    EXPECT_EQ(areGone(wavs), task->outcome().proof == Proof::Proven);
    EXPECT_EQ(areThere(wavs), task->outcome().proof != Proof::Proven);
}

TEST_F(FixDeletionTest, KeepsEverySourceWhereTheTagsOfOneHaveNoPlace)
{
    QStringList sources = makeWavs(2);
    sources.append(makeFlacs(3).last());
    const auto task = runDeleting(sources, u"wav"_s);
    EXPECT_FALSE(task->error());
    EXPECT_TRUE(areThere(sources));
    EXPECT_EQ(task->outcome().original, Original::Kept);
    EXPECT_TRUE(task->outcome().problem.startsWith(u"show-d1t03.flac: "_s)) << qPrintable(task->outcome().problem);
    EXPECT_TRUE(task->report().contains(u"; originals kept"_s));
}

TEST_F(FixDeletionTest, LosesTagsWhereThatIsWanted)
{
    const QStringList flacs = makeFlacs();
    const auto task = runDeleting(flacs, u"wav"_s, true, false);
    EXPECT_EQ(task->outcome().original, Original::Deleted) << qPrintable(task->report());
    EXPECT_TRUE(areGone(flacs));
}

TEST_F(FixDeletionTest, GoesByLengthsWithoutTheProof)
{
    const QStringList wavs = makeWavs();
    const auto task = runDeleting(wavs, u"flac"_s, false);
    EXPECT_EQ(task->outcome().original, Original::Deleted) << qPrintable(task->report());
    EXPECT_FALSE(statuses.contains(u"Proving: 100%"_s));
}

TEST_F(FixDeletionTest, FailsWhenASampleIsAnotherOne)
{
    const QStringList wavs = makeWavs(2);
    // As shntool would make them, but for one sample of the second file.
    runJob(make(wavs, u"wav"_s));
    QByteArray second = out.read(u"show-d1t02.wav"_s);
    second[second.size() / 2] = static_cast<char>(second[second.size() / 2] ^ 1);
    const QString whole = folder.write(u"made/1"_s, out.read(u"show-d1t01.wav"_s));
    const QString wrong = folder.write(u"made/2"_s, second);
    out.remove(u"show-d1t01.wav"_s);
    out.remove(u"show-d1t02.wav"_s);
    setFake(u"shntool"_s, makes(wavs.at(0), whole, u"wav"_s) + makes(wavs.at(1), wrong, u"wav"_s));
    const auto task = runDeleting(wavs, u"wav"_s);
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(areThere(wavs));
    EXPECT_EQ(task->outcome().original, Original::Kept);
    EXPECT_EQ(task->outcome().proof, Proof::NotProven);
    EXPECT_TRUE(task->outcome().problem.contains(u"is different"_s)) << qPrintable(task->outcome().problem);
}

TEST_F(FixDeletionTest, FailsWhenAFileIsMissingItsEnd)
{
    const QStringList wavs = makeWavs(2);
    const QString shorter = test::writeWav(folder.path(u"made/x.wav"_s), {.frames = kSectorFrames});
    setFake(u"shntool"_s, makes(wavs.at(0), shorter, u"wav"_s) + makes(wavs.at(1), shorter, u"wav"_s));
    for (const bool deletes : {false, true}) {
        for (const QString &name : out.list())
            out.remove(name);
        const auto task = make(wavs, u"wav"_s);
        task->setDeleteOriginal(deletes);
        runJob(task);
        EXPECT_TRUE(task->error()) << "lengths are compared in any case";
        EXPECT_EQ(task->outcome().problem, u"its output holds 1176 of 43002 samples"_s);
        EXPECT_TRUE(areThere(wavs));
    }
}

TEST_F(FixDeletionTest, KeepsSourcesWhoseOrderWasNotTold)
{
    const QStringList wavs = makeWavs(2);
    runJob(make(wavs, u"wav"_s));
    QByteArray script;
    for (int i = 1; i <= 2; ++i) {
        const QString name = u"show-d1t0%1.wav"_s.arg(i);
        const QString kept = folder.write(u"made/"_s + name, out.read(name));
        out.remove(name);
        script += "copy=" + kept.toUtf8() + ':' + out.path(u"show-d1t0%1-fixed.wav"_s.arg(i)).toUtf8() + ';';
    }
    setFake(u"shntool"_s, script);
    expectKept(runDeleting(wavs, u"wav"_s), wavs, u"shntool did not tell in which order it took them"_s);
}

TEST_F(FixDeletionTest, KeepsSourcesOfWhichOneHasChanged)
{
    const QStringList wavs = makeWavs(2);
    const QString real = QFileInfo(tools.path(u"shntool"_s)).canonicalFilePath();
    setFake(u"shntool"_s, "append=" + wavs.at(1).toUtf8() + ":x;exec=" + real.toUtf8());
    const auto task = runDeleting(wavs, u"wav"_s);
    expectKept(task, wavs, u"show-d1t02.wav has changed since the job began"_s);
}

TEST_F(FixDeletionTest, KeepsSourcesThatAnotherJobWorksOn)
{
    const QStringList wavs = makeWavs(2);
    OutputClaim other;
    ASSERT_EQ(other.take(folder.path(u"elsewhere/x.flac"_s), wavs.at(1), nullptr), std::nullopt);
    expectKept(runDeleting(wavs, u"wav"_s), wavs, u"another job works on them, too"_s);
}

TEST_F(FixDeletionTest, KeepsSourcesAfterAFailedRun)
{
    QStringList sources = makeWavs(2);
    QByteArray damaged = folder.read(u"show-d1t02.wav"_s);
    folder.write(u"show-d1t02.wav"_s, damaged.first(damaged.size() / 2));
    const auto task = runDeleting(sources, u"wav"_s);
    EXPECT_TRUE(task->error());
    EXPECT_EQ(task->outcome().original, Original::Kept);
    EXPECT_TRUE(areThere(sources));
    EXPECT_TRUE(task->outcome().problem.contains(u"show-d1t02.wav"_s)) << qPrintable(task->outcome().problem);
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(FixDeletionTest, KeepsSourcesWhenAListCannotBeWritten)
{
    const QStringList wavs = makeWavs(2);
    out.write(u"md5sum.md5/in-the-way"_s, "x");
    const auto task = make(wavs, u"shn"_s, u"1 MD5"_s);
    task->setDeleteOriginal(true);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->outcome().problem.startsWith(u"Unable to write %1: "_s.arg(out.path(u"md5sum.md5"_s))))
        << qPrintable(task->outcome().problem);
    EXPECT_TRUE(areThere(wavs));
    EXPECT_TRUE(areThere(outputs(u"shn"_s, 2)));
}

TEST_F(FixDeletionTest, KeepsSourcesWhoseTagsCouldNotBeCopied)
{
    const QStringList flacs = makeFlacs(2);
    // Whole, but for readers of tags.
    const QString odd = folder.write(u"made/odd"_s, "no FLAC file at all");
    setFake(u"shntool"_s, makes(flacs.at(0), odd, u"flac"_s) + makes(flacs.at(1), odd, u"flac"_s));
    const test::LogLines log;
    const auto task = runDeleting(flacs, u"flac"_s);
    EXPECT_EQ(log.with(u"Exception trying to tag fixed files"_s).size(), 2);
    EXPECT_TRUE(areThere(flacs));
    EXPECT_EQ(task->warnings().size(), 2);
    EXPECT_TRUE(task->warnings().first().startsWith(u"the tags of show-d1t01.flac were not copied: "_s));
}

TEST_F(FixDeletionTest, MovesSourcesToTheTrashWhereThatIsWanted)
{
    set(u"trashOrDelete", 1);
    const QStringList wavs = makeWavs(2);
    const auto task = runDeleting(wavs, u"wav"_s);
    EXPECT_EQ(task->outcome().original, Original::Trashed) << qPrintable(task->report());
    EXPECT_TRUE(areGone(wavs));
}

} // namespace
} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNToolEditTask.h"

#include "programs/ShntoolModes.h"
#include "shntool/SHNtoolFixture.h"
#include "shntool/SHNToolJoinTask.h"

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using Original = TaskOutcome::Original;
using Proof = TaskOutcome::Proof;

class SHNToolEditTaskTest : public test::SHNtoolFixture {
protected:
    static void deletes(SHNtoolTab &tab) { tab.deleteOriginalsButton.setOn(true); }
    QString writeStereo(const QString &name, std::int64_t frames, std::uint32_t seed = 1)
    {
        return test::writeWav(folder.path(name), {.frames = frames, .seed = seed});
    }
    /// The frames between the first and the last that are not silent.
    [[nodiscard]] static QByteArray withoutSilence(const QByteArray &samples, int frameBytes)
    {
        qsizetype begin = 0;
        qsizetype end = samples.size();
        const QByteArray silence(frameBytes, '\0');
        while (begin < end && samples.sliced(begin, frameBytes) == silence)
            begin += frameBytes;
        while (end > begin && samples.sliced(end - frameBytes, frameBytes) == silence)
            end -= frameBytes;
        return samples.sliced(begin, end - begin);
    }
};

TEST_F(SHNToolEditTaskTest, TrimsSilenceOfBothEnds)
{
    const QStringList files{writeSilentEnds(u"a.wav"_s), writeSilentEnds(u"b.wav"_s, {.frames = 50'000, .seed = 5})};
    const auto jobs = execute(u"trim"_s, files);
    ASSERT_EQ(jobs.size(), 1U);
    EXPECT_TRUE(isDone(jobs[0]));
    EXPECT_EQ(jobs[0]->sourceCount(), 2);
    for (const QString &name : {u"a"_s, u"b"_s})
        EXPECT_TRUE(sound({out.path(name + u"-trimmed.flac"_s)})
                    == withoutSilence(sound({folder.path(name + u".wav"_s)}), 4));
    EXPECT_TRUE(areThere(files));
    EXPECT_TRUE(windows.isEmpty());
}

TEST_F(SHNToolEditTaskTest, ShowsTheFileInWorkAndWhatIsDoneWithIt)
{
    const QStringList files{writeStereo(u"a.wav"_s, 3000)};
    const struct {
        QString command;
        QByteArray chunk;
        QString status;
        QString mainLine;
        QString report;
    } cases[] = {
        {u"trim"_s, "\\b\\bScanning [/x/c d.wav] (0:01.00) :  45% \\b",
         u"Scanning Files: Scanning [/x/c d.wav] (0:01.00) :  45%"_s, u"c d.wav"_s,
         u"Scanning [/x/c d.wav] (0:01.00) Scanning [/x/c d.wav] (0:01.00) :  45% "_s},
        {u"trim"_s, " 45% ERROR", u"Trimming Files:  45%"_s, u"Running SHNTool Trim"_s, u" 45% ERROR 45% ERROR"_s},
        {u"join"_s, "Joining [/x/c.wav] (0:01.00) :  7% ", u"Joining Files: 0.000000%"_s, u"c.wav"_s,
         u"Joining [/x/c.wav] (0:01.00) "_s},
        {u"pad"_s, " 45% ", u"Padding: 45.000000%"_s, u"Running SHNTool Pad"_s, u" 45% "_s},
        {u"strip"_s, " 45% ", u"Stripping: 45.000000%"_s, u"Running SHNTool Strip"_s, u" 45% "_s},
    };
    for (const auto &[command, chunk, status, mainLine, report] : cases) {
        SCOPED_TRACE(qPrintable(command));
        statuses.clear();
        windows.clear();
        tools.remove(u"shntool"_s);
        tools.addFake(u"shntool"_s, "out=" + chunk + ";exit=1");
        const auto jobs = execute(command, files);
        EXPECT_TRUE(jobs.front()->error());
        EXPECT_TRUE(statuses.contains(status)) << qPrintable(statuses.join(u'|'));
        EXPECT_EQ(jobs.front()->textField().text, mainLine);
        ASSERT_EQ(windows.size(), 1);
        EXPECT_TRUE(windows.front().startsWith(report)) << qPrintable(windows.front());
    }
}

TEST_F(SHNToolEditTaskTest, TrimsSoundOf24Bits)
{
    const test::SoundShape shape{.rate = 96'000, .bits = 24, .channels = 1, .frames = 40'000};
    const QString file = writeSilentEnds(u"a.wav"_s, shape);
    EXPECT_TRUE(isDone(execute(u"trim"_s, {file}, u"wav"_s).front()));
    EXPECT_TRUE(sound({out.path(u"a-trimmed.wav"_s)}, u"s24le"_s) == withoutSilence(sound({file}, u"s24le"_s), 3));
}

TEST_F(SHNToolEditTaskTest, TrimDeletesAllButTheFirstFile)
{
    const QStringList files{writeSilentEnds(u"a.wav"_s), writeSilentEnds(u"b.wav"_s), writeSilentEnds(u"c.wav"_s)};
    const auto jobs = execute(u"trim"_s, files, u"flac"_s, deletes);
    EXPECT_TRUE(isDone(jobs.front()));
    EXPECT_EQ(folder.list(), (QStringList{u"a.wav"_s, u"raw/samples"_s}));
    EXPECT_EQ(jobs.front()->outcome().original, Original::Kept);
    EXPECT_EQ(jobs.front()->outcome().problem, u"a.wav: trimming never deletes the first file of its list");
    EXPECT_EQ(jobs.front()->outcome().proof, Proof::Proven);
    EXPECT_TRUE(windows.isEmpty());
}

TEST_F(SHNToolEditTaskTest, TrimKeepsAllFilesWhereOneHasNothingToTrim)
{
    const QStringList files{writeSilentEnds(u"a.wav"_s), writeSilentEnds(u"b.wav"_s), writeStereo(u"c.wav"_s, 30'000)};
    const auto jobs = execute(u"trim"_s, files, u"flac"_s, deletes);
    EXPECT_TRUE(jobs.front()->error());
    EXPECT_TRUE(areThere(files));
    EXPECT_TRUE(jobs.front()->outcome().problem.contains(u"no silence to trim"_s))
        << qPrintable(jobs.front()->outcome().problem);
    ASSERT_EQ(windows.size(), 1);
    EXPECT_TRUE(windows[0].contains(u"ERROR"_s));
}

TEST_F(SHNToolEditTaskTest, TellsWhatWasMadeBeforeAFileFailed)
{
    out.write(u"b-trimmed.flac"_s, "mine");
    const QStringList files{writeSilentEnds(u"a.wav"_s), writeSilentEnds(u"b.wav"_s)};
    const auto jobs = execute(u"trim"_s, files);
    EXPECT_TRUE(jobs.front()->error());
    EXPECT_EQ(out.read(u"b-trimmed.flac"_s), "mine");
    EXPECT_EQ(jobs.front()->outcome().output, out.path(u"a-trimmed.flac"_s));
    EXPECT_EQ(jobs.front()->outcome().outputFiles, 0);
    EXPECT_EQ(jobs.front()->sourcePaths(), files);
    EXPECT_TRUE(jobs.front()->report().endsWith(u"\na-trimmed.flac was made, and stays\n"_s))
        << qPrintable(jobs.front()->report());
}

TEST_F(SHNToolEditTaskTest, JoinKeepsOneFileThatStandsThereUnderTwoNames)
{
    const QStringList files{writeStereo(u"a.wav"_s, 3000), folder.path(u"b.wav"_s)};
    ASSERT_EQ(::link(QFile::encodeName(files[0]).constData(), QFile::encodeName(files[1]).constData()), 0);
    const auto jobs = execute(u"join"_s, files, u"flac"_s, deletes);
    EXPECT_TRUE(isDone(jobs.front()));
    EXPECT_TRUE(areThere(files));
    EXPECT_EQ(jobs.front()->outcome().original, Original::Kept);
    EXPECT_EQ(jobs.front()->outcome().problem, u"two of the sources are one file");
}

TEST_F(SHNToolEditTaskTest, JoinsAndDeletesAllSources)
{
    const QStringList files{writeStereo(u"a.wav"_s, 30'000, 1), writeStereo(u"b.wav"_s, 20'001, 2),
                            writeStereo(u"c.wav"_s, 77, 3)};
    const QByteArray before = sound(files);
    const auto jobs = execute(u"join"_s, files, u"flac"_s, deletes);
    ASSERT_EQ(jobs.size(), 1U);
    EXPECT_TRUE(isDone(jobs[0]));
    EXPECT_TRUE(sound({out.path(u"joined.flac"_s)}) == before);
    EXPECT_EQ(folder.list(), QStringList());
    EXPECT_EQ(jobs[0]->outcome().original, Original::Deleted);
    EXPECT_EQ(jobs[0]->outcome().proof, Proof::Proven);
    EXPECT_EQ(jobs[0]->outcome().output, out.path(u"joined.flac"_s));
    EXPECT_TRUE(windows.isEmpty());
    EXPECT_TRUE(statuses.contains(u"Proving: 100%"_s));
}

TEST_F(SHNToolEditTaskTest, JoinsInEveryFormat)
{
    const QStringList files{writeStereo(u"a.wav"_s, 30'000, 1), writeStereo(u"b.wav"_s, 20'001, 2)};
    const QByteArray before = sound(files);
    for (const QString &format : {u"shn"_s, u"aiff"_s, u"wav"_s}) {
        SCOPED_TRACE(qPrintable(format));
        EXPECT_TRUE(isDone(execute(u"join"_s, files, format).front()));
        EXPECT_TRUE(sound({out.path(u"joined."_s + format)}) == before);
    }
}

TEST_F(SHNToolEditTaskTest, JoinRefusesSoundOfTwoKindsAndKeepsIt)
{
    const QStringList files{writeStereo(u"a.wav"_s, 30'000),
                            test::writeWav(folder.path(u"b.wav"_s), {.rate = 48'000, .frames = 1000})};
    const auto jobs = execute(u"join"_s, files, u"flac"_s, deletes);
    EXPECT_TRUE(jobs.front()->error());
    EXPECT_TRUE(areThere(files));
    EXPECT_EQ(out.list(), QStringList());
    EXPECT_EQ(jobs.front()->outcome().original, Original::Kept);
    EXPECT_FALSE(jobs.front()->outcome().problem.isEmpty());
}

TEST_F(SHNToolEditTaskTest, TellsNothingOfAPadOrAStripThatWentWell)
{
    EXPECT_TRUE(isDone(execute(u"pad"_s, {writeStereo(u"a.wav"_s, 1000)}).front()));
    const QString source =
        folder.write(u"b.wav"_s, test::wavBytes({.frames = 588}, {}, test::riffChunk("junk", "1234")));
    EXPECT_TRUE(isDone(execute(u"strip"_s, {source}).front()));
    EXPECT_TRUE(windows.isEmpty());
}

TEST_F(SHNToolEditTaskTest, TellsWhyAProofFailedBeforeWhyAnotherFileStays)
{
    const QStringList files{writeSilentEnds(u"a.wav"_s), writeSilentEnds(u"b.wav"_s)};
    const QString wrong = test::writeFlac(folder.path(u"made/wrong.flac"_s), {.frames = 30'000, .seed = 9});
    const QString right = test::writeFlac(folder.path(u"made/right.flac"_s), {.frames = 30'000});
    tools.remove(u"shntool"_s);
    tools.addFake(u"shntool"_s, "copy=" + right.toUtf8() + ':' + out.path(u"a-trimmed.flac"_s).toUtf8()
                                    + ";copy=" + wrong.toUtf8() + ':' + out.path(u"b-trimmed.flac"_s).toUtf8());
    const auto jobs = execute(u"trim"_s, files, u"flac"_s, deletes);
    EXPECT_TRUE(jobs.front()->error());
    EXPECT_TRUE(jobs.front()->outcome().problem.startsWith(u"b.wav: "_s))
        << qPrintable(jobs.front()->outcome().problem);
    EXPECT_TRUE(areThere(files));
}

TEST_F(SHNToolEditTaskTest, TakesNoFileForItsOutputThatWasThereBefore)
{
    const QString flac = test::writeFlac(folder.path(u"made/show.flac"_s), {.frames = 1000, .seed = 7});
    const QString source = folder.path(u"show.wav"_s);
    ASSERT_TRUE(QFile::copy(flac, source));
    test::writeFlac(out.path(u"show-padded.flac"_s), {.frames = 1176, .seed = 8});
    const QByteArray foreign = out.read(u"show-padded.flac"_s);
    const auto jobs = execute(u"pad"_s, {source}, u"flac"_s, [](SHNtoolTab &tab) {
        tab.deleteOriginalsButton.setOn(true);
        tab.originals.proveButton.setOn(false);
    });
    EXPECT_EQ(out.read(u"show-padded.flac"_s), foreign);
    const bool isPadded = out.exists(u"show.wav-padded.flac"_s);
    EXPECT_EQ(isPadded, isDone(jobs.front()));
    EXPECT_EQ(QFile::exists(source), !isPadded);
}

TEST_F(SHNToolEditTaskTest, PadsToTheEndOfASectorAndDeletesItsOwnSourceOnly)
{
    const QStringList files{writeStereo(u"a.wav"_s, 588 * 3 + 5, 1), writeStereo(u"b.wav"_s, 588 * 4, 2)};
    const QByteArray before = sound({files[0]});
    const auto jobs = execute(u"pad"_s, files, u"flac"_s, deletes);
    ASSERT_EQ(jobs.size(), 2U);
    EXPECT_TRUE(isDone(jobs[0]));
    EXPECT_EQ(jobs[0]->outcome().original, Original::Deleted);
    EXPECT_TRUE(sound({out.path(u"a-padded.flac"_s)}) == before + QByteArray(4 * (588 - 5), '\0'));
    EXPECT_TRUE(jobs[1]->error());
    EXPECT_TRUE(jobs[1]->outcome().problem.contains(u"already sector-aligned"_s))
        << qPrintable(jobs[1]->outcome().problem);
    EXPECT_EQ(folder.list(), QStringList{u"b.wav"_s});
    EXPECT_TRUE(std::any_of(statuses.begin(), statuses.end(),
                            [](const QString &line) { return line.startsWith(u"Padding: "_s); }));
}

TEST_F(SHNToolEditTaskTest, StripsChunksAndKeepsTheSourceThatHasThem)
{
    const QString source =
        folder.write(u"a.wav"_s, test::wavBytes({.frames = 3000}, {},
                                                test::riffChunk("LIST", QByteArray("INFOINAM\x04\0\0\0abc\0", 16))));
    const auto kept = execute(u"strip"_s, {source}, u"wav"_s, deletes);
    EXPECT_TRUE(isDone(kept.front()));
    EXPECT_EQ(out.read(u"a-stripped.wav"_s).size(), 44 + 3000 * 4);
    EXPECT_EQ(kept.front()->outcome().original, Original::Kept);
    EXPECT_TRUE(QFile::exists(source));
    out.remove(u"a-stripped.wav"_s);
    const auto deleted = execute(u"strip"_s, {source}, u"wav"_s, [](SHNtoolTab &tab) {
        tab.deleteOriginalsButton.setOn(true);
        tab.originals.dropMetadataButton.setOn(true);
    });
    EXPECT_EQ(deleted.front()->outcome().original, Original::Deleted) << qPrintable(deleted.front()->report());
    EXPECT_FALSE(QFile::exists(source));
}

TEST_F(SHNToolEditTaskTest, KeepsASourceWithFurtherSoundWhateverWasAskedFor)
{
    const test::SoundShape shape{.frames = 1000};
    const QByteArray second = test::riffChunk("data", QByteArray(4000, 'x'));
    for (const QByteArray &bytes : {test::wavBytes(shape) + test::wavBytes(shape), test::wavBytes(shape, {}, second)}) {
        for (const bool proves : {false, true}) {
            const QString source = folder.write(u"a.wav"_s, bytes);
            const auto jobs = execute(u"pad"_s, {source}, u"wav"_s, [proves](SHNtoolTab &tab) {
                tab.deleteOriginalsButton.setOn(true);
                tab.originals.proveButton.setOn(proves);
                tab.originals.dropMetadataButton.setOn(true);
            });
            EXPECT_EQ(folder.read(u"a.wav"_s), bytes);
            EXPECT_EQ(jobs.front()->outcome().original, Original::Kept) << qPrintable(jobs.front()->report());
            out.remove(u"a-padded.wav"_s);
        }
    }
}

TEST_F(SHNToolEditTaskTest, FailsAndKeepsTheSourceWhenASampleIsAnotherOne)
{
    const QStringList files{writeStereo(u"a.wav"_s, 30'000, 1), writeStereo(u"b.wav"_s, 20'000, 2)};
    const QString wrong = test::writeFlac(folder.path(u"made/wrong.flac"_s), {.frames = 50'000, .seed = 9});
    tools.remove(u"shntool"_s);
    tools.addFake(u"shntool"_s, "out=Joining [a.wav] (0:01.00) --> [joined.flac] : 100% OK\\n;copy=" + wrong.toUtf8()
                                    + ':' + out.path(u"joined.flac"_s).toUtf8());
    const auto jobs = execute(u"join"_s, files, u"flac"_s, deletes);
    EXPECT_TRUE(jobs.front()->error());
    EXPECT_TRUE(areThere(files));
    EXPECT_EQ(jobs.front()->outcome().original, Original::Kept);
}

TEST_F(SHNToolEditTaskTest, FailsWhenTheProgramMakesNothing)
{
    const QStringList files{writeStereo(u"a.wav"_s, 3000)};
    tools.remove(u"shntool"_s);
    tools.addFake(u"shntool"_s, "exit=0");
    for (const QString &command : {u"trim"_s, u"pad"_s, u"strip"_s, u"join"_s}) {
        SCOPED_TRACE(qPrintable(command));
        const auto jobs = execute(command, files, u"flac"_s, deletes);
        EXPECT_TRUE(jobs.front()->error());
        EXPECT_TRUE(jobs.front()->outcome().problem.contains(u"its program made no "_s))
            << qPrintable(jobs.front()->outcome().problem);
        EXPECT_TRUE(areThere(files));
    }
}

TEST_F(SHNToolEditTaskTest, RefusesOutputNamesThatAreLinks)
{
    const QString victim = folder.write(u"victim"_s, "mine");
    ASSERT_EQ(::symlink(victim.toLocal8Bit().constData(), out.path(u"joined.flac"_s).toLocal8Bit().constData()), 0);
    const QStringList files{writeStereo(u"a.wav"_s, 3000), writeStereo(u"b.wav"_s, 3000)};
    const auto jobs = execute(u"join"_s, files);
    EXPECT_TRUE(jobs.front()->error());
    EXPECT_EQ(jobs.front()->outcome().problem, u"joined.flac: its output name is a link");
    EXPECT_EQ(folder.read(u"victim"_s), "mine");
}

TEST_F(SHNToolEditTaskTest, ReplacesNoOutputThatIsThere)
{
    out.write(u"joined.flac"_s, "mine");
    const QStringList files{writeStereo(u"a.wav"_s, 3000), writeStereo(u"b.wav"_s, 3000)};
    const auto jobs = execute(u"join"_s, files, u"flac"_s, deletes);
    EXPECT_TRUE(jobs.front()->error());
    EXPECT_EQ(out.read(u"joined.flac"_s), "mine");
    EXPECT_EQ(jobs.front()->outcome().output, QString());
    EXPECT_TRUE(areThere(files));
}

TEST_F(SHNToolEditTaskTest, DeletesNothingOfACancelledJob)
{
    const QStringList files{writeStereo(u"a.wav"_s, 3000), writeStereo(u"b.wav"_s, 3000)};
    tools.remove(u"shntool"_s);
    tools.addFake(u"shntool"_s,
                  "create=" + folder.path(u"started"_s).toUtf8() + ";wait-file=" + folder.path(u"go"_s).toUtf8());
    const auto job = std::make_shared<SHNToolJoinTask>(&queue(), tools.path() + u"/shntool"_s,
                                                       shntool::joinArguments(out.path(), u"flac"_s, files));
    job->setDeleteOriginal(true);
    queue().addTask(job);
    ASSERT_TRUE(test::waitUntil([this] { return folder.exists(u"started"_s); }));
    job->cancelTask();
    folder.write(u"go"_s, "");
    settle();
    EXPECT_EQ(job->textField().text, u"Canceled");
    EXPECT_TRUE(areThere(files));
}

TEST_F(SHNToolEditTaskTest, LetsNoTwoJobsMakeOneFile)
{
    const QStringList files{writeStereo(u"a.wav"_s, 3000), writeStereo(u"b.wav"_s, 3000)};
    tools.remove(u"shntool"_s);
    tools.addFake(u"shntool"_s,
                  "create=" + folder.path(u"started"_s).toUtf8() + ";wait-file=" + folder.path(u"go"_s).toUtf8());
    const QStringList arguments = shntool::joinArguments(out.path(), u"flac"_s, files);
    const auto first = std::make_shared<SHNToolJoinTask>(&queue(), tools.path() + u"/shntool"_s, arguments);
    const auto second = std::make_shared<SHNToolJoinTask>(&queue(), tools.path() + u"/shntool"_s, arguments);
    queue().addTask(first);
    ASSERT_TRUE(test::waitUntil([this] { return folder.exists(u"started"_s); }));
    queue().addTask(second);
    ASSERT_TRUE(test::waitUntil([&] { return second->isDone(); }));
    EXPECT_EQ(second->outcome().problem, u"a.wav: its output joined.flac is made from %1"_s.arg(files.first()));
    folder.write(u"go"_s, "");
    settle();
}

} // namespace
} // namespace nurv

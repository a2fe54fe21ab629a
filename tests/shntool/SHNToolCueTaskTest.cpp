// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNToolCueTask.h"

#include "programs/ShntoolModes.h"
#include "shntool/SHNtoolFixture.h"

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class SHNToolCueTaskTest : public test::SHNtoolFixture {
protected:
    SHNToolCueTaskTest()
        : files{test::writeWav(folder.path(u"a.wav"_s), {.frames = 588 * 75}),
                test::writeWav(folder.path(u"b.wav"_s), {.frames = 588})}
    {
    }

    std::shared_ptr<NURVTask> makeSheet(const QString &path)
    {
        const auto jobs = execute(u"cue"_s, files, u"flac"_s, [&](SHNtoolTab &) {
            prompts.expectSavePath(u"cuesheet.cue"_s, u"Save CUE sheet as"_s, path);
            if (refusal)
                prompts.expectAsk(*refusal, u"OK"_s);
        });
        return jobs.empty() ? nullptr : jobs.front();
    }
    void breakShntool(const QByteArray &behaviour)
    {
        tools.remove(u"shntool"_s);
        tools.addFake(u"shntool"_s, behaviour);
    }

    QStringList files;
    std::optional<Alert> refusal; ///< of the chosen path
};

TEST_F(SHNToolCueTaskTest, TellsWhereEachFileBegins)
{
    const auto job = makeSheet(out.path(u"x.cue"_s));
    EXPECT_TRUE(isDone(job));
    EXPECT_EQ(out.read(u"x.cue"_s), "FILE \"joined.wav\" WAVE\n"
                                    "  TRACK 01 AUDIO\n"
                                    "    INDEX 01 0:00:00\n"
                                    "  TRACK 02 AUDIO\n"
                                    "    INDEX 01 0:01:00\n\n");
    EXPECT_EQ(job->outcome().output, out.path(u"x.cue"_s));
    EXPECT_TRUE(windows.isEmpty());
}

TEST_F(SHNToolCueTaskTest, LeavesASheetAsItIsWhenShntoolFails)
{
    folder.write(u"a.wav"_s, "no sound");
    for (const QByteArray &before : {QByteArray(), QByteArray("mine")}) {
        if (!before.isEmpty())
            out.write(u"x.cue"_s, before);
        const auto job = makeSheet(out.path(u"x.cue"_s));
        EXPECT_TRUE(job->error());
        EXPECT_EQ(out.exists(u"x.cue"_s), !before.isEmpty());
        EXPECT_EQ(job->outcome().output, QString());
        EXPECT_EQ(job->outcome().problem, u"a.wav: it is no sound file that shntool knows");
        EXPECT_TRUE(job->report().contains(u"none of the builtin format modules handle input file: ["_s))
            << qPrintable(job->report());
    }
    EXPECT_EQ(out.read(u"x.cue"_s), "mine");
    EXPECT_EQ(windows.size(), 2);
}

TEST_F(SHNToolCueTaskTest, LeavesASheetAsItIsWhenShntoolIsKilled)
{
    out.write(u"x.cue"_s, "mine");
    breakShntool("out=FILE;signal=11");
    const auto job = makeSheet(out.path(u"x.cue"_s));
    EXPECT_TRUE(job->error());
    EXPECT_EQ(out.read(u"x.cue"_s), "mine");
    EXPECT_TRUE(job->outcome().problem.contains(u"shntool"_s)) << qPrintable(job->outcome().problem);
}

TEST_F(SHNToolCueTaskTest, ReplacesNoSource)
{
    const QByteArray sound = folder.read(u"b.wav"_s);
    refusal = Alert{.title = u"b.wav cannot be the cue sheet"_s,
                    .message = u"It is one of the files that it is to tell of."_s,
                    .buttons = {u"OK"_s}};
    EXPECT_EQ(makeSheet(files[1]), nullptr);
    EXPECT_EQ(folder.read(u"b.wav"_s), sound);
}

TEST_F(SHNToolCueTaskTest, TakesNoNameOfASound)
{
    refusal = Alert{.title = u"c.flac cannot be the cue sheet"_s,
                    .message = u"Its name is that of a sound file."_s,
                    .buttons = {u"OK"_s}};
    EXPECT_EQ(makeSheet(out.path(u"c.flac"_s)), nullptr);
}

TEST_F(SHNToolCueTaskTest, TakesTheNameOfNoLinkAndNoPipe)
{
    const QString victim = folder.write(u"victim"_s, "mine");
    ASSERT_EQ(::symlink(QFile::encodeName(victim).constData(), QFile::encodeName(out.path(u"x.cue"_s)).constData()), 0);
    ASSERT_EQ(::mkfifo(QFile::encodeName(out.path(u"y.cue"_s)).constData(), 0600), 0);
    const auto linked = makeSheet(out.path(u"x.cue"_s));
    EXPECT_TRUE(linked->error());
    EXPECT_EQ(linked->outcome().problem, u"its output name x.cue is a link");
    EXPECT_EQ(folder.read(u"victim"_s), "mine");
    const auto piped = makeSheet(out.path(u"y.cue"_s));
    EXPECT_TRUE(piped->error());
    EXPECT_EQ(piped->outcome().problem, u"its output name y.cue is no file");
    EXPECT_EQ(windows.size(), 2);
}

TEST_F(SHNToolCueTaskTest, WarnsOfASourceThatIsCut)
{
    ASSERT_TRUE(QFile::resize(files[0], 50'000));
    const auto job = makeSheet(out.path(u"x.cue"_s));
    EXPECT_TRUE(isDone(job));
    EXPECT_EQ(job->warnings(), QStringList{u"a.wav holds less sound than its header tells"_s});
    EXPECT_EQ(windows, QStringList{u"a.wav holds less sound than its header tells\n\n"_s});
    EXPECT_TRUE(out.exists(u"x.cue"_s));
}

TEST_F(SHNToolCueTaskTest, ReplacesNothingThatCameAfterTheQuestion)
{
    for (const bool wasThere : {false, true}) {
        if (wasThere)
            out.write(u"x.cue"_s, "seen");
        queue().hold();
        const auto job = std::make_shared<SHNToolCueTask>(out.path(u"x.cue"_s), &queue(), tools.path() + u"/shntool"_s,
                                                          shntool::cueSheetArguments(files));
        queue().addTask(job);
        if (wasThere)
            out.remove(u"x.cue"_s);
        out.write(u"x.cue"_s, "unseen");
        queue().release();
        settle();
        EXPECT_TRUE(job->error());
        EXPECT_EQ(job->outcome().problem, u"x.cue has changed since it was chosen, and stays as it is");
        EXPECT_EQ(out.read(u"x.cue"_s), "unseen");
        out.remove(u"x.cue"_s);
    }
}

TEST_F(SHNToolCueTaskTest, ReplacesTheSheetThatWasChosen)
{
    out.write(u"x.cue"_s, "old");
    EXPECT_TRUE(isDone(makeSheet(out.path(u"x.cue"_s))));
    EXPECT_TRUE(out.read(u"x.cue"_s).startsWith("FILE "));
}

TEST_F(SHNToolCueTaskTest, WritesNoSheetWhenItWasCancelled)
{
    out.write(u"x.cue"_s, "old");
    breakShntool("out=FILE;create=" + folder.path(u"started"_s).toUtf8()
                 + ";wait-file=" + folder.path(u"go"_s).toUtf8());
    const auto job = std::make_shared<SHNToolCueTask>(out.path(u"x.cue"_s), &queue(), tools.path() + u"/shntool"_s,
                                                      shntool::cueSheetArguments(files));
    queue().addTask(job);
    ASSERT_TRUE(test::waitUntil([this] { return folder.exists(u"started"_s); }));
    job->cancelTask();
    folder.write(u"go"_s, "");
    settle();
    EXPECT_TRUE(job->cancelled());
    EXPECT_EQ(out.read(u"x.cue"_s), "old");
}

} // namespace
} // namespace nurv

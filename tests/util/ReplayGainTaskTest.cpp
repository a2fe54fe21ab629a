// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/UtilFixture.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class ReplayGainTaskTest : public test::UtilFixture {
protected:
    ReplayGainTaskTest() { tools.addAllReal(); }

    QStringList makeFlacs()
    {
        return {test::writeFlac(folder.path(u"a b.flac"_s), {.seconds = 2.0}, {u"-T"_s, u"TITLE=One"_s}),
                test::writeFlac(folder.path(u"c.flac"_s), {.seconds = 3.0, .seed = 9}, {u"-T"_s, u"TITLE=Two"_s})};
    }
    [[nodiscard]] std::shared_ptr<NURVTask> change(const QString &choice, const QStringList &paths)
    {
        tab.replayGainMatrix.selectTitle(choice);
        const auto jobs = execute(UtilTab::kReplayGain, paths);
        return jobs.size() == 1 ? jobs.front() : nullptr;
    }
    static QStringList gains(const QString &path)
    {
        return test::metaflacTags(path).filter(QRegularExpression(u"^REPLAYGAIN_"_s));
    }
};

TEST_F(ReplayGainTaskTest, WritesWhatMetaflacFindsAndNothingElse)
{
    const QStringList paths = makeFlacs();
    QStringList copies;
    for (const QString &path : paths) {
        copies.append(out.path(QFileInfo(path).fileName()));
        ASSERT_TRUE(QFile::copy(path, copies.last()));
    }
    ASSERT_EQ(test::runProgram(u"metaflac"_s, QStringList(u"--add-replay-gain"_s) + copies).exitStatus, 0);
    const auto job = change(u"Add"_s, paths);
    ASSERT_TRUE(job && isDone(job));
    EXPECT_TRUE(outputWindows.isEmpty());
    EXPECT_EQ(job->sourceCount(), 2);
    for (qsizetype i = 0; i < paths.size(); ++i) {
        EXPECT_EQ(gains(paths.at(i)).size(), 5);
        EXPECT_EQ(gains(paths.at(i)), gains(copies.at(i)));
        EXPECT_TRUE(test::sameSound(paths.at(i), copies.at(i)));
    }
    EXPECT_TRUE(test::metaflacTags(paths.at(0)).contains(u"TITLE=One"_s));
    EXPECT_TRUE(isDone(change(u"Remove"_s, paths)));
    EXPECT_EQ(gains(paths.at(0)), QStringList());
    EXPECT_TRUE(test::metaflacTags(paths.at(1)).contains(u"TITLE=Two"_s));
}

TEST_F(ReplayGainTaskTest, TellsWhyMetaflacFailed)
{
    const QStringList paths{test::writeFlac(folder.path(u"a.flac"_s)),
                            test::writeFlac(folder.path(u"b.flac"_s), {.rate = 48000})};
    const auto job = change(u"Add"_s, paths);
    EXPECT_TRUE(job->error());
    EXPECT_TRUE(job->outcome().problem.contains(u"does not match"_s)) << qPrintable(job->outcome().problem);
    EXPECT_TRUE(job->report().contains(u"48000"_s)) << qPrintable(job->report());
    EXPECT_EQ(gains(paths.at(0)), QStringList());
}

TEST_F(ReplayGainTaskTest, StartsNothingWhereMetaflacWouldHarmAnotherFile)
{
    const QString flac = test::writeFlac(folder.path(u"a.flac"_s));
    const QByteArray before = folder.read(u"a.flac"_s);
    const QString link = folder.makeLink(u"link.flac"_s, flac);
    const auto linked = change(u"Add"_s, {link});
    EXPECT_TRUE(linked->error());
    EXPECT_EQ(linked->outcome().problem, u"link.flac is a link, and metaflac would put a file in its place");
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    folder.makeLink(u"a.flac.metadata_edit"_s, folder.write(u"precious"_s, "precious"));
    const auto taken = change(u"Add"_s, {flac});
    EXPECT_TRUE(taken->error());
    EXPECT_EQ(taken->outcome().problem,
              u"a.flac.metadata_edit is there already, and has the name of a temporary file of metaflac");
    EXPECT_EQ(folder.read(u"precious"_s), "precious");
    EXPECT_TRUE(folder.read(u"a.flac"_s) == before);
    EXPECT_TRUE(change(u"Add"_s, {folder.makeFolder(u"b.flac"_s)})->error());
    EXPECT_TRUE(change(u"Add"_s, {folder.path(u"gone.flac"_s)})->error());
}

TEST_F(ReplayGainTaskTest, ReadsAgainWhatMetaflacHasWritten)
{
    const QStringList paths = makeFlacs();
    setScript(u"metaflac"_s, "exec metaflac --add-replay-gain \"$2\"\n");
    const auto added = change(u"Add"_s, paths);
    EXPECT_TRUE(added->error());
    EXPECT_EQ(added->outcome().problem, u"metaflac told of no failure, and has not written the gain into c.flac");
    EXPECT_EQ(added->outcome().failedSources, 1);
    setScript(u"metaflac"_s, "exit 0\n");
    const auto removed = change(u"Remove"_s, paths);
    EXPECT_TRUE(removed->error());
    EXPECT_EQ(removed->outcome().problem, u"metaflac told of no failure, and has not taken the gain out of a b.flac");
}

TEST_F(ReplayGainTaskTest, TellsHowManyFilesAFailedRunHasWritten)
{
    const QStringList paths = makeFlacs();
    setScript(u"metaflac"_s, "metaflac --add-replay-gain \"$2\"; echo 'c.flac: ERROR: no room' >&2; exit 1\n");
    const auto job = change(u"Add"_s, paths);
    EXPECT_TRUE(job->error());
    EXPECT_EQ(job->outcome().problem, u"c.flac: ERROR: no room; 1 of 2 files were written already");
    EXPECT_EQ(job->outcome().failedSources, 1);
    EXPECT_TRUE(job->report().contains(u"1 of 2 files were written already"_s));
}

TEST_F(ReplayGainTaskTest, LeavesNoTemporaryFileOfMetaflac)
{
    const QString flac = test::writeFlac(folder.path(u"a.flac"_s));
    const QByteArray before = folder.read(u"a.flac"_s);
    setFake(u"metaflac"_s, "create=" + flac.toUtf8() + ".metadata_edit;signal=9");
    EXPECT_TRUE(change(u"Add"_s, {flac})->error());
    EXPECT_EQ(folder.list(), QStringList(u"a.flac"_s));
    EXPECT_TRUE(folder.read(u"a.flac"_s) == before);
}

TEST_F(ReplayGainTaskTest, WaitsForNoOtherJobOnTheSameFile)
{
    const QString flac = test::writeFlac(folder.path(u"a.flac"_s));
    const QString waits = folder.path(u"waits"_s);
    const QString goOn = folder.path(u"go-on"_s);
    setFake(u"metaflac"_s, "create=" + waits.toUtf8() + ";wait-file=" + goOn.toUtf8());
    tab.replayGainMatrix.selectTitle(u"Remove"_s);
    tab.setCommand(UtilTab::kReplayGain);
    tab.addMatchedFiles({flac});
    tab.executeCommand();
    ASSERT_TRUE(test::waitUntil([&] { return QFile::exists(waits); }));
    tab.addMatchedFiles({flac});
    tab.executeCommand();
    ASSERT_TRUE(test::waitUntil([this] { return !endedTasks.empty(); }));
    EXPECT_EQ(endedTasks.front()->outcome().problem, u"another job works on a.flac");
    folder.write(u"go-on"_s, "");
    settle();
    EXPECT_FALSE(endedTasks.back()->error());
}

} // namespace
} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/UtilFixture.h"

#include <QDir>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

/// The command of the tab, with a drive and programs that stand in for those of a machine with a CD.
class CDExtractionTest : public test::UtilFixture {
protected:
    CDExtractionTest()
    {
        system.makeFolder(u"dev"_s);
        tab.setDiscSystem({.mountTable = system.path(u"mounts"_s),
                           .rootFolder = system.path(),
                           .programFolder = programs.path(),
                           .isDrive = [](const struct stat &facts) { return S_ISREG(facts.st_mode); }});
        for (const QString &name : {u"gio"_s, u"udisksctl"_s})
            script(programs.path(name), "echo \"" + name.toUtf8() + " $*\" >> " + calls() + '\n');
    }

    static void script(const QString &path, const QByteArray &text)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/bash\n" + text);
        ASSERT_TRUE(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    void addDrive() { system.write(u"dev/sr0"_s, "a drive"); }
    QStringList makeDisc(const QStringList &names)
    {
        QStringList paths;
        for (const QString &name : names)
            paths.append(folder.write(u"disc/"_s + name, "track"));
        system.write(u"mounts"_s, "tmpfs /tmp tmpfs rw 0 0\n/dev/sr0 " + folder.path(u"disc"_s).toUtf8() + " iso9660 ro 0 0\n");
        return paths;
    }
    [[nodiscard]] QByteArray calls() const { return system.path(u"calls"_s).toUtf8(); }
    [[nodiscard]] QStringList called() const
    {
        return QString::fromUtf8(system.read(u"calls"_s)).split(u'\n', Qt::SkipEmptyParts);
    }
    /// A cdda2wav that writes these files.
    void setDrive(const QStringList &files)
    {
        QByteArray text = "echo \"cdda2wav $*\" >> " + calls() + "\n";
        for (const QString &file : files)
            text += "cp " + sound.toUtf8() + ' ' + file.toUtf8() + '\n';
        setScript(u"cdda2wav"_s, text);
    }
    std::vector<std::shared_ptr<NURVTask>> extract(const QStringList &paths)
    {
        prompts.expectOutputFolder(out.path());
        return execute(UtilTab::kCdExtraction, paths);
    }

    test::TestFolder system;
    test::TestFolder programs;
    QString sound = test::writeWav(system.path(u"sound.wav"_s), {.seconds = 0.1});
};

TEST_F(CDExtractionTest, UnmountsQueuesAndMountsAgain)
{
    addDrive();
    setDrive({u"audio_01.wav"_s, u"audio_02.wav"_s, u"audio_03.wav"_s});
    const QStringList tracks = makeDisc({u"1 Track.aiff"_s, u"2 Track.aiff"_s, u"3 Track.aiff"_s});
    const auto jobs = extract(tracks);
    ASSERT_EQ(jobs.size(), 1U);
    EXPECT_TRUE(isDone(jobs.front()));
    EXPECT_EQ(jobs.front()->title(), u"CD Tracks 1 - 3");
    EXPECT_EQ(called(), (QStringList{u"udisksctl unmount --force --no-user-interaction -b /dev/sr0"_s,
                                     u"udisksctl mount --no-user-interaction -b /dev/sr0"_s,
                                     u"cdda2wav -B -L 1 -H -t 1+3 -paranoia -Owav dev=/dev/sr0"_s}))
        << "the job waits in the queue here until the disc is mounted again";
    EXPECT_EQ(out.list(), (QStringList{u"01 Track.wav"_s, u"02 Track.wav"_s, u"03 Track.wav"_s, u"disc.log.txt"_s}));
}

TEST_F(CDExtractionTest, UnmountingCanBeGivenUp)
{
    addDrive();
    setDrive({u"audio.wav"_s});
    script(programs.path(u"udisksctl"_s), "echo \"$1\" >> " + calls() + "; [ $1 = mount ] || exec sleep 1000\n");
    const QStringList tracks = makeDisc({u"1 Track.aiff"_s});
    prompts.expectGivingUp(u"Unmounting the disc…"_s);
    EXPECT_TRUE(extract(tracks).empty());
    EXPECT_EQ(tab.fileNames(), tracks);
    EXPECT_EQ(called().last(), u"mount") << "the disc may be unmounted by then";
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(CDExtractionTest, TakesTheFirstRunOfTracks)
{
    addDrive();
    setDrive({u"audio_01.wav"_s, u"audio_02.wav"_s});
    tab.setOneTrack(true);
    extract(makeDisc({u"1 A.aiff"_s, u"2 B.aiff"_s, u"5 C.aiff"_s}));
    EXPECT_EQ(called().last(), u"cdda2wav -L 1 -H -t 1+2 -paranoia -Owav dev=/dev/sr0") << "and makes one file";
}

TEST_F(CDExtractionTest, NamesASingleTrack)
{
    addDrive();
    setDrive({u"audio.wav"_s});
    EXPECT_TRUE(isDone(extract(makeDisc({u"7 Song.aiff"_s})).front()));
    EXPECT_EQ(out.list(), (QStringList{u"07 Song.wav"_s, u"disc.log.txt"_s}));
}

TEST_F(CDExtractionTest, TellsWhenThereIsNoDrive)
{
    setDrive({});
    const QStringList tracks = makeDisc({u"1 Track.aiff"_s});
    const QString message = u"No drive is known that holds the disc of \"%1\". Add the tracks of an audio CD, from the folder in "
                            u"which the desktop shows them."_s;
    prompts.expectOutputFolder(out.path());
    prompts.expectAsk({.title = u"Error"_s, .message = message.arg(folder.path(u"disc"_s)), .buttons = {u"OK"_s}}, u"OK"_s);
    tab.setCommand(UtilTab::kCdExtraction);
    tab.addMatchedFiles(tracks);
    tab.executeCommand();
    EXPECT_EQ(queue().taskCount(), 0);
    EXPECT_EQ(tab.fileNames(), tracks);
    EXPECT_FALSE(system.exists(u"calls"_s)) << "nothing is unmounted";
    tab.clearFiles();
    prompts.expectOutputFolder(out.path());
    prompts.expectAsk({.title = u"Error"_s, .message = message.arg(folder.path()), .buttons = {u"OK"_s}}, u"OK"_s);
    tab.addMatchedFiles({folder.write(u"1 song.wav"_s, "x")});
    tab.executeCommand();
    EXPECT_EQ(queue().taskCount(), 0);
}

TEST_F(CDExtractionTest, NeedsAFolder)
{
    prompts.expectOutputFolder(std::nullopt);
    tab.setCommand(UtilTab::kCdExtraction);
    tab.addMatchedFiles(makeDisc({u"1 Track.aiff"_s}));
    tab.executeCommand();
    EXPECT_EQ(queue().taskCount(), 0);
}

} // namespace
} // namespace nurv

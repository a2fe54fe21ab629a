// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/CompactDisc.h"

#include "support/ProgramFolder.h"
#include "support/TestFolder.h"
#include "util/CDExtractSCSIProviderHelper.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/sysmacros.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

TEST(CompactDisc, FindsTheDeviceOfAMountedDisc)
{
    const test::TestFolder folder;
    const QString table = folder.write(u"mounts"_s, "/dev/sda1 / ext4 rw 0 0\n"
                                                    "/dev/sdb1 /media ext4 rw 0 0\n"
                                                    "proc /proc proc rw 0 0\n"
                                                    "/dev/sr0 /media/Audio\\040CD iso9660 ro 0 0\n"
                                                    "/dev/sr1 /media/tab\\011line\\012back\\134slash iso9660 ro 0 0\n"
                                                    "/dev/mapper/luks /media/Locked ext4 rw 0 0\n"
                                                    "/dev/.. /media/Dots ext4 rw 0 0\n"
                                                    "/dev/ /media/Nothing ext4 rw 0 0\n"
                                                    "tmpfs /media/Hidden tmpfs rw 0 0\n"
                                                    "/dev/sr2 /media/Twice iso9660 ro 0 0\n"
                                                    "/dev/sr3 /media/Twice iso9660 ro 0 0\n"
                                                    "/dev/sr4 /media/Show iso9660 ro 0 0\n"
                                                    "cut\n");
    const std::pair<QString, QString> cases[] = {
        {u"/media/Audio CD"_s, u"sr0"_s},
        {u"/media/Audio CD/"_s, u"sr0"_s},
        {u"/media/tab\tline\nback\\slash"_s, u"sr1"_s},
        {u"/media/Twice"_s, u"sr3"_s},
        {u"/media/Show1"_s, u"sr4"_s},
        {u"/media/Show12"_s, u"sr4"_s},
        {u"/media/Show123"_s, u"sr4"_s},
        {u"/media/Show1234"_s, u"sr4"_s},
        {u"/media/Show12345"_s, u"sr4"_s},
        {u"/media/Show123456"_s, u""_s},
        {u"/media/Sho"_s, u""_s},
        {u"/media/Locked"_s, u""_s},
        {u"/media/Dots"_s, u""_s},
        {u"/media/Nothing"_s, u""_s},
        {u"/media/Hidden"_s, u""_s},
        // Not what is mounted above.
        {u"/media/a"_s, u""_s},
        {u"/cd"_s, u""_s},
        {u""_s, u""_s},
    };
    for (const auto &[volume, device] : cases)
        EXPECT_EQ(discIdForVolumePath(volume, table), device) << qPrintable(volume);
    EXPECT_EQ(discIdForVolumePath(u"/media/Show"_s, folder.path(u"none"_s)), QString());
}

TEST(CompactDisc, FindsTheDeviceOfAFolderOfGvfs)
{
    const test::TestFolder folder;
    const QString table = folder.write(u"mounts"_s, "gvfsd-fuse /run/user/1000/gvfs fuse.gvfsd-fuse rw 0 0\n");
    const std::pair<QString, QString> cases[] = {
        {u"/run/user/1000/gvfs/cdda:host=sr0"_s, u"sr0"_s},
        {u"/run/user/1000/gvfs/cdda:host=sr12/"_s, u"sr12"_s},
        {u"/run/user/1000/gvfs/cdda:host=%2Fdev%2Fsr1"_s, u"sr1"_s},
        {u"/home/a/.gvfs/cdda mount on sr0"_s, u"sr0"_s},
        {u"/home/a/.gvfs/CDDA-Einhängung sr2 auf sr1"_s, u"sr1"_s},
        {u"/run/user/1000/gvfs/smb-share:server=x,share=sr0"_s, u""_s},
        {u"/run/user/1000/gvfs/cdda:host=sr00000000000"_s, u""_s},
        {u"/run/user/1000/gvfs/cdda:host=xsr0"_s, u""_s},
        {u"/run/user/1000/gvfs/cdda:host=..%2Fsda"_s, u""_s},
        {u"/music/cdda:host=sr0"_s, u""_s},
        {u"/run/user/1000/gvfs/cdda:host=sr0/below"_s, u""_s},
    };
    for (const auto &[volume, device] : cases) {
        EXPECT_EQ(discIdForVolumePath(volume, table), device) << qPrintable(volume);
        EXPECT_EQ(discMount(volume), device.isEmpty() ? DiscMount::FileSystem : DiscMount::Gvfs) << qPrintable(volume);
    }
}

TEST(CompactDisc, ReadsTheMountsOfTheSystem)
{
    // What is mounted at "/proc" is no device.
    EXPECT_EQ(discIdForVolumePath(u"/proc"_s), QString());
}

TEST(CompactDisc, RenumbersTracks)
{
    const QString many(400, u'9');
    const QString gvfs = u"/run/user/1000/gvfs/cdda:host=sr0/"_s;
    const struct {
        QStringList paths;
        QStringList names;
    } cases[] = {
        {{}, {}},
        {{u"/cd/10 b.aiff"_s, u"/cd/9 a.aiff"_s, u"/cd/1 c.aiff"_s}, {u"01 c.aiff"_s, u"09 a.aiff"_s, u"10 b.aiff"_s}},
        {{u"01 a.aiff"_s}, {u"01 a.aiff"_s}},
        {{u"1\ta.aiff"_s, u"2.aiff"_s}, {u"01\ta.aiff"_s, u"02.aiff"_s}},
        {{u"cover.jpg"_s, u"-5 a.wav"_s}, {u"0-5 a.wav"_s, u"0cover.jpg"_s}},
        {{many + u" a.wav"_s}, {many + u" a.wav"_s}},
        {{u"b 2.wav"_s, u"B 1.wav"_s}, {u"0B 1.wav"_s, u"0b 2.wav"_s}},
        // Only where gvfs shows the disc does the number stand last.
        {{u"/cd/Track 3.wav"_s}, {u"0Track 3.wav"_s}},
        {{gvfs + u"Track 10.wav"_s, gvfs + u"Track 3.wav"_s}, {u"03 Track.wav"_s, u"10 Track.wav"_s}},
        {{gvfs + u"Stück 3.wav"_s}, {u"03 Stück.wav"_s}},
        {{gvfs + u"3 Track.wav"_s}, {u"03 Track.wav"_s}},
        {{gvfs + u"7 Nights 3.wav"_s}, {u"07 Nights 3.wav"_s}},
        {{gvfs + u"Track 103.wav"_s}, {u"0Track 103.wav"_s}},
        {{gvfs + u"Track "_s + many + u".wav"_s}, {u"0Track "_s + many + u".wav"_s}},
    };
    for (const auto &[paths, names] : cases) {
        EXPECT_EQ(reNumberCdTracks(paths), names) << qPrintable(paths.join(u'|'));
        EXPECT_EQ(reNumberCdTracks(reNumberCdTracks(paths)).size(), names.size());
    }
}

TEST(CompactDisc, TakesTheFirstUnbrokenRunOfTracks)
{
    const QString many(400, u'9');
    const std::pair<QStringList, QString> cases[] = {
        {{}, u"-1+0"_s},
        {{u"01 a"_s, u"02 b"_s, u"03 c"_s}, u"1+3"_s},
        {{u"01 a"_s, u"02 b"_s, u"05 c"_s}, u"1+2"_s},
        {{u"01 a"_s, u"02 b"_s, u"05 c"_s, u"03 d"_s}, u"1+2"_s},
        {{u"07 a"_s}, u"7+7"_s},
        {{u"09 a"_s, u"10 b"_s}, u"9+10"_s},
        {{u"01 a"_s, u"01 b"_s, u"02 c"_s}, u"1+1"_s},
        {{u"98 a"_s, u"99 b"_s, u"100 c"_s}, u"98+99"_s},
        {{many + u" a"_s, many + u" b"_s}, u"0+0"_s},
        {{u"0cover.jpg"_s}, u"0+0"_s},
        {{u"2147483647 a"_s, u"2147483648 b"_s}, u"0+0"_s},
    };
    for (const auto &[names, range] : cases)
        EXPECT_EQ(getTrackNumberForExtract(names), range) << qPrintable(names.join(u'|'));
}

TEST(CompactDisc, TellsTheAddressOfNothingButADrive)
{
    const test::TestFolder root;
    root.write(u"dev/sr0"_s, "a file");
    root.makeFolder(u"dev/sr1"_s);
    root.write(u"dev/sda"_s, "");
    for (const QString &name : {u"sr0"_s, u"sr1"_s, u"sr2"_s, u"sda"_s, u""_s, u"../sr0"_s, u"sr0/.."_s, u"sr0\n"_s})
        EXPECT_EQ(CDExtractSCSIProviderHelper(name, root.path()).runTask(), QString()) << qPrintable(name);
}

TEST(CompactDisc, TellsTheAddressOfADriveThatIsThere)
{
    const test::TestFolder root;
    root.makeFolder(u"dev"_s);
    // A node that no driver answers to: nothing opens it.
    if (::mknod(QFile::encodeName(root.path(u"dev/sr3"_s)).constData(), S_IFBLK | 0600, makedev(240, 0)) != 0)
        GTEST_SKIP() << "device nodes are for the administrator";
    EXPECT_EQ(CDExtractSCSIProviderHelper(u"sr3"_s, root.path()).runTask(), u"/dev/sr3");
}

TEST(CompactDisc, UnmountsAndMountsWithoutQuestions)
{
    const test::ProgramFolder programs;
    programs.addFake(u"gio"_s, "args");
    programs.addFake(u"udisksctl"_s, "args");
    const auto arguments = [](const QString &output) {
        QStringList words;
        for (const QString &line : output.split(u'\n', Qt::SkipEmptyParts))
            words.append(line.section(u": "_s, 1));
        return words;
    };
    EXPECT_EQ(arguments(unMountDisc(u"sr0"_s, DiscMount::Gvfs, programs.path())),
              (QStringList{u"mount"_s, u"-u"_s, u"cdda://sr0/"_s}));
    EXPECT_EQ(arguments(mountDisc(u"sr0"_s, DiscMount::Gvfs, programs.path())),
              (QStringList{u"mount"_s, u"cdda://sr0/"_s}));
    EXPECT_EQ(arguments(unMountDisc(u"sr1"_s, DiscMount::FileSystem, programs.path())),
              (QStringList{u"unmount"_s, u"--force"_s, u"--no-user-interaction"_s, u"-b"_s, u"/dev/sr1"_s}));
    EXPECT_EQ(arguments(mountDisc(u"sr1"_s, DiscMount::FileSystem, programs.path())),
              (QStringList{u"mount"_s, u"--no-user-interaction"_s, u"-b"_s, u"/dev/sr1"_s}));
    for (const QString &name : {u""_s, u"../sda"_s, u"sr0/"_s, u"--help"_s, u"sr 0"_s}) {
        EXPECT_EQ(unMountDisc(name, DiscMount::Gvfs, programs.path()), QString()) << qPrintable(name);
        EXPECT_EQ(mountDisc(name, DiscMount::FileSystem, programs.path()), QString()) << qPrintable(name);
    }
    programs.remove(u"gio"_s);
    EXPECT_TRUE(unMountDisc(u"sr0"_s, DiscMount::Gvfs, programs.path()).contains(u"\"gio\" could not be started"_s));
}

} // namespace
} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/FileIntake.h"

#include "app/PathNames.h"
#include "app/RawNamedFile.h"
#include "support/TestFolder.h"

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include <linux/capability.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using ::testing::UnorderedElementsAreArray;

namespace nurv {

namespace {

const FileLook kAny = [](const QString &, bool) { return FileVerdict::Taken; };
const FileLook kFlacOnly = [](const QString &path, bool) {
    return formatWord(path) == u"FLAC" ? FileVerdict::Taken : FileVerdict::OtherKind;
};

FileIntake collectedFrom(const QString &path, const FileLook &look = kAny)
{
    FileIntake intake;
    collectFiles(path, {.look = look}, intake);
    return intake;
}

// Gives a folder another mode for a while.
class LockedFolder {
public:
    LockedFolder(const QString &path, mode_t mode) : m_path(QFile::encodeName(path))
    {
        EXPECT_EQ(::chmod(m_path.constData(), mode), 0);
    }
    ~LockedFolder() { ::chmod(m_path.constData(), 0700); }
    LockedFolder(const LockedFolder &) = delete;
    LockedFolder &operator=(const LockedFolder &) = delete;

private:
    QByteArray m_path;
};

// While it lives, modes bind this thread also when it is root's.
class BoundByModes {
public:
    BoundByModes()
    {
        EXPECT_EQ(::syscall(SYS_capget, &m_header, m_former.data()), 0);
        auto limited = m_former;
        limited[0].effective &= ~((1U << CAP_DAC_OVERRIDE) | (1U << CAP_DAC_READ_SEARCH));
        EXPECT_EQ(::syscall(SYS_capset, &m_header, limited.data()), 0);
    }
    ~BoundByModes() { EXPECT_EQ(::syscall(SYS_capset, &m_header, m_former.data()), 0); }
    BoundByModes(const BoundByModes &) = delete;
    BoundByModes &operator=(const BoundByModes &) = delete;

private:
    __user_cap_header_struct m_header{_LINUX_CAPABILITY_VERSION_3, 0};
    std::array<__user_cap_data_struct, 2> m_former{};
};

} // namespace

TEST(FileIntake, FindsFilesAtAnyDepth)
{
    const test::TestFolder folder;
    const QString one = folder.write(u"a.flac"_s, "x");
    const QString two = folder.write(u"disc 1/b.flac"_s, "x");
    const QString three = folder.write(u"disc 1/bonus/deep/c.flac"_s, "x");
    folder.makeFolder(u"empty"_s);
    EXPECT_THAT(collectedFrom(folder.path()).accepted, UnorderedElementsAre(one, two, three));
    EXPECT_THAT(collectedFrom(folder.path() + u'/').accepted, UnorderedElementsAre(one, two, three));
}

TEST(FileIntake, LeavesOutWhatFileBrowsersLeaveBehindButKeepsOtherHiddenFiles)
{
    const test::TestFolder folder;
    folder.write(u".DS_Store"_s, "x");
    folder.write(u"disc/.TOC.plist"_s, "x");
    const QString hidden = folder.write(u".hidden.flac"_s, "x");
    const FileIntake intake = collectedFrom(folder.path());
    EXPECT_THAT(intake.accepted, ElementsAre(hidden));
    EXPECT_THAT(intake.badExtensions(), IsEmpty());
    EXPECT_THAT(collectedFrom(folder.path(u".DS_Store"_s)).accepted, IsEmpty());
}

TEST(FileIntake, LeavesOutTheTemporaryFilesOfJobsUnlessTheyAreNamedThemselves)
{
    const test::TestFolder folder;
    const QString song = folder.write(u"song.flac"_s, "x");
    const QStringList temporary{u"Nurv-0123abcd-Ab12Cd34.flac"_s, u"disc/.nurv-ab12cd34ef56.part"_s,
                                u".nurv-0a1b2c3d-song.flac.kept"_s, u"song.flac.metadata_edit"_s,
                                u"song.flac.tmp,fl-ac+en'c"_s};
    for (const QString &name : temporary)
        folder.write(name, "x");
    folder.write(u".nurv-shntool-Ab12Cd/song.flac"_s, "x");
    EXPECT_THAT(collectedFrom(folder.path()).accepted, ElementsAre(song));
    EXPECT_THAT(collectedFrom(folder.path(), kFlacOnly).badExtensions(), IsEmpty());
    for (const QString &name : temporary)
        EXPECT_THAT(collectedFrom(folder.path(name)).accepted, ElementsAre(folder.path(name)));
    EXPECT_THAT(collectedFrom(folder.path(u".nurv-shntool-Ab12Cd"_s)).accepted,
                ElementsAre(folder.path(u".nurv-shntool-Ab12Cd/song.flac"_s)));
}

TEST(FileIntake, TakesAPathThatDoesNotExistForAFile)
{
    const test::TestFolder folder;
    EXPECT_THAT(collectedFrom(folder.path(u"gone.flac"_s)).accepted, ElementsAre(folder.path(u"gone.flac"_s)));
}

TEST(FileIntake, CollectsTheExtensionsOfRefusedFilesAsWritten)
{
    const test::TestFolder folder;
    folder.write(u"a.txt"_s, "x");
    folder.write(u"b.TXT"_s, "x");
    folder.write(u"c"_s, "x");
    folder.write(u".TOC.plist"_s, "x");
    const FileIntake intake = collectedFrom(folder.path(), kFlacOnly);
    EXPECT_THAT(intake.accepted, IsEmpty());
    EXPECT_THAT(intake.badExtensions(), UnorderedElementsAre(u"txt"_s, u"TXT"_s, QString(), u"plist"_s));
}

TEST(FileIntake, EndsOnLinksThatLeadBack)
{
    const test::TestFolder folder;
    const QString file = folder.write(u"a/b/song.flac"_s, "x");
    folder.makeLink(u"a/self"_s, folder.path(u"a"_s));
    folder.makeLink(u"a/b/up"_s, folder.path());
    folder.makeLink(u"a/b/circle"_s, folder.path(u"a/b/circle"_s));
    const FileIntake intake = collectedFrom(folder.path());
    EXPECT_THAT(intake.accepted, ElementsAre(file));
    EXPECT_THAT(intake.unreadableFolders, IsEmpty());
    EXPECT_THAT(intake.unreachableFiles, ElementsAre(folder.path(u"a/b/circle"_s)));
}

TEST(FileIntake, EndsSoonWhereManyFoldersLinkToEachOther)
{
    const test::TestFolder folder;
    constexpr int kFolders = 12;
    for (int from = 0; from < kFolders; ++from) {
        folder.write(u"%1/song.flac"_s.arg(from), "x");
        for (int to = 0; to < kFolders; ++to)
            folder.makeLink(u"%1/to %2"_s.arg(from).arg(to), folder.path(QString::number(to)));
    }
    const QStringList accepted = collectedFrom(folder.path()).accepted;
    EXPECT_EQ(accepted.size(), kFolders);
    for (int number = 0; number < kFolders; ++number)
        EXPECT_TRUE(accepted.contains(folder.path(u"%1/song.flac"_s.arg(number))));
}

TEST(FileIntake, FollowsLinksToFilesButLeavesNoGivenFolderByALink)
{
    const test::TestFolder folder;
    const test::TestFolder elsewhere;
    elsewhere.write(u"song.flac"_s, "x");
    const QString disc = folder.makeLink(u"disc"_s, elsewhere.path());
    folder.makeLink(u"one.flac"_s, elsewhere.path(u"song.flac"_s));
    const FileIntake intake = collectedFrom(folder.path());
    EXPECT_THAT(intake.accepted, ElementsAre(folder.path(u"one.flac"_s)));
    EXPECT_THAT(intake.linkedFolders, ElementsAre(disc));
    EXPECT_THAT(collectedFrom(disc).accepted, ElementsAre(folder.path(u"disc/song.flac"_s))) << "it was given itself";
}

TEST(FileIntake, NamesFilesOfInterestThatAreCalledAsTemporaryOnesAre)
{
    const test::TestFolder folder;
    folder.write(u"one.flac"_s, "x");
    const QString hidden = folder.write(u"disc/Nurv-00000000-abcdefgh.flac"_s, "x");
    const FileIntake intake = collectedFrom(folder.path());
    EXPECT_THAT(intake.accepted, ElementsAre(folder.path(u"one.flac"_s)));
    EXPECT_THAT(intake.temporaryFiles, ElementsAre(hidden));
}

TEST(FileIntake, NamesFilesWhoseNamesAreNoUtf8)
{
    const test::TestFolder folder;
    const test::RawNamedFile bad(folder, "caf\xE9.flac");
    const QString good = folder.write(u"café.flac"_s, "x");
    const FileIntake intake = collectedFrom(folder.path());
    EXPECT_THAT(intake.accepted, ElementsAre(good));
    EXPECT_THAT(intake.unreadableNames, ElementsAre(folder.path(u"caf\\xE9.flac"_s)));
}

TEST(FileIntake, KeepsBothFormsOfAnAccentedNameApart)
{
    const test::TestFolder folder;
    const QString composed = folder.write(u"caf\u00E9.flac"_s, "1");
    const QString decomposed = folder.write(u"cafe\u0301.flac"_s, "2");
    EXPECT_THAT(collectedFrom(folder.path()).accepted, UnorderedElementsAre(composed, decomposed));
}

TEST(FileIntake, TakesNamesOf255Bytes)
{
    const test::TestFolder folder;
    const QString file = folder.write(QString(250, u'n') + u".flac"_s, "x");
    EXPECT_THAT(collectedFrom(folder.path(), kFlacOnly).accepted, ElementsAre(file));
}

TEST(FileIntake, NamesFoldersThatCannotBeListed)
{
    const test::TestFolder folder;
    const QString good = folder.write(u"a.flac"_s, "x");
    folder.write(u"locked/b.flac"_s, "x");
    const LockedFolder locked(folder.path(u"locked"_s), 0);
    const BoundByModes bound;
    const FileIntake intake = collectedFrom(folder.path());
    EXPECT_THAT(intake.accepted, ElementsAre(good));
    EXPECT_THAT(intake.unreadableFolders, ElementsAre(folder.path(u"locked"_s)));
}

TEST(FileIntake, GoesOnBehindAnEntryThatCannotBeReached)
{
    const test::TestFolder folder;
    const test::TestFolder elsewhere;
    elsewhere.write(u"locked/x.flac"_s, "x");
    QStringList files;
    for (int number = 0; number < 20; ++number) {
        files.append(folder.write(u"%1.flac"_s.arg(number), "x"));
        folder.makeLink(u"link %1.flac"_s.arg(number), elsewhere.path(u"locked/x.flac"_s));
    }
    folder.makeLink(u"endless.flac"_s, folder.path(u"endless.flac"_s));
    folder.makeLink(u"long.flac"_s, u'/' + QString(300, u'n'));
    const LockedFolder locked(elsewhere.path(u"locked"_s), 0);
    const BoundByModes bound;
    const FileIntake intake = collectedFrom(folder.path());
    EXPECT_THAT(intake.accepted, UnorderedElementsAreArray(files));
    EXPECT_EQ(intake.unreachableFiles.size(), 22);
    EXPECT_TRUE(intake.unreachableFiles.contains(folder.path(u"long.flac"_s)));
    EXPECT_THAT(intake.unreadableFolders, IsEmpty());
}

TEST(FileIntake, TakesOnlyRegularFilesFromFolders)
{
    const test::TestFolder folder;
    const QString file = folder.write(u"a.flac"_s, "x");
    const QString gone = folder.makeLink(u"broken.flac"_s, folder.path(u"gone"_s));
    ASSERT_EQ(::mkfifo(QFile::encodeName(folder.path(u"pipe.flac"_s)).constData(), 0600), 0);
    folder.makeLink(u"device.flac"_s, u"/dev/null"_s);
    EXPECT_THAT(collectedFrom(folder.path()).accepted, UnorderedElementsAre(file, gone));
    EXPECT_THAT(collectedFrom(folder.path(u"pipe.flac"_s)).accepted, ElementsAre(folder.path(u"pipe.flac"_s)));
}

TEST(FileIntake, NamesFoldersThatShowNamesOnly)
{
    const test::TestFolder folder;
    folder.write(u"names only/disc/b.flac"_s, "x");
    const LockedFolder locked(folder.path(u"names only"_s), 0444);
    const BoundByModes bound;
    const FileIntake intake = collectedFrom(folder.path());
    EXPECT_THAT(intake.accepted, IsEmpty());
    EXPECT_THAT(intake.unreadableFolders, ElementsAre(folder.path(u"names only"_s)));
}

TEST(AbsolutePath, GivesOnePathToOneFile)
{
    const QString here = QDir::currentPath();
    const QString expected = here + u"/x.wav"_s;
    for (const QString &name : {u"x.wav"_s, u"./x.wav"_s, u".//./x.wav"_s, here + u"//x.wav"_s, here + u"/./x.wav"_s})
        EXPECT_EQ(absolutePath(name), expected);
    EXPECT_EQ(absolutePath(u"/music//a/"_s), u"/music/a"_s);
    EXPECT_EQ(absolutePath(u"/"_s), u"/"_s);
    EXPECT_EQ(absolutePath(u":/x.wav"_s), here + u"/:/x.wav"_s);
}

TEST(AbsolutePath, KeepsLinksButLeadsUpFromWhatTheyName)
{
    const test::TestFolder folder;
    const QString file = folder.write(u"far/disc/x.wav"_s, "x");
    folder.write(u"x.wav"_s, "x");
    folder.makeLink(u"link"_s, folder.path(u"far/disc"_s));
    EXPECT_EQ(absolutePath(folder.path(u"link/./x.wav"_s)), folder.path(u"link/x.wav"_s));
    EXPECT_EQ(absolutePath(folder.path(u"far/../x.wav"_s)), folder.path(u"x.wav"_s));
    EXPECT_EQ(absolutePath(folder.path(u"link/../disc/x.wav"_s)), file);
    EXPECT_EQ(absolutePath(folder.path(u"link/.."_s)), folder.path(u"far"_s));
    EXPECT_EQ(absolutePath(folder.path(u"far/..//..hidden.wav"_s)), folder.path(u"..hidden.wav"_s));
}

TEST(SkippedAlert, SaysNothingWithoutNeed)
{
    FileIntake intake;
    intake.accepted = {u"/a.flac"_s};
    intake.refused = {{.path = u"/a.txt"_s}};
    EXPECT_FALSE(skippedAlert(intake, true).has_value());
}

TEST(SkippedAlert, NamesFilesAndFolders)
{
    FileIntake intake;
    intake.unreadableNames = {u"/m/caf\\xE9.flac"_s};
    intake.unreadableFolders = {u"/m/locked"_s, u"/m/gone"_s};
    intake.unreachableFiles = {u"/m/far.flac"_s};
    const std::optional<Alert> alert = skippedAlert(intake, true);
    ASSERT_TRUE(alert.has_value());
    EXPECT_EQ(alert->title, u"Some files could not be read and were skipped"_s);
    EXPECT_EQ(alert->message,
              u"File names that are not valid UTF-8:\n/m/caf\\xE9.flac\n\nFolders that cannot be read:\n/m/locked\n/m/gone"
              "\n\nFiles that cannot be reached:\n/m/far.flac"_s);
    EXPECT_THAT(alert->buttons, ElementsAre(u"OK"_s));
}

TEST(SkippedAlert, NamesWhatWasPassedOver)
{
    FileIntake intake;
    intake.linkedFolders = {u"/m/link"_s};
    intake.temporaryFiles = {u"/m/Nurv-00000000-abcdefgh.wav"_s};
    const std::optional<Alert> alert = skippedAlert(intake, true);
    ASSERT_TRUE(alert.has_value());
    EXPECT_EQ(alert->title, u"Some files were skipped"_s);
    EXPECT_EQ(alert->message, u"Links to folders, which are not followed:\n/m/link\n\n"
                              "Files with the names of temporary ones:\n/m/Nurv-00000000-abcdefgh.wav"_s);
}

TEST(SkippedAlert, TellsNothingButWhatCouldNotBeReadWhenTheRestIsNotWanted)
{
    FileIntake intake;
    intake.linkedFolders = {u"/m/link"_s};
    intake.temporaryFiles = {u"/m/Nurv-00000000-abcdefgh.wav"_s};
    EXPECT_EQ(skippedAlert(intake, false, {u"JPG"_s}), std::nullopt);
    intake.unreadableFolders = {u"/m/locked"_s};
    const std::optional<Alert> alert = skippedAlert(intake, false, {u"JPG"_s});
    ASSERT_TRUE(alert.has_value());
    EXPECT_EQ(alert->title, u"Some files could not be read and were skipped"_s);
    EXPECT_EQ(alert->message, u"Folders that cannot be read:\n/m/locked"_s);
}

TEST(SkippedAlert, TellsEverythingInOneMessage)
{
    FileIntake intake;
    intake.unreadableFolders = {u"/m/locked"_s};
    intake.linkedFolders = {u"/m/link"_s};
    const std::optional<Alert> alert = skippedAlert(intake, true, {u"JPG"_s, u"PDF"_s});
    ASSERT_TRUE(alert.has_value());
    EXPECT_EQ(alert->title, u"Some files could not be read and were skipped"_s);
    EXPECT_EQ(alert->message, u"Folders that cannot be read:\n/m/locked\n\nLinks to folders, which are not followed:\n"
                              "/m/link\n\nKinds that no tab takes:\nJPG, PDF"_s);
}

TEST(SkippedAlert, ShowsTheBeginningOfALongList)
{
    FileIntake intake;
    for (int number = 1; number <= 23; ++number)
        intake.unreadableFolders.append(u"/m/%1"_s.arg(number));
    const std::optional<Alert> alert = skippedAlert(intake, true);
    ASSERT_TRUE(alert.has_value());
    EXPECT_TRUE(alert->message.endsWith(u"\n/m/20\nand 3 more"_s));
}

TEST(FileIntake, GivesUpAtTheNextEntryWhenItMustStop)
{
    test::TestFolder folder;
    for (int number = 0; number < 50; ++number)
        folder.write(u"deep/%1.flac"_s.arg(number), "x");
    int looks = 0;
    FileIntake intake;
    collectFiles(folder.path(), {.look = kAny, .mustStop = [&looks] { return ++looks > 12; }}, intake);
    // The two folders were looked at before the files.
    EXPECT_EQ(intake.accepted.size(), 10);
    EXPECT_EQ(skippedAlert(intake, true), std::nullopt);
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Util.h"

#include "app/NURVController.h"
#include "app/TestApplication.h"
#include "base/NurvFailure.h"
#include "files/FileStatus.h"
#include "support/TestFolder.h"
#include "toolbox/Toolbox.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QStandardPaths>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace nurv {

namespace {

class UtilTest : public ::testing::Test {
protected:
    UtilTest() { NURVController::registerDefaults(toolbox()); }

    test::TestFolder folder;
};

// What the kernel, or else the user's number, gives for the login session.
QString expectedSession()
{
    QFile file(u"/proc/self/sessionid"_s);
    std::uint32_t session = 0xFFFFFFFF;
    if (file.open(QIODevice::ReadOnly))
        session = file.readAll().trimmed().toUInt();
    if (session == 0xFFFFFFFF)
        session = ::getuid();
    return QString::asprintf("%08x", session);
}

QString failureOf(const std::optional<QString> &folder, const std::optional<QString> &extension)
{
    try {
        const QString path = Util::generateTempFileName(folder, extension);
        ADD_FAILURE() << "made " << qPrintable(path);
    } catch (const NurvFailure &failure) {
        return failure.reason();
    }
    return {};
}

QStringList filesInTrash()
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return QDir(data + u"/Trash/files"_s).entryList(QDir::Files | QDir::Hidden | QDir::System);
}

} // namespace

TEST_F(UtilTest, MakesAnEmptyFileOfItsOwnInTheFolder)
{
    const QString path = Util::generateTempFileName(folder.path(), u"wav"_s);
    const QRegularExpression shape(u'^' + QRegularExpression::escape(folder.path()) + u"/Nurv-"_s + expectedSession()
                                   + u"-[A-Za-z0-9]{8}\\.wav$"_s);
    EXPECT_TRUE(shape.match(path).hasMatch()) << qPrintable(path);
    struct stat facts = {};
    ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &facts), 0);
    EXPECT_EQ(facts.st_size, 0);
    EXPECT_EQ(facts.st_mode, S_IFREG | 0600U);
}

TEST_F(UtilTest, UsesTheUsersTemporaryFolderWhenNoneIsGiven)
{
    const QString path = Util::generateTempFileName(std::nullopt, u"wav"_s);
    EXPECT_EQ(QFileInfo(path).path(), qEnvironmentVariable("TMPDIR"));
    EXPECT_TRUE(QFileInfo(path).fileName().startsWith(u"Nurv-"_s));
    EXPECT_TRUE(QFile::remove(path));
}

TEST_F(UtilTest, MakesAnotherFileWithEveryCall)
{
    QSet<QString> paths;
    for (int call = 0; call < 200; ++call)
        paths.insert(Util::generateTempFileName(folder.path(), u"wav"_s));
    EXPECT_EQ(paths.size(), 200);
    EXPECT_EQ(folder.list().size(), 200);
}

TEST_F(UtilTest, MakesOtherFilesOnOtherThreads)
{
    std::mutex lock;
    QSet<QString> paths;
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number) {
        threads.emplace_back([&] {
            for (int call = 0; call < 25; ++call) {
                const QString path = Util::generateTempFileName(folder.path(), u"wav"_s);
                const std::scoped_lock guard(lock);
                paths.insert(path);
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(paths.size(), 200);
}

TEST_F(UtilTest, VariesAllEightPlaceholders)
{
    QSet<QString> firstTwo;
    for (int call = 0; call < 50; ++call)
        firstTwo.insert(QFileInfo(Util::generateTempFileName(folder.path(), u"wav"_s)).fileName().mid(14, 2));
    EXPECT_GT(firstTwo.size(), 10);
}

TEST_F(UtilTest, KeepsAnExtensionBeyondAscii)
{
    const QString path = Util::generateTempFileName(folder.path(), u"wäv"_s);
    EXPECT_TRUE(path.endsWith(u".wäv"_s));
    EXPECT_TRUE(QFileInfo::exists(path));
}

TEST_F(UtilTest, FailsWithoutAnExtensionOrAFolder)
{
    EXPECT_EQ(failureOf(folder.path(), std::nullopt), u"Invalid parameter not satisfying: nil != extension"_s);
    EXPECT_EQ(failureOf(QString(), u"wav"_s), u"Invalid parameter not satisfying: nil != directory"_s);
    EXPECT_THROW(static_cast<void>(Util::generateTempFileName2(folder.path(), std::nullopt)), NurvFailure);
}

TEST_F(UtilTest, FailsWithTheSystemsReason)
{
    EXPECT_EQ(failureOf(folder.path(u"gone"_s), u"wav"_s),
              u"Unable to create a temporary file: No such file or directory"_s);
    EXPECT_EQ(failureOf(folder.write(u"file"_s, "x"), u"wav"_s),
              u"Unable to create a temporary file: Not a directory"_s);
    EXPECT_EQ(failureOf(folder.path(), QString(250, u'e')), u"Unable to create a temporary file: File name too long"_s);
    EXPECT_EQ(failureOf(folder.path(), u"a/../../wav"_s), u"Unable to create a temporary file: No such file or directory"_s);
}

TEST_F(UtilTest, NeverMakesAFileWithACutName)
{
    // Of the paths near 1024 bytes the longest that are not too long are made, and
    // nothing appears anywhere for the others.
    QString deep = folder.path();
    while (deep.size() < 900)
        deep += u'/' + QString(90, u'd');
    constexpr qsizetype kNameLength = 1 + 22 + 4; // "/Nurv-xxxxxxxx-XXXXXXXX.wav"
    deep += u'/' + QString(1019 - kNameLength - deep.size() - 1, u'X');
    ASSERT_TRUE(QDir().mkpath(deep));
    for (int added = 0; added <= 10; ++added) {
        const QString here = deep + QString(added, u'X');
        ASSERT_TRUE(QDir().mkpath(here));
        const qsizetype length = here.size() + kNameLength;
        if (length <= 1023) {
            EXPECT_EQ(QFileInfo(Util::generateTempFileName(here, u"wav"_s)).path(), here);
        } else {
            EXPECT_EQ(failureOf(here, u"wav"_s), u"Unable to create a temporary file: File name too long"_s);
        }
    }
    EXPECT_EQ(folder.list().size(), 5);
}

TEST_F(UtilTest, GivesTheSameTemplateForTheSameArgumentsAndMakesNothing)
{
    const QString path = Util::generateTempFileName2(folder.path(), u"wav"_s);
    EXPECT_EQ(path, folder.path() + u"/Nurv-"_s + expectedSession() + u"-XXXXXXXX.wav"_s);
    EXPECT_EQ(Util::generateTempFileName2(folder.path(), u"wav"_s), path);
    EXPECT_THAT(folder.list(), IsEmpty());
    EXPECT_EQ(QFileInfo(Util::generateTempFileName2(std::nullopt, u"wav"_s)).path(), qEnvironmentVariable("TMPDIR"));
}

TEST_F(UtilTest, DeletesForGoodByDefault)
{
    const QString path = folder.write(u"a.flac"_s, "music");
    Util::deleteFile(path);
    EXPECT_FALSE(QFileInfo::exists(path));
    EXPECT_FALSE(filesInTrash().contains(u"a.flac"_s));
}

TEST_F(UtilTest, MovesIntoTheTrashWhenTheUserWantsThat)
{
    for (const int choice : {1, 2, -1}) {
        const test::SettingForTest toTrash(u"trashOrDelete"_s, choice);
        const QString name = u"to trash %1.flac"_s.arg(choice);
        Util::deleteFile(folder.write(name, "music"));
        EXPECT_FALSE(folder.exists(name));
        EXPECT_TRUE(filesInTrash().contains(name)) << choice;
    }
}

TEST_F(UtilTest, MovesIntoTheTrashWhenTheStoredChoiceCannotBeRead)
{
    const test::SettingForTest unreadable(u"trashOrDelete"_s, u"perhaps"_s);
    Util::deleteFile(folder.write(u"in doubt.flac"_s, "music"));
    EXPECT_FALSE(folder.exists(u"in doubt.flac"_s));
    EXPECT_TRUE(filesInTrash().contains(u"in doubt.flac"_s));
}

TEST_F(UtilTest, RemovesALinkAndNotWhatItNames)
{
    const QString original = folder.write(u"a.flac"_s, "music");
    const QString link = folder.makeLink(u"link.flac"_s, original);
    Util::deleteFile(link);
    EXPECT_THAT(folder.list(), ElementsAre(u"a.flac"_s));
}

TEST_F(UtilTest, RemovesOnlyTheVeryFileThatWasLookedAt)
{
    const QString path = folder.write(u"a.wav"_s, "sound");
    const auto seen = statusOf(path);
    folder.write(u"other.wav"_s, "another");
    ASSERT_TRUE(QFile::remove(path) && QFile::rename(folder.path(u"other.wav"_s), path));
    for (const int choice : {0, 1}) {
        SettingsStore::instance().setValue(u"trashOrDelete"_s, choice);
        EXPECT_EQ(Util::removeFile(path, {}, seen), Util::Removal::Stayed);
        EXPECT_EQ(folder.read(u"a.wav"_s), "another");
    }
    SettingsStore::instance().setValue(u"trashOrDelete"_s, 0);
    EXPECT_EQ(Util::removeFile(path, {}, statusOf(path)), Util::Removal::Deleted);
}

TEST_F(UtilTest, NeverDeletesAFolderForGood)
{
    folder.write(u"disc/a.flac"_s, "music");
    Util::deleteFile(folder.path(u"disc"_s));
    Util::deleteFile(folder.makeFolder(u"empty"_s));
    EXPECT_TRUE(folder.exists(u"disc/a.flac"_s));
    EXPECT_TRUE(folder.exists(u"empty"_s));
}

TEST_F(UtilTest, ReportsNothingAboutAFileThatIsNotThere)
{
    Util::deleteFile(folder.path(u"gone.flac"_s));
    const test::SettingForTest toTrash(u"trashOrDelete"_s, 1);
    Util::deleteFile(folder.path(u"gone.flac"_s));
    EXPECT_THAT(folder.list(), IsEmpty());
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagsMessage.h"
#include "tags/TagsProcess.h"

#include "process/ChildProcess.h"
#include "process/ServiceProcess.h"
#include "support/LimitedRun.h"
#include "support/TestProgram.h"
#include "support/WaitUntil.h"
#include "TagFixtures.h"
#include "tags/AACTagsHelper.h"
#include "tags/PictureDigest.h"
#include "tags/PictureMemory.h"
#include "tags/TagLibTagsHelper.h"
#include "tags/TagsSandbox.h"

#include <QColorSpace>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <limits>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/landlock.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

constexpr std::chrono::milliseconds kShort{300};

/// The processes of that program that this process has started.
QList<pid_t> processesOf(const QString &program)
{
    QList<pid_t> found;
    for (const QString &task : QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(u"/proc/self/task/"_s + task + u"/children"_s);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const QByteArray &pid : file.readAll().split(' ')) {
            const QString link = u"/proc/"_s + QString::fromLatin1(pid) + u"/exe"_s;
            if (!pid.isEmpty() && QFile::symLinkTarget(link) == program)
                found.append(pid.toInt());
        }
    }
    return found;
}

/// From now on, and for all programs that are started, no limit can be asked for or set.
bool forbidLimits()
{
    std::array<sock_filter, 4> filter{
        sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_prlimit64, 0, 1),
        sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
        sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
    const sock_fprog program{.len = filter.size(), .filter = filter.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

class TagsOverProcess : public ::testing::Test {
protected:
    const TestFolder folder;
    const QString program = QFileInfo(TagsProcess::installedProgram()).canonicalFilePath();

    void SetUp() override { useReal(); }
    void TearDown() override { TagsProcess::takeDown(); }

    void useReal(int most = 2) const { TagsProcess::setUp({.program = program, .most = most}); }

    /// A program in its place, in the language of the shell; descriptor 3 is the socket.
    void useFake(const QByteArray &script) const
    {
        const QString path = folder.write(u"fake"_s, "#!/bin/bash\n" + script);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        TagsProcess::setUp({.program = path, .most = 1, .timeToRead = kShort, .timeToTakeStock = kShort});
    }

    [[nodiscard]] QString taggedFile() const
    {
        const QString path = writeWavpack(folder, u"a.wv"_s);
        TagLibTagsHelper::writeTagsForWavpackFile(path, fullRecord(), false);
        return path;
    }

    static QString reading(const QString &path)
    {
        const std::optional<QString> failure =
            failureOf([&] { EXPECT_EQ(TagLibTagsHelper::tagsForWavpackFile(path).titleText(), fullRecord().titleText()); });
        return failure.value_or(u"read"_s);
    }
};

} // namespace

TEST_F(TagsOverProcess, KeepsOneProcessForManyFiles)
{
    const QString path = taggedFile();
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(reading(path), u"read"_s);
    EXPECT_EQ(processesOf(program).size(), 1);
    EXPECT_EQ(children::runningCount(), 0) << "it is no program of a batch";
}

TEST_F(TagsOverProcess, HandsPicturesOnAsTheyAre)
{
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    TagsObject record = fullRecord();
    QImage image = imageOf(noisePicture(30, 20));
    image.setDotsPerMeterX(3000);
    image.setText(u"Author"_s, u"somebody"_s);
    image.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    record.setAlbumArt(artOf(image));
    TagLibTagsHelper::writeTagsForFLACFile(path, record, true);
    TagLibTagsHelper::writeTagsForAIFFFile(writeTaggableAiff(folder, u"b.aiff"_s),
                                           TagLibTagsHelper::tagsForFlacFile(path));
    TagsProcess::takeDown();
    const AlbumArt direct = TagLibTagsHelper::tagsForFlacFile(path).albumArt();
    const AlbumArt copied = TagLibTagsHelper::tagsForAIFFFile(folder.path(u"b.aiff"_s)).albumArt();
    ASSERT_TRUE(direct && copied);
    EXPECT_EQ(imageOf(copied), imageOf(direct));
    EXPECT_EQ(imageOf(copied).colorSpace(), QColorSpace(QColorSpace::DisplayP3));
    EXPECT_EQ(imageOf(copied).text(u"Author"_s), u"somebody"_s);
    EXPECT_NEAR(imageOf(copied).dotsPerMeterX(), 3000, 1);
}

TEST_F(TagsOverProcess, TellsByWhatItsProcessEnded)
{
    const QString path = taggedFile();
    const QByteArray before = folder.read(u"a.wv"_s);
    useFake("kill -SEGV $$\n");
    EXPECT_EQ(reading(path), u"its tags could not be read: the program that reads them ended by signal 11"_s);
    EXPECT_EQ(failureOf([&] { TagLibTagsHelper::writeTagsForWavpackFile(path, fullRecord(), true); }),
              u"its tags could not be written: the program that reads them ended by signal 11"_s);
    EXPECT_EQ(failureOf([&] { static_cast<void>(MetadataInventory::of(path)); }),
              u"its tags could not be read: the program that reads them ended by signal 11"_s);
    useFake("exit 7\n");
    EXPECT_EQ(reading(path), u"its tags could not be read: the program that reads them ended with status 7"_s);
    EXPECT_EQ(folder.read(u"a.wv"_s), before);
    useReal();
    EXPECT_EQ(reading(path), u"read"_s);
}

TEST_F(TagsOverProcess, TellsThatItsProgramIsMissing)
{
    const QString path = taggedFile();
    const QString missing = folder.path(u"nurv-tags"_s);
    TagsProcess::setUp({.program = missing, .most = 1});
    const QString end = u": nurv-tags, the program that reads them, is missing: "_s + missing;
    EXPECT_EQ(reading(path), u"its tags could not be read"_s + end);
    EXPECT_EQ(failureOf([&] { static_cast<void>(MetadataInventory::of(path)); }), u"its tags could not be read"_s + end);
    EXPECT_EQ(failureOf([&] { static_cast<void>(pictureDigest(noisePicture(4, 4)->bytes())); }),
              u"a picture could not be compared"_s + end);
    EXPECT_EQ(failureOf([&] { TagLibTagsHelper::writeTagsForWavpackFile(path, fullRecord(), true); }),
              u"its tags could not be written"_s + end);
}

TEST_F(TagsOverProcess, IsRefusedByAProcessThatCannotLimitItself)
{
    const QString path = taggedFile();
    TagsProcess::takeDown();
    EXPECT_EQ(runLimited(4096, 60,
                         [&] {
                             if (!forbidLimits())
                                 return u"limits not forbidden"_s;
                             useReal();
                             return reading(path);
                         }),
              u"its tags could not be read: the program that reads them refuses to work: it has no limit of dumps: "
              "Operation not permitted"_s);
}

TEST_F(TagsOverProcess, TakesALowerLimitThanItsOwn)
{
    const QString path = taggedFile();
    TagsProcess::takeDown();
    EXPECT_EQ(runLimited(4096, 60,
                         [&] {
                             const rlimit few{20, 20};
                             const rlimit short_{15, 15};
                             if (::setrlimit(RLIMIT_NOFILE, &few) != 0 || ::setrlimit(RLIMIT_CPU, &short_) != 0)
                                 return u"limits not set"_s;
                             useReal();
                             return reading(path);
                         }),
              u"read"_s);
}

TEST_F(TagsOverProcess, GivesNoTagsOfWhatCannotBeOpened)
{
    const QString gone = folder.path(u"gone.wv"_s);
    EXPECT_EQ(TagLibTagsHelper::tagsForWavpackFile(gone).titleText(), u""_s);
    EXPECT_EQ(failureOf([&] { static_cast<void>(AACTagsHelper::tagsForFile(gone)); }),
              u"Unable to open the file for reading."_s);
    EXPECT_EQ(failureOf([&] { static_cast<void>(MetadataInventory::of(gone)); }),
              u"it cannot be opened: No such file or directory"_s);
    EXPECT_EQ(processesOf(program).size(), 1) << "they are read nowhere else";
}

TEST_F(TagsOverProcess, HoldsNoShareOfTheMemoryForARecord)
{
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    TagsObject record;
    record.setAlbumArt(noisePicture(200, 100));
    TagLibTagsHelper::writeTagsForFLACFile(path, record, true);
    const TagsObject read = TagLibTagsHelper::tagsForFlacFile(path);
    ASSERT_NE(read.albumArt(), nullptr);
    EXPECT_LE(read.albumArt()->bytes().size(), folder.read(u"a.flac"_s).size()) << "it is not kept decoded";
    EXPECT_EQ(PictureMemory::givenOut(), 0);
}

TEST_F(TagsOverProcess, TellsWhyAPictureIsLeftOut)
{
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    const QString icon = folder.write(u"icon"_s, QByteArray::fromHex("000001000100"));
    EXPECT_EQ(runProgram(u"metaflac"_s, {u"--import-picture-from=3|image/x-icon||1x1x24|"_s + icon, path}).exitStatus, 0);
    const TagsObject tags = TagLibTagsHelper::tagsForFlacFile(path);
    EXPECT_EQ(tags.albumArt(), nullptr);
    EXPECT_EQ(tags.albumArtFault(), u"it is of no known kind"_s);
}

TEST_F(TagsOverProcess, KillsAProcessThatTakesTooLong)
{
    const QString path = taggedFile();
    useFake("exec sleep 1000\n");
    EXPECT_EQ(reading(path), u"its tags could not be read: the program that reads them took too long"_s);
    EXPECT_EQ(ServiceProcess::runningCount(), 0);
    useReal();
    EXPECT_EQ(reading(path), u"read"_s);
}

TEST_F(TagsOverProcess, TakesNoNonsenseForAnAnswer)
{
    const QString path = taggedFile();
    const QByteArray before = folder.read(u"a.wv"_s);
    const QByteArrayList answers = {
        // More bytes than there are; an unknown kind; a count of countless parts; nothing at all.
        "printf '\\x10\\xff\\xff\\xff\\xff\\xff\\xff\\xff\\x7f' >&3; exec sleep 1000",
        "printf '\\x77\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00' >&3; exec sleep 1000",
        "printf '\\x10\\x08\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\xff\\xff\\xff\\xff\\xff\\xff\\xff\\x7f' >&3; exec sleep 1000",
        "printf '\\x10\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00' >&3; exec sleep 1000",
        "head -c 100000 /dev/urandom >&3",
        // Lines for the log without end.
        "while :; do printf '\\x14\\x10\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\1\\0\\0\\0\\0\\0\\0\\0\\0\\0\\0\\0\\0\\0\\0\\0' >&3; done"};
    for (const QByteArray &answer : answers) {
        useFake(answer + '\n');
        EXPECT_NE(reading(path), u"read"_s) << answer.constData();
        EXPECT_TRUE(failureOf([&] { TagLibTagsHelper::writeTagsForWavpackFile(path, fullRecord(), true); }).has_value());
        EXPECT_TRUE(failureOf([&] { static_cast<void>(MetadataInventory::of(path)); }).has_value());
    }
    EXPECT_EQ(folder.read(u"a.wv"_s), before);
}

TEST_F(TagsOverProcess, GoesOnWhateverIsKilled)
{
    const QString path = taggedFile();
    std::atomic<bool> isDone = false;
    std::thread killer([&] {
        std::minstd_rand random(5);
        while (!isDone) {
            for (const pid_t pid : processesOf(program))
                ::kill(pid, SIGKILL);
            std::this_thread::sleep_for(std::chrono::milliseconds(random() % 60));
        }
    });
    std::atomic<int> faults = 0;
    std::vector<std::thread> readers;
    for (int reader = 0; reader < 3; ++reader) {
        readers.emplace_back([&] {
            for (int i = 0; i < 60; ++i) {
                const QString result = reading(path);
                if (result != u"read"_s
                    && result != u"its tags could not be read: the program that reads them ended by signal 9"_s)
                    ++faults;
            }
        });
    }
    for (std::thread &reader : readers)
        reader.join();
    isDone = true;
    killer.join();
    EXPECT_EQ(faults, 0);
    for (int i = 0; i < 3; ++i)
        static_cast<void>(reading(path)); // what was killed last
    EXPECT_EQ(reading(path), u"read"_s);
}

TEST_F(TagsOverProcess, LeavesNoProcessWhenItIsKilled)
{
    const QString path = taggedFile();
    TagsProcess::takeDown();
    const QString note = folder.path(u"pid"_s);
    EXPECT_EQ(runLimited(4096, 60,
                         [&] {
                             useReal();
                             static_cast<void>(reading(path));
                             QFile file(note);
                             if (file.open(QIODevice::WriteOnly))
                                 file.write(QByteArray::number(processesOf(program).value(0)));
                             file.close();
                             ::raise(SIGKILL);
                             return QString();
                         }),
              u"ended by signal 9"_s);
    const pid_t pid = folder.read(u"pid"_s).toInt();
    ASSERT_GT(pid, 0);
    EXPECT_TRUE(waitUntil([&] {
        // It may wait for its new parent.
        return QFile::symLinkTarget(u"/proc/%1/exe"_s.arg(pid)) != program;
    }));
}

TEST_F(TagsOverProcess, EndsWithTheChildren)
{
    const QString path = taggedFile();
    EXPECT_EQ(ServiceProcess::runningCount(), 1);
    children::terminateAll(std::chrono::milliseconds(0), false);
    EXPECT_TRUE(waitUntil([&] { return processesOf(program).isEmpty(); }));
    // The next one starts another, once the first is seen to have ended.
    EXPECT_TRUE(waitUntil([&] { return reading(path) == u"read"; }));
}

TEST_F(TagsOverProcess, HasLimitsOfItsOwn)
{
    static_cast<void>(taggedFile());
    const QList<pid_t> pids = processesOf(program);
    ASSERT_EQ(pids.size(), 1);
    const auto contents = [&](const QString &name) {
        QFile file(u"/proc/%1/%2"_s.arg(QString::number(pids.first()), name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll().simplified();
    };
    EXPECT_TRUE(contents(u"status"_s).contains("NoNewPrivs: 1"));
    const QByteArray limits = contents(u"limits"_s);
    EXPECT_TRUE(limits.contains("Max core file size 0 0")) << limits.constData();
    EXPECT_TRUE(limits.contains("Max open files 32 32")) << limits.constData();
    EXPECT_FALSE(limits.contains("Max cpu time unlimited")) << limits.constData();
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_TRUE(limits.contains("Max address space 1073741824 1073741824")) << limits.constData();
#endif
}

TEST(TagsSandbox, TakesAwayAllFilesButNotWhatIsOpen)
{
    const bool hasLandlock =
        ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) >= 1;
    EXPECT_EQ(tagsSandbox::canGiveUpFiles(), hasLandlock);
    if (!hasLandlock)
        GTEST_SKIP() << "this kernel has no Landlock";
    const TestFolder folder;
    const QString path = folder.write(u"a"_s, "bytes");
    EXPECT_EQ(runLimited(4096, 60,
                         [&] {
                             QFile open(path);
                             if (!open.open(QIODevice::ReadOnly))
                                 return u"not opened before"_s;
                             tagsSandbox::enter();
                             if (QFile(path).open(QIODevice::ReadOnly) || QFile(u"/etc/passwd"_s).open(QIODevice::ReadOnly))
                                 return u"read by name"_s;
                             if (::open(QFile::encodeName(folder.path(u"new"_s)).constData(), O_CREAT | O_WRONLY, 0600) >= 0)
                                 return u"written by name"_s;
                             return QString::fromLatin1(open.readAll());
                         }),
              u"bytes"_s);
}

TEST(TagsMessage, GivesBackWhatWasPut)
{
    TagsObject record = fullRecord();
    record.setGenreText(std::nullopt);
    record.setTitleText(u""_s);
    record.setArtistText(QString(QChar(0xd800))); // half a character
    record.customTagsDictionary().insert(u"a"_s, u"b"_s);
    record.setAlbumArt(noisePicture(7, 3), u"a fault"_s);
    TagsMessageWriter writer;
    writer.putRecord(record);
    TagsMessageReader reader(writer.bytes());
    const TagsObject back = reader.takeRecord();
    reader.expectEnd();
    EXPECT_EQ(back.albumArt()->bytes(), record.albumArt()->bytes());
    EXPECT_EQ(back.albumArt()->size(), QSize(7, 3));
    EXPECT_EQ(back.albumArt()->depth(), record.albumArt()->depth());
    EXPECT_EQ(back.albumArtFault(), u"a fault"_s);
    EXPECT_EQ(back.customTagsDictionary(), record.customTagsDictionary());
    TagsObject same = back;
    same.setAlbumArt(record.albumArt());
    EXPECT_TRUE(same.isEqualToTagsObject(record));
    EXPECT_EQ(back.albumArtistText(), record.albumArtistText());
}

TEST(TagsMessage, TakesNoEditsBeyondTheFile)
{
    const auto edits = [](std::int64_t offset, std::int64_t length, bool isNew) {
        TagsMessageWriter writer;
        writer.putEdits({.isEdited = true, .pieces = {{.isNew = isNew, .offset = offset, .length = length}}, .newBytes = "abc"});
        return failureOf([&] { static_cast<void>(TagsMessageReader(writer.bytes()).takeEdits(10)); }).has_value();
    };
    EXPECT_FALSE(edits(0, 10, false));
    EXPECT_FALSE(edits(1, 2, true));
    EXPECT_TRUE(edits(0, 11, false));
    EXPECT_TRUE(edits(11, 1, false));
    EXPECT_TRUE(edits(1, 3, true));
    EXPECT_TRUE(edits(-1, 3, true));
    EXPECT_TRUE(edits(3, std::numeric_limits<std::int64_t>::max(), false));
}

TEST(TagsMessage, SurvivesAnyBytes)
{
    TagsObject record = fullRecord();
    record.setAlbumArt(noisePicture(7, 3));
    TagsMessageWriter whole;
    whole.putRecord(record);
    whole.putEdits({.isEdited = true, .pieces = {{.isNew = true, .offset = 0, .length = 3}}, .newBytes = "abc"});
    std::minstd_rand random(3);
    const QString result = runLimited(256, 60, [&] {
        for (int round = 0; round < 20'000; ++round) {
            QByteArray bytes = whole.bytes().left(static_cast<qsizetype>(random()) % (whole.bytes().size() + 1));
            for (int i = 0; i < 3 && !bytes.isEmpty(); ++i)
                bytes[static_cast<qsizetype>(random()) % bytes.size()] = static_cast<char>((random() & 1U) != 0 ? 0xff : random() & 0xffU);
            static_cast<void>(failureOf([&] { static_cast<void>(TagsMessageReader(bytes).takeRecord()); }));
            static_cast<void>(failureOf([&] { static_cast<void>(TagsMessageReader(bytes).takeInventory()); }));
            static_cast<void>(failureOf([&] { static_cast<void>(TagsMessageReader(bytes).takeEdits(100)); }));
        }
        return u"survived"_s;
    });
    EXPECT_EQ(result, u"survived"_s);
}

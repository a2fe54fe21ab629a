// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TestApplication.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <ctime>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

// Instrumented builds take several times as long.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr qint64 kLimitMs = 20000;
constexpr qint64 kLimitKiB = 2 * 1024 * 1024;
#else
constexpr qint64 kLimitMs = 2000;
constexpr qint64 kLimitKiB = 150 * 1024;
#endif

// The largest amount of memory the process has had, as the kernel counts it.
qint64 peakMemoryKiB()
{
    QFile status(u"/proc/self/status"_s);
    EXPECT_TRUE(status.open(QIODevice::ReadOnly));
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    }
    ADD_FAILURE() << "no VmHWM";
    return 0;
}

// Making the files is most of the work, and costs least in memory.
QString fastFolder()
{
    const QString memory = u"/dev/shm"_s;
    return QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
}

// The processor time that the process has had: what other programs take of the
// machine does not count.
qint64 processorTimeMs()
{
    timespec time = {};
    EXPECT_EQ(::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time), 0);
    return time.tv_sec * 1000 + time.tv_nsec / 1000000;
}

void makeFile(const QString &path)
{
    const int file = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(file, 0);
    ::close(file);
}

} // namespace

TEST(BaseTabSpeed, AddsAHundredThousandFilesInNestedFolders)
{
    QTemporaryDir folder(fastFolder() + u"/nurv-test-XXXXXX"_s);
    ASSERT_TRUE(folder.isValid());
    constexpr int kFolders = 1000;
    constexpr int kFilesPerFolder = 100;
    for (int number = 0; number < kFolders; ++number) {
        const QString disc =
            folder.filePath(u"artist %1/album %2/disc %3"_s.arg(number % 50).arg(number % 7).arg(number));
        ASSERT_TRUE(QDir().mkpath(disc));
        for (int track = 0; track < kFilesPerFolder; ++track)
            makeFile(disc + u"/track %1 - a title of usual length.flac"_s.arg(track));
    }

    test::TestApplication application({u"decode"_s});
    const qint64 startMs = processorTimeMs();
    application.tab(u"decode"_s).addFiles({folder.path()});
    const qint64 elapsedMs = processorTimeMs() - startMs;
    const QStringList &listed = application.tab(u"decode"_s).fileNames();
    ASSERT_EQ(listed.size(), kFolders * kFilesPerFolder);
    EXPECT_TRUE(listed.first().endsWith(u"artist 0/album 0/disc 0/track 0 - a title of usual length.flac"_s));
    EXPECT_TRUE(listed.last().endsWith(u"/track 99 - a title of usual length.flac"_s));
    EXPECT_LT(elapsedMs, kLimitMs);
    EXPECT_LT(peakMemoryKiB(), kLimitKiB);
    RecordProperty("elapsedMs", static_cast<int>(elapsedMs));
    RecordProperty("peakKiB", static_cast<int>(peakMemoryKiB()));
}

} // namespace nurv

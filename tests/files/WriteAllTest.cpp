// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/WriteAll.h"

#include "files/FileDescriptor.h"
#include "support/SystemCallRecorder.h"
#include "support/TestFolder.h"

#include <QFile>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

TEST(WriteAll, WritesMoreThanAPipeTakesAtOnce)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    const FileDescriptor reading(ends[0]);
    FileDescriptor writing(ends[1]);
    QByteArray received;
    std::thread reader([&] {
        std::array<char, 1000> block;
        ssize_t count = 0;
        while ((count = ::read(reading.get(), block.data(), block.size())) > 0)
            received.append(block.data(), count);
    });
    QByteArray sent(1'000'000, Qt::Uninitialized);
    for (qsizetype i = 0; i < sent.size(); ++i)
        sent[i] = static_cast<char>(i % 251);
    EXPECT_TRUE(writeAll(writing.get(), sent));
    EXPECT_TRUE(writing.close());
    reader.join();
    EXPECT_TRUE(received == sent);
}

TEST(WriteAll, TellsWhyBytesCouldNotBeWritten)
{
    const FileDescriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    ASSERT_TRUE(full.isOpen());
    EXPECT_TRUE(writeAll(full.get(), {}));
    EXPECT_FALSE(writeAll(full.get(), "some bytes"));
    EXPECT_EQ(errno, ENOSPC);
}

TEST(WriteAll, GoesOnAfterASignal)
{
    const test::TestFolder folder;
    const QString path = folder.write(u"a"_s, "");
    const FileDescriptor file(::open(QFile::encodeName(path).constData(), O_WRONLY | O_CLOEXEC));
    bool isWritten = false;
    {
        test::SystemCallRecorder calls;
        calls.fail(u"write "_s + path, EINTR, 2);
        isWritten = writeAll(file.get(), "some bytes");
    }
    EXPECT_TRUE(isWritten);
    EXPECT_EQ(folder.read(u"a"_s), "some bytes");
}

} // namespace nurv

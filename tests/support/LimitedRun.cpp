// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/LimitedRun.h"

#include <QFile>

#include <gtest/gtest.h>

#include <array>
#include <exception>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kLimitsMemory = false;
#else
constexpr bool kLimitsMemory = true;
#endif

rlim_t addressSpaceInUse()
{
    QFile file(u"/proc/self/statm"_s);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll().split(' ').first().toULongLong() * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE));
}

void lower(__rlimit_resource resource, rlim_t limit)
{
    const rlimit both{limit, limit};
    if (::setrlimit(resource, &both) != 0)
        ::_exit(99);
}

[[noreturn]] void runChild(int resultPipe, rlim_t memory, int processorSeconds, const std::function<QString()> &work)
{
    lower(RLIMIT_CORE, 0);
    lower(RLIMIT_CPU, static_cast<rlim_t>(processorSeconds));
    if (kLimitsMemory)
        lower(RLIMIT_AS, memory);
    QByteArray result;
    try {
        result = work().toUtf8();
    } catch (const std::exception &failure) {
        result = QByteArray("exception: ") + failure.what();
    }
    const bool isWritten = ::write(resultPipe, result.constData(), static_cast<std::size_t>(result.size()))
                           == static_cast<ssize_t>(result.size());
    ::_exit(isWritten ? 0 : 98);
}

} // namespace

QString runLimited(int memoryMiB, int processorSeconds, const std::function<QString()> &work)
{
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe(ends.data()), 0);
    const rlim_t memory = addressSpaceInUse() + (static_cast<rlim_t>(memoryMiB) << 20);
    const pid_t child = ::fork();
    if (child == 0)
        runChild(ends[1], memory, processorSeconds, work);
    ::close(ends[1]);
    QFile result;
    EXPECT_TRUE(result.open(ends[0], QIODevice::ReadOnly, QFileDevice::AutoCloseHandle));
    const QByteArray text = result.readAll();
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    if (WIFSIGNALED(status))
        return u"ended by signal %1"_s.arg(WTERMSIG(status));
    if (WEXITSTATUS(status) != 0)
        return u"ended with status %1"_s.arg(WEXITSTATUS(status));
    return QString::fromUtf8(text);
}

} // namespace nurv::test

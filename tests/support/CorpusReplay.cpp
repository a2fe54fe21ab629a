// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/CorpusReplay.h"

#include "support/AllocationMeter.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstring>
#include <ctime>

#include <sys/time.h>
#include <unistd.h>

namespace nurv::test {

namespace {

char g_name[256];

/// Names the file that never comes to an end, then lets the signal end the program.
void reportHang(int)
{
    constexpr char kText[] = "the replay hangs at ";
    [[maybe_unused]] ssize_t written = ::write(STDERR_FILENO, kText, sizeof kText - 1);
    written = ::write(STDERR_FILENO, g_name, std::strlen(g_name));
    written = ::write(STDERR_FILENO, "\n", 1);
    ::raise(SIGPROF);
}

/// Ends the program when it has used so much time of the processor: a busy machine is not
/// to be found fault with.
class HangAlarm {
public:
    HangAlarm(const QByteArray &name, std::chrono::seconds limit)
    {
        std::strncpy(g_name, name.constData(), sizeof g_name - 1);
        struct sigaction action {};
        action.sa_handler = reportHang;
        action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
        ::sigaction(SIGPROF, &action, &m_former);
        setTimer(std::max<std::chrono::seconds::rep>(limit.count(), 1));
    }
    ~HangAlarm()
    {
        setTimer(0);
        ::sigaction(SIGPROF, &m_former, nullptr);
    }
    HangAlarm(const HangAlarm &) = delete;
    HangAlarm &operator=(const HangAlarm &) = delete;

private:
    static void setTimer(std::chrono::seconds::rep seconds)
    {
        itimerval timer{};
        timer.it_value.tv_sec = seconds;
        ::setitimer(ITIMER_PROF, &timer, nullptr);
    }

    struct sigaction m_former {};
};

} // namespace

::testing::AssertionResult replayCorpus(const QString &folder, const ReplayLimits &limits)
{
    const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files, QDir::Name);
    if (files.isEmpty())
        return ::testing::AssertionFailure() << qPrintable(folder) << " holds no file";
    ::testing::AssertionResult result = ::testing::AssertionSuccess();
    const auto complain = [&result](const QFileInfo &info) -> ::testing::AssertionResult & {
        if (result)
            result = ::testing::AssertionFailure();
        return result << "\n" << qPrintable(info.fileName()) << ": ";
    };
    for (const QFileInfo &info : files) {
        QFile file(info.filePath());
        if (!file.open(QFile::ReadOnly)) {
            complain(info) << "cannot be read";
            continue;
        }
        const QByteArray bytes = file.readAll();
        const HangAlarm alarm(info.fileName().toUtf8(), limits.time * 10);
        const AllocationMeter meter;
        const std::clock_t start = std::clock();
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.constData()), static_cast<size_t>(bytes.size()));
        // Of the processor, too.
        const std::chrono::milliseconds time{1000 * (std::clock() - start) / CLOCKS_PER_SEC};
        if (const std::size_t most = std::max(meter.peakBytes(), meter.largestRequest()); most > limits.bytes)
            complain(info) << "asks for " << most << " bytes";
        if (time > limits.time)
            complain(info) << "takes " << time.count() << " ms";
    }
    return result;
}

} // namespace nurv::test

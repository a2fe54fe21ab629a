// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/FileIdentity.h"

#include <QList>

#include <chrono>
#include <ctime>
#include <thread>

namespace nurv {

namespace {

std::int64_t clockNow(clockid_t clock)
{
    timespec now{};
    ::clock_gettime(clock, &now);
    return nanoseconds(now);
}

} // namespace

bool FileIdentity::isSameAs(const FileIdentity &other, bool sameBoot) const
{
    return inode == other.inode && size == other.size && modifiedNs == other.modifiedNs
           && (!sameBoot || device == other.device);
}

QByteArray FileIdentity::toText() const
{
    return QByteArray::number(static_cast<quint64>(device)) + ':' + QByteArray::number(static_cast<quint64>(inode))
           + ':' + QByteArray::number(static_cast<qint64>(size)) + ':'
           + QByteArray::number(static_cast<qint64>(modifiedNs));
}

std::optional<FileIdentity> FileIdentity::fromText(const QByteArray &text)
{
    const QList<QByteArray> numbers = text.split(':');
    if (numbers.size() != 4)
        return std::nullopt;
    bool isDevice = false;
    bool isInode = false;
    FileIdentity identity;
    identity.device = numbers[0].toULongLong(&isDevice);
    identity.inode = numbers[1].toULongLong(&isInode);
    const std::optional<std::int64_t> size = wholeNumber(numbers[2]);
    const std::optional<std::int64_t> modified = wholeNumber(numbers[3]);
    if (!isDevice || !isInode || !size || !modified)
        return std::nullopt;
    identity.size = *size;
    identity.modifiedNs = *modified;
    return identity;
}

FileIdentity FileIdentity::of(const struct stat &facts)
{
    return {
        .device = facts.st_dev, .inode = facts.st_ino, .size = facts.st_size, .modifiedNs = nanoseconds(facts.st_mtim)};
}

std::int64_t nanoseconds(const struct timespec &time)
{
    // A file system may give any number of seconds.
    std::int64_t result = 0;
    if (__builtin_mul_overflow(static_cast<std::int64_t>(time.tv_sec), std::int64_t{1'000'000'000}, &result)
        || __builtin_add_overflow(result, static_cast<std::int64_t>(time.tv_nsec), &result)) {
        return 0;
    }
    return result;
}

std::int64_t fileClockNow()
{
    return clockNow(CLOCK_REALTIME_COARSE);
}

std::int64_t exactClockNow()
{
    return clockNow(CLOCK_REALTIME);
}

void waitForFileClock(std::int64_t timeNs)
{
    // Ticks are at most ten milliseconds apart; a clock that was set back is not waited for.
    constexpr std::chrono::microseconds kStep{500};
    constexpr int kMostSteps = 100;
    for (int step = 0; step < kMostSteps && fileClockNow() < timeNs; ++step)
        std::this_thread::sleep_for(kStep);
}

std::optional<std::int64_t> wholeNumber(const QByteArray &text)
{
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber);
    return isNumber ? std::optional<std::int64_t>(number) : std::nullopt;
}

} // namespace nurv

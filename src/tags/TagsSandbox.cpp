// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagsSandbox.h"

#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "files/FileDescriptor.h"
#include "tags/AlbumArt.h"

#include <QBuffer>
#include <QImage>
#include <QImageWriter>

#include <algorithm>
#include <cerrno>
#include <cstdint>

#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kLimitsMemory = false;
#else
constexpr bool kLimitsMemory = true;
#endif
constexpr rlim_t kMostMemory = rlim_t{1} << 30;
constexpr rlim_t kMostOpenFiles = 32;

[[noreturn]] void fail(const QString &missing)
{
    throw NurvFailure(u"it has %1: %2"_s.arg(missing, systemErrorText(errno)));
}

void loadDecoders()
{
    QImage tiny(1, 1, QImage::Format_RGB32);
    tiny.fill(0);
    for (const char *format : {"png", "jpeg", "bmp", "tiff", "webp"}) {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        if (QImageWriter(&buffer, format).write(tiny))
            static_cast<void>(readPicture(buffer.data()));
    }
    static_cast<void>(readPicture(
        QByteArray::fromHex("47494638396101000100800000000000ffffff2c00000000010001000002024401003b")));
}

void limit(__rlimit_resource resource, rlim_t most, const QString &name)
{
    rlimit limits{};
    if (::getrlimit(resource, &limits) != 0)
        fail(u"no limit of %1"_s.arg(name));
    // A user may have set a lower one, which nobody can raise.
    limits.rlim_max = std::min(limits.rlim_max, most);
    limits.rlim_cur = limits.rlim_max;
    if (::setrlimit(resource, &limits) != 0)
        fail(u"no limit of %1"_s.arg(name));
}

/// Every right that the kernel knows to handle; what it does not know stays as it is.
std::uint64_t handledRights(long version)
{
    std::uint64_t rights = (std::uint64_t{1} << 13) - 1; // the first version
    if (version >= 2)
        rights |= std::uint64_t{1} << 13; // moving between folders
    if (version >= 3)
        rights |= std::uint64_t{1} << 14; // cutting
    if (version >= 5)
        rights |= std::uint64_t{1} << 15; // device commands
    return rights;
}

long landlockVersion()
{
    return ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
}

void giveUpFiles()
{
    const std::uint64_t rights = handledRights(landlockVersion()); // the first and here only field of the attributes
    const FileDescriptor rules(
        static_cast<int>(::syscall(SYS_landlock_create_ruleset, &rights, sizeof rights, 0)));
    if (!rules.isOpen() || ::syscall(SYS_landlock_restrict_self, rules.get(), 0) != 0)
        fail(u"kept its rights to files"_s);
}

} // namespace

void tagsSandbox::enter()
{
    loadDecoders();
    limit(RLIMIT_CORE, 0, u"dumps"_s);
    limit(RLIMIT_NOFILE, kMostOpenFiles, u"open files"_s);
    if (kLimitsMemory)
        limit(RLIMIT_AS, kMostMemory, u"memory"_s);
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        fail(u"no ban on new privileges"_s);
    if (canGiveUpFiles())
        giveUpFiles();
}

bool tagsSandbox::canGiveUpFiles()
{
    return landlockVersion() >= 1;
}

void tagsSandbox::allowProcessorTime(std::chrono::seconds time)
{
    rusage used{};
    rlimit limits{};
    if (::getrusage(RUSAGE_SELF, &used) != 0 || ::getrlimit(RLIMIT_CPU, &limits) != 0)
        fail(u"no limit of time"_s);
    limits.rlim_cur = static_cast<rlim_t>(used.ru_utime.tv_sec + used.ru_stime.tv_sec + time.count() + 1);
    limits.rlim_cur = std::min(limits.rlim_cur, limits.rlim_max);
    if (::setrlimit(RLIMIT_CPU, &limits) != 0)
        fail(u"no limit of time"_s);
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/RunningPrograms.h"

#include "files/FileDescriptor.h"
#include "files/FolderStream.h"
#include "process/ProcessMark.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <functional>
#include <memory>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace nurv {

namespace {

using Clock = std::chrono::steady_clock;

/// Longer environments and command lines are read to here: the kernel allows megabytes.
constexpr qsizetype kLongestText = 4 * 1024 * 1024;
constexpr qsizetype kMarkDigits = 32;
/// A program may start another one while it is being ended.
constexpr int kRounds = 3;

void forEachEntry(const QByteArray &path, const std::function<void(const QByteArray &name)> &use)
{
    const FolderStream folder(::opendir(path.constData()));
    while (const dirent *const entry = folder ? ::readdir(folder.get()) : nullptr)
        use(entry->d_name);
}

/// The process of a folder of /proc; 0 for any other entry.
pid_t processOf(const QByteArray &name)
{
    bool isNumber = false;
    const int number = name.toInt(&isNumber);
    return isNumber && number > 0 ? number : 0;
}

QByteArray folderOf(pid_t process)
{
    return "/proc/" + QByteArray::number(process);
}

bool isOurs(const QByteArray &folder)
{
    struct stat facts = {};
    return ::stat(folder.constData(), &facts) == 0 && facts.st_uid == ::geteuid();
}

QByteArray contentsOf(const QByteArray &path)
{
    const FileDescriptor file(::open(path.constData(), O_RDONLY | O_CLOEXEC));
    QByteArray contents;
    while (file.isOpen() && contents.size() < kLongestText) {
        std::array<char, 16 * 1024> block{};
        const ssize_t count = ::read(file.get(), block.data(), block.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        contents.append(block.data(), count);
    }
    return contents;
}

/// The mark in the environment that a program was started with; empty for any other one.
QByteArray markOf(pid_t process)
{
    const QByteArray environment = QByteArray(1, '\0') + contentsOf(folderOf(process) + "/environ");
    const QByteArray variable = QByteArray(1, '\0') + kProcessMarkVariable + '=';
    const qsizetype at = environment.indexOf(variable);
    if (at < 0)
        return {};
    const qsizetype from = at + variable.size();
    const QByteArray mark = environment.mid(from, kMarkDigits);
    const bool isWhole = mark.size() == kMarkDigits && !mark.contains('\0') && environment.size() > from + kMarkDigits
                         && environment.at(from + kMarkDigits) == '\0';
    return isWhole ? mark : QByteArray();
}

QByteArray workingFolderOf(pid_t process)
{
    std::array<char, PATH_MAX> target{};
    const ssize_t length = ::readlink((folderOf(process) + "/cwd").constData(), target.data(), target.size());
    return length > 0 ? QByteArray(target.data(), length) : QByteArray();
}

/// The C library's own declarations have C++ linkage in some versions.
int openPidFd(pid_t process)
{
    return static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
}

/// A program that was started under the mark, held so that its number means no other one.
struct HeldProgram {
    FileDescriptor pidFd;

    void send(int signal) const { ::syscall(SYS_pidfd_send_signal, pidFd.get(), signal, nullptr, 0); }
    [[nodiscard]] bool endsBefore(Clock::time_point deadline) const
    {
        pollfd fd{pidFd.get(), POLLIN, 0};
        for (;;) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
            const int ready = ::poll(&fd, 1, static_cast<int>(std::max(left.count(), std::int64_t{0})));
            if (ready >= 0 || errno != EINTR)
                return ready > 0;
        }
    }
};

std::vector<HeldProgram> programsWith(const QByteArray &mark)
{
    std::vector<HeldProgram> programs;
    forEachEntry("/proc", [&](const QByteArray &name) {
        const pid_t process = processOf(name);
        if (process == 0 || process == ::getpid() || !isOurs(folderOf(process)) || markOf(process) != mark)
            return;
        HeldProgram program{.pidFd = FileDescriptor(openPidFd(process))};
        // The number may have been given out anew before it was held.
        if (program.pidFd.isOpen() && markOf(process) == mark)
            programs.push_back(std::move(program));
    });
    return programs;
}

bool endBefore(const std::vector<HeldProgram> &programs, int signal, std::chrono::milliseconds limit)
{
    for (const HeldProgram &program : programs)
        program.send(signal);
    const Clock::time_point deadline = Clock::now() + limit;
    return std::all_of(programs.begin(), programs.end(),
                       [&](const HeldProgram &program) { return program.endsBefore(deadline); });
}

} // namespace

RunningPrograms RunningPrograms::now()
{
    RunningPrograms programs;
    forEachEntry("/proc", [&](const QByteArray &name) {
        const pid_t process = processOf(name);
        if (process == 0 || !isOurs(folderOf(process)))
            return;
        programs.lookAtFiles(folderOf(process) + "/fd");
        const QByteArray mark = process == ::getpid() ? QByteArray() : markOf(process);
        if (mark.isEmpty())
            return;
        programs.m_programsOfMark[mark].append(process);
        programs.m_surroundings.append(contentsOf(folderOf(process) + "/cmdline") + '\0' + workingFolderOf(process));
    });
    return programs;
}

void RunningPrograms::lookAtFiles(const QByteArray &folder)
{
    forEachEntry(folder, [&](const QByteArray &name) {
        const QByteArray link = folder + '/' + name;
        std::array<char, 2> target{};
        // Pipes and sockets have names without a slash.
        if (::readlink(link.constData(), target.data(), target.size()) < 1 || target[0] != '/')
            return;
        struct stat linkFacts = {};
        struct statx facts = {};
        // A share that does not answer must not be asked.
        if (::lstat(link.constData(), &linkFacts) != 0
            || ::statx(AT_FDCWD, link.constData(), AT_STATX_DONT_SYNC, STATX_TYPE | STATX_INO, &facts) != 0
            || !S_ISREG(facts.stx_mode)) {
            return;
        }
        const FileKey key{makedev(facts.stx_dev_major, facts.stx_dev_minor), facts.stx_ino};
        m_open.insert(key);
        // The mode of the link tells how the file was opened (proc(5)).
        if ((linkFacts.st_mode & S_IWUSR) != 0)
            m_written.insert(key);
    });
}

bool RunningPrograms::mayWorkIn(const QByteArray &folder) const
{
    return std::any_of(m_surroundings.begin(), m_surroundings.end(),
                       [&folder](const QByteArray &surrounding) { return surrounding.contains(folder); });
}

bool RunningPrograms::end(const QByteArray &mark, std::chrono::milliseconds grace)
{
    if (mark.size() != kMarkDigits || mark == processMark())
        return false;
    for (int round = 0; round < kRounds; ++round) {
        const std::vector<HeldProgram> programs = programsWith(mark);
        if (programs.empty())
            return true;
        if (!endBefore(programs, SIGTERM, grace))
            static_cast<void>(endBefore(programs, SIGKILL, grace));
    }
    return programsWith(mark).empty();
}

} // namespace nurv

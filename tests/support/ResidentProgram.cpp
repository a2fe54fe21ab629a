// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ResidentProgram.h"

#include "support/ResidentRequest.h"

#include <QDir>
#include <QFile>
#include <QHash>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <string>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nurv::test {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds kLimit{60};

/// What a run inherits from the process that loaded the program, and not from the one that asks.
struct Inherited {
    pid_t process = ::getpid();
    uid_t user = ::geteuid();
    std::vector<rlim_t> limits;

    static Inherited now()
    {
        Inherited found;
        for (const auto resource : {RLIMIT_FSIZE, RLIMIT_NOFILE, RLIMIT_AS, RLIMIT_DATA, RLIMIT_CPU, RLIMIT_STACK}) {
            rlimit limit{};
            ::getrlimit(resource, &limit);
            found.limits.push_back(limit.rlim_cur);
        }
        return found;
    }
    bool operator==(const Inherited &) const = default;
};

void closeIfOpen(int &descriptor)
{
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

/// Two ends of a pipe or a socket, those closed that nobody took.
struct Ends {
    int ends[2] = {-1, -1};

    Ends() = default;
    ~Ends()
    {
        closeIfOpen(ends[0]);
        closeIfOpen(ends[1]);
    }
    Ends(const Ends &) = delete;
    Ends &operator=(const Ends &) = delete;
};

/// Reads a number from the socket; false when the other side is gone.
bool receive(int socket, std::int32_t &number)
{
    return ::recv(socket, &number, sizeof number, MSG_WAITALL) == sizeof number;
}

/// What is there; closes the descriptor at its end.
void readSome(int &descriptor, QByteArray &into)
{
    char buffer[65536];
    const ssize_t got = ::read(descriptor, buffer, sizeof buffer);
    if (got > 0)
        into.append(buffer, got);
    else if (got == 0 || (errno != EINTR && errno != EAGAIN))
        closeIfOpen(descriptor);
}

/// What goes in; closes the descriptor when all has gone or nobody reads.
void writeSome(int &descriptor, const QByteArray &input, qsizetype &written)
{
    // A socket, as only they can be written to without a signal when nobody reads.
    const ssize_t put = ::send(descriptor, input.constData() + written, static_cast<std::size_t>(input.size() - written),
                               MSG_NOSIGNAL | MSG_DONTWAIT);
    if (put >= 0)
        written += put;
    else if (errno != EINTR && errno != EAGAIN)
        written = input.size();
    if (written == input.size())
        closeIfOpen(descriptor);
}

pid_t load(const QString &path, int serverEnd)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (int i = 0; i < kServerSocket; ++i)
        posix_spawn_file_actions_addopen(&actions, i, "/dev/null", O_RDWR, 0);
    posix_spawn_file_actions_adddup2(&actions, serverEnd, kServerSocket);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t all;
    sigset_t none;
    sigfillset(&all);
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    std::vector<char *> environment;
    for (char **variable = environ; *variable; ++variable) {
        if (std::strncmp(*variable, "LD_PRELOAD=", 11) != 0)
            environment.push_back(*variable);
    }
    std::string preload = "LD_PRELOAD=" NURV_RESIDENT_PROGRAM_SERVER;
    environment.push_back(preload.data());
    environment.push_back(nullptr);
    std::string name = QFile::encodeName(path).toStdString();
    char *arguments[] = {name.data(), nullptr};
    pid_t process = -1;
    const int error = ::posix_spawn(&process, name.c_str(), &actions, &attributes, arguments, environment.data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? process : -1;
}

} // namespace

std::shared_ptr<ResidentProgram> ResidentProgram::find(const QString &path)
{
    static const Inherited loaded = Inherited::now();
    if (!(Inherited::now() == loaded))
        return nullptr;
    static QMutex mutex;
    static QHash<QString, std::shared_ptr<ResidentProgram>> programs;
    const QMutexLocker lock(&mutex);
    std::shared_ptr<ResidentProgram> &program = programs[path];
    if (!program)
        program.reset(new ResidentProgram(path));
    return program->m_socket >= 0 ? program : nullptr;
}

ResidentProgram::ResidentProgram(const QString &path) : m_path(path)
{
    Ends sockets;
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets.ends) != 0)
        return;
    // Not the number that it gets in the other process: it would keep its close-on-exec flag.
    const int serverEnd = ::fcntl(sockets.ends[1], F_DUPFD_CLOEXEC, kServerSocket + 1);
    const pid_t starter = load(path, serverEnd);
    ::close(serverEnd);
    closeIfOpen(sockets.ends[1]);
    // It leaves the server behind, or has not become one.
    int status = 0;
    std::int32_t server = 0;
    if (starter > 0 && ::waitpid(starter, &status, 0) == starter && status == 0 && receive(sockets.ends[0], server)) {
        m_socket = sockets.ends[0];
        sockets.ends[0] = -1;
    }
}

ResidentProgram::~ResidentProgram()
{
    closeIfOpen(m_socket);
}

bool ResidentProgram::send(const QStringList &arguments, const int (&descriptors)[3])
{
    QByteArray words = QFile::encodeName(QDir::currentPath()) + '\0' + QFile::encodeName(m_path) + '\0';
    for (const QString &argument : arguments)
        words += QFile::encodeName(argument) + '\0';
    for (char **variable = environ; *variable; ++variable) {
        if (std::strncmp(*variable, "LC_ALL=", 7) != 0)
            words += QByteArray(*variable) + '\0';
    }
    words += QByteArray("LC_ALL=C.UTF-8") + '\0';
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ResidentRequest head{static_cast<std::uint32_t>(words.size()), static_cast<std::uint32_t>(arguments.size() + 1), mask};
    iovec piece{&head, sizeof head};
    alignas(cmsghdr) char room[CMSG_SPACE(sizeof descriptors)] = {};
    msghdr message{};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    message.msg_control = room;
    message.msg_controllen = sizeof room;
    cmsghdr *const control = CMSG_FIRSTHDR(&message);
    control->cmsg_level = SOL_SOCKET;
    control->cmsg_type = SCM_RIGHTS;
    control->cmsg_len = CMSG_LEN(sizeof descriptors);
    std::memcpy(CMSG_DATA(control), descriptors, sizeof descriptors);
    if (::sendmsg(m_socket, &message, MSG_NOSIGNAL) != sizeof head)
        return false;
    for (qsizetype sent = 0; sent < words.size();) {
        const ssize_t put = ::send(m_socket, words.constData() + sent, static_cast<std::size_t>(words.size() - sent), MSG_NOSIGNAL);
        if (put <= 0)
            return false;
        sent += put;
    }
    return true;
}

ProgramResult ResidentProgram::run(const QStringList &arguments, const QByteArray &input)
{
    const QMutexLocker lock(&m_mutex);
    ProgramResult result;
    Ends in;
    Ends out;
    Ends errors;
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, in.ends) != 0 || ::pipe2(out.ends, O_CLOEXEC) != 0
        || ::pipe2(errors.ends, O_CLOEXEC) != 0 || !send(arguments, {in.ends[1], out.ends[1], errors.ends[1]}))
        return result;
    closeIfOpen(in.ends[1]);
    closeIfOpen(out.ends[1]);
    closeIfOpen(errors.ends[1]);
    std::int32_t process = 0;
    if (!receive(m_socket, process))
        return result;
    qsizetype written = 0;
    if (input.isEmpty())
        closeIfOpen(in.ends[0]);
    const auto end = Clock::now() + kLimit;
    bool isOver = false;
    bool isKilled = false;
    while (!isOver || out.ends[0] >= 0 || errors.ends[0] >= 0) {
        pollfd looked[] = {{isOver ? -1 : m_socket, POLLIN, 0}, {out.ends[0], POLLIN, 0}, {errors.ends[0], POLLIN, 0},
                           {in.ends[0], POLLOUT, 0}};
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0 && !isKilled) {
            isKilled = true;
            ::kill(process, SIGKILL);
        }
        if (::poll(looked, 4, isKilled ? -1 : static_cast<int>(std::max<long>(left, 1))) <= 0)
            continue;
        if (looked[1].revents != 0)
            readSome(out.ends[0], result.output);
        if (looked[2].revents != 0)
            readSome(errors.ends[0], result.errors);
        if (looked[3].revents != 0)
            writeSome(in.ends[0], input, written);
        if (looked[0].revents != 0) {
            std::int32_t status = 0;
            isOver = true;
            if (receive(m_socket, status) && WIFEXITED(status) && !isKilled)
                result.exitStatus = WEXITSTATUS(status);
        }
    }
    return result;
}

} // namespace nurv::test

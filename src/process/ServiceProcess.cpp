// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/ServiceProcess.h"

#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "process/ProcessMark.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <chrono>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nurv {

namespace {

using namespace std::chrono_literals;

constexpr int kSocketOfService = 3;
constexpr auto kEndGrace = 500ms;

// What such a program writes is for no terminal: it may have been taken over. Only the reports of
// sanitizers are.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kShowsReports = true;
#else
constexpr bool kShowsReports = false;
#endif

struct ServiceRegistry {
    std::mutex lock;
    std::set<pid_t> running;
    bool refusesNew = false;
};

ServiceRegistry &registry()
{
    static ServiceRegistry *const instance = new ServiceRegistry;
    return *instance;
}

std::vector<std::string> environmentWithMark()
{
    const std::string mark = std::string(kProcessMarkVariable) + '=';
    std::vector<std::string> variables;
    for (char **variable = environ; *variable != nullptr; ++variable) {
        if (std::string(*variable).compare(0, mark.size(), mark) != 0)
            variables.emplace_back(*variable);
    }
    variables.push_back(mark + processMark().toStdString());
    return variables;
}

class Actions {
public:
    explicit Actions(int socket)
    {
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawnattr_init(&attributes);
        ::posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
        if (!kShowsReports)
            ::posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        ::posix_spawn_file_actions_adddup2(&actions, socket, kSocketOfService);
        ::posix_spawn_file_actions_addclosefrom_np(&actions, kSocketOfService + 1);
        sigset_t none;
        ::sigemptyset(&none);
        sigset_t defaults;
        ::sigfillset(&defaults);
        ::posix_spawnattr_setsigmask(&attributes, &none);
        ::posix_spawnattr_setsigdefault(&attributes, &defaults);
        ::posix_spawnattr_setpgroup(&attributes, 0);
        ::posix_spawnattr_setflags(&attributes,
                                   POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~Actions()
    {
        ::posix_spawn_file_actions_destroy(&actions);
        ::posix_spawnattr_destroy(&attributes);
    }
    Actions(const Actions &) = delete;
    Actions &operator=(const Actions &) = delete;

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
};

/// Returns the error number, 0 on success.
int spawn(const QString &program, int socket, pid_t &pid)
{
    QByteArray name = QFile::encodeName(program);
    std::vector<std::string> variables = environmentWithMark();
    std::vector<char *> envp;
    for (std::string &variable : variables)
        envp.push_back(variable.data());
    envp.push_back(nullptr);
    std::array<char *, 2> argv{name.data(), nullptr};
    const Actions actions(socket);
    const std::scoped_lock lock(registry().lock);
    if (registry().refusesNew)
        return ECANCELED;
    // A process that ignores SIGCHLD never learns how a child ended.
    ::signal(SIGCHLD, SIG_DFL);
    const int error =
        ::posix_spawn(&pid, name.constData(), &actions.actions, &actions.attributes, argv.data(), envp.data());
    if (error == 0)
        registry().running.insert(pid);
    return error;
}

} // namespace

std::unique_ptr<ServiceProcess> ServiceProcess::start(const QString &program)
{
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        throw NurvFailure(systemErrorText(errno));
    FileDescriptor ours(ends[0]);
    // Above the number that it is to have, so that it can be moved there.
    const FileDescriptor theirs(::fcntl(ends[1], F_DUPFD_CLOEXEC, kSocketOfService + 1));
    ::close(ends[1]);
    if (!theirs.isOpen())
        throw NurvFailure(systemErrorText(errno));
    pid_t pid = -1;
    if (const int error = spawn(program, theirs.get(), pid); error != 0)
        throw NurvFailure(systemErrorText(error));
    return std::unique_ptr<ServiceProcess>(new ServiceProcess(pid, std::move(ours)));
}

ServiceProcess::~ServiceProcess()
{
    if (m_pid < 0)
        return;
    ::kill(-m_pid, SIGKILL); // not reaped yet, so the number is its own
    static_cast<void>(end());
}

bool ServiceProcess::hasEnded() const
{
    siginfo_t info{};
    return m_pid < 0 || ::waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0
        || info.si_pid != 0;
}

ChildExit ServiceProcess::end()
{
    const auto deadline = std::chrono::steady_clock::now() + kEndGrace;
    while (!hasEnded() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(1ms);
    if (!hasEnded())
        ::kill(-m_pid, SIGKILL);
    siginfo_t info{};
    while (::waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
    }
    const std::scoped_lock lock(registry().lock);
    const int waited = ::waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED);
    registry().running.erase(std::exchange(m_pid, -1));
    if (waited != 0)
        return {.status = -1, .signal = 0};
    return info.si_code == CLD_EXITED ? ChildExit{.status = info.si_status, .signal = 0}
                                      : ChildExit{.status = 0, .signal = info.si_status};
}

void ServiceProcess::endAll(bool refuseNew)
{
    const std::scoped_lock lock(registry().lock);
    registry().refusesNew = refuseNew;
    for (const pid_t pid : registry().running)
        ::kill(-pid, SIGKILL);
}

int ServiceProcess::runningCount()
{
    const std::scoped_lock lock(registry().lock);
    return static_cast<int>(registry().running.size());
}

} // namespace nurv

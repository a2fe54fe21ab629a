// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/ChildProcess.h"

#include "base/SystemError.h"
#include "process/ProcessMark.h"
#include "process/ServiceProcess.h"

#include <QFile>
#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kReadSize = 64 * 1024;
/// A grandchild can hold the pipe open after the child has gone.
constexpr auto kHeldPipeLimit = 100ms;
constexpr auto kKillGrace = 500ms;
/// How long a follower of a silent child waits for an answer.
constexpr auto kFollowerPoll = 100ms;
/// The largest capacity an unprivileged pipe can have (pipe(7)).
constexpr std::size_t kPipeCapacity = 1024 * 1024;

struct SpawnedChild {
    pid_t pid = -1;
    int pidFd = -1;
    int outputFd = -1;
};

/// The process groups of all running children. A child is entered while it is
/// being started and taken out while it is being reaped, both under the lock: a
/// signal never reaches a process group number that has been given out anew.
class ChildRegistry {
public:
    static ChildRegistry &instance()
    {
        static ChildRegistry *const registry = new ChildRegistry;
        return *registry;
    }

    ChildRegistry()
    {
        // A parent that ignores it hands that on, and then the system reaps the
        // children and nobody learns how they ended.
        ::signal(SIGCHLD, SIG_DFL);
    }

    std::mutex lock;
    std::condition_variable changed;
    std::set<pid_t> running;
    bool refusesNew = false;
};

std::atomic<int> g_unfinished = 0;

void closeFd(int &fd)
{
    if (fd >= 0)
        ::close(std::exchange(fd, -1));
}

/// Closed on exec, as the kernel makes them (pidfd_open(2)). The C library's own
/// declaration of the call has C++ linkage in some versions.
int openPidFd(pid_t pid)
{
    return static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
}

/// Moves a descriptor above the three standard ones, which a parent with closed
/// streams may have handed out.
int aboveStandardStreams(int fd)
{
    if (fd > 2)
        return fd;
    const int moved = ::fcntl(fd, F_DUPFD_CLOEXEC, 3);
    ::close(fd);
    return moved;
}

std::vector<char *> pointers(std::vector<QByteArray> &words)
{
    std::vector<char *> result;
    result.reserve(words.size() + 1);
    for (QByteArray &word : words)
        result.push_back(word.data());
    result.push_back(nullptr);
    return result;
}

class SpawnActions {
public:
    SpawnActions()
    {
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawnattr_init(&attributes);
    }
    ~SpawnActions()
    {
        ::posix_spawn_file_actions_destroy(&actions);
        ::posix_spawnattr_destroy(&attributes);
    }
    SpawnActions(const SpawnActions &) = delete;
    SpawnActions &operator=(const SpawnActions &) = delete;

    void describe(int outputFd, const QByteArray &workingDirectory)
    {
        ::posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_adddup2(&actions, outputFd, 1);
        ::posix_spawn_file_actions_adddup2(&actions, outputFd, 2);
        ::posix_spawn_file_actions_addclosefrom_np(&actions, 3);
        if (!workingDirectory.isEmpty())
            ::posix_spawn_file_actions_addchdir_np(&actions, workingDirectory.constData());

        sigset_t none;
        ::sigemptyset(&none);
        sigset_t defaults;
        ::sigemptyset(&defaults);
        for (const int signal : {SIGPIPE, SIGXFSZ, SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGCHLD})
            ::sigaddset(&defaults, signal);
        ::posix_spawnattr_setsigmask(&attributes, &none);
        ::posix_spawnattr_setsigdefault(&attributes, &defaults);
        ::posix_spawnattr_setpgroup(&attributes, 0);
        ::posix_spawnattr_setflags(
            &attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
};

/// Returns the error number, 0 on success.
int spawn(const ChildCommand &command, SpawnedChild &child)
{
    std::array<int, 2> pipeFds{};
    if (::pipe2(pipeFds.data(), O_CLOEXEC) != 0)
        return errno;
    int readFd = aboveStandardStreams(pipeFds[0]);
    int writeFd = aboveStandardStreams(pipeFds[1]);

    const QByteArray program = QFile::encodeName(command.launchPath);
    std::vector<QByteArray> words{program};
    for (const QString &argument : command.arguments)
        words.push_back(QFile::encodeName(argument));
    std::vector<QByteArray> variables;
    const QString markVariable = QString::fromLatin1(kProcessMarkVariable);
    for (auto it = command.environment.cbegin(); it != command.environment.cend(); ++it) {
        if (it.key() != markVariable)
            variables.push_back(QFile::encodeName(it.key() + u'=' + it.value()));
    }
    variables.push_back(QByteArray(kProcessMarkVariable) + '=' + processMark());

    SpawnActions actions;
    actions.describe(writeFd, QFile::encodeName(command.workingDirectory));
    const std::vector<char *> argv = pointers(words);
    const std::vector<char *> envp = pointers(variables);

    ChildRegistry &registry = ChildRegistry::instance();
    const std::scoped_lock lock(registry.lock);
    int error = registry.refusesNew ? ECANCELED : 0;
    if (error == 0 && (readFd < 0 || writeFd < 0))
        error = EMFILE;
    if (error == 0) {
        error = ::posix_spawn(&child.pid, program.constData(), &actions.actions,
                              &actions.attributes, argv.data(), envp.data());
    }
    closeFd(writeFd);
    if (error == 0) {
        child.pidFd = openPidFd(child.pid);
        if (child.pidFd < 0) {
            error = errno;
            ::kill(-child.pid, SIGKILL);
            ::waitpid(child.pid, nullptr, 0);
        }
    }
    if (error != 0) {
        closeFd(readFd);
        return error;
    }
    child.outputFd = readFd;
    registry.running.insert(child.pid);
    return 0;
}

/// Reaps a child that has exited, or waits for its exit.
ChildExit reap(pid_t pid, int pidFd)
{
    // First wait without reaping, outside the lock.
    siginfo_t info{};
    while (::waitid(P_PIDFD, static_cast<id_t>(pidFd), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
    }
    ChildRegistry &registry = ChildRegistry::instance();
    const std::scoped_lock lock(registry.lock);
    int waited = 0;
    do {
        waited = ::waitid(P_PIDFD, static_cast<id_t>(pidFd), &info, WEXITED);
    } while (waited != 0 && errno == EINTR);
    registry.running.erase(pid);
    registry.changed.notify_all();
    if (waited != 0) // reaped by somebody else: never to be taken for a success
        return {.status = -1, .signal = 0};
    if (info.si_code == CLD_EXITED)
        return {.status = info.si_status, .signal = 0};
    return {.status = 0, .signal = info.si_status};
}

/// One read; nothing when there is no data now, an empty array at the end.
std::optional<QByteArray> readOnce(int fd)
{
    QByteArray buffer(static_cast<qsizetype>(kReadSize), Qt::Uninitialized);
    ssize_t count = 0;
    do {
        count = ::read(fd, buffer.data(), kReadSize);
    } while (count < 0 && errno == EINTR);
    if (count < 0 && errno == EAGAIN)
        return std::nullopt;
    buffer.truncate(count > 0 ? static_cast<qsizetype>(count) : 0);
    return buffer;
}

} // namespace

ChildProcess::ChildProcess(QObject *parent) : QObject(parent) {}

ChildProcess::~ChildProcess()
{
    if (m_pid >= 0) {
        ::kill(-m_pid, SIGKILL);
        reap(m_pid, m_pidFd);
    }
    m_outputNotifier.reset();
    m_exitNotifier.reset();
    closeFd(m_outputFd);
    closeFd(m_pidFd);
    countAsFinished();
}

std::optional<QString> ChildProcess::start(const ChildCommand &command)
{
    SpawnedChild child;
    if (const int error = spawn(command, child); error != 0)
        return systemErrorText(error);
    m_pid = child.pid;
    m_pidFd = child.pidFd;
    m_outputFd = child.outputFd;
    m_isUnfinished = true;
    ++g_unfinished;
    ::fcntl(m_outputFd, F_SETFL, O_NONBLOCK);

    m_outputNotifier = std::make_unique<QSocketNotifier>(m_outputFd, QSocketNotifier::Read);
    connect(m_outputNotifier.get(), &QSocketNotifier::activated, this, [this] { readAvailable(); });
    m_exitNotifier = std::make_unique<QSocketNotifier>(m_pidFd, QSocketNotifier::Read);
    connect(m_exitNotifier.get(), &QSocketNotifier::activated, this, [this] { childExited(); });
    return std::nullopt;
}

bool ChildProcess::isRunning() const
{
    return m_pid >= 0 || m_outputFd >= 0;
}

void ChildProcess::readAvailable()
{
    if (m_outputFd < 0)
        return;
    const std::optional<QByteArray> bytes = readOnce(m_outputFd);
    if (!bytes)
        return;
    if (bytes->isEmpty()) {
        closeOutput();
        finishWhenDone();
        return;
    }
    Q_EMIT outputRead(*bytes);
}

void ChildProcess::childExited()
{
    if (m_pid < 0)
        return;
    m_exitNotifier->setEnabled(false);
    m_exitNotifier.release()->deleteLater();
    m_exit = reap(std::exchange(m_pid, -1), m_pidFd);
    closeFd(m_pidFd);
    if (m_outputFd >= 0) {
        m_heldPipeTimer = std::make_unique<QTimer>();
        m_heldPipeTimer->setSingleShot(true);
        connect(m_heldPipeTimer.get(), &QTimer::timeout, this, [this] { giveUpHeldPipe(); });
        m_heldPipeTimer->start(kHeldPipeLimit);
    }
    finishWhenDone();
}

void ChildProcess::giveUpHeldPipe()
{
    // What the child itself wrote is still in the pipe and may not be lost.
    const QPointer<ChildProcess> self(this);
    for (std::size_t taken = 0; taken < kPipeCapacity && m_outputFd >= 0;) {
        const std::optional<QByteArray> bytes = readOnce(m_outputFd);
        if (!bytes || bytes->isEmpty())
            break;
        taken += static_cast<std::size_t>(bytes->size());
        Q_EMIT outputRead(*bytes);
        if (!self)
            return;
    }
    closeOutput();
    finishWhenDone();
}

void ChildProcess::closeOutput()
{
    if (m_outputNotifier) {
        m_outputNotifier->setEnabled(false);
        m_outputNotifier.release()->deleteLater();
    }
    closeFd(m_outputFd);
}

void ChildProcess::finishWhenDone()
{
    if (isRunning() || !m_isUnfinished)
        return;
    countAsFinished();
    if (m_heldPipeTimer) {
        m_heldPipeTimer->stop();
        m_heldPipeTimer.release()->deleteLater();
    }
    Q_EMIT finished();
}

void ChildProcess::countAsFinished()
{
    if (std::exchange(m_isUnfinished, false))
        --g_unfinished;
}

int ChildProcess::unfinishedCount()
{
    return g_unfinished;
}

namespace {

/// Milliseconds until `moment` for poll(2): -1 for none, 0 when it has passed.
int millisecondsUntil(const std::optional<Clock::time_point> &moment)
{
    if (!moment)
        return -1;
    return static_cast<int>(
        std::max(0ms, std::chrono::ceil<std::chrono::milliseconds>(*moment - Clock::now())).count());
}

/// Reads to the end of the output, to the deadline, or to the end of the time that
/// a grandchild may hold the pipe after the child's exit.
void collectOutput(const SpawnedChild &child, const std::optional<Clock::time_point> &deadline, QByteArray &output)
{
    std::optional<Clock::time_point> giveUp;
    while (true) {
        std::array<pollfd, 2> fds{pollfd{child.outputFd, POLLIN, 0}, pollfd{child.pidFd, POLLIN, 0}};
        const int ready = ::poll(fds.data(), giveUp ? 1 : 2, millisecondsUntil(giveUp ? giveUp : deadline));
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            return;
        if (fds[0].revents != 0) {
            const std::optional<QByteArray> bytes = readOnce(child.outputFd);
            if (bytes && bytes->isEmpty())
                return;
            if (bytes)
                output += *bytes;
            // Whoever goes on writing must not keep the caller here.
            if ((giveUp && Clock::now() > *giveUp + kKillGrace) || (deadline && Clock::now() > *deadline))
                return;
        } else if (!giveUp && fds[1].revents != 0) {
            giveUp = Clock::now() + kHeldPipeLimit;
        }
    }
}

bool endsBefore(int pidFd, const Clock::time_point &deadline)
{
    pollfd fd{pidFd, POLLIN, 0};
    int ready = 0;
    do {
        ready = ::poll(&fd, 1, millisecondsUntil(deadline));
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

} // namespace

ChildResult runChild(const ChildCommand &command, std::optional<std::chrono::milliseconds> limit)
{
    ChildResult result;
    SpawnedChild child;
    if (const int error = spawn(command, child); error != 0) {
        result.startError = systemErrorText(error);
        return result;
    }
    ::fcntl(child.outputFd, F_SETFL, O_NONBLOCK);
    const std::optional<Clock::time_point> deadline = limit ? std::optional(Clock::now() + *limit) : std::nullopt;
    collectOutput(child, deadline, result.output);
    if (deadline && !endsBefore(child.pidFd, *deadline))
        ::kill(-child.pid, SIGKILL);
    closeFd(child.outputFd);
    result.exit = reap(child.pid, child.pidFd);
    closeFd(child.pidFd);
    return result;
}

namespace {

/// Waits for the exit of a child that has closed its output. Returns false when the
/// follower does not want to wait.
bool waitForExit(const SpawnedChild &child, const ChildFollower &follower)
{
    while (!endsBefore(child.pidFd, Clock::now() + kFollowerPoll)) {
        if (follower.isUnwanted && follower.isUnwanted())
            return false;
    }
    return true;
}

/// Reads to the end of the output and waits for the exit. Returns false when the
/// follower has had enough before.
bool follow(const SpawnedChild &child, const ChildFollower &follower)
{
    std::optional<Clock::time_point> giveUp;
    while (true) {
        std::array<pollfd, 2> fds{pollfd{child.outputFd, POLLIN, 0}, pollfd{child.pidFd, POLLIN, 0}};
        const Clock::time_point tick = Clock::now() + kFollowerPoll;
        const int ready = ::poll(fds.data(), giveUp ? 1 : 2, millisecondsUntil(giveUp ? *giveUp : tick));
        if (ready < 0 && errno != EINTR)
            return true;
        if (ready <= 0) {
            if (giveUp && Clock::now() >= *giveUp)
                return true;
            if (follower.isUnwanted && follower.isUnwanted())
                return false;
        } else if (fds[0].revents != 0) {
            const std::optional<QByteArray> bytes = readOnce(child.outputFd);
            if (bytes && bytes->isEmpty())
                return waitForExit(child, follower);
            if (bytes && !follower.take(*bytes))
                return false;
            if (giveUp && Clock::now() > *giveUp + kKillGrace)
                return true;
        } else if (!giveUp && fds[1].revents != 0) {
            giveUp = Clock::now() + kHeldPipeLimit;
        }
    }
}

/// SIGTERM to the process group; what of it is left half a second later is killed.
void endGroup(const SpawnedChild &child)
{
    ::kill(-child.pid, SIGTERM);
    static_cast<void>(endsBefore(child.pidFd, Clock::now() + kKillGrace));
    // Not reaped yet, so the number is still its own.
    ::kill(-child.pid, SIGKILL);
}

/// A child of `followChild`: ended, if it still runs, and reaped in any case.
class FollowedChild {
public:
    explicit FollowedChild(const SpawnedChild &child) : m_child(child) {}
    FollowedChild(const FollowedChild &) = delete;
    FollowedChild &operator=(const FollowedChild &) = delete;
    ~FollowedChild()
    {
        if (m_child.pid >= 0)
            finish(true);
    }

    ChildExit finish(bool early)
    {
        // Whatever it still wants to write, nobody reads it.
        closeFd(m_child.outputFd);
        if (early)
            endGroup(m_child);
        const ChildExit exit = reap(std::exchange(m_child.pid, -1), m_child.pidFd);
        closeFd(m_child.pidFd);
        return exit;
    }

private:
    SpawnedChild m_child;
};

} // namespace

ChildResult followChild(const ChildCommand &command, const ChildFollower &follower)
{
    ChildResult result;
    SpawnedChild child;
    if (const int error = spawn(command, child); error != 0) {
        result.startError = systemErrorText(error);
        return result;
    }
    ::fcntl(child.outputFd, F_SETFL, O_NONBLOCK);
    FollowedChild followed(child);
    result.wasStopped = !follow(child, follower);
    result.exit = followed.finish(result.wasStopped);
    return result;
}

void children::terminateAll(std::chrono::milliseconds grace, bool refuseNew)
{
    ServiceProcess::endAll(refuseNew);
    ChildRegistry &registry = ChildRegistry::instance();
    std::unique_lock lock(registry.lock);
    registry.refusesNew = refuseNew;
    for (const pid_t group : registry.running)
        ::kill(-group, SIGTERM);
    const auto noneLeft = [&registry] {
        // A child of the GUI thread is reaped by the event loop, which may not
        // run now: one that has exited counts as gone.
        return std::all_of(registry.running.begin(), registry.running.end(), [](pid_t pid) {
            siginfo_t info{};
            return ::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0
                || info.si_pid != 0;
        });
    };
    const auto deadline = Clock::now() + grace;
    while (!noneLeft() && Clock::now() < deadline)
        registry.changed.wait_for(lock, 10ms);
    for (const pid_t group : registry.running)
        ::kill(-group, SIGKILL);
}

int children::runningCount()
{
    ChildRegistry &registry = ChildRegistry::instance();
    const std::scoped_lock lock(registry.lock);
    return static_cast<int>(registry.running.size());
}

} // namespace nurv

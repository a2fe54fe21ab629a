// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/ChildProgram.h"

#include "shntool/EndingCleanup.h"
#include "support/FindProgram.h"
#include "support/SystemCalls.h"
#include "support/ToolError.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <mutex>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nurv {

namespace {

constexpr int kSignalOffset = 128;

std::vector<char *> pointersTo(std::vector<std::string> &words)
{
    std::vector<char *> pointers;
    for (std::string &word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// How a child starts: with the signals as this program found them, and its pipe in place of one stream.
class Start {
public:
    Start(int pipeEnd, ChildProgram::Pipe pipe)
    {
        ::posix_spawnattr_init(&m_attributes);
        ::posix_spawn_file_actions_init(&m_actions);
        const int piped = pipe == ChildProgram::Pipe::FromChild ? STDOUT_FILENO : STDIN_FILENO;
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            if (stream == piped)
                ::posix_spawn_file_actions_adddup2(&m_actions, pipeEnd, stream);
            else
                ::posix_spawn_file_actions_addopen(&m_actions, stream, "/dev/null", O_RDWR, 0);
        }
        sigset_t defaults;
        sigemptyset(&defaults);
        sigaddset(&defaults, SIGPIPE);
        sigaddset(&defaults, SIGXFSZ);
        ::posix_spawnattr_setsigdefault(&m_attributes, &defaults);
        short flags = POSIX_SPAWN_SETSIGDEF;
        if (const EndingCleanup *cleanup = EndingCleanup::current()) {
            ::posix_spawnattr_setsigmask(&m_attributes, &cleanup->formerMask());
            flags |= POSIX_SPAWN_SETSIGMASK;
        }
        ::posix_spawnattr_setflags(&m_attributes, flags);
    }
    ~Start()
    {
        ::posix_spawnattr_destroy(&m_attributes);
        ::posix_spawn_file_actions_destroy(&m_actions);
    }
    Start(const Start &) = delete;
    Start &operator=(const Start &) = delete;

    [[nodiscard]] bool run(const std::string &path, std::vector<std::string> words, pid_t &process) const
    {
        const std::vector<char *> pointers = pointersTo(words);
        return ::posix_spawn(&process, path.c_str(), &m_actions, &m_attributes, pointers.data(), environ) == 0;
    }

private:
    posix_spawnattr_t m_attributes{};
    posix_spawn_file_actions_t m_actions{};
};

} // namespace

ChildProgram::ChildProgram(const std::vector<std::string> &words, Pipe pipe) : m_name(words.front())
{
    constexpr int kPipeBytes = 1 << 20;
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        failRead(m_name, errno);
    FileDescriptor readEnd(ends[0]);
    FileDescriptor writeEnd(ends[1]);
    // Larger than usual, for fewer changes between the two processes; where that is not allowed it stays. Not towards
    // an encoder: one that ends early shall be noticed early.
    if (pipe == Pipe::FromChild)
        ::fcntl(writeEnd.get(), F_SETPIPE_SZ, kPipeBytes);
    const bool isReading = pipe == Pipe::FromChild;
    if (const std::optional<std::string> path = findProgram(m_name)) {
        const std::unique_lock<std::mutex> lock = EndingCleanup::hold();
        m_isRunning = Start((isReading ? writeEnd : readEnd).get(), pipe).run(*path, words, m_process);
    }
    m_pipe = std::move(isReading ? readEnd : writeEnd);
}

ChildProgram::~ChildProgram()
{
    m_pipe = FileDescriptor();
    if (!m_isRunning)
        return;
    ::kill(m_process, SIGKILL);
    wait();
}

size_t ChildProgram::read(std::span<uint8_t> bytes)
{
    const ssize_t count = readSome(m_pipe.get(), bytes);
    if (count < 0)
        failRead(m_name, errno);
    return static_cast<size_t>(count);
}

bool ChildProgram::write(std::span<const uint8_t> bytes)
{
    if (writeAll(m_pipe.get(), bytes))
        return true;
    if (errno != EPIPE)
        failWrite(m_name, errno);
    return false;
}

int ChildProgram::wait()
{
    m_pipe = FileDescriptor();
    if (!m_isRunning)
        return m_status;
    int status = 0;
    pid_t ended = 0;
    do {
        ended = ::waitpid(m_process, &status, 0);
    } while (ended < 0 && errno == EINTR);
    m_isRunning = false;
    // Where a signal is ending the program, its children are waited for elsewhere.
    if (ended < 0)
        return m_status;
    m_status = WIFEXITED(status) ? WEXITSTATUS(status) : kSignalOffset + WTERMSIG(status);
    return m_status;
}

} // namespace nurv

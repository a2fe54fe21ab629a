// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mkisofs/GenisoimageRun.h"

#include "dvda/DiscNames.h"
#include "mkisofs/AuthoredFolder.h"
#include "support/FindProgram.h"
#include "support/SignalPause.h"
#include "support/SystemCalls.h"
#include "support/ToolError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nurv {

namespace {

constexpr char kProgram[] = "genisoimage";
constexpr size_t kMostText = 64 * 1024;
constexpr size_t kMostLine = 4096;
constexpr int kSignalOffset = 128;
constexpr int kNotStarted = 127;

[[noreturn]] void failStart(int error)
{
    throw ToolError(ToolError::Kind::Read, std::string("cannot start ") + kProgram + ": " + errorText(error));
}

std::string pathOfDescriptor(const FileDescriptor &file)
{
    return "/proc/self/fd/" + std::to_string(file.get());
}

/// The larger the weight, the earlier a file comes. In memory: nothing to remove.
FileDescriptor sortFile(const AuthoredFolder &folder)
{
    std::string text;
    size_t weight = 20000;
    for (const AuthoredFolder::File &file : folder.files())
        text += std::string("./") + discNames::kAudioFolder + '/' + file.name + ' ' + std::to_string(weight--) + '\n';
    FileDescriptor list(::memfd_create("sort", MFD_CLOEXEC));
    if (!list.isOpen() || !writeAllAt(list.get(), {reinterpret_cast<const uint8_t *>(text.data()), text.size()}, 0))
        failStart(errno);
    return list;
}

/// An empty folder without a name, for a disc that has none for video.
FileDescriptor emptyFolder()
{
    const char *parent = std::getenv("TMPDIR");
    std::string path = std::string(parent != nullptr && *parent != '\0' ? parent : "/tmp") + "/nurv-mkisofs-XXXXXX";
    const SignalPause pause;
    if (::mkdtemp(path.data()) == nullptr)
        failWrite(path, errno);
    FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    const int error = errno;
    ::rmdir(path.c_str());
    if (!folder.isOpen())
        failStart(error);
    return folder;
}

void tellAndEnd(const char *what)
{
    const std::string text = std::string(what) + ": " + errorText(errno) + '\n';
    [[maybe_unused]] const bool done =
        writeAll(STDERR_FILENO, {reinterpret_cast<const uint8_t *>(text.data()), text.size()});
    ::_exit(kNotStarted);
}

/// What a child does between its birth and the other program.
class ChildStart {
public:
    ChildStart(std::string program, std::vector<std::string> words, std::string folder, int image, int errors)
        : m_program(std::move(program)), m_words(std::move(words)), m_folder(std::move(folder)), m_image(image),
          m_errors(errors), m_parent(::getpid())
    {
    }
    void inherit(int descriptor) { m_inherited.push_back(descriptor); }

    void run()
    {
        std::vector<char *> pointers;
        for (std::string &word : m_words)
            pointers.push_back(word.data());
        pointers.push_back(nullptr);
        ::dup2(m_errors, STDERR_FILENO);
        ::dup2(m_image, STDOUT_FILENO);
        const int none = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        ::dup2(none, STDIN_FILENO);
        for (const int descriptor : m_inherited)
            ::fcntl(descriptor, F_SETFD, 0);
        for (const int signal : {SIGPIPE, SIGXFSZ})
            std::signal(signal, SIG_DFL);
        // The only thread of the parent is the one that it ends with.
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != m_parent)
            ::_exit(kNotStarted);
        // No settings of a stranger's folder, and numbers with a point.
        for (const char *settings : {"GENISOIMAGERC", "MKISOFSRC"})
            ::setenv(settings, "/dev/null", 1);
        ::setenv("LC_ALL", "C", 1);
        if (::chdir(m_folder.c_str()) != 0)
            tellAndEnd(m_folder.c_str());
        ::execv(m_program.c_str(), pointers.data());
        tellAndEnd(m_program.c_str());
    }

private:
    std::string m_program;
    std::vector<std::string> m_words;
    std::string m_folder;
    int m_image;
    int m_errors;
    pid_t m_parent;
    std::vector<int> m_inherited;
};

} // namespace

bool isProgressLine(const std::string &line)
{
    const size_t sign = line.find('%');
    if (sign == std::string::npos || sign < 4 || line.compare(sign, 7, "% done,") != 0)
        return false;
    const std::string number = line.substr(0, sign);
    const size_t start = number.find_first_not_of(' ');
    return start != std::string::npos && number.find_first_not_of("0123456789.", start) == std::string::npos
           && number[number.size() - 3] == '.';
}

GenisoimageRun::GenisoimageRun(const AuthoredFolder &folder, int image)
{
    const std::optional<std::string> program = findProgram(kProgram);
    if (!program) {
        throw ToolError(ToolError::Kind::Read,
                        std::string(kProgram) + " is not installed; it is provided by the package of that name");
    }
    const FileDescriptor sort = sortFile(folder);
    std::vector<std::string> words{kProgram, "-input-charset", "utf-8", "-udf",
                                   "-V",     "DVDAUDIO",       "-sort", pathOfDescriptor(sort)};
    FileDescriptor empty;
    if (folder.hasVideo()) {
        words.emplace_back(".");
    } else {
        empty = emptyFolder();
        words.insert(words.end(), {"-graft-points", ".",
                                   std::string(discNames::kVideoFolder) + "/=" + pathOfDescriptor(empty) + "/."});
    }
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        failStart(errno);
    m_errors = FileDescriptor(ends[0]);
    const FileDescriptor writeEnd(ends[1]);
    ChildStart start(*program, words, folder.path(), image, writeEnd.get());
    start.inherit(sort.get());
    if (empty.isOpen())
        start.inherit(empty.get());
    // A signal that comes before the child is another program would run this one's clean-up in it, too.
    const SignalPause pause;
    m_process = ::fork();
    if (m_process < 0)
        failStart(errno);
    if (m_process == 0) {
        for (const int signal : kEndingSignals) {
            struct sigaction action {};
            if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN)
                std::signal(signal, SIG_DFL);
        }
        sigset_t none;
        sigemptyset(&none);
        ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
        start.run();
    }
}

GenisoimageRun::~GenisoimageRun()
{
    if (m_process <= 0)
        return;
    ::kill(m_process, SIGKILL);
    [[maybe_unused]] const int status = reap();
}

int GenisoimageRun::wait()
{
    std::string waiting;
    std::array<uint8_t, 4096> bytes{};
    for (;;) {
        const ssize_t count = readSome(m_errors.get(), bytes);
        if (count < 0)
            failRead(kProgram, errno);
        if (count == 0)
            break;
        waiting.append(bytes.begin(), bytes.begin() + count);
        size_t begin = 0;
        for (size_t end = 0; (end = waiting.find('\n', begin)) != std::string::npos; begin = end + 1)
            takeLine(waiting.substr(begin, end + 1 - begin));
        waiting.erase(0, begin);
        if (waiting.size() > kMostLine) {
            takeLine(waiting);
            waiting.clear();
        }
    }
    takeLine(waiting);
    return reap();
}

/// The reader of the progress takes each write for a line.
void GenisoimageRun::takeLine(const std::string &line)
{
    if (!isProgressLine(line)) {
        m_text += line;
        if (m_text.size() > kMostText)
            m_text.erase(0, m_text.size() - kMostText);
        return;
    }
    if (writeAll(STDERR_FILENO, {reinterpret_cast<const uint8_t *>(line.data()), line.size()}))
        return;
    if (errno == EPIPE)
        throw ClosedPipe();
    failWrite("standard error", errno);
}

int GenisoimageRun::reap()
{
    int status = 0;
    while (::waitpid(m_process, &status, 0) < 0) {
        if (errno != EINTR)
            return kNotStarted;
    }
    m_process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : kSignalOffset + WTERMSIG(status);
}

} // namespace nurv

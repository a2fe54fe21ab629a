// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later

// fake_program: a program that acts out a script, for what real programs do rarely.
//
// The script is the first of these that exists:
//   1. the environment variable NURV_FAKE_<name>, <name> being the last part of argv[0]
//   2. the environment variable NURV_FAKE
//   3. the file .<name>.fake beside argv[0] (what ProgramFolder::addFake writes), wherever PATH led to it
//   4. the arguments, one step each
// In 1 to 3 steps are separated by ';' or line ends, blanks before a step are skipped, and the
// arguments are those of the program that is stood in for.
//
// A value knows the escapes \n \r \b \t \e \0 \\ \; and \xHH. In a value that is a path, @1, @2, …
// stand for the arguments and @-1, @-2, … for those counted from the last one.
//
//   out=BYTES           write to standard output, in one write
//   err=BYTES           write to standard error, in one write
//   flood=N             write N bytes 'x' to standard output, no line end
//   flood-err=N         the same to standard error
//   delay=MS            pause
//   until-read          pause until all that was written has been read: what follows comes in another chunk
//   replay=PATH         act out a transcript: lines 'out BYTES', 'err BYTES', 'delay MS' (escapes as above)
//   cat=PATH            write the file's bytes to standard output
//   create=PATH         make an empty file, or cut the file to nothing
//   append=PATH:BYTES   append the bytes to a file
//   copy=PATH:PATH      copy a file
//   link=PATH:PATH      make a symbolic link to the first, with the name of the second
//   delete=PATH         delete a file
//   log=PATH            append the arguments as one line, tabs between them
//   args                print the arguments, one 'arg N: TEXT' a line
//   env  env=NAME       print the environment, or 'NAME=VALUE' ('NAME unset')
//   cwd                 print 'cwd: PATH'
//   fds                 print the open descriptors, 'fds: 0 1 2'
//   stdin               print what standard input is, 'stdin: /dev/null'
//   read-stdin          read standard input to its end, print 'read N bytes'
//   ids                 print 'pid P pgid G sid S'
//   grandchild=MS       start a child of its own that holds the output open for MS; print 'grandchild PID'
//   ignore-term         from here on SIGTERM does nothing
//   term-exit=N         from here on SIGTERM ends with status N
//   hang                do nothing until a signal ends it
//   wait-file=PATH      do nothing until the file exists
//   first=PATH          when the file does not exist yet, make it and go on; else skip to 'end'
//   when=TEXT           when an argument contains the text go on; else skip to 'end'
//   when-option=TEXT    the same when an argument is the text: a path may well contain it
//   end                 see 'first' and 'when'
//   exec=PATH           become that program, with the same arguments
//   signal=N            die by signal N
//   exit=N              end with status N
//
// At the end of the script it ends with status 0. A wrong script ends with status 99. A cut or wrong
// UTF-8 sequence is spelled out: out=\xe3\x81;delay=50;out=\x82.

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/auxv.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr int kBadScript = 99;

std::vector<std::string> g_arguments;
volatile std::sig_atomic_t g_termStatus = 0;

void writeAll(int descriptor, const std::string &bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::write(descriptor, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            std::_Exit(1);
        }
        done += static_cast<std::size_t>(count);
    }
}

[[noreturn]] void refuse(const std::string &step)
{
    writeAll(STDERR_FILENO, "fake_program: bad step '" + step + "'\n");
    std::_Exit(kBadScript);
}

void pauseFor(long milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

long number(const std::string &text, const std::string &step)
{
    char *end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0') {
        refuse(step);
    }
    return value;
}

std::string unescaped(const std::string &text)
{
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            bytes += text[i];
            continue;
        }
        switch (text[++i]) {
        case 'n': bytes += '\n'; break;
        case 'r': bytes += '\r'; break;
        case 'b': bytes += '\b'; break;
        case 't': bytes += '\t'; break;
        case 'e': bytes += '\x1b'; break;
        case '0': bytes += '\0'; break;
        case 'x':
            if (i + 2 >= text.size()) {
                refuse(text);
            }
            bytes += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
            break;
        default: bytes += text[i]; break;
        }
    }
    return bytes;
}

/// The path that a value names, its @N replaced by arguments.
fs::path pathOf(const std::string &value)
{
    const std::string text = unescaped(value);
    if (text.size() < 2 || text[0] != '@') {
        return text;
    }
    const long index = number(text.substr(1), value);
    const long count = static_cast<long>(g_arguments.size());
    const long position = index > 0 ? index - 1 : count + index;
    if (index == 0 || position < 0 || position >= count) {
        refuse(value);
    }
    return g_arguments[static_cast<std::size_t>(position)];
}

std::string fileBytes(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        refuse(path.string());
    }
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

void flood(int descriptor, long count)
{
    const std::string block(65536, 'x');
    while (count > 0) {
        const auto size = static_cast<std::size_t>(std::min(count, 65536L));
        writeAll(descriptor, block.substr(0, size));
        count -= static_cast<long>(size);
    }
}

void printEnvironment(const std::string &name)
{
    if (name.empty()) {
        std::string text;
        for (char **entry = environ; *entry != nullptr; ++entry) {
            text += std::string(*entry) + '\n';
        }
        writeAll(STDOUT_FILENO, text);
        return;
    }
    const char *value = std::getenv(name.c_str());
    writeAll(STDOUT_FILENO, value != nullptr ? name + '=' + value + '\n' : name + " unset\n");
}

void printDescriptors()
{
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    std::string text = "fds:";
    const int last = static_cast<int>(std::min<rlim_t>(limit.rlim_cur, 65536));
    for (int descriptor = 0; descriptor < last; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) != -1) {
            text += ' ' + std::to_string(descriptor);
        }
    }
    writeAll(STDOUT_FILENO, text + '\n');
}

void printArguments()
{
    std::string text;
    for (std::size_t i = 0; i < g_arguments.size(); ++i) {
        text += "arg " + std::to_string(i + 1) + ": " + g_arguments[i] + '\n';
    }
    writeAll(STDOUT_FILENO, text);
}

void readStandardInput()
{
    std::size_t total = 0;
    std::string buffer(65536, '\0');
    ssize_t count = 0;
    while ((count = ::read(STDIN_FILENO, buffer.data(), buffer.size())) > 0) {
        total += static_cast<std::size_t>(count);
    }
    writeAll(STDOUT_FILENO, "read " + std::to_string(total) + " bytes\n");
}

void startGrandchild(long milliseconds)
{
    const pid_t child = ::fork();
    if (child == 0) {
        pauseFor(milliseconds);
        std::_Exit(0);
    }
    writeAll(STDOUT_FILENO, "grandchild " + std::to_string(child) + '\n');
}

void appendToFile(const fs::path &path, const std::string &bytes)
{
    // O_APPEND and a single write: lines of children that run at the same time stay whole.
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (descriptor < 0) {
        refuse(path.string());
    }
    writeAll(descriptor, bytes);
    ::close(descriptor);
}

[[noreturn]] void dieBySignal(int signal)
{
    // A core file of a planned death helps nobody.
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    ::prctl(PR_SET_DUMPABLE, 0);
    std::signal(signal, SIG_DFL);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    ::sigprocmask(SIG_UNBLOCK, &set, nullptr);
    ::raise(signal);
    std::_Exit(kBadScript);
}

[[noreturn]] void becomeProgram(const fs::path &path)
{
    ::unsetenv("NURV_FAKE");
    std::string program = path.string();
    std::vector<char *> words{program.data()};
    for (std::string &argument : g_arguments) {
        words.push_back(argument.data());
    }
    words.push_back(nullptr);
    ::execv(program.c_str(), words.data());
    refuse("exec=" + program);
}

[[noreturn]] void hang()
{
    for (;;) {
        ::pause();
    }
}

std::pair<std::string, std::string> pairOf(const std::string &value, const std::string &step)
{
    const std::size_t colon = value.find(':');
    if (colon == std::string::npos) {
        refuse(step);
    }
    return {value.substr(0, colon), value.substr(colon + 1)};
}

bool anyArgumentContains(const std::string &text)
{
    return std::any_of(g_arguments.begin(), g_arguments.end(),
                       [&text](const std::string &argument) { return argument.find(text) != std::string::npos; });
}

void replay(const fs::path &path)
{
    std::istringstream lines(fileBytes(path));
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("out ", 0) == 0) {
            writeAll(STDOUT_FILENO, unescaped(line.substr(4)));
        } else if (line.rfind("err ", 0) == 0) {
            writeAll(STDERR_FILENO, unescaped(line.substr(4)));
        } else if (line.rfind("delay ", 0) == 0) {
            pauseFor(number(line.substr(6), line));
        } else if (!line.empty()) {
            refuse(line);
        }
    }
}

/// Acts out the steps that print something. Returns whether it knew the verb.
bool actOutput(const std::string &verb, const std::string &value, const std::string &step)
{
    if (verb == "out") {
        writeAll(STDOUT_FILENO, unescaped(value));
    } else if (verb == "err") {
        writeAll(STDERR_FILENO, unescaped(value));
    } else if (verb == "flood") {
        flood(STDOUT_FILENO, number(value, step));
    } else if (verb == "flood-err") {
        flood(STDERR_FILENO, number(value, step));
    } else if (verb == "replay") {
        replay(pathOf(value));
    } else if (verb == "cat") {
        writeAll(STDOUT_FILENO, fileBytes(pathOf(value)));
    } else if (verb == "args") {
        printArguments();
    } else if (verb == "env") {
        printEnvironment(value);
    } else if (verb == "cwd") {
        writeAll(STDOUT_FILENO, "cwd: " + fs::current_path().string() + '\n');
    } else if (verb == "fds") {
        printDescriptors();
    } else if (verb == "stdin") {
        std::error_code missing;
        writeAll(STDOUT_FILENO, "stdin: " + fs::read_symlink("/proc/self/fd/0", missing).string() + '\n');
    } else if (verb == "read-stdin") {
        readStandardInput();
    } else if (verb == "ids") {
        writeAll(STDOUT_FILENO, "pid " + std::to_string(::getpid()) + " pgid " + std::to_string(::getpgrp()) + " sid "
                                    + std::to_string(::getsid(0)) + '\n');
    } else {
        return false;
    }
    return true;
}

/// Acts out the steps that change files. Returns whether it knew the verb.
bool actFiles(const std::string &verb, const std::string &value, const std::string &step)
{
    if (verb == "create") {
        std::ofstream file(pathOf(value), std::ios::binary | std::ios::trunc);
        if (!file) {
            refuse(step);
        }
    } else if (verb == "append") {
        const auto [path, bytes] = pairOf(value, step);
        appendToFile(pathOf(path), unescaped(bytes));
    } else if (verb == "copy") {
        const auto [from, to] = pairOf(value, step);
        std::error_code error;
        if (!fs::copy_file(pathOf(from), pathOf(to), fs::copy_options::overwrite_existing, error)) {
            refuse(step);
        }
    } else if (verb == "link") {
        const auto [target, link] = pairOf(value, step);
        std::error_code error;
        fs::create_symlink(pathOf(target), pathOf(link), error);
        if (error)
            refuse(step);
    } else if (verb == "delete") {
        std::error_code error;
        if (!fs::remove(pathOf(value), error)) {
            refuse(step);
        }
    } else if (verb == "log") {
        std::string line;
        for (const std::string &argument : g_arguments) {
            line += (line.empty() ? "" : "\t") + argument;
        }
        appendToFile(pathOf(value), line + '\n');
    } else {
        return false;
    }
    return true;
}

/// Of a pipe that somebody reads; 0 for anything else.
int unreadBytes(int descriptor)
{
    struct stat facts = {};
    pollfd reader{.fd = descriptor, .events = 0, .revents = 0};
    int bytes = 0;
    const bool isRead = ::fstat(descriptor, &facts) == 0 && S_ISFIFO(facts.st_mode) && ::poll(&reader, 1, 0) >= 0
                        && (reader.revents & POLLERR) == 0;
    return isRead && ::ioctl(descriptor, FIONREAD, &bytes) == 0 ? bytes : 0;
}

/// Acts out the steps about time, signals and the end. Returns whether it knew the verb.
bool actProcess(const std::string &verb, const std::string &value, const std::string &step)
{
    if (verb == "delay") {
        pauseFor(number(value, step));
    } else if (verb == "until-read") {
        while (unreadBytes(STDOUT_FILENO) > 0 || unreadBytes(STDERR_FILENO) > 0)
            pauseFor(1);
    } else if (verb == "grandchild") {
        startGrandchild(number(value, step));
    } else if (verb == "ignore-term") {
        std::signal(SIGTERM, SIG_IGN);
    } else if (verb == "term-exit") {
        g_termStatus = static_cast<std::sig_atomic_t>(number(value, step));
        std::signal(SIGTERM, [](int) { std::_Exit(g_termStatus); });
    } else if (verb == "hang") {
        hang();
    } else if (verb == "wait-file") {
        const fs::path path = pathOf(value);
        while (!fs::exists(path)) {
            pauseFor(2);
        }
    } else if (verb == "exec") {
        becomeProgram(pathOf(value));
    } else if (verb == "signal") {
        dieBySignal(static_cast<int>(number(value, step)));
    } else if (verb == "exit") {
        std::_Exit(static_cast<int>(number(value, step)));
    } else {
        return false;
    }
    return true;
}

/// Whether a condition step lets the following steps run; nothing for other steps.
std::optional<bool> condition(const std::string &verb, const std::string &value)
{
    if (verb == "when") {
        return anyArgumentContains(unescaped(value));
    }
    if (verb == "when-option") {
        return std::find(g_arguments.begin(), g_arguments.end(), unescaped(value)) != g_arguments.end();
    }
    if (verb == "first") {
        const int descriptor = ::open(pathOf(value).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        if (descriptor >= 0) {
            ::close(descriptor);
        }
        return descriptor >= 0;
    }
    return std::nullopt;
}

void act(const std::vector<std::string> &steps)
{
    bool skipping = false;
    for (const std::string &step : steps) {
        const std::size_t equals = step.find('=');
        const std::string verb = step.substr(0, equals);
        const std::string value = equals == std::string::npos ? std::string() : step.substr(equals + 1);
        if (verb == "end") {
            skipping = false;
        } else if (skipping) {
            continue;
        } else if (const std::optional<bool> holds = condition(verb, value)) {
            skipping = !*holds;
        } else if (!actOutput(verb, value, step) && !actFiles(verb, value, step) && !actProcess(verb, value, step)) {
            refuse(step);
        }
    }
}

std::vector<std::string> stepsOf(const std::string &script)
{
    std::vector<std::string> steps;
    std::string step;
    const auto finish = [&steps, &step] {
        if (!step.empty()) {
            steps.push_back(step);
        }
        step.clear();
    };
    for (std::size_t i = 0; i < script.size(); ++i) {
        if (script[i] == '\\' && i + 1 < script.size()) {
            step += script[i];
            step += script[++i];
        } else if (script[i] == ';' || script[i] == '\n') {
            finish();
        } else if (!step.empty() || (script[i] != ' ' && script[i] != '\t')) {
            step += script[i];
        }
    }
    finish();
    return steps;
}

} // namespace

int main(int argc, char **argv)
{
    std::signal(SIGPIPE, SIG_DFL);
    g_arguments.assign(argv + 1, argv + argc);
    // Found along PATH, it is called by its mere name; the kernel knows where it was.
    const bool hasFolder = std::string_view(argv[0]).find('/') != std::string_view::npos;
    const fs::path self = hasFolder ? argv[0] : reinterpret_cast<const char *>(::getauxval(AT_EXECFN));
    const std::string name = self.filename().string();
    if (const char *script = std::getenv(("NURV_FAKE_" + name).c_str())) {
        act(stepsOf(script));
    } else if (const char *common = std::getenv("NURV_FAKE")) {
        act(stepsOf(common));
    } else if (const fs::path beside = self.parent_path() / ('.' + name + ".fake"); fs::exists(beside)) {
        act(stepsOf(fileBytes(beside)));
    } else {
        act(g_arguments);
    }
    return 0;
}

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TemporaryFile.h"

#include "files/UnnamedFile.h"
#include "support/EndingSignals.h"
#include "support/SignalPause.h"
#include "support/SystemCalls.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <random>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nurv {

namespace {

/// The paths that a signal removes: all that a handler may touch.
std::array<std::atomic<const char *>, 512> g_paths;
static_assert(std::atomic<const char *>::is_always_lock_free);

void removeAndDie(int signal)
{
    for (const std::atomic<const char *> &path : g_paths) {
        if (const char *name = path.load())
            ::unlink(name);
    }
    // The action is the default one again, and the exit status shall tell the signal.
    ::raise(signal);
}

std::string randomName()
{
    constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device random;
    std::uniform_int_distribution<size_t> letter(0, kLetters.size() - 1);
    std::string name = ".nurv-";
    for (int i = 0; i < 12; ++i)
        name += kLetters[letter(random)];
    return name + ".part";
}

} // namespace

TemporaryFile::TemporaryFile(const std::string &destination) : m_destination(destination)
{
    struct stat former {};
    m_replaces = ::stat(m_destination.c_str(), &former) == 0;
    m_descriptor = unnamedFile::open(folder());
    if (!m_descriptor.isOpen())
        takeName([this] { openNamed(); });
    // A file system without modes has nothing to keep.
    if (m_replaces) [[maybe_unused]]
        const int done = ::fchmod(m_descriptor.get(), former.st_mode & 0777);
}

TemporaryFile::~TemporaryFile()
{
    if (!m_path.empty()) {
        ::unlink(m_path.c_str());
        forget();
    }
}

void TemporaryFile::moveToDestination()
{
    if (m_path.empty() && !m_replaces) {
        if (!unnamedFile::name(m_descriptor, m_destination))
            failWrite(m_destination, errno);
        return;
    }
    // A power cut must leave one of both; without this it may leave the name of an empty file.
    if (m_replaces && ::fsync(m_descriptor.get()) != 0)
        failWrite(m_destination, errno);
    if (m_path.empty())
        takeName([this] { nameUnnamed(); });
    if (!m_descriptor.close() || std::rename(m_path.c_str(), m_destination.c_str()) != 0)
        failWrite(m_destination, errno);
    forget();
}

void TemporaryFile::moveTo(const std::string &destination)
{
    // What has a hidden name keeps it in the memory of the signals until it has the other one.
    m_destination = destination;
    m_replaces = false;
    moveToDestination();
}

void TemporaryFile::flush()
{
    if (::fsync(m_descriptor.get()) != 0)
        failWrite(m_destination, errno);
}

std::string TemporaryFile::folder() const
{
    const size_t slash = m_destination.rfind('/');
    return slash == std::string::npos ? "./" : m_destination.substr(0, slash + 1);
}

/// Runs `make`, which gives the file a hidden name, and notes that name for the signals.
void TemporaryFile::takeName(const std::function<void()> &make)
{
    const SignalPause pause;
    make();
    for (m_slot = 0; m_slot < g_paths.size(); ++m_slot) {
        const char *none = nullptr;
        if (g_paths[m_slot].compare_exchange_strong(none, m_path.c_str()))
            return;
    }
    ::unlink(m_path.c_str());
    failWrite(m_destination, EMFILE);
}

void TemporaryFile::nameUnnamed()
{
    bool isNamed = false;
    do {
        m_path = folder() + randomName();
        isNamed = unnamedFile::name(m_descriptor, m_path);
    } while (!isNamed && errno == EEXIST);
    if (isNamed)
        return;
    m_path.clear();
    failWrite(m_destination, errno);
}

void TemporaryFile::openNamed()
{
    do {
        m_path = folder() + randomName();
        // Not mkstemp, whose mode shuts everybody else out.
        m_descriptor = FileDescriptor(::open(m_path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    } while (!m_descriptor.isOpen() && (errno == EEXIST || errno == EINTR));
    if (m_descriptor.isOpen())
        return;
    m_path.clear();
    failWrite(m_destination, errno);
}

void TemporaryFile::forget()
{
    g_paths[m_slot].store(nullptr);
    m_path.clear();
}

void removeTemporaryFilesOnSignals()
{
    for (const int signal : kEndingSignals) {
        struct sigaction action {};
        if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
            continue;
        action = {};
        action.sa_handler = removeAndDie;
        action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
        ::sigaction(signal, &action, nullptr);
    }
}

} // namespace nurv

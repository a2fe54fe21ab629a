// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/ProgramWaveOutput.h"

#include "shntool/EndingCleanup.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <mutex>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nurv {

namespace {

std::string baseName(const std::string &path)
{
    return path.substr(path.rfind('/') + 1);
}

bool exists(const std::string &path)
{
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

/// The mode that any new file gets.
mode_t newFileMode()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

/// Gives the file its mode: that of the one it replaces, or of any new one. An empty one is none: no format of sound
/// knows such files. What replaces something has to be on the
/// disk before: a power cut must leave one of both.
bool prepare(const std::string &file, const std::string &destination)
{
    const FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    struct stat made {};
    if (!descriptor.isOpen() || ::fstat(descriptor.get(), &made) != 0 || !S_ISREG(made.st_mode) || made.st_size == 0)
        return false;
    struct stat former {};
    const bool replaces = ::stat(destination.c_str(), &former) == 0;
    // A file system without modes has nothing to keep.
    [[maybe_unused]] const int done = ::fchmod(descriptor.get(), replaces ? former.st_mode & 0777 : newFileMode());
    return !replaces || ::fsync(descriptor.get()) == 0;
}

} // namespace

ProgramWaveOutput::ProgramWaveOutput(const std::string &name,
                                     const std::function<std::vector<std::string>(const std::string &)> &wordsFor)
    : m_name(name), m_folder(name), m_made(m_folder.path() + '/' + baseName(name)), m_replaces(exists(name)),
      m_encoder(wordsFor(m_made), ChildProgram::Pipe::ToChild)
{
}

bool ProgramWaveOutput::write(std::span<const uint8_t> bytes)
{
    // A header goes with what comes next.
    constexpr size_t kFewBytes = 4096;
    if (m_waiting.empty() && bytes.size() >= kFewBytes)
        return m_encoder.write(bytes);
    m_waiting.insert(m_waiting.end(), bytes.begin(), bytes.end());
    return m_waiting.size() < kFewBytes || flush();
}

bool ProgramWaveOutput::flush()
{
    const std::vector<uint8_t> bytes = std::exchange(m_waiting, {});
    return bytes.empty() || m_encoder.write(bytes);
}

bool ProgramWaveOutput::complete()
{
    // An encoder that has read all of the sound, such as sox, may be gone before the one byte behind it that makes its number
    // even.
    const bool isPadAlone = m_waiting.size() == 1;
    const bool isTaken = flush() || isPadAlone;
    m_isIncomplete = !isTaken || m_encoder.wait() != 0 || !prepare(m_made, m_name);
    return !m_isIncomplete;
}

bool ProgramWaveOutput::commit()
{
    const std::unique_lock<std::mutex> lock = EndingCleanup::hold();
    const auto move = [this](unsigned flags) {
        return ::renameat2(AT_FDCWD, m_made.c_str(), AT_FDCWD, m_name.c_str(), flags) == 0;
    };
    if (m_replaces)
        return move(0);
    // Not every file system knows the flag. The name was free when this began.
    return move(RENAME_NOREPLACE) || (errno == EINVAL && !exists(m_name) && move(0));
}

std::string ProgramWaveOutput::complaint()
{
    const int status = m_encoder.wait();
    const std::string who = "child encoder process " + std::to_string(std::max(m_encoder.process(), 0));
    if (status != 0)
        return who + " had non-zero exit status " + std::to_string(status);
    return m_isIncomplete ? who + " made no complete file" : std::string();
}

} // namespace nurv

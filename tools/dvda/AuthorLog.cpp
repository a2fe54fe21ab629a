// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dvda/AuthorLog.h"

#include "support/SystemCalls.h"
#include "support/ToolError.h"
#include "text/VisibleText.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <span>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nurv {

namespace {

/// How each log begins.
constexpr std::string_view kMark = "dvda (Nurv Audio Workbench) ";

/// A regular file with one name that is empty or begins as a log does.
bool isLog(int descriptor)
{
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_nlink != 1)
        return false;
    std::array<uint8_t, kMark.size()> head{};
    const ssize_t count = readSome(descriptor, head);
    return count == 0
           || (count == static_cast<ssize_t>(head.size())
               && std::string_view(reinterpret_cast<const char *>(head.data()), head.size()) == kMark);
}

} // namespace

AuthorLog::AuthorLog(const std::string &name) : m_name(name)
{
    if (name.empty())
        return;
    constexpr int kFlags = O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    m_file = FileDescriptor(::open(name.c_str(), kFlags | O_CREAT | O_EXCL, 0666));
    if (!m_file.isOpen() && errno == EEXIST) {
        m_file = FileDescriptor(::open(name.c_str(), kFlags));
        if (!m_file.isOpen() && errno != ELOOP)
            failWrite(name, errno);
        if (!m_file.isOpen() || !isLog(m_file.get()))
            throw ToolError(ToolError::Kind::Write, name + " is no log of this program, and stays");
        if (::ftruncate(m_file.get(), 0) != 0 || ::lseek(m_file.get(), 0, SEEK_SET) != 0)
            failWrite(name, errno);
    }
    if (!m_file.isOpen())
        failWrite(name, errno);
    add(std::string(kMark) + NURV_VERSION);
}

void AuthorLog::add(const std::string &line)
{
    if (!m_file.isOpen())
        return;
    const std::string text = visibleText(line) + '\n';
    if (!writeAll(m_file.get(), {reinterpret_cast<const uint8_t *>(text.data()), text.size()}))
        failWrite(m_name, errno);
}

} // namespace nurv

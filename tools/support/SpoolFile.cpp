// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/SpoolFile.h"

#include "support/SystemCalls.h"
#include "support/ToolError.h"

#include <cerrno>
#include <csignal>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace nurv {

namespace {

/// For file systems that know no files without a name: removed as soon as it is made.
int openAndRemove(const std::string &folder)
{
    std::string path = folder + "/.nurv-spool-XXXXXX";
    sigset_t all;
    sigset_t former;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, &former);
    const int descriptor = ::mkostemp(path.data(), O_CLOEXEC);
    const int error = errno;
    if (descriptor >= 0)
        ::unlink(path.c_str());
    ::pthread_sigmask(SIG_SETMASK, &former, nullptr);
    errno = error;
    return descriptor;
}

int openNameless(const std::string &folder)
{
    const int descriptor = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    return descriptor >= 0 ? descriptor : openAndRemove(folder);
}

} // namespace

SpoolFile::SpoolFile(const std::string &folder) : m_folder(folder), m_descriptor(openNameless(folder))
{
    if (!m_descriptor.isOpen())
        throw ToolError(ToolError::Kind::Write, "cannot make a temporary file in " + folder + ": " + errorText(errno));
}

void SpoolFile::write(std::span<const uint8_t> bytes)
{
    if (!writeAll(m_descriptor.get(), bytes))
        failWrite("a temporary file in " + m_folder, errno);
}

void SpoolFile::read(const ByteSink &sink) const
{
    constexpr size_t kPieceBytes = size_t{256} << 10;
    std::vector<uint8_t> piece(kPieceBytes);
    const off_t start = ::lseek(m_descriptor.get(), 0, SEEK_SET);
    ssize_t count = 0;
    while (start == 0 && (count = readSome(m_descriptor.get(), piece)) > 0)
        sink(std::span<const uint8_t>(piece).first(static_cast<size_t>(count)));
    if (start != 0 || count < 0)
        failRead("a temporary file in " + m_folder, errno);
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/OutputFile.h"

#include "support/Destination.h"
#include "support/InputFile.h"
#include "support/SystemCalls.h"
#include "support/TemporaryFile.h"
#include "support/ToolError.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nurv {

namespace {

constexpr size_t kBufferBytes = 128 * 1024;

bool isOpenAs(const struct stat &file, int descriptor)
{
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && status.st_dev == file.st_dev && status.st_ino == file.st_ino;
}

/// Only a regular file loses what is read from it when it is written.
void refuseTheSameFile(const struct stat &output, const InputFile &input)
{
    if (S_ISREG(output.st_mode) && isOpenAs(output, input.descriptor()))
        throw ToolError(ToolError::Kind::BadArguments, "the output is the same file as the input: " + input.name());
}

} // namespace

OutputFile::OutputFile(const std::string &name, const InputFile &input) : m_name(name == "-" ? "standard output" : name)
{
    if (name == "-")
        openStandardOutput(input);
    else
        openNamed(input);
    m_buffer.reserve(kBufferBytes);
}

OutputFile::~OutputFile() = default;

void OutputFile::openStandardOutput(const InputFile &input)
{
    m_isStandardOutput = true;
    m_direct = FileDescriptor(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3));
    struct stat status {};
    if (!m_direct.isOpen() || ::fstat(m_direct.get(), &status) != 0)
        fail(errno);
    if (::isatty(m_direct.get()) == 1)
        throw ToolError(ToolError::Kind::BadArguments, "the output is a terminal, which shows no sound");
    refuseTheSameFile(status, input);
    m_descriptor = m_direct.get();
    // What is open for appending goes to the end, whatever the offset.
    if (S_ISREG(status.st_mode) && (::fcntl(m_descriptor, F_GETFL) & O_APPEND) == 0) {
        const off_t origin = ::lseek(m_descriptor, 0, SEEK_CUR);
        m_isSeekable = origin >= 0;
        m_origin = m_isSeekable ? static_cast<uint64_t>(origin) : 0;
    }
}

void OutputFile::openNamed(const InputFile &input)
{
    struct stat status {};
    const bool exists = ::stat(m_name.c_str(), &status) == 0;
    // /dev/stdout, for one: a new file in its place would take away what is in it already.
    if (exists && isOpenAs(status, STDOUT_FILENO)) {
        openStandardOutput(input);
        return;
    }
    if (exists && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) {
        m_direct = FileDescriptor(::open(m_name.c_str(), O_WRONLY | O_CLOEXEC));
        if (!m_direct.isOpen())
            fail(errno);
        m_descriptor = m_direct.get();
        return;
    }
    if (exists)
        refuseTheSameFile(status, input);
    m_temporary = std::make_unique<TemporaryFile>(destinationOf(m_name));
    m_descriptor = m_temporary->descriptor();
    m_isSeekable = true;
}

void OutputFile::write(std::span<const uint8_t> bytes)
{
    if (bytes.size() > kBufferBytes - m_buffer.size())
        flush();
    if (bytes.size() >= kBufferBytes)
        writeThrough(bytes);
    else
        m_buffer.insert(m_buffer.end(), bytes.begin(), bytes.end());
}

void OutputFile::flush()
{
    writeThrough(m_buffer);
    m_buffer.clear();
}

void OutputFile::checkReader() const
{
    pollfd reader{.fd = m_descriptor, .events = 0, .revents = 0};
    if (::poll(&reader, 1, 0) == 1 && (reader.revents & POLLERR) != 0)
        throw ClosedPipe();
}

bool OutputFile::isSeekable() const
{
    return m_isSeekable;
}

void OutputFile::overwrite(uint64_t offset, std::span<const uint8_t> bytes)
{
    if (!m_isSeekable || offset > position() || bytes.size() > position() - offset)
        throw std::logic_error("nothing is written there that could be written again");
    flush();
    if (!writeAllAt(m_descriptor, bytes, m_origin + offset))
        fail(errno);
}

std::string OutputFile::spoolFolder() const
{
    if (m_temporary)
        return m_temporary->folder();
    // Not /tmp by itself, which may be memory.
    const char *folder = std::getenv("TMPDIR");
    return folder != nullptr && *folder != '\0' ? folder : "/var/tmp";
}

uint64_t OutputFile::position() const
{
    return m_written + m_buffer.size();
}

bool OutputFile::isStandardOutput() const
{
    return m_isStandardOutput;
}

void OutputFile::commit()
{
    flush();
    if (m_temporary)
        m_temporary->moveToDestination();
    else if (!m_direct.close())
        fail(errno);
    m_descriptor = -1;
}

void OutputFile::writeThrough(std::span<const uint8_t> bytes)
{
    if (!writeAll(m_descriptor, bytes))
        fail(errno);
    m_written += bytes.size();
}

void OutputFile::fail(int error) const
{
    if (error == EPIPE)
        throw ClosedPipe();
    failWrite(m_name, error);
}

} // namespace nurv

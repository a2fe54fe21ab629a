// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/InputFile.h"

#include "support/SystemCalls.h"
#include "support/ToolError.h"

#include <algorithm>
#include <cerrno>
#include <limits>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nurv {

namespace {

constexpr size_t kBufferBytes = 128 * 1024;
constexpr size_t kPeekBytes = 64 * 1024;

/// A copy of standard input, so that one class can own either descriptor.
int openInput(const std::string &name)
{
    return name == "-" ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3) : ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
}

} // namespace

InputFile::InputFile(const std::string &name)
    : m_name(name == "-" ? "standard input" : name), m_isStandardInput(name == "-"), m_descriptor(openInput(name)),
      m_buffer(kBufferBytes)
{
    examine();
}

InputFile::InputFile(std::span<const uint8_t> bytes)
    : m_name("memory"), m_descriptor(::memfd_create("input", MFD_CLOEXEC)), m_buffer(kBufferBytes)
{
    if (!m_descriptor.isOpen() || !writeAllAt(m_descriptor.get(), bytes, 0))
        failRead(m_name, errno);
    examine();
}

void InputFile::examine()
{
    struct stat status {};
    if (!m_descriptor.isOpen() || ::fstat(m_descriptor.get(), &status) != 0)
        failRead(m_name, errno);
    if (S_ISDIR(status.st_mode))
        failRead(m_name, EISDIR);
    if (!S_ISREG(status.st_mode))
        return;
    const off_t origin = ::lseek(m_descriptor.get(), 0, SEEK_CUR);
    if (origin < 0)
        failRead(m_name, errno);
    m_origin = static_cast<uint64_t>(origin);
    m_size = static_cast<uint64_t>(std::max<off_t>(status.st_size - origin, 0));
}

size_t InputFile::read(std::span<uint8_t> bytes)
{
    size_t done = takeBuffered(bytes);
    while (done < bytes.size()) {
        const std::span<uint8_t> rest = bytes.subspan(done);
        size_t count = 0;
        if (rest.size() < m_buffer.size()) {
            fillBuffer();
            count = takeBuffered(rest);
        } else {
            dropBuffer(position());
            count = readDirectly(rest);
            m_bufferOffset += count;
        }
        if (count == 0)
            break;
        done += count;
    }
    return done;
}

void InputFile::readExactly(std::span<uint8_t> bytes)
{
    if (read(bytes) != bytes.size())
        throw ToolError(ToolError::Kind::Damaged, m_name + " ends too early");
}

uint64_t InputFile::skip(uint64_t count)
{
    if (m_size && position() <= *m_size && count <= *m_size - position()) {
        seek(position() + count);
        return count;
    }
    uint64_t done = 0;
    while (done < count) {
        if (buffered() == 0)
            fillBuffer();
        if (buffered() == 0)
            break;
        const auto step = static_cast<size_t>(std::min<uint64_t>(buffered(), count - done));
        m_begin += step;
        done += step;
    }
    return done;
}

std::span<const uint8_t> InputFile::peek(size_t count)
{
    const size_t wanted = std::min(count, kPeekBytes);
    while (buffered() < wanted) {
        const size_t before = buffered();
        fillBuffer();
        if (buffered() == before)
            break;
    }
    return std::span<const uint8_t>(m_buffer).subspan(m_begin, std::min(wanted, buffered()));
}

uint64_t InputFile::position() const
{
    return m_bufferOffset + m_begin;
}

std::optional<uint64_t> InputFile::size() const
{
    return m_size;
}

void InputFile::checkEnd() const
{
    if (m_size && position() != *m_size)
        throw ToolError(ToolError::Kind::Read, "cannot read " + m_name + ": it changed while it was read");
}

void InputFile::drainPipe()
{
    if (!m_size)
        skip(std::numeric_limits<uint64_t>::max());
}

void InputFile::seek(uint64_t offset)
{
    if (!m_size)
        throw ToolError(ToolError::Kind::Read, m_name + " is no regular file: it can only be read in order");
    if (offset >= m_bufferOffset && offset - m_bufferOffset <= m_end) {
        m_begin = static_cast<size_t>(offset - m_bufferOffset);
        return;
    }
    constexpr auto kLastOffset = static_cast<uint64_t>(std::numeric_limits<off_t>::max());
    if (offset > kLastOffset - m_origin)
        failRead(m_name, EOVERFLOW);
    if (::lseek(m_descriptor.get(), static_cast<off_t>(m_origin + offset), SEEK_SET) < 0)
        failRead(m_name, errno);
    dropBuffer(offset);
}

bool InputFile::isStandardInput() const
{
    return m_isStandardInput;
}

const std::string &InputFile::name() const
{
    return m_name;
}

int InputFile::descriptor() const
{
    return m_descriptor.get();
}

size_t InputFile::takeBuffered(std::span<uint8_t> bytes)
{
    const size_t count = std::min(buffered(), bytes.size());
    std::copy_n(m_buffer.begin() + static_cast<std::ptrdiff_t>(m_begin), count, bytes.begin());
    m_begin += count;
    return count;
}

size_t InputFile::readDirectly(std::span<uint8_t> bytes)
{
    const ssize_t count = readSome(m_descriptor.get(), bytes);
    if (count < 0)
        failRead(m_name, errno);
    return static_cast<size_t>(count);
}

/// Adds what one read brings to what is buffered.
void InputFile::fillBuffer()
{
    const auto begin = m_buffer.begin() + static_cast<std::ptrdiff_t>(m_begin);
    std::copy_n(begin, buffered(), m_buffer.begin());
    m_bufferOffset += m_begin;
    m_end -= m_begin;
    m_begin = 0;
    m_end += readDirectly(std::span(m_buffer).subspan(m_end));
}

void InputFile::dropBuffer(uint64_t offset)
{
    m_bufferOffset = offset;
    m_begin = 0;
    m_end = 0;
}

} // namespace nurv

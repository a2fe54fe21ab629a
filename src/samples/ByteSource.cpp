// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/ByteSource.h"

#include "base/NurvFailure.h"
#include "base/SystemError.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Zeros that writers leave behind everything: up to a block of a file system.
constexpr std::int64_t kMostPadding = 4096;
constexpr std::int64_t kId3v1Bytes = 128;
constexpr std::int64_t kId3v2HeadBytes = 10;
constexpr std::int64_t kApeTagHeadBytes = 32;
constexpr int kMostTags = 16;

/// The size of the ID3v2 tag at the offset; 0: there is none.
std::int64_t id3v2Size(const ByteSource &source, std::int64_t offset)
{
    std::array<std::uint8_t, kId3v2HeadBytes> head{};
    if (!source.readAll(offset, head.data(), head.size()) || std::memcmp(head.data(), "ID3", 3) != 0)
        return 0;
    std::int64_t size = 0;
    for (int i = 6; i < 10; ++i) {
        if (head[static_cast<std::size_t>(i)] > 0x7F)
            return 0;
        size = size << 7 | head[static_cast<std::size_t>(i)];
    }
    const bool hasFooter = (head[5] & 0x10) != 0;
    return size + kId3v2HeadBytes * (hasFooter ? 2 : 1);
}

/// The size of the APE tag at the offset, with its head; 0: there is none.
std::int64_t apeTagSize(const ByteSource &source, std::int64_t offset)
{
    std::array<std::uint8_t, kApeTagHeadBytes> head{};
    if (!source.readAll(offset, head.data(), head.size()) || std::memcmp(head.data(), "APETAGEX", 8) != 0)
        return 0;
    return kApeTagHeadBytes + std::int64_t{qFromLittleEndian<quint32>(head.data() + 12)};
}

} // namespace

bool ByteSource::readAll(std::int64_t offset, void *bytes, std::size_t size) const
{
    return readAt(offset, bytes, size) == size;
}

RegularFile::RegularFile(const QString &path)
    : m_file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY))
{
    struct stat facts = {};
    if (!m_file.isOpen() || ::fstat(m_file.get(), &facts) != 0)
        throw NurvFailure(systemErrorText(errno));
    if (!S_ISREG(facts.st_mode))
        throw NurvFailure(u"it is no regular file"_s);
    m_size = facts.st_size;
}

std::size_t RegularFile::readAt(std::int64_t offset, void *bytes, std::size_t size) const
{
    if (offset < 0)
        return 0;
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = ::pread(m_file.get(), static_cast<char *>(bytes) + done, size - done,
                                      offset + static_cast<std::int64_t>(done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw NurvFailure(systemErrorText(errno));
        if (count == 0)
            break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

std::string RegularFile::lastingName() const
{
    return "/proc/self/fd/" + std::to_string(m_file.get());
}

std::size_t MemoryBytes::readAt(std::int64_t offset, void *bytes, std::size_t size) const
{
    if (offset < 0 || offset >= MemoryBytes::size())
        return 0;
    const auto from = static_cast<std::size_t>(offset);
    const std::size_t count = std::min(size, m_bytes.size() - from);
    // An empty vector may have no place to copy to, which memcpy does not allow for.
    std::copy_n(m_bytes.begin() + static_cast<std::ptrdiff_t>(from), count, static_cast<std::uint8_t *>(bytes));
    return count;
}

std::int64_t offsetBehindTags(const ByteSource &source)
{
    std::int64_t offset = 0;
    for (int tags = 0; tags < kMostTags; ++tags) {
        const std::int64_t size = id3v2Size(source, offset);
        if (size == 0)
            break;
        offset += size;
    }
    return offset;
}

bool holdsOnlyPadding(const ByteSource &source, std::int64_t from)
{
    const std::int64_t left = source.size() - from;
    if (left <= 0)
        return true;
    if (left > kMostPadding)
        return false;
    std::array<char, kMostPadding> bytes{};
    const std::size_t count = source.readAt(from, bytes.data(), static_cast<std::size_t>(left));
    return std::all_of(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count),
                       [](char byte) { return byte == 0; });
}

bool holdsOnlyTags(const ByteSource &source, std::int64_t from)
{
    for (int tags = 0; tags < kMostTags; ++tags) {
        if (holdsOnlyPadding(source, from))
            return true;
        std::array<char, 3> name{};
        if (source.size() - from == kId3v1Bytes && source.readAll(from, name.data(), name.size())
            && std::memcmp(name.data(), "TAG", name.size()) == 0)
            return true;
        std::int64_t size = apeTagSize(source, from);
        if (size == 0)
            size = id3v2Size(source, from);
        if (size == 0)
            return false;
        from += size;
    }
    return false;
}

} // namespace nurv

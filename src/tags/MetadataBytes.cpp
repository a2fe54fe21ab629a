// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/MetadataBytes.h"

#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "tags/HandedFile.h"

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::int64_t kMostRead = std::int64_t{128} << 20;
constexpr auto kDigest = QCryptographicHash::Blake2b_256;

/// Up to `length` bytes of the file; fewer at its end.
QByteArray readFile(int descriptor, std::int64_t offset, std::int64_t length)
{
    QByteArray bytes(length, Qt::Uninitialized);
    std::int64_t done = 0;
    while (done < length) {
        const ssize_t got =
            ::pread(descriptor, bytes.data() + done, static_cast<std::size_t>(length - done), offset + done);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            throw NurvFailure(u"it cannot be read: %1"_s.arg(systemErrorText(errno)));
        if (got == 0)
            break;
        done += got;
    }
    bytes.truncate(done);
    return bytes;
}

} // namespace

MetadataBytes MetadataBytes::ofFile(const QString &path)
{
    FileDescriptor descriptor = HandedFile::open(path);
    // Non-blocking, so that a FIFO in a regular file's place cannot hold the caller.
    if (!descriptor.isOpen())
        descriptor = FileDescriptor(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat facts = {};
    if (!descriptor.isOpen() || ::fstat(descriptor.get(), &facts) != 0)
        throw NurvFailure(u"it cannot be opened: %1"_s.arg(systemErrorText(errno)));
    if (!S_ISREG(facts.st_mode))
        throw NurvFailure(u"it is no regular file"_s);
    MetadataBytes bytes;
    bytes.m_file = std::make_shared<File>(File{.descriptor = std::move(descriptor), .mayBeRead = kMostRead});
    bytes.m_size = facts.st_size;
    return bytes;
}

MetadataBytes::MetadataBytes(QByteArray bytes) : m_bytes(std::move(bytes)), m_size(m_bytes.size()) {}

QByteArray MetadataBytes::read(std::int64_t offset, std::int64_t length) const
{
    if (offset < 0 || length < 0 || offset > m_size || length > m_size - offset)
        throw NurvFailure(u"it breaks off in its tags"_s);
    if (!m_file)
        return m_bytes.mid(offset, length);
    if (length > m_file->mayBeRead)
        throw NurvFailure(u"they have more than 128 MiB"_s);
    m_file->mayBeRead -= length;
    QByteArray bytes = readFile(m_file->descriptor.get(), offset, length);
    if (bytes.size() != length)
        throw NurvFailure(u"it breaks off in its tags"_s);
    return bytes;
}

QByteArray MetadataBytes::peek(std::int64_t offset, std::int64_t length) const
{
    if (offset < 0 || offset >= m_size || length <= 0)
        return {};
    const std::int64_t available = std::min({length, m_size - offset, kMostPeeked});
    return m_file ? readFile(m_file->descriptor.get(), offset, available) : m_bytes.mid(offset, available);
}

QByteArray MetadataBytes::digest(std::int64_t offset, std::int64_t length) const
{
    if (offset < 0 || length < 0 || offset > m_size || length > m_size - offset)
        throw NurvFailure(u"it breaks off in its tags"_s);
    QCryptographicHash hash(kDigest);
    while (length > 0) {
        const QByteArray bytes = peek(offset, length);
        if (bytes.isEmpty())
            throw NurvFailure(u"it breaks off in its tags"_s);
        hash.addData(bytes);
        offset += bytes.size();
        length -= bytes.size();
    }
    return hash.result();
}

bool MetadataBytes::isZero(std::int64_t offset, std::int64_t length) const
{
    while (length > 0) {
        const QByteArray bytes = peek(offset, length);
        if (bytes.count('\0') != bytes.size())
            return false;
        if (bytes.isEmpty())
            break;
        offset += bytes.size();
        length -= bytes.size();
    }
    return true;
}

QByteArray metadataDigest(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, kDigest);
}

} // namespace nurv

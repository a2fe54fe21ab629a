// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/AudioOutputFile.h"

#include "base/Log.h"
#include "base/SystemError.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nurv {

bool AudioOutputFile::fail()
{
    if (m_error == 0) {
        m_error = errno;
        qCWarning(audioLog).noquote() << m_path << "cannot be written:" << systemErrorText(m_error);
    }
    return false;
}

AudioFileStatus AudioOutputFile::create(const QString &path,
                                        const std::function<bool(const struct stat &)> &isForbidden)
{
    m_path = path;
    // Emptied only once it is known not to be the source under another name; and
    // non-blocking, so that a pipe without a reader cannot hold the caller.
    m_file = FileDescriptor(
        ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666));
    struct stat facts = {};
    if (!m_file.isOpen() || ::fstat(m_file.get(), &facts) != 0) {
        fail();
        const bool isDenied = m_error == EACCES || m_error == EPERM || m_error == EROFS || m_error == EISDIR;
        return isDenied ? AudioFileStatus::PermissionDenied : AudioFileStatus::Unspecified;
    }
    if (!S_ISREG(facts.st_mode) || isForbidden(facts)) {
        m_file = FileDescriptor();
        return AudioFileStatus::PermissionDenied;
    }
    if (::ftruncate(m_file.get(), 0) != 0) {
        fail();
        return AudioFileStatus::Unspecified;
    }
    return AudioFileStatus::Ok;
}

bool AudioOutputFile::write(const void *bytes, std::size_t size)
{
    if (m_error != 0)
        return false;
    const char *next = static_cast<const char *>(bytes);
    while (size > 0) {
        const ssize_t count = ::write(m_file.get(), next, size);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return fail();
        next += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

std::int64_t AudioOutputFile::readAt(std::int64_t offset, void *bytes, std::size_t size) const
{
    ssize_t count = 0;
    do {
        count = ::pread(m_file.get(), bytes, size, offset);
    } while (count < 0 && errno == EINTR);
    return count;
}

bool AudioOutputFile::seek(std::int64_t offset)
{
    return ::lseek(m_file.get(), offset, SEEK_SET) == offset || fail();
}

std::int64_t AudioOutputFile::position() const
{
    return ::lseek(m_file.get(), 0, SEEK_CUR);
}

std::int64_t AudioOutputFile::size() const
{
    struct stat facts = {};
    return ::fstat(m_file.get(), &facts) == 0 ? facts.st_size : -1;
}

bool AudioOutputFile::close()
{
    if (m_file.isOpen() && !m_file.close())
        fail();
    return m_error == 0;
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/ReservedFile.h"

#include "files/FileStatus.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>

namespace nurv {

bool ReservedFile::make(const QString &path)
{
    m_entry.emplace(path);
    m_file = FileDescriptor(
        ::open(QFile::encodeName(path).constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC | O_NOFOLLOW, 0666));
    return m_file.isOpen();
}

bool ReservedFile::isInPlace() const
{
    struct stat own {};
    const std::optional<struct stat> there = m_entry ? m_entry->facts() : std::nullopt;
    return there && m_file.isOpen() && ::fstat(m_file.get(), &own) == 0 && isSameFile(own, *there);
}

bool ReservedFile::remove() const
{
    return !isInPlace() || m_entry->remove();
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/JournalFile.h"

#include "base/Log.h"
#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "base/Version.h"
#include "files/UnnamedFile.h"
#include "journal/FileIdentity.h"
#include "journal/JournalFolder.h"
#include "journal/JournalLine.h"
#include "process/ProcessMark.h"

#include <QFile>

#include <mutex>
#include <utility>
#include <vector>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

QByteArray headerLine(std::int64_t beganNs)
{
    return journalLine({"nurv-journal", "1", shortVersionString().toUtf8(), bootIdentifier(),
                        QByteArray::number(::getpid()), processMark(),
                        QByteArray::number(static_cast<qint64>(beganNs))});
}

/// Keeps the lock of a file until the process ends.
void keepOpen(FileDescriptor file)
{
    static std::mutex lock;
    static auto *const files = new std::vector<FileDescriptor>;
    const std::scoped_lock guard(lock);
    files->push_back(std::move(file));
}

[[noreturn]] void fail(const QString &step, int error)
{
    throw NurvFailure(u"%1: %2: %3"_s.arg(journalFolderPath(), step, systemErrorText(error)));
}

} // namespace

JournalFile::JournalFile(const QByteArray &lines) : m_folder(openJournalFolder(true)), m_name(newJournalName())
{
    if (!m_folder.isOpen())
        fail(u"the folder cannot be used"_s, errno);
    const std::int64_t beganNs = exactClockNow();
    const QByteArray header = headerLine(beganNs);
    const QByteArray bytes = header + stateLine(true) + lines;
    if (bytes.size() > kLargest)
        fail(u"there is too much to note"_s, EFBIG);
    // Nobody must take it for one left behind before it is locked, so it gets its name then. Where there are
    // no files without one, it has another.
    m_file = unnamedFile::open(".", m_folder.get(), S_IRUSR | S_IWUSR);
    const QByteArray formerName = m_file.isOpen() ? QByteArray() : unfinishedJournalName(m_name);
    if (!m_file.isOpen()) {
        m_file = FileDescriptor(::openat(m_folder.get(), formerName.constData(),
                                         O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    }
    if (!m_file.isOpen())
        fail(u"no file can be made"_s, errno);
    const auto giveName = [&] {
        return formerName.isEmpty()
                   ? unnamedFile::name(m_file, m_name.toStdString(), m_folder.get())
                   : ::renameat(m_folder.get(), formerName.constData(), m_folder.get(), m_name.constData()) == 0;
    };
    if (::flock(m_file.get(), LOCK_EX | LOCK_NB) != 0 || !write(bytes, 0) || ::fsync(m_file.get()) != 0 || !giveName()
        || ::fsync(m_folder.get()) != 0) {
        const int error = errno;
        if (!formerName.isEmpty())
            ::unlinkat(m_folder.get(), formerName.constData(), 0);
        ::unlinkat(m_folder.get(), m_name.constData(), 0);
        fail(u"the file cannot be written"_s, error);
    }
    // From here on no file is stamped with an earlier time than the journal's.
    waitForFileClock(beganNs);
    m_stateAt = header.size();
    m_firstSize = bytes.size();
    m_size = m_firstSize;
}

JournalFile::~JournalFile()
{
    if (m_file.isOpen())
        keepOpen(std::move(m_file));
}

void JournalFile::append(const QByteArray &lines)
{
    if (!m_file.isOpen())
        return;
    // What follows a line that was lost stands in its place.
    if (m_size + lines.size() > kLargest)
        noteGap(EFBIG);
    else if (write(lines, m_size))
        m_size += lines.size();
    else
        noteGap(errno);
}

void JournalFile::flush()
{
    if (m_file.isOpen() && ::fdatasync(m_file.get()) != 0)
        noteGap(errno);
}

void JournalFile::shrink()
{
    if (m_file.isOpen() && ::ftruncate(m_file.get(), m_firstSize) == 0)
        m_size = m_firstSize;
}

void JournalFile::remove()
{
    if (!m_file.isOpen())
        return;
    // Removed while it is locked, so that nobody finds it unlocked.
    if (::unlinkat(m_folder.get(), m_name.constData(), 0) != 0)
        qCWarning(journalLog).noquote() << "Not removed:" << journalFolderPath() << m_name << systemErrorText(errno);
    m_file = FileDescriptor();
}

bool JournalFile::write(const QByteArray &bytes, std::int64_t at) const
{
    qsizetype written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::pwrite(m_file.get(), bytes.constData() + written,
                                       static_cast<std::size_t>(bytes.size() - written), at + written);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0) {
            errno = count == 0 ? ENOSPC : errno;
            return false;
        }
        written += count;
    }
    return true;
}

void JournalFile::noteGap(int error)
{
    if (std::exchange(m_hasGap, true))
        return;
    qCWarning(journalLog).noquote() << "After a crash not every file will be known:" << journalFolderPath()
                                    << systemErrorText(error);
    // Without that remark what is in the file would be believed: better there is none.
    if (!write(stateLine(false), m_stateAt))
        remove();
}

QByteArray bootIdentifier()
{
    static const auto *const identifier = [] {
        QFile file(u"/proc/sys/kernel/random/boot_id"_s);
        constexpr qint64 kLongest = 64;
        return new QByteArray(file.open(QIODevice::ReadOnly) ? file.read(kLongest).trimmed() : QByteArray());
    }();
    return *identifier;
}

QByteArray stateLine(bool isWhole)
{
    return journalLine({"marks", isWhole ? "whole" : "holey"});
}

} // namespace nurv

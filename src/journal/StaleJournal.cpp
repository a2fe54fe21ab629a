// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/StaleJournal.h"

#include "base/Log.h"
#include "base/SystemError.h"
#include "files/FolderStream.h"
#include "files/WriteAll.h"
#include "journal/JournalFile.h"
#include "journal/JournalFolder.h"
#include "journal/JournalLine.h"

#include <QFile>

#include <cerrno>
#include <memory>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::int64_t kDayNs = 24LL * 60 * 60 * 1'000'000'000;

bool isOurFile(const struct stat &facts)
{
    return S_ISREG(facts.st_mode) && facts.st_uid == ::geteuid();
}

/// Removes a journal that was killed while it was written, before anything was begun.
void removeUnfinished(const FileDescriptor &folder, const QByteArray &name)
{
    struct stat facts = {};
    if (::fstatat(folder.get(), name.constData(), &facts, AT_SYMLINK_NOFOLLOW) == 0 && isOurFile(facts)
        && nanoseconds(facts.st_ctim) < fileClockNow() - kDayNs) {
        ::unlinkat(folder.get(), name.constData(), 0);
    }
}

/// Why the journal must be left as it is.
QString obstacle(const struct stat &facts)
{
    if (!S_ISREG(facts.st_mode))
        return u"it is no regular file"_s;
    if (facts.st_uid != ::geteuid())
        return u"it belongs to somebody else"_s;
    if (facts.st_nlink != 1)
        return u"it has other names"_s;
    return facts.st_size > JournalFile::kLargest ? u"it is too large"_s : QString();
}

bool isStillUnder(const FileDescriptor &folder, const QByteArray &name, const struct stat &facts)
{
    struct stat named = {};
    return ::fstatat(folder.get(), name.constData(), &named, AT_SYMLINK_NOFOLLOW) == 0 && named.st_ino == facts.st_ino
           && named.st_dev == facts.st_dev;
}

} // namespace

QList<QByteArray> StaleJournal::names(const FileDescriptor &folder)
{
    QList<QByteArray> found;
    // A descriptor of its own: the position in the folder belongs to it.
    const int descriptor = ::openat(folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const FolderStream entries(descriptor < 0 ? nullptr : ::fdopendir(descriptor));
    if (!entries) {
        if (descriptor >= 0)
            ::close(descriptor);
        return found;
    }
    while (const dirent *const entry = ::readdir(entries.get())) {
        const QByteArray name(entry->d_name);
        if (isJournalName(name))
            found.append(name);
        else if (isUnfinishedJournalName(name))
            removeUnfinished(folder, name);
    }
    return found;
}

std::optional<StaleJournal> StaleJournal::open(const FileDescriptor &folder, const QByteArray &name)
{
    std::optional<StaleJournal> journal = hold(folder, name);
    if (journal && journal->m_contents.defect.isEmpty())
        journal->m_contents = JournalContents::read(journal->m_file.get());
    return journal;
}

std::optional<StaleJournal> StaleJournal::hold(const FileDescriptor &folder, const QByteArray &name)
{
    StaleJournal journal;
    // Writable, since its process may have failed to note something where it is not; and
    // without O_NONBLOCK a named pipe would hold us for ever.
    journal.m_file =
        FileDescriptor(::openat(folder.get(), name.constData(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!journal.m_file.isOpen()) {
        if (errno == ENOENT)
            return std::nullopt;
        journal.m_contents.defect = systemErrorText(errno);
        return journal;
    }
    struct stat facts = {};
    if (::fstat(journal.m_file.get(), &facts) != 0)
        return std::nullopt;
    journal.m_contents.defect = obstacle(facts);
    if (!journal.m_contents.defect.isEmpty())
        return journal;
    if (::flock(journal.m_file.get(), LOCK_EX | LOCK_NB) != 0 || !isStillUnder(folder, name, facts))
        return std::nullopt;
    return journal;
}

bool StaleJournal::append(const FileDescriptor &folder, const QByteArray &name, const QByteArray &lines)
{
    const std::optional<StaleJournal> journal = hold(folder, name);
    // Behind the end of a line that its process did not come to write.
    return journal && journal->m_contents.defect.isEmpty() && ::lseek(journal->m_file.get(), 0, SEEK_END) >= 0
           && writeAll(journal->m_file.get(), '\n' + lines);
}

int StaleJournal::remove(const FileDescriptor &folder, const QByteArray &name) const
{
    return ::unlinkat(folder.get(), name.constData(), 0) == 0 || errno == ENOENT ? 0 : errno;
}

StaleNotes StaleNotes::find(const std::function<bool(const QByteArray &output)> &isPlanned)
{
    StaleNotes notes;
    const FileDescriptor folder = openJournalFolder(false);
    if (!folder.isOpen())
        return notes;
    for (const QByteArray &name : StaleJournal::names(folder)) {
        const std::optional<StaleJournal> journal = StaleJournal::open(folder, name);
        if (!journal || !journal->contents().defect.isEmpty())
            continue;
        for (const PlannedOutput &planned : journal->contents().outputs) {
            if (!planned.hasEnded && isPlanned(planned.output))
                notes.m_places[planned.output].append({.journal = name, .number = planned.number});
        }
    }
    return notes;
}

void StaleNotes::noteMadeAnew(const QByteArray &output)
{
    const QList<Place> places = m_places.take(output);
    if (places.isEmpty())
        return;
    const FileDescriptor folder = openJournalFolder(false);
    for (const Place &place : places) {
        const QByteArray line = journalLine({"ended", QByteArray::number(static_cast<qint64>(place.number))});
        const bool isGone = ::faccessat(folder.get(), place.journal.constData(), F_OK, AT_SYMLINK_NOFOLLOW) != 0;
        if (!isGone && !StaleJournal::append(folder, place.journal, line))
            qCWarning(journalLog).noquote() << "Not settled in an old journal:" << QFile::decodeName(output);
    }
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagEditStream.h"

#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "files/FileFlush.h"
#include "files/FileStatus.h"
#include "journal/NotedTemporary.h"
#include "tags/HandedFile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Of the file systems of today. A block goes to the disk as a whole, and a write within one ends before a signal does.
constexpr std::int64_t kBlockBytes = 4096;

/// Returns 0 or the value of errno.
int writeFully(int descriptor, const char *data, std::size_t size, std::int64_t offset)
{
    while (size > 0) {
        const ssize_t written = ::pwrite(descriptor, data, size, offset);
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        data += written;
        size -= static_cast<std::size_t>(written);
        offset += written;
    }
    return 0;
}

/// Reads up to `size` bytes; sets `error` to the value of errno when that fails.
std::size_t readFully(int descriptor, char *data, std::size_t size, std::int64_t offset, int &error)
{
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = ::pread(descriptor, data + done, size - done, offset + static_cast<std::int64_t>(done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            error = errno;
        if (got <= 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

/// Appends a range of one file to what `target` holds up to `targetOffset`.
/// Returns 0 or the value of errno.
int copyRange(int source, std::int64_t offset, std::int64_t length, int target, std::int64_t targetOffset)
{
    while (length > 0) {
        off_t from = offset;
        off_t to = targetOffset;
        const ssize_t copied = ::copy_file_range(source, &from, target, &to, static_cast<std::size_t>(length), 0);
        if (copied <= 0)
            break; // Not every file system can; reading and writing tells what is wrong.
        offset += copied;
        targetOffset += copied;
        length -= copied;
    }
    std::vector<char> buffer(length > 0 ? std::size_t{1} << 20 : 0);
    while (length > 0) {
        int error = 0;
        const auto wanted =
            static_cast<std::size_t>(std::min<std::int64_t>(length, static_cast<std::int64_t>(buffer.size())));
        const std::size_t got = readFully(source, buffer.data(), wanted, offset, error);
        if (got < wanted)
            return error != 0 ? error : EIO; // The file has been cut under our hands.
        if (const int failure = writeFully(target, buffer.data(), got, targetOffset); failure != 0)
            return failure;
        offset += static_cast<std::int64_t>(got);
        targetOffset += static_cast<std::int64_t>(got);
        length -= static_cast<std::int64_t>(got);
    }
    return 0;
}

/// Gives the replacement what the file carries besides its bytes. What may not be
/// carried over (another user's ownership) is left.
void copyAttributes(int source, int target)
{
    struct stat info = {};
    if (::fstat(source, &info) != 0)
        return;
    if (::fchown(target, info.st_uid, info.st_gid) != 0 && ::fchown(target, static_cast<uid_t>(-1), info.st_gid) != 0)
        info.st_mode &= static_cast<mode_t>(~(S_ISUID | S_ISGID));
    static_cast<void>(::fchmod(target, info.st_mode & 07777));

    const ssize_t namesSize = ::flistxattr(source, nullptr, 0);
    if (namesSize <= 0)
        return;
    std::string names(static_cast<std::size_t>(namesSize), '\0');
    const ssize_t gotNames = ::flistxattr(source, names.data(), names.size());
    for (std::size_t at = 0; gotNames > 0 && at < static_cast<std::size_t>(gotNames);) {
        const std::string name = names.c_str() + at;
        at += name.size() + 1;
        const ssize_t size = ::fgetxattr(source, name.c_str(), nullptr, 0);
        std::string value(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
        if (size >= 0 && ::fgetxattr(source, name.c_str(), value.data(), value.size()) == size)
            static_cast<void>(::fsetxattr(target, name.c_str(), value.data(), value.size(), 0));
    }
}

} // namespace

TagEditStream::TagEditStream(const QString &path, Access access) : m_readOnly(access == Access::Read)
{
    FileDescriptor file = HandedFile::open(path);
    m_isHanded = file.isOpen();
    if (!m_isHanded) {
        m_path = QFile::encodeName(QFileInfo(path).canonicalFilePath());
        // Non-blocking, so that a FIFO in a regular file's place cannot hold the job.
        const int mode = (m_readOnly ? O_RDONLY : O_RDWR) | O_CLOEXEC | O_NONBLOCK;
        file = FileDescriptor(m_path.isEmpty() ? -1 : ::open(m_path.constData(), mode));
    }
    struct stat info = {};
    if (!file.isOpen() || ::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode))
        return;
    m_file = std::move(file);
    m_opened = info;
    m_fileLength = info.st_size;
    m_length = m_fileLength;
    if (m_length > 0)
        m_pieces.push_back({.isNew = false, .offset = 0, .length = m_length});
    if (const Edits *const left = m_isHanded ? HandedFile::leftEdits() : nullptr)
        apply(*left);
}

TagLib::FileName TagEditStream::name() const
{
    return m_path.constData();
}

bool TagEditStream::readOnly() const
{
    return m_readOnly;
}

bool TagEditStream::isOpen() const
{
    return m_file.isOpen();
}

TagEditStream::Offset TagEditStream::tell() const
{
    return m_position;
}

TagEditStream::Offset TagEditStream::length()
{
    return m_length;
}

void TagEditStream::seek(Offset offset, Position position)
{
    std::int64_t origin = 0;
    if (position == Current)
        origin = m_position;
    else if (position == End)
        origin = m_length;
    std::int64_t target = 0;
    if (!__builtin_add_overflow(origin, offset, &target) && target >= 0)
        m_position = target;
}

TagLib::ByteVector TagEditStream::readBlock(Size length)
{
    if (!isOpen() || m_position >= m_length)
        return {};
    const std::int64_t available = m_length - m_position;
    // TagLib counts the bytes of a vector in 32 bits.
    const auto wanted = static_cast<std::int64_t>(
        std::min<unsigned long>({length, static_cast<unsigned long>(available), 0x7fffffffUL}));
    if (m_guard && !m_guard->mayRead(wanted))
        return {};
    TagLib::ByteVector block(static_cast<unsigned int>(wanted), '\0');
    std::int64_t done = 0;
    std::int64_t pieceStart = 0;
    for (const Piece &piece : m_pieces) {
        const std::int64_t skip = m_position + done - pieceStart;
        pieceStart += piece.length;
        if (skip >= piece.length)
            continue;
        const std::int64_t size = std::min(piece.length - skip, wanted - done);
        char *target = block.data() + done;
        if (piece.isNew) {
            std::copy_n(m_newBytes.data() + piece.offset + skip, size, target);
        } else {
            int error = 0;
            const std::size_t got =
                readFully(m_file.get(), target, static_cast<std::size_t>(size), piece.offset + skip, error);
            if (got < static_cast<std::size_t>(size)) {
                m_readError = error != 0 ? error : EIO;
                return {};
            }
        }
        done += size;
        if (done == wanted)
            break;
    }
    const std::int64_t start = m_position;
    m_position += wanted;
    return m_guard && !m_guard->mayHave(start, block) ? TagLib::ByteVector() : block;
}

std::optional<QString> TagEditStream::readingFailure() const
{
    if (m_guard && m_guard->refusal())
        return m_guard->refusal();
    return m_readError != 0 ? std::optional(systemErrorText(m_readError)) : std::nullopt;
}

void TagEditStream::refuseUnreadFrames() const
{
    if (m_guard && m_guard->unreadFrame())
        throw NurvFailure(
            u"Its ID3 frame \"%1\" cannot be read, and would be lost with all behind it."_s.arg(*m_guard->unreadFrame()));
}

std::optional<QString> TagEditStream::foreignChange() const
{
    if (m_isHanded)
        return std::nullopt;
    const std::optional<struct stat> now = statusOf(QFile::decodeName(m_path));
    if (now && isUntouched(m_opened, *now))
        return std::nullopt;
    return u"another program has changed or replaced the file meanwhile"_s;
}

void TagEditStream::writeBlock(const TagLib::ByteVector &data)
{
    if (m_position > m_length) {
        const std::string gap(static_cast<std::size_t>(m_position - m_length), '\0');
        replaceRange(m_length, 0, gap.data(), gap.size());
    }
    replaceRange(m_position, data.size(), data.data(), data.size());
    m_position += data.size();
}

void TagEditStream::insert(const TagLib::ByteVector &data, Start start, Size replace)
{
    replaceRange(static_cast<std::int64_t>(start), static_cast<std::int64_t>(replace), data.data(), data.size());
}

void TagEditStream::removeBlock(Start start, Size length)
{
    replaceRange(static_cast<std::int64_t>(start), static_cast<std::int64_t>(length), nullptr, 0);
}

void TagEditStream::truncate(Offset length)
{
    if (length >= 0 && length < m_length)
        replaceRange(length, m_length - length, nullptr, 0);
}

std::size_t TagEditStream::splitAt(std::int64_t position)
{
    std::int64_t pieceStart = 0;
    for (std::size_t index = 0; index < m_pieces.size(); ++index) {
        if (pieceStart == position)
            return index;
        Piece &piece = m_pieces[index];
        if (position < pieceStart + piece.length) {
            const std::int64_t head = position - pieceStart;
            const Piece tail{.isNew = piece.isNew, .offset = piece.offset + head, .length = piece.length - head};
            piece.length = head;
            m_pieces.insert(m_pieces.begin() + static_cast<std::ptrdiff_t>(index) + 1, tail);
            return index + 1;
        }
        pieceStart += piece.length;
    }
    return m_pieces.size();
}

void TagEditStream::replaceRange(std::int64_t start, std::int64_t length, const char *data, std::size_t size)
{
    if (m_readOnly || !isOpen())
        return;
    start = std::clamp<std::int64_t>(start, 0, m_length);
    length = std::clamp<std::int64_t>(length, 0, m_length - start);
    if (length == 0 && size == 0)
        return;
    const auto first = static_cast<std::ptrdiff_t>(splitAt(start));
    const auto last = static_cast<std::ptrdiff_t>(splitAt(start + length));
    const auto place = m_pieces.erase(m_pieces.begin() + first, m_pieces.begin() + last);
    if (size > 0) {
        const auto offset = static_cast<std::int64_t>(m_newBytes.size());
        m_newBytes.append(data, size);
        m_pieces.insert(place, {.isNew = true, .offset = offset, .length = static_cast<std::int64_t>(size)});
    }
    m_length += static_cast<std::int64_t>(size) - length;
    m_isEdited = true;
}

bool TagEditStream::keepsBytesInPlace() const
{
    std::int64_t pieceStart = 0;
    for (const Piece &piece : m_pieces) {
        if (!piece.isNew && piece.offset != pieceStart)
            return false;
        pieceStart += piece.length;
    }
    return true;
}

std::optional<TagEditStream::Overwrite> TagEditStream::onlyOverwrite() const
{
    if (m_length != m_fileLength || !keepsBytesInPlace())
        return std::nullopt;
    std::optional<Overwrite> found;
    std::int64_t pieceStart = 0;
    for (const Piece &piece : m_pieces) {
        const std::int64_t start = std::exchange(pieceStart, pieceStart + piece.length);
        if (!piece.isNew)
            continue;
        std::string oldBytes(static_cast<std::size_t>(piece.length), '\0');
        int error = 0;
        if (readFully(m_file.get(), oldBytes.data(), oldBytes.size(), start, error) < oldBytes.size())
            return std::nullopt;
        const auto newBytes =
            std::string_view(m_newBytes).substr(static_cast<std::size_t>(piece.offset), oldBytes.size());
        const auto head = std::mismatch(newBytes.begin(), newBytes.end(), oldBytes.begin()).first - newBytes.begin();
        if (static_cast<std::size_t>(head) == newBytes.size())
            continue;
        if (found)
            return std::nullopt;
        const auto tail =
            std::mismatch(newBytes.rbegin(), newBytes.rend(), oldBytes.rbegin()).first - newBytes.rbegin();
        const auto count = newBytes.size() - static_cast<std::size_t>(head + tail);
        found = {.start = start + head,
                 .newBytes = std::string(newBytes.substr(static_cast<std::size_t>(head), count)),
                 .oldBytes = oldBytes.substr(static_cast<std::size_t>(head), count)};
    }
    return found.value_or(Overwrite());
}

std::optional<QString> TagEditStream::commit()
{
    if (std::optional<QString> reason = readingFailure())
        return reason;
    if (!m_isEdited || leaveEdits())
        return std::nullopt;
    const std::optional<Overwrite> overwrite = onlyOverwrite();
    if (!overwrite)
        return commitByReplacement();
    if (overwrite->newBytes.empty())
        return std::nullopt;
    const auto last = overwrite->start + static_cast<std::int64_t>(overwrite->newBytes.size()) - 1;
    return overwrite->start / kBlockBytes == last / kBlockBytes ? commitInPlace(*overwrite) : commitByReplacement();
}

FileDescriptor TagEditStream::reopenedForReading() const
{
    const QByteArray name = "/proc/self/fd/" + QByteArray::number(m_file.get());
    return FileDescriptor(::open(name.constData(), O_RDONLY | O_CLOEXEC));
}

void TagEditStream::apply(Edits edits)
{
    m_isEdited = edits.isEdited;
    m_pieces = std::move(edits.pieces);
    m_newBytes = std::move(edits.newBytes);
    m_length = 0;
    for (const Piece &piece : m_pieces)
        m_length += piece.length;
}

bool TagEditStream::leaveEdits()
{
    if (!m_isHanded)
        return false;
    HandedFile::leaveEdits({.isEdited = m_isEdited, .pieces = m_pieces, .newBytes = m_newBytes});
    return true;
}

std::optional<QString> TagEditStream::commitInPlace(const Overwrite &overwrite)
{
    if (std::optional<QString> reason = foreignChange())
        return reason;
    const int file = m_file.get();
    int error = writeFully(file, overwrite.newBytes.data(), overwrite.newBytes.size(), overwrite.start);
    if (error == 0 && ::fdatasync(file) != 0)
        error = errno;
    if (error == 0)
        return std::nullopt;
    static_cast<void>(writeFully(file, overwrite.oldBytes.data(), overwrite.oldBytes.size(), overwrite.start));
    return systemErrorText(error);
}

std::optional<QString> TagEditStream::writeTo(const QString &path)
{
    if (std::optional<QString> reason = readingFailure())
        return reason;
    FileDescriptor target(::open(QFile::encodeName(path).constData(), O_WRONLY | O_TRUNC | O_CLOEXEC | O_NOFOLLOW));
    if (!target.isOpen())
        return systemErrorText(errno);
    int error = writePieces(target.get());
    if (error == 0)
        error = finish(target);
    return error == 0 ? std::nullopt : std::optional(systemErrorText(error));
}

std::optional<QString> TagEditStream::replaceBy(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    FileDescriptor replacement(::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    const int error = replacement.isOpen() ? finish(replacement) : errno;
    return error == 0 ? rename(name) : systemErrorText(error);
}

int TagEditStream::finish(FileDescriptor &target) const
{
    copyAttributes(m_file.get(), target.get());
    return ::fsync(target.get()) == 0 && target.close() ? 0 : errno;
}

int TagEditStream::writePieces(int target) const
{
    // Where the file system lets two files share blocks, what does not move costs nothing.
    const bool isShared = keepsBytesInPlace() && ::ioctl(target, FICLONE, m_file.get()) == 0;
    if (isShared && ::ftruncate(target, m_length) != 0)
        return errno;
    std::int64_t pieceStart = 0;
    for (const Piece &piece : m_pieces) {
        const std::int64_t start = std::exchange(pieceStart, pieceStart + piece.length);
        if (isShared && !piece.isNew)
            continue;
        const int error = piece.isNew ? writeFully(target, m_newBytes.data() + piece.offset,
                                                   static_cast<std::size_t>(piece.length), start)
                                      : copyRange(m_file.get(), piece.offset, piece.length, target, start);
        if (error != 0)
            return error;
    }
    return 0;
}

std::optional<QString> TagEditStream::commitByReplacement()
{
    const QByteArray folder = m_path.left(m_path.lastIndexOf('/') + 1);
    QByteArray replacementPath = folder + ".nurv-tags-XXXXXX";
    FileDescriptor replacement(::mkostemp(replacementPath.data(), O_CLOEXEC));
    if (!replacement.isOpen())
        return systemErrorText(errno);
    const NotedTemporary note(QFile::decodeName(replacementPath));

    int error = writePieces(replacement.get());
    if (error == 0)
        error = finish(replacement);
    std::optional<QString> reason = error == 0 ? rename(replacementPath) : systemErrorText(error);
    if (reason)
        ::unlink(replacementPath.constData());
    return reason;
}

std::optional<QString> TagEditStream::rename(const QByteArray &replacementPath)
{
    if (std::optional<QString> reason = foreignChange())
        return reason;
    if (std::rename(replacementPath.constData(), m_path.constData()) != 0)
        return systemErrorText(errno);
    // Without that an old but whole file may come back.
    static_cast<void>(flushFolderToDisk(QFileInfo(QFile::decodeName(m_path)).path()));
    return std::nullopt;
}

} // namespace nurv

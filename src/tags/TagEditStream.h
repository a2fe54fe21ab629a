// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"
#include "tags/TagLibGuard.h"

#include <QByteArray>
#include <QString>

#include <taglib.h>
#include <tiostream.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace nurv {

/// A file for TagLib to edit that stays untouched until `commit`.
///
///     TagLib ──> pieces: [of the file] [new bytes] [of the file] ... ──commit──> file
///
/// A commit writes the new file beside the old one, flushes it and renames it over, with mode, owner
/// and extended attributes kept. Only where no byte moves, and what differs lies within one block of
/// the file system, that is overwritten in place. So a full disk, a failing disk, a crash or a kill
/// leaves the old file or the new one. A file that somebody else has written to since it was opened
/// stays as it is.
///
/// Belongs to one thread at a time. Positions are bytes.
class TagEditStream final : public TagLib::IOStream {
public:
    enum class Access { Read, Edit };

    // What TagLib counts bytes with.
#if TAGLIB_MAJOR_VERSION >= 2
    using Offset = TagLib::offset_t;
    using Start = TagLib::offset_t; ///< of a range that is replaced or removed
    using Size = std::size_t;
#else
    using Offset = long;
    using Start = unsigned long; ///< of a range that is replaced or removed
    using Size = unsigned long;
#endif

    /// A run of bytes, of the file or of the new ones.
    struct Piece {
        bool isNew = false;
        std::int64_t offset = 0;
        std::int64_t length = 0;
    };
    /// What an edited file consists of.
    struct Edits {
        bool isEdited = false;
        std::vector<Piece> pieces;
        std::string newBytes;
    };

    /// Opens a regular file; links are followed. `isOpen` tells whether that worked;
    /// for Edit it must be writable. Of a file that another process has handed over (HandedFile)
    /// nothing is written here: a commit leaves the edits with it, and who opens it again sees them.
    TagEditStream(const QString &path, Access access);

    /// From now on blocks are read for TagLib, within the limits of TagLibGuard.
    void guardReading() { m_guard.emplace(); }
    /// Why what was read of the file is not what it holds, as the end of a sentence: a refusal of
    /// the guard, or the disk failed. Nothing when all was read.
    [[nodiscard]] std::optional<QString> readingFailure() const;
    /// The same of what somebody else has done to the file since it was opened: it is another one of that name, or
    /// was written to. Nothing for a handed file.
    [[nodiscard]] std::optional<QString> foreignChange() const;

    /// Throws NurvFailure when TagLib has not read all frames of an ID3v2 tag (TagLibGuard): a file that it saves has lost
    /// the others.
    void refuseUnreadFrames() const;

    /// The same file, for reading only; not open when that cannot be had.
    [[nodiscard]] FileDescriptor reopenedForReading() const;
    [[nodiscard]] std::int64_t fileLength() const { return m_fileLength; }
    [[nodiscard]] bool isEdited() const { return m_isEdited; }
    /// Whether another process has handed the file over.
    [[nodiscard]] bool isHanded() const { return m_isHanded; }
    /// Takes edits that were made elsewhere in place of its own. Their pieces must lie within the file
    /// and the new bytes.
    void apply(Edits edits);

    /// Makes the edits the file's contents. Returns nothing on success, else why not;
    /// then the file is as it was. Refuses when any read before has failed, since the
    /// edits may rest on it, and after a foreign change. Blocks until the data has reached the disk.
    [[nodiscard]] std::optional<QString> commit();
    /// Writes the edited contents into another file, which must exist, with mode, owner and
    /// extended attributes of this one; this file stays as it is. For no handed file. Returns and refuses like
    /// `commit`; after a failure the other file holds anything. Blocks until the data has
    /// reached the disk.
    [[nodiscard]] std::optional<QString> writeTo(const QString &path);
    /// Puts another file of the same folder in the place of this one, with mode, owner and extended attributes of
    /// this one. Returns nothing on success, else why not; then both are where they were. Refuses after a foreign
    /// change. For no handed file. Blocks until the data has reached the disk.
    [[nodiscard]] std::optional<QString> replaceBy(const QString &path);

    [[nodiscard]] TagLib::FileName name() const override;
    TagLib::ByteVector readBlock(Size length) override;
    void writeBlock(const TagLib::ByteVector &data) override;
    void insert(const TagLib::ByteVector &data, Start start = 0, Size replace = 0) override;
    void removeBlock(Start start = 0, Size length = 0) override;
    [[nodiscard]] bool readOnly() const override;
    [[nodiscard]] bool isOpen() const override;
    void seek(Offset offset, Position position = Beginning) override;
    [[nodiscard]] Offset tell() const override;
    Offset length() override;
    void truncate(Offset length) override;

private:
    /// New bytes in the place of as many old ones.
    struct Overwrite {
        std::int64_t start = 0;
        std::string newBytes;
        std::string oldBytes;
    };

    /// Leaves the edits of a handed file with it; false for any other file.
    [[nodiscard]] bool leaveEdits();
    void replaceRange(std::int64_t start, std::int64_t length, const char *data, std::size_t size);
    std::size_t splitAt(std::int64_t position);
    [[nodiscard]] bool keepsBytesInPlace() const;
    /// All that differs, when that is all the edits come to: no byte moves, and the file is as long as before. Bytes
    /// that are only repeated are left out. Nothing otherwise, or when the old bytes cannot be read.
    [[nodiscard]] std::optional<Overwrite> onlyOverwrite() const;
    [[nodiscard]] std::optional<QString> commitInPlace(const Overwrite &overwrite);
    [[nodiscard]] std::optional<QString> commitByReplacement();
    /// Returns 0 or the value of errno.
    [[nodiscard]] int writePieces(int target) const;
    /// Gives it the attributes of the file, brings it to the disk and closes it; returns the same.
    [[nodiscard]] int finish(FileDescriptor &target) const;
    [[nodiscard]] std::optional<QString> rename(const QByteArray &replacementPath);

    QByteArray m_path; ///< free of links, as the system's bytes
    bool m_readOnly;
    bool m_isHanded = false;
    FileDescriptor m_file;
    struct stat m_opened = {}; ///< when it was
    std::int64_t m_fileLength = 0;
    std::vector<Piece> m_pieces;
    std::string m_newBytes;
    std::int64_t m_length = 0;
    std::int64_t m_position = 0;
    int m_readError = 0;
    std::optional<TagLibGuard> m_guard;
    bool m_isEdited = false;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QtGlobal>

#include <functional>

namespace nurv {

/// What was digested of a file.
struct FileDigest {
    QString hexadecimal;      ///< 32 lower-case digits; of zero bytes where nothing could be read; empty when it was stopped
    qint64 bytes = 0;         ///< how many were read
    bool isMissing = false;   ///< there is no file of that name
    QString failure = {};     ///< why not all of it was read; empty: all was
};

/// The MD5 digest (RFC 1321) of whole files.
class MD5Helper {
public:
    /// Which files are read.
    enum class Kind {
        Any,
        Regular, ///< a name from a list may lead to anything: a pipe or a device is read as empty
    };

    /// How many files to read at a time: one is digested while another one waits for the disk, and a disk with heads
    /// does not go to and fro between more.
    static constexpr unsigned kReaders = 2;

    /// The digest of the file's bytes. Throws NurvFailure when the machine refuses MD5. Any thread; blocks for the
    /// reading of the file. `isStopped` is asked before every block of 1 MiB. A file that changes while it is read has
    /// not been read.
    [[nodiscard]] static FileDigest digestOf(const QString &path, Kind kind, const std::function<bool()> &isStopped = {});

    /// The digest of the file's bytes, 32 lower-case hexadecimal digits. A file that
    /// cannot be opened is read as empty; the log says so. Throws NurvFailure when
    /// the machine refuses MD5. Any thread; blocks for the reading of the file.
    /// `isStopped` is asked before every block of 1 MiB; once it says yes the text
    /// is empty.
    [[nodiscard]] static QString getMD5FromFile(const QString &path, const std::function<bool()> &isStopped = {});
};

} // namespace nurv

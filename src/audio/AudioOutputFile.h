// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/AudioFileStatus.h"
#include "files/FileDescriptor.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <functional>

struct stat;

namespace nurv {

/// A regular file that is being written from the start, and may be read and written
/// again at any place. The first failed write stays failed: nothing is written after it.
class AudioOutputFile {
public:
    /// Opens the file, makes it if there is none, and empties it; `isForbidden` is
    /// asked first whether this is a file that must stay as it is.
    [[nodiscard]] AudioFileStatus create(const QString &path,
                                         const std::function<bool(const struct stat &)> &isForbidden);

    /// Writes everything at the present position.
    [[nodiscard]] bool write(const void *bytes, std::size_t size);
    /// Reads up to `size` bytes from `offset` on without moving; -1 on failure.
    [[nodiscard]] std::int64_t readAt(std::int64_t offset, void *bytes, std::size_t size) const;
    [[nodiscard]] bool seek(std::int64_t offset);
    [[nodiscard]] std::int64_t position() const;
    [[nodiscard]] std::int64_t size() const;
    /// Closes the file; false when this or any write before it failed.
    [[nodiscard]] bool close();

    /// The system's error number of the first failure; 0: none.
    [[nodiscard]] int error() const { return m_error; }

private:
    bool fail();

    FileDescriptor m_file;
    QString m_path;
    int m_error = 0;
};

} // namespace nurv

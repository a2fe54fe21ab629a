// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"
#include "tags/TagEditStream.h"

#include <QString>

#include <optional>

namespace nurv {

/// The file that another process has handed over, open for reading, to the process that reads tags
/// for it. It is known under a made-up name, which no file has, while this lives; what the code that
/// edits tags would write to it is left here and goes back to the other process. One at a time;
/// belongs to one thread.
class HandedFile {
public:
    explicit HandedFile(FileDescriptor file);
    ~HandedFile();
    HandedFile(const HandedFile &) = delete;
    HandedFile &operator=(const HandedFile &) = delete;

    [[nodiscard]] static QString name();
    [[nodiscard]] TagEditStream::Edits takeEdits() { return std::exchange(m_edits, {}); }

    /// The file once more when it has this name; else a descriptor that is not open.
    [[nodiscard]] static FileDescriptor open(const QString &path);
    static void leaveEdits(TagEditStream::Edits edits);
    /// What was left, for whoever reads the file as it would be; null when nothing was.
    [[nodiscard]] static const TagEditStream::Edits *leftEdits();

private:
    FileDescriptor m_file;
    TagEditStream::Edits m_edits;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"
#include "files/FolderEntry.h"

#include <QString>

#include <optional>

namespace nurv {

/// An empty file that holds the name of an output for a program that writes into whatever has that name: of two that want
/// it one gets it, and what is removed afterwards is that very file. It stays when this object goes. Any thread.
class ReservedFile {
public:
    /// Makes the file, where nothing has the name, with the permissions of any new one. At most once. Returns false with
    /// the reason in errno: EEXIST where something has the name.
    [[nodiscard]] bool make(const QString &path);
    [[nodiscard]] bool isMade() const { return m_file.isOpen(); }
    /// Whether the name is still that of the file, whatever was written into it since.
    [[nodiscard]] bool isInPlace() const;
    /// Removes the file; what else has the name by now stays. Returns false with the reason in errno.
    [[nodiscard]] bool remove() const;

private:
    std::optional<FolderEntry> m_entry;
    FileDescriptor m_file; ///< open, so that its number on the disk is given to no other file
};

} // namespace nurv

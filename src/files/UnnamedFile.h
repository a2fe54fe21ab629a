// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"

#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace nurv::unnamedFile {

// A file that has no name yet: whatever ends the program, nothing of it is left.

/// Where the system shows an open file.
[[nodiscard]] inline std::string pathOf(int descriptor)
{
    return "/proc/self/fd/" + std::to_string(descriptor);
}

/// A new file for writing, with the mode of any new file. Not open where the file system,
/// or a system without /proc, has no such files: then it takes a name of its own.
/// `folder`: where it is to get its name, with or without a slash at the end; beginning at
/// `base`, an open folder.
[[nodiscard]] inline FileDescriptor open(const std::string &folder, int base = AT_FDCWD, mode_t mode = 0666)
{
    FileDescriptor file(::openat(base, folder.c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, mode));
    if (file.isOpen() && ::access(pathOf(file.get()).c_str(), F_OK) != 0)
        return {};
    return file;
}

/// Gives the file a name that nothing has. False with the reason in errno: EEXIST when
/// something has it.
[[nodiscard]] inline bool name(const FileDescriptor &file, const std::string &path, int base = AT_FDCWD)
{
    return ::linkat(AT_FDCWD, pathOf(file.get()).c_str(), base, path.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

} // namespace nurv::unnamedFile

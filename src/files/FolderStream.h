// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include <dirent.h>

namespace nurv {

struct FolderCloser {
    void operator()(DIR *folder) const { ::closedir(folder); }
};

/// A folder whose entries are read, with `readdir`; null when it could not be opened.
using FolderStream = std::unique_ptr<DIR, FolderCloser>;

} // namespace nurv

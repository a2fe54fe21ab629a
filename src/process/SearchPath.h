// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace nurv {

/// Where a program is looked for without PATH.
constexpr std::string_view kUsualSearchPath = "/usr/local/bin:/usr/bin:/bin";

/// The folders of a PATH that are named absolutely, in their order. Any other entry, the
/// empty one included, is below the current folder, and that may be a stranger's archive.
[[nodiscard]] inline std::vector<std::string> searchedFolders(std::string_view path)
{
    std::vector<std::string> folders;
    for (std::size_t start = 0; start <= path.size();) {
        const std::size_t end = path.find(':', start);
        const std::string_view entry = path.substr(start, end - start);
        if (entry.starts_with('/'))
            folders.emplace_back(entry);
        if (end == std::string_view::npos)
            break;
        start = end + 1;
    }
    return folders;
}

/// Those folders as a PATH; the usual ones where none is left, as an empty PATH is the
/// current folder once more.
[[nodiscard]] inline std::string safeSearchPath(std::string_view path)
{
    std::string safe;
    for (const std::string &folder : searchedFolders(path))
        safe += (safe.empty() ? "" : ":") + folder;
    return safe.empty() ? std::string(kUsualSearchPath) : safe;
}

} // namespace nurv

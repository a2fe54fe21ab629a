// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/PrivateFolder.h"

#include "support/SystemCalls.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace nurv {

PrivateFolder::PrivateFolder(const std::string &destination)
{
    const size_t slash = destination.rfind('/');
    m_path = (slash == std::string::npos ? "./" : destination.substr(0, slash + 1)) + ".nurv-XXXXXX";
    if (!::mkdtemp(m_path.data()))
        failWrite(destination, errno);
}

PrivateFolder::~PrivateFolder()
{
    std::error_code error;
    std::filesystem::remove_all(m_path, error);
}

std::vector<std::string> PrivateFolder::contents() const
{
    std::vector<std::string> paths;
    for (const auto &entry : std::filesystem::directory_iterator(m_path))
        paths.push_back(entry.path().string());
    return paths;
}

} // namespace nurv

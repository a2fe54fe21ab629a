// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/SourceNames.h"

#include "app/PathNames.h"

namespace nurv {

void SourceNames::add(const QString &given, const QString &path, bool isFolder)
{
    m_isOneFolder = m_count++ == 0 && isFolder;
    // What is given twice keeps its first name.
    if (!m_givenOf.contains(path))
        m_givenOf.insert(path, given);
}

QString SourceNames::nameOf(const QString &path) const
{
    if (const auto given = m_givenOf.constFind(path); given != m_givenOf.cend())
        return *given;
    for (QString folder = folderOf(path); !folder.isEmpty(); folder = folderOf(folder)) {
        if (const auto given = m_givenOf.constFind(folder); given != m_givenOf.cend()) {
            const QString below = path.mid(folder.endsWith(u'/') ? folder.size() : folder.size() + 1);
            return m_isOneFolder ? below : joinPath(*given, below);
        }
        if (folder == u"/")
            break;
    }
    return path;
}

} // namespace nurv

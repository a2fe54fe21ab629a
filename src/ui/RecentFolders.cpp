// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/RecentFolders.h"

#include "app/FileIntake.h"
#include "app/PathNames.h"
#include "settings/SettingsStore.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

const QString kKey = u"window/recentFolders"_s;
constexpr QChar kSeparator = u'\n';

QStringList stored()
{
    return SettingsStore::instance().string(kKey).split(kSeparator, Qt::SkipEmptyParts);
}

} // namespace

QStringList RecentFolders::paths() const
{
    QStringList paths = stored().first(std::min(stored().size(), kMost));
    paths.removeIf([](const QString &path) { return !QFileInfo(path).isDir(); });
    return paths;
}

void RecentFolders::note(const FileIntake &found)
{
    if (found.accepted.isEmpty())
        return;
    QStringList paths = stored();
    for (const GivenPath &given : found.given) {
        const QString folder = given.isFolder ? given.path : folderOf(given.path);
        // A name may hold the separator.
        if (folder.isEmpty() || folder.contains(kSeparator))
            continue;
        paths.removeAll(folder);
        paths.prepend(folder);
    }
    store(paths.first(std::min(paths.size(), kMost)));
}

void RecentFolders::forget()
{
    store({});
}

void RecentFolders::store(const QStringList &paths)
{
    SettingsStore::instance().setValue(kKey, paths.join(kSeparator));
}

} // namespace nurv

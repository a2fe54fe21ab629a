// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/NewFolders.h"

#include "base/SystemError.h"
#include "files/FileDescriptor.h"

#include <QFile>
#include <QStringList>

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {

std::optional<QString> makeFoldersBelow(const QString &root, const QString &folder)
{
    const auto obstacle = [](const QString &path) {
        return u"its folder %1 cannot be made: %2"_s.arg(path, systemErrorText(errno));
    };
    const QString front = root.endsWith(u'/') ? root : root + u'/';
    if (folder != root && !folder.startsWith(front))
        return u"its folder %1 does not lie in %2"_s.arg(folder, root);
    FileDescriptor open(::open(QFile::encodeName(root).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!open.isOpen())
        return obstacle(root);
    QString path = root;
    for (const QString &name : folder.mid(front.size()).split(u'/', Qt::SkipEmptyParts)) {
        path = (path.endsWith(u'/') ? path : path + u'/') + name;
        const QByteArray entry = QFile::encodeName(name);
        if (::mkdirat(open.get(), entry.constData(), 0777) != 0 && errno != EEXIST)
            return obstacle(path);
        FileDescriptor next(::openat(open.get(), entry.constData(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!next.isOpen()) {
            struct stat facts = {};
            const bool isLink = ::fstatat(open.get(), entry.constData(), &facts, AT_SYMLINK_NOFOLLOW) == 0
                                && S_ISLNK(facts.st_mode);
            return isLink ? u"its folder %1 is a link"_s.arg(path) : obstacle(path);
        }
        open = std::move(next);
    }
    return std::nullopt;
}

} // namespace nurv

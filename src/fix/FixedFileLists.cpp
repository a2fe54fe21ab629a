// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fix/FixedFileLists.h"

#include "base/SystemError.h"
#include "files/FileDescriptor.h"

#include <QFile>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv::fixedFileLists {

QString discNumber(const QString &path)
{
    return path.section(u'd', -1).section(u't', 0, 0);
}

QList<DiscList> listsByDisc(const QStringList &paths)
{
    QList<DiscList> lists;
    for (qsizetype place = 0; place < paths.size(); ++place) {
        // Of "/shows/d2/t01.shn" the disc is "2/", and of a path without a "d" it is all folders up to the first "t": as
        // part of a path such a name would lead into another folder, or to none. The list stays in its folder, under a
        // name that tells discs apart as far as the letters do.
        QString disc = discNumber(paths.at(place));
        disc.replace(u'/', u'_');
        const QString fileName = u"Disc"_s + disc + u".md5"_s;
        const auto list = std::find_if(lists.begin(), lists.end(),
                                       [&](const DiscList &other) { return other.fileName == fileName; });
        if (list == lists.end())
            lists.append({fileName, {place}});
        else
            list->places.append(place);
    }
    return lists;
}

QString faultOfFile(const QString &path)
{
    const FileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    struct stat facts = {};
    if (!file.isOpen() || ::fstat(file.get(), &facts) != 0)
        return systemErrorText(errno);
    if (!S_ISREG(facts.st_mode))
        return u"it is no regular file"_s;
    char byte = 0;
    const ssize_t count = ::read(file.get(), &byte, 1);
    if (count < 0)
        return systemErrorText(errno);
    return count == 0 ? u"it is empty"_s : QString();
}

bool holdsFingerprint(const QString &entry)
{
    constexpr qsizetype kDigits = 32;
    if (!entry.endsWith(u'\n') || entry.size() < kDigits + 2 || entry[entry.size() - kDigits - 2] != u':')
        return false;
    const QStringView digest = QStringView(entry).sliced(entry.size() - kDigits - 1, kDigits);
    const bool isNumber = std::all_of(digest.begin(), digest.end(), [](QChar digit) {
        return (digit >= u'0' && digit <= u'9') || (digit >= u'a' && digit <= u'f');
    });
    return isNumber && !std::all_of(digest.begin(), digest.end(), [](QChar digit) { return digit == u'0'; });
}

} // namespace nurv::fixedFileLists

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fix/FixedFileLists.h"

#include <algorithm>

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

} // namespace nurv::fixedFileLists

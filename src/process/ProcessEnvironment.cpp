// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/ProcessEnvironment.h"

#include "process/SearchPath.h"

#include <QFile>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

ChildEnvironment processEnvironment()
{
    ChildEnvironment result;
    for (char **entry = environ; entry && *entry; ++entry) {
        const QByteArray text(*entry);
        const qsizetype equals = text.indexOf('=');
        if (equals > 0)
            result.insert(QFile::decodeName(text.left(equals)), QFile::decodeName(text.mid(equals + 1)));
    }
    if (const auto path = result.constFind(u"PATH"_s); path != result.cend())
        result.insert(u"PATH"_s, safeSearchPath(*path));
    return result;
}

QString safeSearchPath(const QString &path)
{
    return QString::fromStdString(safeSearchPath(path.toStdString()));
}

} // namespace nurv

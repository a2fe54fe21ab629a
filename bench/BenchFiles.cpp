// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "BenchFiles.h"

#include "support/TestFolder.h"

#include <QDir>
#include <QFileInfo>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv::bench {

void addNames(const QString &first, int count)
{
    const QFileInfo file(first);
    for (int i = 1; i < count; ++i) {
        const QString name = u"%1/%2.%3"_s.arg(file.path()).arg(i, 4, 10, QChar(u'0')).arg(file.suffix());
        if (::link(first.toLocal8Bit().constData(), name.toLocal8Bit().constData()) != 0)
            qFatal("no link can be made");
    }
}

QString emptyFolder(const test::TestFolder &folder, const QString &name)
{
    QDir(folder.path(name)).removeRecursively();
    return folder.makeFolder(name);
}

} // namespace nurv::bench

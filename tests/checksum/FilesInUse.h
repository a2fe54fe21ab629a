// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDir>
#include <QFile>
#include <QString>

namespace nurv::test {

/// Whether this process has read some of the file, and has it open still: it is in the midst of it.
[[nodiscard]] inline bool isBeingRead(const QString &path)
{
    const QStringList descriptors = QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::System | QDir::Files | QDir::NoDotAndDotDot);
    for (const QString &descriptor : descriptors) {
        if (QFile::symLinkTarget(QStringLiteral("/proc/self/fd/") + descriptor) != path)
            continue;
        QFile facts(QStringLiteral("/proc/self/fdinfo/") + descriptor);
        // "pos:	1048576"
        if (facts.open(QIODevice::ReadOnly) && facts.readLine().mid(4).trimmed().toLongLong() > 0)
            return true;
    }
    return false;
}

} // namespace nurv::test

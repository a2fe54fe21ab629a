// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/ResourceFolder.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

// Read from the kernel, not from the application object: the path is also wanted
// before that object exists.
QString executableFolder()
{
    static const QString folder = QFileInfo(QFile::symLinkTarget(u"/proc/self/exe"_s)).path();
    return folder;
}

} // namespace

QString pathToCommandLineTools()
{
    const QString named = qEnvironmentVariable("NURV_TOOLS");
    if (!named.isEmpty())
        return QDir::cleanPath(QDir::current().absoluteFilePath(named));
    return QDir::cleanPath(executableFolder() + u"/../lib/nurv/tools"_s);
}

QString programPath(const QString &program)
{
    return pathToCommandLineTools() + u'/' + program;
}

} // namespace nurv

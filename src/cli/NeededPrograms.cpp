// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/NeededPrograms.h"

#include "platform/ExternalPrograms.h"
#include "platform/ResourceFolder.h"

#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

void addDistinct(QStringList &names, const QStringList &others)
{
    for (const QString &name : others) {
        if (!names.contains(name))
            names.append(name);
    }
}

bool isProgram(const QString &path)
{
    const QFileInfo file(path);
    return file.isFile() && file.isExecutable();
}

/// A text for a program that cannot be started from the resource folder.
QString missingText(const QString &name)
{
    const QString path = toolPath(name);
    if (isProgram(path))
        return missingProgramText(path, u"the program that it stands in front of is not there"_s);
    return missingProgramText(path, QFileInfo::exists(path) ? u"it is not an executable file"_s : u"it is not there"_s);
}

} // namespace

void NeededPrograms::add(const NeededPrograms &other)
{
    addDistinct(launched, other.launched);
    addDistinct(helpers, other.helpers);
}

QStringList NeededPrograms::missing() const
{
    QStringList texts;
    for (const QString &name : launched) {
        if (!isProgram(toolPath(name)) || lacksItsPackage(name))
            texts.append(missingText(name));
    }
    for (const QString &name : helpers) {
        const bool isThere = isProgram(toolPath(name)) || !QStandardPaths::findExecutable(name).isEmpty();
        if (!isThere && !launched.contains(name))
            texts.append(missingText(name));
    }
    return texts;
}

} // namespace nurv

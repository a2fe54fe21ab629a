// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/NeededPrograms.h"

#include "process/ResourceFolder.h"
#include "programs/ExternalPrograms.h"
#include "programs/ProgramEnvironment.h"
#include "programs/ProgramStage.h"

#include <QFileInfo>

#include <algorithm>

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

/// Whether a child would find it: along the PATH that children get, the resource folder included.
bool isAlongPath(const QString &name)
{
    const QStringList folders = programEnvironment().value(u"PATH"_s).split(u':');
    return std::any_of(folders.begin(), folders.end(),
                       [&name](const QString &folder) { return isProgram(folder + u'/' + name); });
}

/// A text for a program that cannot be started from the resource folder.
QString missingText(const QString &name)
{
    const QString path = programPath(name);
    return missingProgramText(path, QFileInfo::exists(path) ? u"it is not an executable file"_s : u"it is not there"_s);
}

} // namespace

NeededPrograms NeededPrograms::ofRun(const QString &name, const QStringList &arguments)
{
    const ExternalProgram *const program = findExternalProgram(name);
    return {{name}, program && program->startedBy ? program->startedBy(arguments) : QStringList()};
}

NeededPrograms NeededPrograms::ofStage(const ProgramStage &stage)
{
    return ofRun(stage.name, stage.arguments);
}

void NeededPrograms::add(const NeededPrograms &other)
{
    addDistinct(launched, other.launched);
    addDistinct(helpers, other.helpers);
}

QStringList NeededPrograms::missing() const
{
    QStringList texts;
    for (const QString &name : launched) {
        if (!isProgram(programPath(name)))
            texts.append(missingText(name));
    }
    for (const QString &name : helpers) {
        if (!isAlongPath(name) && !launched.contains(name))
            texts.append(missingText(name));
    }
    return texts;
}

} // namespace nurv

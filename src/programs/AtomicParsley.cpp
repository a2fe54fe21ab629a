// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/AtomicParsley.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace nurv::atomicParsley {

const ExternalProgram &program()
{
    static const ExternalProgram program{
        .name = u"AtomicParsley"_s, .package = u"atomicparsley"_s, .purpose = u"marks MP4 files as gapless"_s};
    return program;
}

QStringList gaplessArguments(const QString &path)
{
    return {path, u"--overWrite"_s, u"--gapless"_s, u"--true"_s};
}

void setEnvironment(ChildEnvironment &environment)
{
    environment.insert(u"AP_PADDING"_s, u"\"DEFAULT_PAD=0:MAX_PAD=0\""_s);
}

bool tellsOfFailedCopy(QStringView text)
{
    return text.contains(u"splice(");
}

QStringList temporariesBeside(const QString &path)
{
    const QFileInfo file(path);
    const QRegularExpression name(u'^' + QRegularExpression::escape(file.completeBaseName()) + u"-temp-\\d+\\."_s
                                  + QRegularExpression::escape(file.suffix()) + u'$');
    // With those that are links to nowhere.
    return file.dir().entryList(QDir::Files | QDir::Hidden | QDir::System).filter(name);
}

} // namespace nurv::atomicParsley

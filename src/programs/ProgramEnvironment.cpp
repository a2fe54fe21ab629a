// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/ProgramEnvironment.h"

#include "process/ProcessEnvironment.h"
#include "process/ResourceFolder.h"

using namespace Qt::StringLiterals;

namespace nurv {

ChildEnvironment programEnvironment()
{
    ChildEnvironment result = processEnvironment();
    appendToPATH(result, pathToCommandLineTools());
    return result;
}

void appendToPATH(ChildEnvironment &environment, const QString &folder)
{
    const QString path = safeSearchPath(environment.value(u"PATH"_s));
    environment.insert(u"PATH"_s, safeSearchPath(path + u':' + folder));
}

void setUnbuffered(ChildEnvironment &environment)
{
    environment.insert(u"NSUnbufferedIO"_s, u"YES"_s);
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NSTaskWrapperSync.h"

#include "programs/ExternalPrograms.h"
#include "programs/ProgramEnvironment.h"
#include "text/Utf8Text.h"

namespace nurv {

NSTaskWrapperSync::NSTaskWrapperSync(const QString &launchPath, const QStringList &arguments)
    : m_command{.launchPath = launchPath,
                .arguments = arguments,
                .environment = programEnvironment(),
                .workingDirectory = QString()}
{
}

void NSTaskWrapperSync::appendToPATH(const QString &folder)
{
    nurv::appendToPATH(m_command.environment, folder);
}

QString NSTaskWrapperSync::runTask(const std::function<bool()> &isUnwanted)
{
    setUnbuffered(m_command.environment);
    QByteArray output;
    const auto take = [&output](const QByteArray &bytes) {
        output += bytes;
        return true;
    };
    const ChildResult result = followChild(m_command, {.take = take, .isUnwanted = isUnwanted});
    if (!result.exit)
        m_totalOutput = missingProgramText(m_command.launchPath, result.startError);
    else
        m_totalOutput = fromStrictUtf8(output).value_or(QString());
    return m_totalOutput;
}

} // namespace nurv

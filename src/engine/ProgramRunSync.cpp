// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ProgramRunSync.h"

#include "programs/ExternalPrograms.h"
#include "programs/ProgramEnvironment.h"
#include "text/Utf8ChunkDecoder.h"

namespace nurv {

ProgramRunSync::ProgramRunSync(const QString &launchPath, const QStringList &arguments)
    : m_command{.launchPath = launchPath,
                .arguments = arguments,
                .environment = programEnvironment(),
                .workingDirectory = QString()}
{
}

void ProgramRunSync::appendToPATH(const QString &folder)
{
    nurv::appendToPATH(m_command.environment, folder);
}

ProgramRunSync::Ending ProgramRunSync::run(const std::function<bool(const QString &chunk)> &takeChunk,
                                     const std::function<bool()> &isUnwanted)
{
    setUnbuffered(m_command.environment);
    Utf8ChunkDecoder decoder;
    const auto take = [&](const QByteArray &bytes) {
        const QString chunk = decoder.decode(bytes);
        return chunk.isEmpty() || takeChunk(chunk);
    };
    const ChildResult result = followChild(m_command, {.take = take, .isUnwanted = isUnwanted});
    Ending ending{.exit = result.exit, .startFailure = {}, .wasStopped = result.wasStopped};
    if (!result.exit)
        ending.startFailure = missingProgramText(m_command.launchPath, result.startError);
    return ending;
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/Fingerprint.h"

#include "app/PathNames.h"
#include "engine/NSTaskWrapperSync.h"
#include "process/ResourceFolder.h"
#include "programs/Metaflac.h"

using namespace Qt::StringLiterals;

namespace nurv {

QString fingerprint(const QString &path)
{
    const QString output =
        NSTaskWrapperSync(programPath(metaflac::program().name), metaflac::showDigestArguments(path)).runTask();
    if (metaflac::tellsOfError(output))
        return output;
    return lastPathComponent(path) + u':' + output;
}

} // namespace nurv

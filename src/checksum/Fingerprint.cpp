// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/Fingerprint.h"

#include "app/PathNames.h"
#include "engine/NSTaskWrapperSync.h"
#include "platform/ResourceFolder.h"

using namespace Qt::StringLiterals;

namespace nurv {

QString fingerprint(const QString &path)
{
    const QString output = NSTaskWrapperSync(toolPath(u"metaflac"_s), {u"--show-md5"_s, path}).runTask();
    if (output.contains(u"FLAC__METADATA_CHAIN"_s))
        return output;
    return lastPathComponent(path) + u':' + output;
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/Fingerprint.h"

#include "app/PathNames.h"
#include "engine/NSTaskWrapperSync.h"
#include "process/ResourceFolder.h"
#include "programs/Metaflac.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

std::optional<QString> faultOfFingerprint(const QString &entry)
{
    constexpr qsizetype kDigits = 32;
    if (metaflac::tellsOfError(entry))
        return entry.section(u'\n', 0, 0);
    const QString digest = entry.trimmed().section(u':', -1).trimmed();
    const bool isDigest = digest.size() == kDigits && std::all_of(digest.begin(), digest.end(), [](QChar character) {
        return (character >= u'0' && character <= u'9') || (character >= u'a' && character <= u'f');
    });
    if (!isDigest)
        return u"metaflac told none"_s;
    if (digest.count(u'0') == kDigits)
        return u"its encoder stored none"_s;
    return std::nullopt;
}

QString fingerprint(const QString &path)
{
    const QString output =
        NSTaskWrapperSync(programPath(metaflac::program().name), metaflac::showDigestArguments(path)).runTask();
    if (metaflac::tellsOfError(output))
        return output;
    return lastPathComponent(path) + u':' + output;
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/CDExtractSCSIProviderHelper.h"

#include "app/PathNames.h"
#include "files/FileStatus.h"
#include "util/CompactDisc.h"

using namespace Qt::StringLiterals;

namespace nurv {

CDExtractSCSIProviderHelper::CDExtractSCSIProviderHelper(const QString &bsdName, const QString &rootFolder,
                                                         bool (*isDrive)(const struct stat &facts))
    : m_bsdName(bsdName), m_rootFolder(rootFolder), m_isDrive(isDrive)
{
}

QString CDExtractSCSIProviderHelper::runTask() const
{
    if (!isOpticalDriveName(m_bsdName))
        return {};
    const std::optional<struct stat> facts = statusOf(joinPath(m_rootFolder, u"dev/"_s + m_bsdName));
    return facts && m_isDrive(*facts) ? u"/dev/"_s + m_bsdName : QString();
}

} // namespace nurv

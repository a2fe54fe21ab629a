// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <sys/stat.h>

namespace nurv {

/// Whether that is what the system tells of a block device.
[[nodiscard]] inline bool isBlockDevice(const struct stat &facts)
{
    return S_ISBLK(facts.st_mode);
}

/// Tells the address by which cdda2wav reaches the drive of a disc.
class CDExtractSCSIProviderHelper {
public:
    /// `bsdName`: the disc's device name, "sr0". `rootFolder`: where the file system begins. `isDrive`: whether
    /// something in its "dev" can be a drive.
    explicit CDExtractSCSIProviderHelper(const QString &bsdName, const QString &rootFolder = QStringLiteral("/"),
                                         bool (*isDrive)(const struct stat &facts) = isBlockDevice);

    /// What follows "dev=": "/dev/sr0". Empty unless that is an optical drive's name and the drive is there.
    [[nodiscard]] QString runTask() const;

private:
    QString m_bsdName;
    QString m_rootFolder;
    bool (*m_isDrive)(const struct stat &facts);
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace nurv {

/// Tells the address by which cdda2wav reaches the drive of a disc.
class CDExtractSCSIProviderHelper {
public:
    /// `bsdName`: the disc's device name, "sr0". `rootFolder`: where the file system begins.
    explicit CDExtractSCSIProviderHelper(const QString &bsdName, const QString &rootFolder = QStringLiteral("/"));

    /// What follows "dev=": "/dev/sr0". Empty unless that is an optical drive's name and a block device that is there.
    [[nodiscard]] QString runTask() const;

private:
    QString m_bsdName;
    QString m_rootFolder;
};

} // namespace nurv

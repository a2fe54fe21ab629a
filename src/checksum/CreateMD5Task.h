// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "checksum/MD5Helper.h"
#include "engine/NURVInProcessTask.h"

#include <QStringList>

#include <vector>

namespace nurv {

/// Writes the MD5 list of some files, in their order.
///
/// A file that cannot be read is listed with the digest of zero bytes, or of what was read of it, and told as a warning of
/// the job. A list that cannot be written is told to the log and as a warning. Cancelled, it writes
/// no list; it looks between the blocks of a file.
class CreateMD5Task final : public NURVInProcessTask {
public:
    /// `files` and `outputPath`, the list, are absolute paths.
    CreateMD5Task(NURVTaskQueue *queue, const QStringList &files, const QString &outputPath);

    [[nodiscard]] QStringList sourcePaths() const override { return m_fileNames; }
    void stopTask() override;

protected:
    void doStartTask() override;

private:
    void doCreateMd5();
    /// The digest of each file; of some only once the job is cancelled.
    [[nodiscard]] std::vector<FileDigest> readFiles();

    QStringList m_fileNames;
    QString m_outputPath;
};

} // namespace nurv

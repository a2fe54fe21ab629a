// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVInProcessTask.h"

#include <QMap>
#include <QStringList>

namespace nurv {

/// Writes one fingerprint list into every folder of a map, over the FLAC files that
/// the map has for the folder, in their order.
///
/// For a file that cannot be read the list holds what metaflac said. A list that
/// cannot be written is told to the log and as a warning of the job; without metaflac the job fails and
/// writes no list. Cancelled, it writes no further list; it looks between files.
class CreateFFPTask final : public NURVInProcessTask {
public:
    /// Folders and files are absolute paths. `ffpName` is the file name of each list;
    /// with the setting "checksumFileUsesOutputDirName" each is named after its folder.
    CreateFFPTask(NURVTaskQueue *queue, const QMap<QString, QStringList> &files, const QString &ffpName);

    [[nodiscard]] NeededPrograms neededPrograms() const override;
    void stopTask() override;

protected:
    void doStartTask() override;

private:
    void doCreateFFP(const QStringList &files, const QString &outputDir);
    [[nodiscard]] QString listPath(const QString &outputDir) const;

    QMap<QString, QStringList> m_dictByOutputDir;
    QString m_ffpName;
};

} // namespace nurv

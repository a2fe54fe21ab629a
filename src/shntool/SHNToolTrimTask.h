// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/SHNToolEditTask.h"

namespace nurv {

/// Cuts silence off both ends of files. When originals are to be deleted, the first of them stays all the same.
class SHNToolTrimTask final : public SHNToolEditTask {
public:
    /// `arguments`: see shntool::trimArguments.
    SHNToolTrimTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments);

    /// The base name of the file in work.
    [[nodiscard]] const QString &fileName() const { return m_fileName; }

protected:
    void showOutput(const QString &chunk) override;

private:
    QString m_operation;
    QString m_fileName;
};

} // namespace nurv

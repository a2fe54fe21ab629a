// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/SHNToolEditTask.h"

namespace nurv {

/// Makes a file of the sound of another one, without what its WAV header holds besides.
class SHNToolStripTask final : public SHNToolEditTask {
public:
    /// `arguments`: see shntool::stripArguments.
    SHNToolStripTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments);

protected:
    void showOutput(const QString &chunk) override { showSingleEdit(chunk, QStringLiteral("Stripping")); }
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/SHNToolEditTask.h"

namespace nurv {

/// Fills a file up with silence to the end of a sector.
class SHNToolPadTask final : public SHNToolEditTask {
public:
    /// `arguments`: see shntool::padArguments.
    SHNToolPadTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments);

protected:
    void showOutput(const QString &chunk) override { showSingleEdit(chunk, QStringLiteral("Padding")); }
};

} // namespace nurv

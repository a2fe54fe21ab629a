// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/SHNToolEditTask.h"

namespace nurv {

/// Makes one file of several, in their order.
class SHNToolJoinTask final : public SHNToolEditTask {
public:
    /// `arguments`: see shntool::joinArguments.
    SHNToolJoinTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments);

protected:
    void showOutput(const QString &chunk) override;
};

} // namespace nurv

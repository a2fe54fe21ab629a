// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVAsyncNSTask.h"

namespace nurv {

/// Tells all that shntool knows of files, in its own words.
class SHNToolInfoTask final : public NURVAsyncNSTask {
public:
    /// `arguments`: see shntool::informationArguments.
    SHNToolInfoTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments);

    [[nodiscard]] int sourceCount() const override;

protected:
    void processTaskOutput(const QString &chunk) override;
    void cleanup() override;

private:
    QString m_output;
};

} // namespace nurv

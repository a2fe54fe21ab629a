// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVAsyncNSTask.h"

namespace nurv {

/// Compares the samples of two files. Warns when one of them is longer: shntool then looks at what both have. Its
/// report is what a terminal would show in the end: shntool counts up in place.
class SHNToolCompareTask final : public NURVAsyncNSTask {
public:
    SHNToolCompareTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments);

protected:
    void processTaskOutput(const QString &chunk) override;
    void completeStop() override;
    void cleanup() override;

private:
    QString m_output;
};

} // namespace nurv

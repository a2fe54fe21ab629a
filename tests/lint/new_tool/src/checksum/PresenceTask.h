// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVInProcessTask.h"

#include <QStringList>

namespace nurv {

/// Fails for files that are not there; makes nothing.
class PresenceTask final : public NURVInProcessTask {
public:
    PresenceTask(NURVTaskQueue *queue, const QStringList &files);

protected:
    void doStartTask() override;

private:
    QStringList m_files;
};

} // namespace nurv

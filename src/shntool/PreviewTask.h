// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVInProcessTask.h"
#include "shntool/EditPreview.h"

namespace nurv {

/// Reports what an edit would make, also why it would fail, and makes nothing.
class PreviewTask final : public NURVInProcessTask {
public:
    PreviewTask(NURVTaskQueue *queue, EditPreview preview);

protected:
    void doStartTask() override;

private:
    EditPreview m_preview;
};

} // namespace nurv

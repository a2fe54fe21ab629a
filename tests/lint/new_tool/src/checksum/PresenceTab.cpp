// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/PresenceTab.h"

#include "app/NURVController.h"
#include "checksum/PresenceTask.h"
#include "engine/NURVTaskQueue.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace nurv {

PresenceTab::PresenceTab(NURVController &controller) : BaseTab(controller, u"presence"_s) {}

void PresenceTab::executeCommand()
{
    nurvController().taskQueue().addTask(std::make_shared<PresenceTask>(&nurvController().taskQueue(), fileNames()));
    clearFiles();
}

} // namespace nurv

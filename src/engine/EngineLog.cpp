// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineLog.h"

namespace nurv {

Q_LOGGING_CATEGORY(engineLog, "nurv.engine")
Q_LOGGING_CATEGORY(failedJobLog, "nurv.engine.jobs")

} // namespace nurv

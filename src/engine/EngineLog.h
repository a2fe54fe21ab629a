// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLoggingCategory>

namespace nurv {

Q_DECLARE_LOGGING_CATEGORY(engineLog)
/// The failures of jobs, which their rows and reports tell too.
Q_DECLARE_LOGGING_CATEGORY(failedJobLog)

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/PlatformLog.h"

namespace nurv {

Q_LOGGING_CATEGORY(platformLog, "nurv.platform")

} // namespace nurv

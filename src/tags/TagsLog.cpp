// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagsLog.h"

namespace nurv {

Q_LOGGING_CATEGORY(tagsLog, "nurv.tags")
Q_LOGGING_CATEGORY(sandboxLog, "nurv.tags.sandbox", QtWarningMsg)

} // namespace nurv

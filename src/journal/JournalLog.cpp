// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/JournalLog.h"

namespace nurv {

Q_LOGGING_CATEGORY(journalLog, "nurv.journal")

} // namespace nurv

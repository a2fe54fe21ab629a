// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLoggingCategory>

namespace nurv {

/// The log of this folder, category `nurv.journal`.
Q_DECLARE_LOGGING_CATEGORY(journalLog)

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLoggingCategory>

namespace nurv {

Q_DECLARE_LOGGING_CATEGORY(convertLog)
/// Sources that stay although their deletion was asked for, category `nurv.convert.kept`: rows, and the lines of
/// the command line, tell the same.
Q_DECLARE_LOGGING_CATEGORY(keptSourceLog)

} // namespace nurv

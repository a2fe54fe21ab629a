// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLoggingCategory>

namespace nurv {

Q_DECLARE_LOGGING_CATEGORY(tagsLog)
/// What the process for tags has to do without; shown only to who asks for it.
Q_DECLARE_LOGGING_CATEGORY(sandboxLog)

} // namespace nurv

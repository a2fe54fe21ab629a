// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLoggingCategory>

namespace nurv {

/// What the system log hears of outputs, and of sources that go or stay.
Q_DECLARE_LOGGING_CATEGORY(originalsLog)

} // namespace nurv

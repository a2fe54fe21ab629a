// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConvertLog.h"

namespace nurv {

Q_LOGGING_CATEGORY(convertLog, "nurv.convert")
Q_LOGGING_CATEGORY(keptSourceLog, "nurv.convert.kept")

} // namespace nurv

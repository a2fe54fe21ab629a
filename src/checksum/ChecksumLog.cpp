// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/ChecksumLog.h"

namespace nurv {

Q_LOGGING_CATEGORY(checksumLog, "nurv.checksum")

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

/// The life of the process that reads and edits tags for another: answers what is asked over the
/// socket until that is closed. It gets files open for reading and writes none. Returns the status
/// of the process. To be called on the only thread of a process that has nothing else to do.
[[nodiscard]] int runTagsService(int socket);

} // namespace nurv

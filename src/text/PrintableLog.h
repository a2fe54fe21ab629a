// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

/// Makes what a terminal would obey in a log message visible, such as a file's name, before
/// the handler that was there until now gets it. For programs whose log is Qt's own; call it
/// once, before there are other threads.
void makeLogPrintable();

} // namespace nurv

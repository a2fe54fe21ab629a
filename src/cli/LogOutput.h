// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

class Console;

/// While it lives, the log goes to the console, one line a message, above the
/// live lines. Make it before the application object: what that one says about
/// the character encoding of the locale is no concern of the user's.
class LogOutput {
public:
    /// `console` must outlive the object. One object at a time.
    explicit LogOutput(Console &console);
    ~LogOutput();
    LogOutput(const LogOutput &) = delete;
    LogOutput &operator=(const LogOutput &) = delete;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

struct ModeRun;

/// One of the things that the program does. An object is made for a run, gets its options, and runs once.
class Mode {
public:
    explicit Mode(ModeRun &run) : m_run(run) {}
    virtual ~Mode() = default;
    Mode(const Mode &) = delete;
    Mode &operator=(const Mode &) = delete;

    /// An option of its own; `value` is empty for those without one. Ends the run for what makes no sense.
    virtual void takeOption(char option, const char *value) = 0;

    /// Returns the exit status, or ends the run.
    virtual int execute() = 0;

protected:
    [[nodiscard]] ModeRun &run() const { return m_run; }

private:
    ModeRun &m_run;
};

} // namespace nurv

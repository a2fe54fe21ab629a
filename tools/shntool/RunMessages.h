// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>
#include <string>

namespace nurv {

/// A run of the program that is over; the reason has been told.
class RunEnded : public std::runtime_error {
public:
    explicit RunEnded(int exitStatus) : std::runtime_error("run ended"), m_exitStatus(exitStatus) {}

    [[nodiscard]] int exitStatus() const { return m_exitStatus; }

private:
    int m_exitStatus;
};

/// How the progress of an operation is shown.
enum class ProgressStyle { Percent, Dots, Spinner, Faces, None };

/// What a run says, and where: results on standard output, all else on standard error. Names of files go out
/// as they are, for programs that read them, but give a terminal no orders.
class RunMessages {
public:
    /// `program` is the name that it was started by; `mode` is empty without one, or when the name says it.
    RunMessages(std::string program, std::string mode);

    bool isQuiet = false; ///< only errors are told
    bool hidesWarnings = false;
    int debugLevel = 0;
    ProgressStyle progressStyle = ProgressStyle::Percent;

    [[nodiscard]] const std::string &program() const { return m_program; }
    [[nodiscard]] const std::string &mode() const { return m_mode; }
    /// "shntool len", or "shnlen".
    [[nodiscard]] std::string command() const;

    /// Results.
    void print(const std::string &text) const;
    /// Whether all results arrived. Throws nothing.
    [[nodiscard]] bool flushResults() const;

    /// On standard error, as it stands; unless quiet.
    void tell(const std::string &text) const;
    /// The same, whatever was asked for.
    void tellAlways(const std::string &text) const;
    /// Something went wrong. Every line of a text tells whose it is: a name cannot make up messages.
    void warn(const std::string &text) const;
    /// The same of what does not fail the run.
    void remark(const std::string &text) const;
    /// What the next warning is about, where nobody was shown it.
    void noteFailure(const std::string &task) const { m_failedTask = task; }
    /// At the end of a run that failed: its first warning, where nothing at all was told, whatever was asked for.
    void tellHiddenFault() const;
    void debug(const std::string &text) const;
    /// The file of that number, from 0, is looked at.
    void debugFile(size_t number, const std::string &name) const;
    void debugShortRead(size_t wanted, size_t got) const;

    /// Tells an error and ends the run with status 1.
    [[noreturn]] void fail(const std::string &text) const;
    /// The same for a wrong command line, with a word on where help is.
    [[noreturn]] void failWithHelp(const std::string &text) const;

private:
    [[nodiscard]] std::string prefix() const;
    [[nodiscard]] std::string labelled(const std::string &label, const std::string &text) const;

    std::string m_program;
    std::string m_mode;
    // A run that tells nothing is a fault of its own, so that all who tell something leave a trace.
    mutable bool m_hasTold = false;
    mutable std::string m_failedTask;
    mutable std::string m_hiddenFault; ///< the first warning: not told where `m_hasTold` is false
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <sys/types.h>

namespace nurv {

/// A decoder or encoder that is connected by one pipe; all its other streams are /dev/null. It does not outlive
/// this object.
class ChildProgram {
public:
    enum class Pipe { FromChild, ToChild };

    /// Starts the first of `words`, looked for along PATH and beside this program, in the current folder never. One
    /// that cannot be started ends as one that fails at once.
    ChildProgram(const std::vector<std::string> &words, Pipe pipe);
    ~ChildProgram();
    ChildProgram(const ChildProgram &) = delete;
    ChildProgram &operator=(const ChildProgram &) = delete;

    /// Reads up to that many bytes, 0 at the end. Blocks. Throws ToolError(Read).
    size_t read(std::span<uint8_t> bytes);

    /// Returns false when the child takes no more. Blocks. Throws ToolError(Write).
    bool write(std::span<const uint8_t> bytes);

    /// Closes the pipe and waits for the end. Returns the exit status; a signal counts as 128 and its number.
    int wait();

    /// Its number, for messages.
    [[nodiscard]] pid_t process() const { return m_process; }

private:
    std::string m_name;
    FileDescriptor m_pipe;
    pid_t m_process = -1;
    bool m_isRunning = false;
    int m_status = 1;
};

} // namespace nurv

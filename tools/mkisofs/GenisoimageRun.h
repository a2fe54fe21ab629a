// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"

#include <string>

#include <sys/types.h>

namespace nurv {

class AuthoredFolder;

/// The distribution's genisoimage, which writes the image of a folder to an open file. It does not outlive this
/// program, however that ends.
///
///     genisoimage ── standard output ──> image
///          └──────── standard error ──> lines of progress, passed on as they are | all else, kept
///
class GenisoimageRun {
public:
    /// Starts it. `image`: open for writing. Throws ToolError where it is not installed.
    GenisoimageRun(const AuthoredFolder &folder, int image);
    ~GenisoimageRun();
    GenisoimageRun(const GenisoimageRun &) = delete;
    GenisoimageRun &operator=(const GenisoimageRun &) = delete;

    /// Passes its progress on to standard error and returns its exit status; a signal counts as 128 and its number.
    /// Blocks. Throws ClosedPipe.
    [[nodiscard]] int wait();

    /// The last of what it wrote besides.
    [[nodiscard]] const std::string &text() const { return m_text; }

private:
    void takeLine(const std::string &line);
    [[nodiscard]] int reap();

    FileDescriptor m_errors;
    pid_t m_process = -1;
    std::string m_text;
};

/// Whether genisoimage tells with this line how far it is: "  0.79% done, estimate finish ...".
[[nodiscard]] bool isProgressLine(const std::string &line);

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"
#include "support/ByteSink.h"

#include <cstdint>
#include <span>
#include <string>

namespace nurv {

/// A file without a name for bytes that must wait; the system removes it however the
/// program ends.
class SpoolFile {
public:
    /// Throws ToolError(Write).
    explicit SpoolFile(const std::string &folder);

    /// Throws ToolError(Write).
    void write(std::span<const uint8_t> bytes);

    /// Hands on all that was written, in pieces. Throws ToolError(Read).
    void read(const ByteSink &sink) const;

private:
    std::string m_folder;
    FileDescriptor m_descriptor;
};

} // namespace nurv

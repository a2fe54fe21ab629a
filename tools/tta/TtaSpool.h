// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/FileDescriptor.h"

#include <cstdint>
#include <span>
#include <string>

namespace nurv {

class OutputFile;

/// A file without a name for bytes that must wait; the system removes it however the
/// program ends.
class TtaSpool {
public:
    /// Throws ToolError(Write).
    explicit TtaSpool(const std::string &folder);

    /// Throws ToolError(Write).
    void write(std::span<const uint8_t> bytes);

    /// Appends all that was written to the output. Throws ToolError and as its `write`.
    void copyTo(OutputFile &output) const;

private:
    std::string m_folder;
    FileDescriptor m_descriptor;
};

} // namespace nurv

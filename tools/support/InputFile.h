// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nurv {

/// A buffered reader of a file or of standard input.
class InputFile {
public:
    /// `name` is a path, or "-" for standard input. Throws ToolError(Read).
    explicit InputFile(const std::string &name);

    /// Reads up to `bytes.size()` bytes and returns their number, less than asked for
    /// at the end of the input only. Throws ToolError(Read).
    size_t read(std::span<uint8_t> bytes);

    /// Reads exactly that many bytes, or throws ToolError(Damaged) at the end.
    void readExactly(std::span<uint8_t> bytes);

    /// Passes over that many bytes; returns how many there were.
    uint64_t skip(uint64_t count);

    /// The bytes that come next, at most `count` of them (up to 64 KiB), not taken.
    std::span<const uint8_t> peek(size_t count);

    /// Bytes taken so far.
    [[nodiscard]] uint64_t position() const;

    /// Bytes from the start to the end, of regular files only.
    [[nodiscard]] std::optional<uint64_t> size() const;

    /// Continues at that offset, of regular files only. Throws ToolError(Read).
    void seek(uint64_t offset);

    [[nodiscard]] const std::string &name() const;

    /// The descriptor, for comparing with an output.
    [[nodiscard]] int descriptor() const;
};

} // namespace nurv

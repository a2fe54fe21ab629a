// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"

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

    /// Reads those bytes, copied, as a file: for tests.
    explicit InputFile(std::span<const uint8_t> bytes);

    /// Reads up to `bytes.size()` bytes and returns their number, less than asked for
    /// at the end of the input only. Throws ToolError(Read).
    size_t read(std::span<uint8_t> bytes);

    /// Reads exactly that many bytes, or throws ToolError(Damaged) at the end.
    void readExactly(std::span<uint8_t> bytes);

    /// Passes over that many bytes; returns how many there were.
    uint64_t skip(uint64_t count);

    /// The bytes that come next, at most `count` of them (up to 64 KiB), not taken.
    /// Fewer than asked for at the end of the input only. Good until the next call.
    std::span<const uint8_t> peek(size_t count);

    /// Bytes taken so far, or the offset after `seek`.
    [[nodiscard]] uint64_t position() const;

    /// Bytes from the start to the end, of regular files only.
    [[nodiscard]] std::optional<uint64_t> size() const;

    /// Where all of the input was taken. Throws ToolError(Read) for a regular file whose
    /// end was not where it was when the file was opened: what was made of it may lack
    /// something.
    void checkEnd() const;

    /// Passes over what is left of a pipe, whose writer would be ended by a closed one.
    /// Throws ToolError(Read).
    void drainPipe();

    /// Continues at that offset, of regular files only. Throws ToolError(Read).
    void seek(uint64_t offset);

    [[nodiscard]] bool isStandardInput() const;

    /// For messages: the path, or "standard input".
    [[nodiscard]] const std::string &name() const;

    /// The descriptor, for comparing with an output.
    [[nodiscard]] int descriptor() const;

private:
    void examine();
    [[nodiscard]] size_t buffered() const { return m_end - m_begin; }
    size_t takeBuffered(std::span<uint8_t> bytes);
    size_t readDirectly(std::span<uint8_t> bytes);
    void fillBuffer();
    void dropBuffer(uint64_t offset);

    std::string m_name;
    bool m_isStandardInput = false;
    FileDescriptor m_descriptor;
    /// Where the file stood when it was handed over as standard input.
    uint64_t m_origin = 0;
    std::optional<uint64_t> m_size;
    std::vector<uint8_t> m_buffer;
    uint64_t m_bufferOffset = 0; ///< of the buffer's first byte in the input
    size_t m_begin = 0;          ///< of what is buffered and not taken
    size_t m_end = 0;
};

} // namespace nurv

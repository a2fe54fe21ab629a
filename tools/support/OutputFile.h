// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace nurv {

class InputFile;
class TemporaryFile;

/// A buffered writer to a file or to standard output. A named file is written beside its
/// place under a temporary name and put there by `commit()`. Whatever ends the program
/// before, also a signal that asks it to, leaves neither it nor the temporary file.
/// A symbolic link stays: the file that it names is replaced.
class OutputFile {
public:
    /// `name` is a path, or "-" for standard output, as is any other name of the same
    /// file. Throws ToolError(Write), and ToolError(BadArguments) where `input` is that file.
    OutputFile(const std::string &name, const InputFile &input);
    /// Removes the temporary file of an output that was not committed.
    ~OutputFile();
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    /// Throws ToolError(Write), or ClosedPipe.
    void write(std::span<const uint8_t> bytes);

    /// Hands what is buffered to the system. Throws as `write`.
    void flush();

    /// Throws ClosedPipe where the reader of a pipe went away: before work for a write
    /// that would only find that out.
    void checkReader() const;

    /// Whether the output can be written again at an earlier place.
    [[nodiscard]] bool isSeekable() const;

    /// Writes over bytes that are written already; the position stays at the end.
    /// Seekable outputs only. Throws as `write`.
    void overwrite(uint64_t offset, std::span<const uint8_t> bytes);

    /// Where bytes that must wait belong: beside a file to be, for which there must be room
    /// anyway, else in the folder for temporary files.
    [[nodiscard]] std::string spoolFolder() const;

    /// Bytes written so far.
    [[nodiscard]] uint64_t position() const;

    [[nodiscard]] bool isStandardOutput() const;

    /// Flushes and gives a named file its name, replacing what had it. An output to a
    /// device or a named pipe is written straight away and has nothing to rename.
    void commit();

private:
    void openNamed(const InputFile &input);
    void openStandardOutput(const InputFile &input);
    void writeThrough(std::span<const uint8_t> bytes);
    [[noreturn]] void fail(int error) const;

    std::string m_name; ///< for messages
    std::unique_ptr<TemporaryFile> m_temporary;
    FileDescriptor m_direct; ///< of what is written straight away
    int m_descriptor = -1;   ///< of one or the other
    bool m_isStandardOutput = false;
    bool m_isSeekable = false;
    /// Where the file stood when it was handed over as standard output.
    uint64_t m_origin = 0;
    uint64_t m_written = 0; ///< bytes handed to the system
    std::vector<uint8_t> m_buffer;
};

} // namespace nurv

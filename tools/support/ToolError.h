// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>
#include <string>

namespace nurv {

/// Why a bundled program cannot go on. Thrown for bad input and failed reads or
/// writes, and caught in `toolMain`, which prints the text and ends with status 1.
class ToolError : public std::runtime_error {
public:
    enum class Kind {
        Read,
        Write,
        InvalidInput,
        UnsupportedFormat,
        Damaged,
        OutOfMemory,
        BadArguments,
    };

    ToolError(Kind kind, const std::string &text) : std::runtime_error(text), m_kind(kind) {}

    [[nodiscard]] Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

/// Throws ToolError(BadArguments) with a clear line about what is wrong.
[[noreturn]] inline void badArguments(const std::string &text)
{
    throw ToolError(ToolError::Kind::BadArguments, text);
}

/// The reader of our output went away: the program ends with status 1 and no text.
class ClosedPipe : public std::runtime_error {
public:
    ClosedPipe() : std::runtime_error("closed pipe") {}
};

} // namespace nurv

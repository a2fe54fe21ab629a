// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/ProgramWaveSource.h"

#include "support/ToolError.h"

namespace nurv {

ProgramWaveSource::ProgramWaveSource(const std::vector<std::string> &words)
    : m_program(words, ChildProgram::Pipe::FromChild), m_name(words.front())
{
}

size_t ProgramWaveSource::readSome(std::span<uint8_t> bytes)
{
    if (const size_t count = m_program.read(bytes))
        return count;
    if (const int status = m_program.wait())
        throw ToolError(ToolError::Kind::Damaged, m_name + " ended with status " + std::to_string(status));
    return 0;
}

} // namespace nurv

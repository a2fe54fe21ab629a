// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/ChildProgram.h"
#include "shntool/WaveSource.h"

namespace nurv {

/// What a decoder program writes to its standard output. A status other than 0 is a fault of the source, told at
/// its end; a pass that is given up ends the program.
class ProgramWaveSource final : public WaveSource {
public:
    /// Throws ToolError(Read).
    explicit ProgramWaveSource(const std::vector<std::string> &words);

protected:
    size_t readSome(std::span<uint8_t> bytes) override;

private:
    ChildProgram m_program;
    std::string m_name;
};

} // namespace nurv

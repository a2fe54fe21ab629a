// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/ChildProgram.h"
#include "shntool/PrivateFolder.h"
#include "shntool/WaveOutput.h"

#include <functional>

namespace nurv {

/// What an encoder program makes of a WAV file that it reads from its standard input. It writes in a private folder,
/// and its one file is moved from there.
class ProgramWaveOutput final : public WaveOutput {
public:
    /// `wordsFor` gives the command line that writes the file named. Throws ToolError(Write) where no folder can
    /// be made.
    ProgramWaveOutput(const std::string &name,
                      const std::function<std::vector<std::string>(const std::string &)> &wordsFor);

    bool write(std::span<const uint8_t> bytes) override;
    bool complete() override;
    bool commit() override;
    std::string complaint() override;

private:
    [[nodiscard]] bool flush();

    std::string m_name;
    PrivateFolder m_folder;
    std::string m_made;
    bool m_replaces;
    ChildProgram m_encoder;
    std::vector<uint8_t> m_waiting; ///< for more
    bool m_isIncomplete = false;    ///< although it should be complete
};

} // namespace nurv

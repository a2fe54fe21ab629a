// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/Mode.h"
#include "shntool/OutputSet.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace nurv {

class Progress;
class WaveOutput;
class WavePass;
struct WaveInfo;

/// Moves the borders between files of CD quality to borders of sectors. All sound stays in its order; the last file
/// is filled up with silence. The new files get their names when all of them are complete.
class FixMode final : public Mode {
public:
    explicit FixMode(ModeRun &run);
    ~FixMode() override;

    void takeOption(char option, const char *value) override;
    int execute() override;

private:
    enum class Shift { Backward, Forward, Nearest };

    /// What becomes of one file: its part of the sound of all files.
    struct Part {
        uint64_t formerStart = 0;
        uint64_t formerEnd = 0;
        uint64_t start = 0;
        uint64_t end = 0;

        [[nodiscard]] bool isUnchanged() const { return start == formerStart && end == formerEnd; }
    };

    void examine(const std::vector<std::string> &names);
    void plan();
    [[nodiscard]] bool needsFixing() const;
    [[nodiscard]] size_t firstToWrite() const;
    void fix(size_t first);
    void writePart(size_t index);
    void copySound(size_t index, WaveOutput &output, Progress &progress);
    void openSource(WaveOutput &output, Progress &progress);
    [[noreturn]] void failPart(Progress &progress, WaveOutput &output, const std::string &why);
    void tellPadding() const;

    Shift m_shift = Shift::Backward;
    bool m_checksOnly = false;
    bool m_keepsUnchanged = false;
    bool m_padsLast = true;
    std::vector<WaveInfo> m_infos;
    std::vector<Part> m_parts;
    uint64_t m_missingBytes = 0; ///< in the last sector
    size_t m_source = 0;         ///< the file that is read
    uint64_t m_position = 0;     ///< in the sound of all files
    std::unique_ptr<WavePass> m_pass;
    OutputSet m_outputs;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/Mode.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace nurv {

class Progress;
class WaveOutput;
struct WaveInfo;

/// Makes one file of several, in their natural order. Sound of CD quality is filled up to whole sectors.
class JoinMode final : public Mode {
public:
    explicit JoinMode(ModeRun &run);
    ~JoinMode() override;

    void takeOption(char option, const char *value) override;
    int execute() override;

private:
    enum class Padding { Front, End, None };

    std::vector<WaveInfo> examine(const std::vector<std::string> &names) const;
    void join(const std::vector<WaveInfo> &infos);
    void openOutput(const WaveInfo &first, Progress &progress);
    void addFile(const WaveInfo &info, bool isFirst, bool isLast);
    [[nodiscard]] Progress progressOf(const WaveInfo &info) const;
    [[noreturn]] void failFile(Progress &progress, const std::string &why);
    void tellPadding() const;

    Padding m_padding = Padding::End;
    bool m_isCdQuality = false;
    bool m_isComplete = false;   ///< what the encoder made
    uint64_t m_dataBytes = 0;    ///< of all files
    uint64_t m_missingBytes = 0; ///< in the last sector
    uint64_t m_paddedBytes = 0;  ///< with silence
    std::string m_name;
    std::unique_ptr<WaveOutput> m_output;
};

} // namespace nurv

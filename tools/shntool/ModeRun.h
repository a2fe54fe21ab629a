// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/RunMessages.h"
#include "shntool/FileArguments.h"
#include "shntool/FormatSettings.h"
#include "shntool/OutputFiles.h"
#include "shntool/TimeText.h"
#include "shntool/WaveFiles.h"

#include <string>
#include <vector>

namespace nurv {

/// What all modes have at hand in a run.
struct ModeRun {
    ModeRun(const std::string &program, const std::string &mode)
        : messages(program, mode), formats(messages), files(messages, formats), names(messages), outputs(messages, formats, names)
    {
    }

    RunMessages messages;
    FormatSettings formats;
    WaveFiles files;
    FileArguments names;
    OutputFiles outputs;
    TimeText time{false};

    /// The length of the sound, as texts tell it.
    [[nodiscard]] std::string lengthOf(const WaveInfo &info) const { return time.of(info.header, info.dataBytes()); }
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/CueMode.h"

#include "shntool/ModeRun.h"
#include "shntool/SameFormat.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace nurv {

int CueMode::execute()
{
    return m_wantsSplitPoints ? showSplitPoints() : showCueSheet();
}

int CueMode::showCueSheet() const
{
    run().messages.print("FILE \"joined.wav\" WAVE\n");
    bool isGood = true;
    unsigned tracks = 0;
    uint64_t dataBytes = 0;
    // Minutes are not split into hours in a cue sheet.
    const TimeText time(false);
    while (const std::optional<std::string> name = run().names.next()) {
        const std::optional<WaveInfo> info = run().files.examine(*name);
        isGood = isGood && info;
        if (!info)
            continue;
        if (!info->isCdQuality())
            run().messages.fail("file is not CD-quality: [" + *name + "]");
        std::string index = time.ofCdBytes(dataBytes);
        std::ranges::replace(index, '.', ':');
        std::array<char, 32> track{};
        std::snprintf(track.data(), track.size(), "%02u", ++tracks);
        run().messages.print(std::string("  TRACK ") + track.data() + " AUDIO\n    INDEX 01 " + index + '\n');
        dataBytes += info->dataBytes();
    }
    if (tracks == 0)
        run().messages.fail("need one or more files in order to generate CUE sheet");
    return isGood ? 0 : 1;
}

int CueMode::showSplitPoints() const
{
    bool isGood = true;
    uint64_t dataBytes = 0;
    std::optional<WaveInfo> first;
    unsigned files = 0;
    while (const std::optional<std::string> name = run().names.next()) {
        std::optional<WaveInfo> info = run().files.examine(*name);
        isGood = isGood && info;
        if (!info)
            continue;
        if (first) {
            if (const char *difference = differenceOf(first->header, info->header))
                run().messages.fail(std::string(difference) + " differs among these files");
            if (dataBytes > 0)
                run().messages.print(std::to_string(dataBytes) + '\n');
        }
        dataBytes += info->dataBytes();
        ++files;
        if (!first)
            first = std::move(info);
    }
    if (files < 2)
        run().messages.fail("need two or more files in order to generate split points");
    return isGood ? 0 : 1;
}

} // namespace nurv

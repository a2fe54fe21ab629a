// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace nurv::discNames {

// The folders and files of a disc with one title set.

inline constexpr char kAudioFolder[] = "AUDIO_TS";
inline constexpr char kVideoFolder[] = "VIDEO_TS";

inline constexpr char kSimpleManager[] = "AUDIO_PP.IFO";
inline constexpr char kManager[] = "AUDIO_TS.IFO";
inline constexpr char kManagerCopy[] = "AUDIO_TS.BUP";
inline constexpr char kTitleSet[] = "ATS_01_0.IFO";
inline constexpr char kTitleSetCopy[] = "ATS_01_0.BUP";

inline constexpr unsigned kMostAobs = 9;

/// From 1.
[[nodiscard]] inline std::string aob(unsigned number)
{
    return "ATS_01_" + std::to_string(number) + ".AOB";
}

/// Whether a file of AUDIO_TS has that name.
[[nodiscard]] inline bool isOfDisc(const std::string &name)
{
    for (const char *table : {kSimpleManager, kManager, kManagerCopy, kTitleSet, kTitleSetCopy}) {
        if (name == table)
            return true;
    }
    for (unsigned number = 1; number <= kMostAobs; ++number) {
        if (name == aob(number))
            return true;
    }
    return false;
}

} // namespace nurv::discNames

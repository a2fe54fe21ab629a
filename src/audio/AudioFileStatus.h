// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/AudioStreamDescription.h"

namespace nurv {

/// How an operation on an audio file ended. A message shows the four characters.
enum class AudioFileStatus : FourCharCode {
    Ok = 0,
    Unspecified = fourCharCode("wht?"),           ///< the system refused: the log has its reason
    UnsupportedFileType = fourCharCode("typ?"),   ///< no container of that code is known
    UnsupportedDataFormat = fourCharCode("fmt?"), ///< the samples cannot be had or kept in that form
    InvalidValue = fourCharCode("!dat"),          ///< out of the encoder's range
    PermissionDenied = fourCharCode("prm?"),      ///< not to be opened, or not to be overwritten
    InvalidFile = fourCharCode("dta?"),           ///< damaged, cut off, or no audio file at all
    TooLarge = fourCharCode("off?"),              ///< more than the container can hold
    NotOpen = fourCharCode("nop?"),
};

/// The code as messages show it.
[[nodiscard]] inline QString statusText(AudioFileStatus status)
{
    return fourCharText(static_cast<FourCharCode>(status));
}

} // namespace nurv

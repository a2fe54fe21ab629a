// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/ToolError.h"

#include <string>

namespace nurv {

/// The numbers that programs which start this one look for after "Error: ".
enum class ApeErrorNumber {
    Read = 1000,
    Write = 1001,
    InvalidInputFile = 1002,
    InputTooLarge = 1004,
    UnsupportedBitDepth = 1005,
    UnsupportedSampleRate = 1006,
    UnsupportedChannels = 1007,
    InputTooSmall = 1008,
    InvalidChecksum = 1009,
    Decompressing = 1010,
    UnsupportedFileType = 1013,
    UnsupportedVersion = 1014,
    OutOfMemory = 2000,
};

/// A ToolError that has a number of its own.
class ApeError : public ToolError {
public:
    ApeError(ApeErrorNumber number, const std::string &text);

    [[nodiscard]] ApeErrorNumber number() const { return m_number; }

private:
    ApeErrorNumber m_number;
};

/// The number of any failure.
[[nodiscard]] ApeErrorNumber apeErrorNumber(const ToolError &error);

} // namespace nurv

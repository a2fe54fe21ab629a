// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeError.h"

namespace nurv {

namespace {

ToolError::Kind kindOf(ApeErrorNumber number)
{
    switch (number) {
    case ApeErrorNumber::Read: return ToolError::Kind::Read;
    case ApeErrorNumber::Write: return ToolError::Kind::Write;
    case ApeErrorNumber::InvalidInputFile:
    case ApeErrorNumber::InputTooLarge:
    case ApeErrorNumber::InputTooSmall: return ToolError::Kind::InvalidInput;
    case ApeErrorNumber::UnsupportedBitDepth:
    case ApeErrorNumber::UnsupportedSampleRate:
    case ApeErrorNumber::UnsupportedChannels:
    case ApeErrorNumber::UnsupportedFileType:
    case ApeErrorNumber::UnsupportedVersion: return ToolError::Kind::UnsupportedFormat;
    case ApeErrorNumber::InvalidChecksum:
    case ApeErrorNumber::Decompressing: return ToolError::Kind::Damaged;
    case ApeErrorNumber::OutOfMemory: return ToolError::Kind::OutOfMemory;
    }
    return ToolError::Kind::InvalidInput;
}

} // namespace

ApeError::ApeError(ApeErrorNumber number, const std::string &text) : ToolError(kindOf(number), text), m_number(number)
{
}

ApeErrorNumber apeErrorNumber(const ToolError &error)
{
    if (const auto *numbered = dynamic_cast<const ApeError *>(&error))
        return numbered->number();
    switch (error.kind()) {
    case ToolError::Kind::Read: return ApeErrorNumber::Read;
    case ToolError::Kind::Write: return ApeErrorNumber::Write;
    case ToolError::Kind::UnsupportedFormat: return ApeErrorNumber::UnsupportedFileType;
    // A file that ends too early; what is damaged otherwise has a number of its own.
    case ToolError::Kind::Damaged: return ApeErrorNumber::Read;
    case ToolError::Kind::OutOfMemory: return ApeErrorNumber::OutOfMemory;
    // Also wrong arguments: callers know failures by the numbers from 1000 to 1099.
    case ToolError::Kind::BadArguments:
    case ToolError::Kind::InvalidInput: return ApeErrorNumber::InvalidInputFile;
    }
    return ApeErrorNumber::InvalidInputFile;
}

} // namespace nurv

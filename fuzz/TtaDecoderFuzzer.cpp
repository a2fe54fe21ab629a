// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/InputFile.h"
#include "support/ToolError.h"
#include "tta/TtaReader.h"

/// Reads a file whose CRCs are taken for good, so that damage reaches the frames; then
/// once more with its CRCs.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using nurv::TtaFrameState;
    using nurv::TtaHeader;
    for (const TtaHeader::Crc crc : {TtaHeader::Crc::Ignored, TtaHeader::Crc::Checked}) {
        nurv::InputFile input(std::span<const uint8_t>(data, size));
        try {
            nurv::TtaReader reader(input, crc);
            for (uint64_t frame = 0; frame < reader.header().frameCount(); ++frame) {
                // A truncated file has nothing more to read.
                if (reader.readFrame() == TtaFrameState::Truncated)
                    break;
            }
        } catch (const nurv::ToolError &) {
            continue;
        }
    }
    return 0;
}

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeDecoder.h"
#include "support/InputFile.h"
#include "support/ToolError.h"

namespace {

/// A few bytes can announce hours of silence.
constexpr uint64_t kMaxOutputBytes = uint64_t{64} << 20;

struct EnoughOutput {};

} // namespace

/// Decodes a whole file with the instructions that it is mostly decoded with, and with
/// plain ones: the first fault ends it.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    for (const nurv::ApeInstructionSet set : {nurv::bestInstructionSet(), nurv::ApeInstructionSet::Plain}) {
        nurv::InputFile input(std::span<const uint8_t>(data, size));
        uint64_t written = 0;
        try {
            nurv::ApeDecoder decoder(input, set);
            decoder.decode([&](std::span<const uint8_t> bytes) {
                written += bytes.size();
                if (written > kMaxOutputBytes)
                    throw EnoughOutput();
            });
        } catch (const nurv::ToolError &) {
            continue;
        } catch (const EnoughOutput &) {
            continue;
        }
    }
    return 0;
}

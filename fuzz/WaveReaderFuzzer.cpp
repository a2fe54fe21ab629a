// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/InputFile.h"
#include "support/ToolError.h"
#include "support/WaveReader.h"

#include <algorithm>
#include <cstdlib>

namespace {

void readAs(nurv::WaveReader::Kinds kinds, std::span<const uint8_t> bytes)
{
    nurv::InputFile input(bytes);
    try {
        nurv::WaveReader reader(input, kinds);
        std::vector<uint8_t> pieces(reader.header().begin(), reader.header().end());
        std::vector<uint8_t> frames(size_t{reader.format().blockAlign} * 3);
        while (const size_t count = reader.readPayload(frames))
            pieces.insert(pieces.end(), frames.begin(), frames.begin() + static_cast<std::ptrdiff_t>(count));
        while (const size_t count = reader.readTrailing(frames))
            pieces.insert(pieces.end(), frames.begin(), frames.begin() + static_cast<std::ptrdiff_t>(count));
        if (!std::ranges::equal(pieces, bytes))
            std::abort();
    } catch (const nurv::ToolError &) {
        return;
    }
}

} // namespace

/// The three pieces of whatever is read are that, byte for byte.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    readAs(nurv::WaveReader::Kinds::Riff, {data, size});
    readAs(nurv::WaveReader::Kinds::RiffAndRf64, {data, size});
    return 0;
}

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shorten/ShortenCompression.h"
#include "shorten/ShortenDecoder.h"
#include "shorten/ShortenEncoder.h"
#include "shorten/ShortenSeekTable.h"
#include "support/InputFile.h"
#include "support/ToolError.h"
#include "support/WaveReader.h"

#include <cstdlib>
#include <vector>

namespace {

using namespace nurv;
using namespace nurv::shorten;

using Bytes = std::vector<uint8_t>;

/// A few bits can stand for a block of zeros in eight channels.
constexpr size_t kMaxRestored = 4 << 20;

struct Enough {};

Bytes restore(std::span<const uint8_t> stream)
{
    Bytes restored;
    InputFile input(stream);
    ShortenDecoder decoder(input, [&restored](std::span<const uint8_t> bytes) {
        if (restored.size() + bytes.size() > kMaxRestored)
            throw Enough();
        restored.insert(restored.end(), bytes.begin(), bytes.end());
    });
    decoder.decodeHead();
    decoder.decodeRest();
    return restored;
}

Bytes compress(std::span<const uint8_t> wave)
{
    InputFile input(wave);
    WaveReader reader(input);
    const StreamHeader header = streamHeaderFor(reader.format(), input.name());
    Bytes stream;
    ShortenSeekTable table;
    ShortenEncoder encoder(
        header, [&stream](std::span<const uint8_t> bytes) { stream.insert(stream.end(), bytes.begin(), bytes.end()); },
        ShortenSeekTable::canDescribe(header) ? &table : nullptr);
    const Bytes entries = table.finish(encodeWave(reader, header, encoder));
    stream.insert(stream.end(), entries.begin(), entries.end());
    return stream;
}

} // namespace

/// Whatever WAV file comes out of a stream can be compressed and restored again.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    try {
        const Bytes restored = restore({data, size});
        if (restore(compress(restored)) != restored)
            std::abort();
    } catch (const ToolError &) {
        return 0;
    } catch (const Enough &) {
        return 0;
    }
    return 0;
}

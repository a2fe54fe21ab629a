// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/NurvFailure.h"
#include "samples/ByteSource.h"
#include "samples/ChunkRun.h"
#include "samples/CodecHeaders.h"
#include "samples/FlacLastFrame.h"
#include "samples/PcmHeader.h"
#include "samples/WavpackBlocks.h"

#include <algorithm>
#include <cstdlib>

namespace {

using namespace nurv;

void require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

void readPcm(const ByteSource &source, std::int64_t start)
{
    try {
        const PcmHeader header = PcmHeader::read(source, start);
        require(header.format.channels > 0 && header.coding.bytesPerSample > 0);
        require(header.soundStart >= start && header.heldBytes >= 0);
        // The offset field of an SSND chunk may name a place behind the file: then there are no samples.
        require(header.heldBytes == 0 || header.soundStart + header.heldBytes <= source.size());
        require(header.heldFrames() >= 0 && header.declaredFrames.value_or(0) >= 0);
    } catch (const NurvFailure &) {
        return;
    }
}

void readBlocks(const ByteSource &source, std::int64_t start)
{
    try {
        const WavpackBlocks blocks(source, start);
        // The size of a tag in front may lead behind the file: nothing is found there.
        require(blocks.heldFrames() >= 0 && blocks.soundEnd() >= start);
        require(blocks.soundEnd() <= std::max(source.size(), start));
        require(static_cast<std::int64_t>(blocks.storedTrailer().size()) <= source.size());
    } catch (const NurvFailure &) {
        return;
    }
}

void readCodec(const ByteSource &source, std::int64_t start)
{
    if (const std::optional<CodecHeader> header = CodecHeader::read(source, start)) {
        require(header->format.channels > 0 && header->declaredFrames.value_or(0) >= 0);
        require(header->soundEnd >= 0);
    }
    const std::optional<std::int64_t> sound = CodecHeader::flacSoundStart(source, start);
    require(!sound || (*sound >= start && *sound <= source.size()));
    require(framesByLastFlacFrame(source, start).value_or(0) >= 0);
}

} // namespace

/// Every reader of headers looks at the bytes, whatever they begin with; what one tells lies
/// within the file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const MemoryBytes source({data, size});
    const std::int64_t start = offsetBehindTags(source);
    require(start >= 0);
    static_cast<void>(holdsOnlyTags(source, start));
    static_cast<void>(holdsOnlyPadding(source, start));
    static_cast<void>(PcmHeader::isAt(source, start));
    readPcm(source, start);
    readCodec(source, start);
    readBlocks(source, start);
    for (const bool isPadded : {false, true}) {
        for (const bool isBigEndian : {false, true})
            static_cast<void>(lookBehindSound(source, start, isPadded, isBigEndian));
    }
    return 0;
}

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shorten/ShortenCompression.h"

#include "shorten/ShortenEncoder.h"
#include "support/ToolError.h"
#include "support/WaveReader.h"

#include <algorithm>
#include <span>
#include <vector>

namespace nurv::shorten {

namespace {

constexpr size_t kReadBytes = 64 * 1024;

[[noreturn]] void refuse(const std::string &name, const std::string &why)
{
    throw ToolError(ToolError::Kind::UnsupportedFormat, name + ": " + why);
}

} // namespace

StreamHeader streamHeaderFor(const WaveFormat &format, const std::string &name)
{
    if (!format.isIntegerPcm())
        refuse(name, "Shorten holds integer samples only, not WAV format " + std::to_string(format.formatTag));
    if (format.bitsPerSample != 8 && format.bitsPerSample != 16)
        refuse(name, "Shorten holds samples of 8 or 16 bits, not of " + std::to_string(format.bitsPerSample));
    if (format.channels > kMaxChannels)
        refuse(name, "Shorten holds 1 to 8 channels, not " + std::to_string(format.channels));
    return {.fileType = format.bitsPerSample == 8 ? FileType::Unsigned8 : FileType::Signed16LittleEndian,
            .channels = format.channels};
}

uint64_t encodeWave(WaveReader &wave, const StreamHeader &header, ShortenEncoder &encoder)
{
    encoder.writeVerbatim(wave.header());
    const size_t blockBytes = size_t{header.blockSize} * header.channels * bytesPerSample(header.fileType);
    std::vector<uint8_t> bytes(std::max<size_t>(kReadBytes / blockBytes, 1) * blockBytes);
    while (const size_t size = wave.readPayload(bytes)) {
        for (size_t start = 0; start < size; start += blockBytes)
            encoder.writeBlock(std::span(bytes).subspan(start, std::min(blockBytes, size - start)));
    }
    bytes.resize(kReadBytes);
    while (const size_t size = wave.readTrailing(bytes))
        encoder.writeVerbatim(std::span(bytes).first(size));
    return encoder.finish();
}

} // namespace nurv::shorten

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tta/TtaReader.h"

#include "support/Bytes.h"
#include "support/Id3v2.h"
#include "support/InputFile.h"
#include "support/ToolError.h"
#include "tta/TtaCrc.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace nurv {

namespace {

constexpr uint32_t kCrcBytes = 4;

[[noreturn]] void fail(const InputFile &input, ToolError::Kind kind, const std::string &text)
{
    throw ToolError(kind, input.name() + ": " + text);
}

[[noreturn]] void damaged(const InputFile &input, const std::string &text)
{
    fail(input, ToolError::Kind::Damaged, text);
}

TtaHeader readHeader(InputFile &input, TtaHeader::Crc crc)
{
    skipId3v2Tags(input);
    std::array<uint8_t, TtaHeader::kByteCount> bytes{};
    if (input.read(bytes) < bytes.size() && startsWith(bytes, "TTA1"))
        damaged(input, "the file is truncated within its header");
    try {
        return TtaHeader::fromBytes(bytes, crc);
    } catch (const ToolError &error) {
        fail(input, error.kind(), error.what());
    }
}

} // namespace

bool looksLikeTta(InputFile &input)
{
    skipId3v2Tags(input);
    return startsWith(input.peek(4), "TTA1");
}

TtaReader::TtaReader(InputFile &input, TtaHeader::Crc crc)
    : m_input(input), m_crc(crc), m_header(readHeader(input, crc)),
      m_bitReader([this](std::span<uint8_t> bytes) { return readFrameBytes(bytes); }), m_decoder(m_header)
{
    readSeekTable();
}

void TtaReader::readSeekTable()
{
    // In steps: the count comes from the file, which may be much shorter.
    constexpr uint64_t kEntriesAtOnce = 4096;
    std::vector<uint8_t> bytes;
    uint32_t crc = 0;
    for (uint64_t left = m_header.frameCount(); left > 0;) {
        const auto count = static_cast<size_t>(std::min(left, kEntriesAtOnce));
        bytes.resize(4 * count);
        if (m_input.read(bytes) < bytes.size())
            damaged(m_input, "the file is truncated within its seek table");
        crc = ttaCrc(bytes, crc);
        for (size_t i = 0; i < count; ++i)
            m_frameSizes.push_back(littleEndian32(&bytes[4 * i]));
        left -= count;
    }
    std::array<uint8_t, kCrcBytes> stored{};
    if (m_input.read(stored) < stored.size())
        damaged(m_input, "the file is truncated within its seek table");
    if (m_crc == TtaHeader::Crc::Checked && crc != littleEndian32(stored.data()))
        damaged(m_input, "the seek table is damaged: its CRC does not match");
}

TtaFrameState TtaReader::readFrame()
{
    const uint64_t frame = m_framesRead++;
    const uint32_t size = m_frameSizes[frame];
    const size_t samples = m_header.samplesInFrame(frame);
    m_frameBytesLeft = size - std::min(size, kCrcBytes);
    m_frameCrc = 0;
    auto ending = TtaFrameDecoder::Ending::BeforeSamples;
    // Every sample takes at least a bit: room is made for samples that can be there only.
    if (m_frameBytesLeft * 8 >= samples * m_header.channels) {
        m_pcm.resize(samples * m_header.blockAlign());
        ending = m_decoder.decode(m_bitReader, m_pcm);
    }
    const bool isIntact = frameCrcMatches();
    if (m_isTruncated)
        return TtaFrameState::Truncated;
    if (!isIntact)
        return TtaFrameState::CrcMismatch;
    switch (ending) {
    case TtaFrameDecoder::Ending::WithSamples: return TtaFrameState::Good;
    case TtaFrameDecoder::Ending::BehindSamples: return TtaFrameState::HoldsMore;
    case TtaFrameDecoder::Ending::BeforeSamples: break;
    }
    return TtaFrameState::Overrun;
}

/// Reads on where the bytes of the current frame are left.
size_t TtaReader::readFrameBytes(std::span<uint8_t> bytes)
{
    const auto wanted = static_cast<size_t>(std::min<uint64_t>(bytes.size(), m_frameBytesLeft));
    const size_t count = m_input.read(bytes.first(wanted));
    m_isTruncated |= count < wanted;
    m_frameBytesLeft -= count;
    m_frameCrc = ttaCrc(bytes.first(count), m_frameCrc);
    return count;
}

/// Reads to the end of the frame.
bool TtaReader::frameCrcMatches()
{
    std::array<uint8_t, 4096> rest;
    while (readFrameBytes(rest) > 0) {
    }
    const uint32_t size = m_frameSizes[m_framesRead - 1];
    std::array<uint8_t, kCrcBytes> stored{};
    const size_t present = m_input.read(std::span(stored).first(std::min(size, kCrcBytes)));
    m_isTruncated |= present < std::min(size, kCrcBytes);
    return m_crc == TtaHeader::Crc::Ignored || (size >= kCrcBytes && m_frameCrc == littleEndian32(stored.data()));
}

std::string TtaReader::describe(TtaFrameState state) const
{
    const uint64_t frame = m_framesRead - 1;
    const double startSeconds = static_cast<double>(frame * m_header.frameLength()) / m_header.sampleRateHz;
    std::array<char, 120> place;
    std::snprintf(place.data(), place.size(), "frame %llu of %llu (at %.2f s)",
                  static_cast<unsigned long long>(m_framesRead), static_cast<unsigned long long>(m_header.frameCount()),
                  startSeconds);
    switch (state) {
    case TtaFrameState::Good: break;
    case TtaFrameState::Truncated: return place.data() + std::string(" is missing: the file is truncated");
    case TtaFrameState::CrcMismatch: return place.data() + std::string(" is damaged: its CRC does not match");
    case TtaFrameState::HoldsMore:
        return place.data() + std::string(" is damaged: it holds more samples than the header counts");
    case TtaFrameState::Overrun: return place.data() + std::string(" is damaged: it holds too few samples");
    }
    return place.data() + std::string(" is good");
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tta/TtaWriter.h"

#include "support/Bytes.h"
#include "support/OutputFile.h"
#include "support/ToolError.h"
#include "tta/TtaCrc.h"

#include <array>
#include <limits>

namespace nurv {

namespace {

constexpr uint64_t kMaxSamples = std::numeric_limits<uint32_t>::max();
constexpr uint64_t kMaxFrameBytes = std::numeric_limits<uint32_t>::max();

[[noreturn]] void tooLong()
{
    throw ToolError(ToolError::Kind::UnsupportedFormat, "the sound is too long for a TTA file");
}

constexpr size_t headByteCount(uint64_t frames)
{
    return TtaHeader::kByteCount + 4 * frames + 4;
}

TtaHeader withSamples(TtaHeader header, uint64_t sampleCount)
{
    if (sampleCount > kMaxSamples)
        tooLong();
    header.sampleCount = static_cast<uint32_t>(sampleCount);
    header.check();
    return header;
}

} // namespace

TtaWriter::TtaWriter(OutputFile &output, const TtaHeader &format, std::optional<uint64_t> sampleCount)
    : m_output(output), m_header(withSamples(format, sampleCount.value_or(0))), m_promisedSamples(sampleCount),
      m_bitWriter([this](std::span<const uint8_t> bytes) { writeFrameBytes(bytes); }), m_encoder(m_header)
{
    if (m_promisedSamples && m_output.isSeekable()) {
        m_frameSizes.reserve(m_header.frameCount());
        m_output.write(std::vector<uint8_t>(headByteCount(m_header.frameCount())));
    } else {
        m_spool.emplace(m_output.spoolFolder());
    }
}

void TtaWriter::writeFrame(std::span<const uint8_t> pcm)
{
    m_sampleCount += pcm.size() / m_header.blockAlign();
    if (m_sampleCount > kMaxSamples || m_frameSizes.size() == TtaHeader::kMaxFrames)
        tooLong();
    m_frameSize = 0;
    m_frameCrc = 0;
    m_encoder.encode(m_bitWriter, pcm);
    std::array<uint8_t, 4> crc;
    putLittleEndian32(crc.data(), m_frameCrc);
    writeFrameBytes(crc);
    m_frameSizes.push_back(static_cast<uint32_t>(m_frameSize));
}

void TtaWriter::writeFrameBytes(std::span<const uint8_t> bytes)
{
    m_frameSize += bytes.size();
    if (m_frameSize > kMaxFrameBytes)
        throw ToolError(ToolError::Kind::UnsupportedFormat, "the sound is too erratic for a TTA file");
    m_frameCrc = ttaCrc(bytes, m_frameCrc);
    if (m_spool)
        m_spool->write(bytes);
    else
        m_output.write(bytes);
}

void TtaWriter::finish()
{
    if (m_promisedSamples && *m_promisedSamples != m_sampleCount)
        throw ToolError(ToolError::Kind::Read, "the input changed while it was read");
    m_header = withSamples(m_header, m_sampleCount);
    if (m_spool) {
        m_output.write(head());
        m_spool->read([this](std::span<const uint8_t> bytes) { m_output.write(bytes); });
    } else {
        m_output.overwrite(0, head());
    }
}

/// All that stands before the frames.
std::vector<uint8_t> TtaWriter::head() const
{
    const auto header = m_header.toBytes();
    std::vector<uint8_t> bytes(header.begin(), header.end());
    bytes.resize(headByteCount(m_frameSizes.size()));
    uint8_t *at = bytes.data() + header.size();
    for (const uint32_t size : m_frameSizes) {
        putLittleEndian32(at, size);
        at += 4;
    }
    putLittleEndian32(at, ttaCrc({bytes.data() + header.size(), at}));
    return bytes;
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dvda/AobTitle.h"

#include "dvda/BigEndian.h"
#include "dvda/DiscSamples.h"
#include "support/ToolError.h"

#include <algorithm>
#include <limits>

namespace nurv {

namespace {

constexpr size_t kRunBytes = 512 * kDiscSectorBytes;
constexpr uint64_t kPtsPerSecond = 90'000;
constexpr uint64_t kScrPerSecond = 27'000'000;
constexpr uint64_t kMuxBitsPerSecond = 10'080'000;
/// The time of four packs, which are read before the first one is played.
constexpr uint64_t kPacksAhead = 4;
constexpr uint64_t kFirstPts = 585;
/// The time in which one is read, rounded up.
constexpr uint64_t kPackScr = 43'886;

constexpr std::array<uint8_t, 18> kSystemHeader{0x00, 0x00, 0x01, 0xBB, 0x00, 0x0C, 0x80, 0xC4, 0xE1,
                                                0x04, 0xA0, 0x7F, 0xB8, 0xC0, 0x40, 0xBD, 0xE0, 0x0A};
constexpr std::array<uint8_t, 3> kStreamBuffer{0x1E, 0x60, 0x0A};

constexpr unsigned kPackHeaderBytes = 14;
constexpr unsigned kPesHeaderBytes = 14;
/// Behind the PES header, up to the byte that counts the rest of the private one.
constexpr unsigned kPrivateStartBytes = 4;
constexpr unsigned kLeastPrivateBytes = 10;
/// The head of a padding packet, and a byte in it.
constexpr unsigned kLeastPaddingBytes = 7;

unsigned roomInPack(bool isFirstOfTitle)
{
    constexpr unsigned kRoom = kDiscSectorBytes - kPackHeaderBytes - kPesHeaderBytes - kPrivateStartBytes;
    return isFirstOfTitle ? kRoom - kSystemHeader.size() - kStreamBuffer.size() : kRoom;
}

uint8_t *putPackHeader(uint8_t *at, uint64_t scr)
{
    const uint64_t base = scr / 300;
    const uint64_t extension = scr % 300;
    const std::array<uint64_t, kPackHeaderBytes> bytes{
        0x00,
        0x00,
        0x01,
        0xBA,
        0x44 | (base >> 27 & 0x38) | (base >> 28 & 3),
        base >> 20,
        (base >> 12 & 0xF8) | 4 | (base >> 13 & 3),
        base >> 5,
        (base << 3 & 0xF8) | 4 | extension >> 7,
        extension << 1 | 1,
        0x01, // the rate of the multiplex, and what ends the header
        0x89,
        0xC3,
        0xF8,
    };
    return std::transform(bytes.begin(), bytes.end(), at, [](uint64_t byte) { return static_cast<uint8_t>(byte); });
}

uint8_t *putPts(uint8_t *at, uint64_t pts)
{
    const std::array<uint64_t, 5> bytes{0x21 | (pts >> 29 & 0xE), pts >> 22, (pts >> 14 & 0xFE) | 1, pts >> 7,
                                        (pts << 1 & 0xFE) | 1};
    return std::transform(bytes.begin(), bytes.end(), at, [](uint64_t byte) { return static_cast<uint8_t>(byte); });
}

uint8_t *putPesHeader(uint8_t *at, bool isFirstOfTitle, bool hasPts, uint64_t pts, unsigned bytesBehind)
{
    const unsigned extension = isFirstOfTitle ? kStreamBuffer.size() : 0;
    at = std::copy_n(std::array<uint8_t, 4>{0x00, 0x00, 0x01, 0xBD}.begin(), 4, at);
    putBigEndian16(at, static_cast<uint16_t>(kPesHeaderBytes - 6 + extension + bytesBehind));
    at[2] = 0x81;
    at[3] = static_cast<uint8_t>((hasPts ? 0x80 : 0) | (isFirstOfTitle ? 1 : 0));
    at[4] = static_cast<uint8_t>(5 + extension);
    at += 5;
    at = hasPts ? putPts(at, pts) : std::fill_n(at, 5, uint8_t{0xFF});
    return std::copy_n(kStreamBuffer.begin(), extension, at);
}

/// `number` is that of the pack in its track.
uint8_t *putPrivateHeader(uint8_t *at, const DvdAudioFormat &format, uint64_t number, uint16_t firstUnit,
                          unsigned headerBytes)
{
    constexpr uint8_t kLinearPcm = 0xA0;
    constexpr unsigned kIsrcBytes = 32;
    constexpr uint8_t kNoDownMix = 0x10;
    constexpr uint8_t kNoDynamicRange = 0x80;
    std::fill_n(at, kPrivateStartBytes + headerBytes, uint8_t{0});
    at[0] = kLinearPcm;
    at[1] = static_cast<uint8_t>(number % kIsrcBytes);
    at[3] = static_cast<uint8_t>(headerBytes);
    putBigEndian16(at + 4, firstUnit);
    at[6] = format.isMultichannel() ? 0 : kNoDownMix;
    at[7] = format.sizesByte();
    at[8] = format.ratesByte();
    at[10] = format.channelAssignment();
    at[11] = kNoDynamicRange;
    return at + kPrivateStartBytes + headerBytes;
}

void putPadding(uint8_t *at, unsigned bytes)
{
    if (bytes == 0)
        return;
    std::fill_n(at, bytes, uint8_t{0xFF});
    std::copy_n(std::array<uint8_t, 4>{0x00, 0x00, 0x01, 0xBE}.begin(), 4, at);
    putBigEndian16(at + 4, static_cast<uint16_t>(bytes - 6));
}

/// The most ticks that end before the middle of the sample behind the last one: a reader finds all samples, and no
/// pack too many.
uint64_t ticksOf(uint64_t frames, uint32_t sampleRateHz)
{
    const uint64_t rate = uint64_t{2} * sampleRateHz;
    return ((2 * frames + 1) * kPtsPerSecond + rate - 1) / rate - 1;
}

} // namespace

AobTitle::AobTitle(const DvdAudioFormat &format, ByteSink sectors) : m_format(format), m_sectors(std::move(sectors))
{
    m_run.reserve(kRunBytes);
}

void AobTitle::beginTrack()
{
    m_trackFirstPack = m_packs;
    m_trackFirstFrame = m_position;
    m_trackBytes = 0;
}

void AobTitle::add(std::span<const uint8_t> pcm)
{
    m_trackBytes += pcm.size();
    while (!pcm.empty()) {
        const PackDivision division = fullPack(m_format, m_packs == 0);
        if (m_waiting.empty() && pcm.size() >= division.audioBytes) {
            putPack(pcm.first(division.audioBytes), division);
            pcm = pcm.subspan(division.audioBytes);
            continue;
        }
        const size_t count = std::min<size_t>(pcm.size(), division.audioBytes - m_waiting.size());
        m_waiting.insert(m_waiting.end(), pcm.begin(), pcm.begin() + static_cast<std::ptrdiff_t>(count));
        pcm = pcm.subspan(count);
        if (m_waiting.size() == division.audioBytes) {
            putPack(m_waiting, division);
            m_waiting.clear();
        }
    }
}

DiscTrack AobTitle::endTrack()
{
    const uint64_t frames = m_trackBytes / m_format.bytesPerFrame();
    if (!m_waiting.empty()) {
        // A unit is two sample frames.
        if (frames % 2 != 0)
            m_waiting.resize(m_waiting.size() + m_format.bytesPerFrame());
        putShortPack(m_waiting);
        m_waiting.clear();
    }
    constexpr uint64_t kMost = std::numeric_limits<uint32_t>::max();
    if (ptsAt(m_position) > kMost || m_packs > kMost)
        throw ToolError(ToolError::Kind::UnsupportedFormat,
                        "there is more sound than the clock of a title counts, 13 hours");
    return {.frames = frames,
            .startPts = static_cast<uint32_t>(ptsAt(m_trackFirstFrame)),
            .lengthTicks = static_cast<uint32_t>(ticksOf(frames, m_format.sampleRateHz)),
            .firstSector = static_cast<uint32_t>(m_trackFirstPack),
            .lastSector = static_cast<uint32_t>(m_packs - 1)};
}

void AobTitle::finish()
{
    m_sectors(m_run);
    m_run.clear();
}

/// The time of the first access unit that starts at that sample frame of the title or behind it.
uint64_t AobTitle::ptsAt(uint64_t frame) const
{
    const uint64_t unit = m_format.accessUnitFrames();
    return kFirstPts + (frame + unit - 1) / unit * unit * kPtsPerSecond / m_format.sampleRateHz;
}

AobTitle::PackTimes AobTitle::nextTimes(uint64_t frames, unsigned headerBytes)
{
    PackTimes times;
    // Four packs as fast as they can be read, then one whenever one has been played.
    if (m_packs < kPacksAhead) {
        times.scr = m_packs * kDiscSectorBytes * 8 * kScrPerSecond / kMuxBitsPerSecond;
    } else {
        const uint64_t played = m_played[m_packs % kPacksAhead];
        times.scr = std::max(kFirstPts * 300 + played * kScrPerSecond / m_format.sampleRateHz, m_lastScr + kPackScr);
    }
    const uint64_t unit = m_format.accessUnitFrames();
    const uint64_t start = (m_position + unit - 1) / unit * unit;
    times.pts = ptsAt(m_position);
    if (start < m_position + frames)
        times.firstUnit = static_cast<uint16_t>((start - m_position) * m_format.bytesPerFrame() + headerBytes - 1);
    return times;
}

void AobTitle::putPack(std::span<const uint8_t> pcm, const PackDivision &division)
{
    const bool isFirst = m_packs == 0;
    const uint64_t frames = pcm.size() / m_format.bytesPerFrame();
    const PackTimes times = nextTimes(frames, division.headerBytes);
    const size_t start = m_run.size();
    m_run.resize(start + kDiscSectorBytes);
    uint8_t *at = putPackHeader(m_run.data() + start, times.scr);
    if (isFirst)
        at = std::copy(kSystemHeader.begin(), kSystemHeader.end(), at);
    at = putPesHeader(at, isFirst, times.firstUnit != 0, times.pts,
                      kPrivateStartBytes + division.headerBytes + static_cast<unsigned>(pcm.size()));
    at = putPrivateHeader(at, m_format, m_packs - m_trackFirstPack, times.firstUnit, division.headerBytes);
    putDiscSamples(m_format, pcm, at);
    putPadding(at + pcm.size(), division.paddingBytes);
    m_position += frames;
    m_lastScr = times.scr;
    m_played[m_packs % kPacksAhead] = m_position;
    ++m_packs;
    if (m_run.size() >= kRunBytes)
        finish();
}

/// The last one of a track.
void AobTitle::putShortPack(std::span<const uint8_t> pcm)
{
    // A sample frame that was added may have filled it.
    if (const PackDivision full = fullPack(m_format, m_packs == 0); full.audioBytes == pcm.size())
        return putPack(pcm, full);
    PackDivision division{.audioBytes = static_cast<unsigned>(pcm.size()), .headerBytes = kLeastPrivateBytes};
    const unsigned rest = roomInPack(m_packs == 0) - division.audioBytes - division.headerBytes;
    if (rest >= kLeastPaddingBytes)
        division.paddingBytes = rest;
    else
        division.headerBytes += rest;
    putPack(pcm, division);
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/PcmHeader.h"

#include "base/NurvFailure.h"
#include "samples/ByteSource.h"
#include "samples/ChunkRun.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <span>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::int64_t kFileHeadBytes = 12;
constexpr std::int64_t kChunkHeadBytes = 8;
constexpr int kMostChunks = 10'000;
constexpr int kMostChannels = 64;
constexpr std::uint32_t kMostHertz = 100'000'000;
// Programs that write to a pipe fill in the largest size that there is, of 32 or of 31 bits,
// or a little less, so that it stays a number of whole frames. SoX has one of its own for AIFF.
constexpr std::uint32_t kUnknownSizeRange = 0x2000;
constexpr std::uint32_t kUnknownAiffSize = 0x7F000000;

/// Larger ones are no sizes.
constexpr std::uint64_t kMostWideSize = std::uint64_t{1} << 62;

constexpr std::uint16_t kWavePcm = 1;
constexpr std::uint16_t kWaveFloat = 3;
constexpr std::uint16_t kWaveExtensible = 0xFFFE;
// The GUIDs of WAVE_FORMAT_EXTENSIBLE behind their first two bytes.
constexpr std::array<std::uint8_t, 14> kWaveGuidRest = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                                        0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

bool isUnknownSize(std::uint32_t size)
{
    return size > 0xFFFFFFFF - kUnknownSizeRange || (size <= 0x7FFFFFFF && size > 0x7FFFFFFF - kUnknownSizeRange)
           || (size > kUnknownAiffSize - kUnknownSizeRange && size < kUnknownAiffSize + kUnknownSizeRange);
}

bool isName(const std::uint8_t *bytes, const char *name)
{
    return std::memcmp(bytes, name, 4) == 0;
}

/// The head of one chunk.
struct PcmChunk {
    std::array<std::uint8_t, 4> name{};
    std::uint32_t size = 0;
    std::int64_t start = 0; ///< of its contents

    [[nodiscard]] bool is(const char *fourCharacters) const { return isName(name.data(), fourCharacters); }
    [[nodiscard]] std::int64_t next() const { return start + size + (size & 1); }
};

/// What the headers of both kinds of files are read with.
class PcmHeaderReader {
public:
    PcmHeaderReader(const ByteSource &source, bool isBigEndian) : m_source(source), m_isBigEndian(isBigEndian) {}

    /// Whether there is a chunk at the offset.
    [[nodiscard]] bool readChunk(std::int64_t offset, PcmChunk &chunk) const
    {
        std::array<std::uint8_t, kChunkHeadBytes> head{};
        if (!m_source.readAll(offset, head.data(), head.size()))
            return false;
        std::copy_n(head.begin(), 4, chunk.name.begin());
        chunk.size =
            m_isBigEndian ? qFromBigEndian<quint32>(head.data() + 4) : qFromLittleEndian<quint32>(head.data() + 4);
        chunk.start = offset + kChunkHeadBytes;
        return true;
    }

    /// The first bytes of a chunk, as many as there are of them; the rest stays 0.
    template<std::size_t Size>
    [[nodiscard]] std::array<std::uint8_t, Size> contents(const PcmChunk &chunk, std::size_t least) const
    {
        std::array<std::uint8_t, Size> bytes{};
        const std::size_t count = m_source.readAt(chunk.start, bytes.data(), std::min<std::size_t>(Size, chunk.size));
        if (count < least)
            throw NurvFailure(u"its header is cut off"_s);
        return bytes;
    }

    /// The offset field of an SSND chunk, also where the chunk's size leaves no room for it.
    [[nodiscard]] std::int64_t offsetOfSound(const PcmChunk &chunk) const
    {
        std::array<std::uint8_t, 8> head{};
        if (!m_source.readAll(chunk.start, head.data(), head.size()))
            throw NurvFailure(u"its header is cut off"_s);
        return qFromBigEndian<quint32>(head.data());
    }

    /// What stands behind the first `size` bytes of samples, when they are all there.
    [[nodiscard]] BehindSound behind(const PcmHeader &header, std::int64_t size) const
    {
        return lookBehindSound(m_source, header.soundStart + size, (size & 1) != 0, m_isBigEndian);
    }

    [[nodiscard]] std::int64_t available(const PcmHeader &header) const
    {
        return std::max<std::int64_t>(m_source.size() - header.soundStart, 0);
    }

private:
    const ByteSource &m_source;
    bool m_isBigEndian;
};

/// Sets the format after the numbers of a header, which are checked here.
void describe(PcmHeader &header, std::uint32_t rate, int channels, int bits, bool isFloat)
{
    if (channels < 1 || channels > kMostChannels)
        throw NurvFailure(u"its header promises %1 channels"_s.arg(channels));
    if (rate < 1 || rate > kMostHertz)
        throw NurvFailure(u"its header promises a sample rate of %1 Hz"_s.arg(rate));
    if (isFloat && bits == 64)
        throw NurvFailure(u"its samples are floating-point numbers of 64 bits, which nothing here compares"_s);
    if (bits < 1 || bits > 32 || (isFloat && bits != 32))
        throw NurvFailure(u"its samples have %1 bits"_s.arg(bits));
    header.format = {
        .sampleRateHz = static_cast<int>(rate), .channels = channels, .bitsPerSample = bits, .isFloat = isFloat};
    header.coding.bytesPerSample = (bits + 7) / 8;
}

/// RIFF WAVE; EBU Tech 3306 and ITU-R BS.2088 for the 64-bit sizes.
class WaveHeaderReader {
public:
    WaveHeaderReader(const ByteSource &source, std::int64_t start) : m_reader(source, false), m_start(start) {}

    PcmHeader read()
    {
        PcmChunk chunk;
        std::int64_t position = m_start + kFileHeadBytes;
        for (int chunks = 0; chunks < kMostChunks && m_reader.readChunk(position, chunk); ++chunks) {
            if (chunk.is("data"))
                return finish(chunk);
            if (chunk.is("ds64") && chunk.size >= 16)
                m_wideSize = qFromLittleEndian<quint64>(m_reader.contents<16>(chunk, 16).data() + 8);
            if (chunk.is("fmt "))
                readFormat(chunk);
            position = chunk.next();
        }
        throw NurvFailure(u"it has no chunk of samples"_s);
    }

private:
    void readFormat(const PcmChunk &chunk)
    {
        const auto bytes = m_reader.contents<40>(chunk, 16);
        const auto field = [&bytes](std::size_t at) { return qFromLittleEndian<quint16>(bytes.data() + at); };
        std::uint16_t tag = field(0);
        const int channels = field(2);
        const int frameBytes = field(12);
        const int containerBits = field(14);
        int bits = containerBits;
        if (tag == kWaveExtensible) {
            if (chunk.size < 40 || !std::equal(kWaveGuidRest.begin(), kWaveGuidRest.end(), bytes.begin() + 26))
                throw NurvFailure(u"its samples are of an unknown kind"_s);
            tag = field(24);
            if (field(18) > 0 && field(18) < containerBits)
                bits = field(18);
        }
        if (tag != kWavePcm && tag != kWaveFloat)
            throw NurvFailure(u"its samples are of the kind %1, neither integers nor floating point"_s.arg(tag));
        describe(m_header, qFromLittleEndian<quint32>(bytes.data() + 4), channels, containerBits, tag == kWaveFloat);
        if (frameBytes != m_header.frameBytes())
            throw NurvFailure(u"its header contradicts itself: %1 bytes for %2 samples of %3 bits"_s.arg(frameBytes)
                                  .arg(channels)
                                  .arg(containerBits));
        m_header.format.bitsPerSample = bits;
        m_header.coding.isUnsigned = m_header.coding.bytesPerSample == 1;
    }

    PcmHeader finish(const PcmChunk &data)
    {
        if (m_header.format.channels == 0)
            throw NurvFailure(u"its header does not tell how its samples are kept"_s);
        m_header.soundStart = data.start;
        m_header.heldBytes = m_reader.available(m_header);
        const bool isWide = data.size == 0xFFFFFFFF && m_wideSize;
        const std::uint64_t declared = isWide ? *m_wideSize : data.size;
        if (isWide ? declared <= kMostWideSize : !isUnknownSize(data.size))
            m_header.declaredFrames = static_cast<std::int64_t>(declared) / m_header.frameBytes();
        if (declared > static_cast<std::uint64_t>(m_header.heldBytes))
            return m_header;
        const auto size = static_cast<std::int64_t>(declared);
        const BehindSound behind = m_reader.behind(m_header, size);
        if (behind != BehindSound::SomethingElse) {
            m_header.heldBytes = size;
            m_header.declaredFrames = size / m_header.frameBytes();
        }
        m_header.holdsFurtherSound = behind == BehindSound::FurtherSound;
        return m_header;
    }

    PcmHeaderReader m_reader;
    std::int64_t m_start;
    PcmHeader m_header;
    std::optional<std::uint64_t> m_wideSize;
};

/// AIFF 1.3 and AIFF-C.
class AiffHeaderReader {
public:
    AiffHeaderReader(const ByteSource &source, std::int64_t start, bool isCompressed)
        : m_reader(source, true), m_start(start), m_isCompressed(isCompressed)
    {
    }

    PcmHeader read()
    {
        PcmChunk chunk;
        PcmChunk sound;
        std::int64_t position = m_start + kFileHeadBytes;
        for (int chunks = 0; chunks < kMostChunks && m_reader.readChunk(position, chunk); ++chunks) {
            if (chunk.is("COMM"))
                readCommon(chunk);
            if (chunk.is("SSND"))
                sound = chunk;
            if (m_header.format.channels > 0 && sound.start > 0)
                return finish(sound);
            position = chunk.next();
        }
        throw NurvFailure(sound.start > 0 ? u"its header does not tell how its samples are kept"_s
                                          : u"it has no chunk of samples"_s);
    }

private:
    void readCommon(const PcmChunk &chunk)
    {
        const auto bytes = m_reader.contents<22>(chunk, m_isCompressed ? 22 : 18);
        const auto channels = qFromBigEndian<quint16>(bytes.data());
        const auto bits = qFromBigEndian<quint16>(bytes.data() + 6);
        m_commonFrames = qFromBigEndian<quint32>(bytes.data() + 2);
        m_header.coding.isBigEndian = true;
        bool isFloat = false;
        if (m_isCompressed)
            isFloat = readKind(bytes.data() + 18);
        describe(m_header, sampleRate(bytes.data() + 8), channels, isFloat && bits != 64 ? 32 : bits, isFloat);
    }

    /// Whether the samples are floats.
    bool readKind(const std::uint8_t *kind)
    {
        if (isName(kind, "NONE") || isName(kind, "twos") || isName(kind, "in24") || isName(kind, "in32"))
            return false;
        if (isName(kind, "sowt")) {
            m_header.coding.isBigEndian = false;
            return false;
        }
        if (isName(kind, "raw ")) {
            m_header.coding.isUnsigned = true;
            return false;
        }
        if (isName(kind, "fl32") || isName(kind, "FL32"))
            return true;
        if (isName(kind, "fl64") || isName(kind, "FL64"))
            throw NurvFailure(u"its samples are floating-point numbers of 64 bits, which nothing here compares"_s);
        throw NurvFailure(u"its samples are of an unknown kind"_s);
    }

    /// Of the 80-bit floating-point number, in whole hertz; 0 where it is none.
    static std::uint32_t sampleRate(const std::uint8_t *bytes)
    {
        const auto exponent = qFromBigEndian<quint16>(bytes);
        const auto mantissa = qFromBigEndian<quint64>(bytes + 2);
        if (exponent < 16383 || exponent > 16383 + 31)
            return 0;
        return static_cast<std::uint32_t>(mantissa >> (63 - (exponent - 16383)));
    }

    PcmHeader finish(const PcmChunk &sound)
    {
        const std::int64_t headBytes = 8 + m_reader.offsetOfSound(sound);
        m_header.soundStart = sound.start + headBytes;
        const std::int64_t available = m_reader.available(m_header);
        const std::int64_t soundBytes = sound.size - headBytes;
        const std::int64_t commonBytes = m_commonFrames * m_header.frameBytes();
        const bool isCommonTold =
            m_commonFrames != 0xFFFFFFFF && (commonBytes <= available || !isUnknownSize(sound.size));
        m_header.heldBytes = available;
        // The larger one first: the chunk may lie, and so may the number of frames.
        for (const std::int64_t size : {std::max(soundBytes, commonBytes), std::min(soundBytes, commonBytes)}) {
            if (size < 0 || size > available)
                continue;
            const BehindSound behind = m_reader.behind(m_header, size);
            if (behind == BehindSound::SomethingElse)
                continue;
            m_header.heldBytes = size;
            m_header.holdsFurtherSound = behind == BehindSound::FurtherSound;
            break;
        }
        if (isCommonTold)
            m_header.declaredFrames = m_commonFrames;
        // Where both tell, and one of them is right, the other one is still a wrong promise.
        if (!isUnknownSize(sound.size) && m_commonFrames == m_header.heldFrames())
            m_header.declaredFrames = std::max<std::int64_t>(soundBytes, 0) / m_header.frameBytes();
        return m_header;
    }

    PcmHeaderReader m_reader;
    std::int64_t m_start;
    bool m_isCompressed;
    PcmHeader m_header;
    std::int64_t m_commonFrames = 0;
};

struct FileHead {
    bool isWave = false;
    bool isAiff = false;
    bool isCompressedAiff = false;
};

FileHead fileHead(const ByteSource &source, std::int64_t start)
{
    std::array<std::uint8_t, kFileHeadBytes> head{};
    if (!source.readAll(start, head.data(), head.size()))
        return {};
    const std::uint8_t *const name = head.data();
    const std::uint8_t *const form = head.data() + 8;
    FileHead found;
    found.isWave = (isName(name, "RIFF") || isName(name, "RF64") || isName(name, "BW64")) && isName(form, "WAVE");
    found.isCompressedAiff = isName(name, "FORM") && isName(form, "AIFC");
    found.isAiff = found.isCompressedAiff || (isName(name, "FORM") && isName(form, "AIFF"));
    return found;
}

} // namespace

bool PcmHeader::isAt(const ByteSource &source, std::int64_t start)
{
    const FileHead head = fileHead(source, start);
    return head.isWave || head.isAiff;
}

PcmHeader PcmHeader::read(const ByteSource &source, std::int64_t start)
{
    const FileHead head = fileHead(source, start);
    if (head.isAiff)
        return AiffHeaderReader(source, start, head.isCompressedAiff).read();
    return WaveHeaderReader(source, start).read();
}

} // namespace nurv

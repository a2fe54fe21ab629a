// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/DecodedSoundCheck.h"

#include "base/NurvFailure.h"
#include "samples/ByteSource.h"
#include "samples/ChunkRun.h"
#include "samples/CodecHeaders.h"
#include "samples/FlacCodedNumber.h"
#include "samples/PcmSamples.h"
#include "samples/WavpackBlocks.h"

#include <QCryptographicHash>

#include <algorithm>
#include <utility>
#include <vector>

extern "C" {
#include <libavutil/crc.h>
}

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

class FlacCheck final : public DecodedSoundCheck {
public:
    FlacCheck(const ByteSource &source, const CodecHeader &header, std::optional<std::int64_t> soundStart)
        : m_source(source), m_header(header), m_end(soundStart),
          m_hasMd5(std::ranges::any_of(header.md5, [](std::uint8_t byte) { return byte != 0; }))
    {
    }

    /// RFC 9639, section 9.1: where the blocks have one size, the frames are numbered;
    /// where they do not, it is the first sample's number.
    std::size_t onPacket(std::span<const std::uint8_t> bytes) override
    {
        const auto number = bytes.size() > 4 && bytes[0] == 0xFF && (bytes[1] & 0xFE) == 0xF8
                                ? FlacCodedNumber::read(bytes.subspan(4))
                                : std::nullopt;
        if (!number)
            throw NurvFailure(u"a frame of its sound is damaged"_s);
        const bool countsSamples = (bytes[1] & 1) != 0;
        if (!countsSamples && number->value != m_frames)
            throw NurvFailure(u"frame %1 of its sound is missing or damaged"_s.arg(m_frames));
        if (countsSamples && m_frames > 0 && number->value <= m_lastNumber)
            throw NurvFailure(u"its frames are out of order"_s);
        if (countsSamples)
            m_sampleNumbers.push_back(number->value);
        m_lastNumber = number->value;
        ++m_frames;
        return bytesOfFrame(bytes);
    }

    void onSamples(const std::int32_t *samples, std::size_t frames) override
    {
        // A frame of the file begins here: its samples come in one piece.
        if (!m_sampleNumbers.empty()) {
            if (m_sampleNumbers.front() != m_samples)
                throw NurvFailure(u"sample %1 and some behind it are missing"_s.arg(m_samples));
            m_sampleNumbers.erase(m_sampleNumbers.begin());
        }
        m_samples += frames;
        if (!m_hasMd5)
            return;
        const std::size_t count = frames * static_cast<std::size_t>(m_header.format.channels);
        const int bits = m_header.format.bitsPerSample;
        m_bytes.resize(count * static_cast<std::size_t>((bits + 7) / 8));
        pcmSamples::narrow(samples, count, bits, m_bytes.data());
        m_md5.addData(QByteArrayView(m_bytes.data(), static_cast<qsizetype>(m_bytes.size())));
    }

    void atEnd(std::int64_t) override
    {
        const QByteArray expected(reinterpret_cast<const char *>(m_header.md5.data()),
                                  static_cast<qsizetype>(m_header.md5.size()));
        if (m_hasMd5 && m_md5.result() != expected)
            throw NurvFailure(u"its samples do not fit its MD5"_s);
        const bool isEndRight = m_end ? holdsOnlyTags(m_source, *m_end) : !m_holdsMore;
        if (!isEndRight)
            throw NurvFailure(u"something else than frames of sound is between them"_s);
    }

private:
    /// A frame ends with the CRC of all that comes before it, so that its own CRC is 0. What
    /// is in a packet beside a frame are frames with damaged heads, which are none for the
    /// demuxer, and at the end of the file tags. FFmpeg 5 passes over both, FFmpeg 7 refuses
    /// both: tags are kept from it.
    std::size_t bytesOfFrame(std::span<const std::uint8_t> packet)
    {
        if (m_holdsMore)
            throw NurvFailure(u"frame %1 of its sound is missing or damaged"_s.arg(m_frames - 1));
        m_holdsMore = av_crc(m_crcTable, 0, packet.data(), packet.size()) != 0;
        const std::size_t size = m_holdsMore ? bytesBeforeTags(packet).value_or(0) : packet.size();
        if (m_end)
            *m_end += static_cast<std::int64_t>(size);
        return size > 0 ? size : packet.size();
    }

    /// Of the one frame in the last packet of a file, where nothing but tags follows it.
    [[nodiscard]] std::optional<std::size_t> bytesBeforeTags(std::span<const std::uint8_t> packet) const
    {
        std::uint32_t crc = 0;
        for (std::size_t size = 1; m_end && size <= packet.size(); ++size) {
            crc = av_crc(m_crcTable, crc, &packet[size - 1], 1);
            if (crc == 0 && holdsOnlyTags(m_source, *m_end + static_cast<std::int64_t>(size)))
                return size;
        }
        return std::nullopt;
    }

    const ByteSource &m_source;
    CodecHeader m_header;
    const AVCRC *m_crcTable = av_crc_get_table(AV_CRC_16_ANSI);
    std::optional<std::int64_t> m_end; ///< the offset behind the last frame that was right
    bool m_holdsMore = false;          ///< the last packet holds more than a frame
    bool m_hasMd5;
    std::uint64_t m_frames = 0;
    std::uint64_t m_samples = 0;
    std::uint64_t m_lastNumber = 0;
    std::vector<std::uint64_t> m_sampleNumbers; ///< of frames that the decoder still has
    std::vector<std::uint8_t> m_bytes;
    QCryptographicHash m_md5{QCryptographicHash::Md5};
};

class WavpackCheck final : public DecodedSoundCheck {
public:
    explicit WavpackCheck(WavpackBlocks blocks) : m_blocks(std::move(blocks)) {}

    void atEnd(std::int64_t frames) override
    {
        if (m_blocks.isBroken())
            throw NurvFailure(u"blocks of its sound are missing"_s);
        if (frames != m_blocks.heldFrames())
            throw NurvFailure(
                u"its blocks promise %1 samples, %2 were decoded"_s.arg(m_blocks.heldFrames()).arg(frames));
        // The byte order of the file that the sound came from is not known here.
        const MemoryBytes trailer(m_blocks.storedTrailer());
        if (lookBehindSound(trailer, 0, true, false) != BehindSound::Chunks
            && lookBehindSound(trailer, 0, true, true) != BehindSound::Chunks)
            throw NurvFailure(u"it keeps bytes behind its sound that may be sound, too"_s);
    }

private:
    WavpackBlocks m_blocks;
};

class TtaCheck final : public DecodedSoundCheck {
public:
    TtaCheck(const ByteSource &source, std::int64_t soundEnd) : m_source(source), m_soundEnd(soundEnd) {}

    void atEnd(std::int64_t) override
    {
        if (m_soundEnd > m_source.size() || !holdsOnlyTags(m_source, m_soundEnd))
            throw NurvFailure(u"it holds more than the frames that its header counts"_s);
    }

private:
    const ByteSource &m_source;
    std::int64_t m_soundEnd;
};

} // namespace

std::unique_ptr<DecodedSoundCheck> makeFlacCheck(const ByteSource &source, const CodecHeader &header,
                                                 std::optional<std::int64_t> soundStart)
{
    return std::make_unique<FlacCheck>(source, header, soundStart);
}

std::unique_ptr<DecodedSoundCheck> makeWavpackCheck(WavpackBlocks blocks)
{
    return std::make_unique<WavpackCheck>(std::move(blocks));
}

std::unique_ptr<DecodedSoundCheck> makeTtaCheck(const ByteSource &source, const CodecHeader &header)
{
    return std::make_unique<TtaCheck>(source, header.soundEnd);
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/ShortenSampleStream.h"

#include "base/NurvFailure.h"
#include "samples/ChunkRun.h"
#include "samples/CodecFailure.h"
#include "samples/SampleCount.h"
#include "shorten/ShortenDecoder.h"
#include "support/InputFile.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// What is stored around the samples: headers with pictures, and chunks.
constexpr std::size_t kMostStoredBytes = 64 * 1024 * 1024;

/// Of these, whoever asks for the length alone gets so many.
constexpr std::size_t kMostHeaderBytes = 64 * 1024;

/// Thrown by a sink that has enough.
struct HasEnough {};

using shorten::FileType;
using shorten::Function;

PcmCoding codingOf(FileType type)
{
    return {.bytesPerSample = static_cast<int>(shorten::bytesPerSample(type)),
            .isBigEndian = type == FileType::Signed16BigEndian || type == FileType::Unsigned16BigEndian,
            .isUnsigned = type == FileType::Unsigned8 || type == FileType::Unsigned16BigEndian
                          || type == FileType::Unsigned16LittleEndian};
}

} // namespace

class ShortenSampleStream::Decoder {
public:
    explicit Decoder(std::unique_ptr<RegularFile> file)
        : m_file(std::move(file)), m_input(m_file->lastingName()),
          m_decoder(m_input, [this](std::span<const std::uint8_t> bytes) { take(bytes); })
    {
        m_decoder.decodeHead();
        m_stored = &m_behind;
        readStoredHeader();
    }

    [[nodiscard]] std::size_t read(std::int32_t *samples, std::size_t frames);
    [[nodiscard]] const PcmHeader &header() const { return m_header; }
    [[nodiscard]] double progress() const
    {
        return m_file->size() > 0 ? static_cast<double>(m_input.position()) / static_cast<double>(m_file->size()) : 1.0;
    }

private:
    void take(std::span<const std::uint8_t> bytes);
    void readStoredHeader();
    [[nodiscard]] bool decodeMore();
    void checkEnd() const;

    std::unique_ptr<RegularFile> m_file;
    InputFile m_input;
    shorten::ShortenDecoder m_decoder;
    std::vector<std::uint8_t> m_front;  ///< stored in front of the samples
    std::vector<std::uint8_t> m_behind; ///< stored behind the first of them
    std::vector<std::uint8_t> *m_stored = &m_front;
    PcmHeader m_header;
    PcmCoding m_coding;
    std::vector<std::uint8_t> m_block; ///< decoded and not read yet, from m_blockOffset on
    std::size_t m_blockOffset = 0;
    bool m_isBlock = false;       ///< what the decoder hands over next are samples
    bool m_isInterrupted = false; ///< samples follow bytes that were stored behind samples
    std::int64_t m_framesRead = 0;
};

namespace {

/// Where a table for seeking ends that begins there and counts itself in its trailer; nothing without one.
std::optional<std::int64_t> endOfSeekTable(const RegularFile &file, std::int64_t begin)
{
    constexpr std::size_t kMostSearched = 64 * 1024;
    constexpr std::size_t kCountSize = 4;
    constexpr std::string_view kEndMark = "SHNAMPSK";
    std::array<char, kCountSize> mark = {};
    if (!file.readAll(begin, mark.data(), mark.size()) || std::memcmp(mark.data(), "SEEK", mark.size()) != 0)
        return std::nullopt;
    // Tags may follow it.
    const std::int64_t from = std::max(begin, file.size() - static_cast<std::int64_t>(kMostSearched));
    std::vector<char> last(static_cast<std::size_t>(file.size() - from));
    if (!file.readAll(from, last.data(), last.size()))
        return std::nullopt;
    const std::size_t place = std::string_view(last.data(), last.size()).rfind(kEndMark);
    if (place == std::string_view::npos || place < kCountSize)
        return std::nullopt;
    const std::int64_t end = from + static_cast<std::int64_t>(place + kEndMark.size());
    const bool isWhole = qFromLittleEndian<std::uint32_t>(last.data() + place - kCountSize) == end - begin;
    return isWhole ? std::optional(end) : std::nullopt;
}

/// Whether nothing stands behind the stream's end but what programs put there: zeros, a table for seeking, tags; or less
/// than a sound takes.
bool endsKnown(const RegularFile &file, std::int64_t end)
{
    // Its last word is filled up with zeros.
    constexpr int kMostFilling = 8;
    constexpr std::int64_t kLeastSound = 512;
    if (file.size() - end < kLeastSound)
        return true;
    std::uint8_t filling = 0;
    for (int i = 0; i < kMostFilling && file.readAll(end, &filling, 1) && filling == 0; ++i)
        ++end;
    end = endOfSeekTable(file, end).value_or(end);
    return holdsOnlyPadding(file, end) || holdsOnlyTags(file, end);
}

} // namespace

void ShortenSampleStream::Decoder::take(std::span<const std::uint8_t> bytes)
{
    std::vector<std::uint8_t> &into = m_isBlock ? m_block : *m_stored;
    if (!m_isBlock && into.size() + bytes.size() > kMostStoredBytes)
        throw NurvFailure(u"it stores too much beside its samples"_s);
    into.insert(into.end(), bytes.begin(), bytes.end());
}

void ShortenSampleStream::Decoder::readStoredHeader()
{
    const MemoryBytes stored(m_front);
    if (!PcmHeader::isAt(stored, 0))
        throw NurvFailure(u"it stores no header of a sound file, so that its sample rate is not known"_s);
    m_header = PcmHeader::read(stored, 0);
    m_coding = codingOf(m_decoder.header().fileType);
    const bool isSameByteOrder = m_header.coding.isBigEndian == m_coding.isBigEndian || m_coding.bytesPerSample == 1;
    if (m_header.format.channels != static_cast<int>(m_decoder.header().channels) || !isSameByteOrder
        || m_header.coding.bytesPerSample != m_coding.bytesPerSample
        || m_header.coding.isUnsigned != m_coding.isUnsigned)
        throw NurvFailure(u"the header that it stores is of another kind than its samples"_s);
}

/// Whether there was a block.
bool ShortenSampleStream::Decoder::decodeMore()
{
    m_block.clear();
    m_blockOffset = 0;
    while (m_block.empty()) {
        const Function next = m_decoder.next();
        m_isBlock = next != Function::Verbatim;
        try {
            m_decoder.decodeNext();
        } catch (const ToolError &error) {
            throw NurvFailure(codecFailureReason(error, m_input.name()));
        }
        if (next == Function::Quit)
            return false;
        m_isInterrupted = m_isInterrupted || (!m_block.empty() && !m_behind.empty());
    }
    return true;
}

std::size_t ShortenSampleStream::Decoder::read(std::int32_t *samples, std::size_t frames)
{
    const auto frameBytes = static_cast<std::size_t>(m_header.frameBytes());
    const auto channels = static_cast<std::size_t>(m_header.format.channels);
    std::size_t done = 0;
    while (done < frames) {
        if (m_blockOffset == m_block.size() && !decodeMore())
            break;
        const std::size_t part = std::min(frames - done, (m_block.size() - m_blockOffset) / frameBytes);
        pcmSamples::widen(m_block.data() + m_blockOffset, part * channels, m_coding, samples + done * channels);
        m_blockOffset += part * frameBytes;
        done += part;
    }
    m_framesRead += static_cast<std::int64_t>(done);
    if (done == 0 && frames > 0)
        checkEnd();
    return done;
}

/// An encoder that believed a wrong header stored samples as if they were none.
void ShortenSampleStream::Decoder::checkEnd() const
{
    checkPromise(m_header.declaredFrames, m_framesRead);
    const bool isWholeHeader = static_cast<std::int64_t>(m_front.size()) == m_header.soundStart;
    const bool isChunk = m_framesRead == 0 && m_header.heldBytes == 0 && !m_header.holdsFurtherSound;
    const bool isOdd = (m_framesRead * m_header.frameBytes() & 1) != 0;
    if (m_isInterrupted || (!isWholeHeader && !isChunk)
        || lookBehindSound(MemoryBytes(m_behind), 0, isOdd, m_front.front() == 'F') != BehindSound::Chunks)
        throw NurvFailure(u"it stores bytes beside its samples that may be samples, too"_s);
    if (!endsKnown(*m_file, static_cast<std::int64_t>(m_decoder.position())))
        throw NurvFailure(u"bytes stand behind its end that may be another sound"_s);
}

ShortenSampleStream::ShortenSampleStream(std::unique_ptr<RegularFile> file)
{
    const std::string name = file->lastingName();
    try {
        m_decoder = std::make_unique<Decoder>(std::move(file));
    } catch (const ToolError &error) {
        throw NurvFailure(codecFailureReason(error, name));
    }
}

ShortenSampleStream::~ShortenSampleStream() = default;

bool ShortenSampleStream::isAt(const ByteSource &source, std::int64_t start)
{
    std::array<std::uint8_t, sizeof shorten::kMagic> magic{};
    return source.readAll(start, magic.data(), magic.size())
           && std::memcmp(magic.data(), shorten::kMagic, magic.size()) == 0;
}

std::optional<PcmHeader> ShortenSampleStream::storedHeader(const RegularFile &file)
{
    std::vector<std::uint8_t> stored;
    try {
        InputFile input(file.lastingName());
        shorten::ShortenDecoder decoder(input, [&stored](std::span<const std::uint8_t> bytes) {
            if (stored.size() + bytes.size() > kMostHeaderBytes)
                throw HasEnough();
            stored.insert(stored.end(), bytes.begin(), bytes.end());
        });
        decoder.decodeHead();
    } catch (const HasEnough &) {
    } catch (const ToolError &) {
        return std::nullopt;
    }
    const MemoryBytes bytes(stored);
    return PcmHeader::isAt(bytes, 0) ? std::optional(PcmHeader::read(bytes, 0)) : std::nullopt;
}

SampleFormat ShortenSampleStream::format() const
{
    return m_decoder->header().format;
}

std::optional<std::int64_t> ShortenSampleStream::declaredFrames() const
{
    return m_decoder->header().declaredFrames;
}

std::size_t ShortenSampleStream::read(std::int32_t *samples, std::size_t frames)
{
    return m_decoder->read(samples, frames);
}

double ShortenSampleStream::progress() const
{
    return m_decoder->progress();
}

} // namespace nurv

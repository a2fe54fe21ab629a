// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/ApeSampleStream.h"

#include "ape/ApeFileReader.h"
#include "ape/ApeFrameDecoder.h"
#include "base/NurvFailure.h"
#include "samples/ChunkRun.h"
#include "samples/CodecFailure.h"
#include "samples/PcmSamples.h"
#include "samples/SampleCount.h"
#include "support/InputFile.h"

#include <algorithm>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::size_t kMostStoredBytes = 64 * 1024 * 1024;

} // namespace

class ApeSampleStream::Decoder {
public:
    explicit Decoder(std::unique_ptr<RegularFile> file)
        : m_file(std::move(file)), m_input(m_file->lastingName()), m_reader(m_input),
          m_decoder(*apeLevelFromNumber(header().level), header().bitsPerSample, header().channels)
    {
        m_coding.bytesPerSample = header().bitsPerSample / 8;
        m_coding.isUnsigned = header().bitsPerSample == 8;
    }

    [[nodiscard]] const ApeHeader &header() const { return m_reader.header(); }
    [[nodiscard]] std::size_t read(std::int32_t *samples, std::size_t frames);
    [[nodiscard]] double progress() const
    {
        return static_cast<double>(m_framesRead) / static_cast<double>(std::max<uint64_t>(header().totalBlocks(), 1));
    }

private:
    [[nodiscard]] bool nextFrame();
    void checkEnd();

    std::unique_ptr<RegularFile> m_file;
    InputFile m_input;
    ApeFileReader m_reader;
    ApeFrameDecoder m_decoder;
    PcmCoding m_coding;
    std::uint32_t m_nextFrame = 0;
    std::span<const std::uint8_t> m_pcm; ///< of the current frame, not read yet
    std::int64_t m_framesRead = 0;       ///< of samples
    bool m_isAtEnd = false;
};

/// Whether there was one.
bool ApeSampleStream::Decoder::nextFrame()
{
    if (m_nextFrame == header().totalFrames)
        return false;
    try {
        if (m_nextFrame == 0)
            m_reader.readStoredHeader([](std::span<const std::uint8_t>) {});
        m_pcm = m_decoder.decode(m_reader.readFrame(), header().blocksOfFrame(m_nextFrame));
    } catch (const ToolError &error) {
        throw NurvFailure(
            u"its sound is damaged at %1 (%2)"_s.arg(timeOfFrame(m_framesRead, static_cast<int>(header().sampleRateHz)),
                                                     codecFailureReason(error, m_input.name())));
    }
    ++m_nextFrame;
    return true;
}

std::size_t ApeSampleStream::Decoder::read(std::int32_t *samples, std::size_t frames)
{
    std::size_t done = 0;
    while (done < frames) {
        if (m_pcm.empty() && !nextFrame())
            break;
        const std::size_t part = std::min(frames - done, m_pcm.size() / header().bytesPerBlock());
        pcmSamples::widen(m_pcm.data(), part * header().channels, m_coding, samples + done * header().channels);
        m_pcm = m_pcm.subspan(part * header().bytesPerBlock());
        done += part;
    }
    m_framesRead += static_cast<std::int64_t>(done);
    if (done == 0 && frames > 0 && !m_isAtEnd)
        checkEnd();
    return done;
}

void ApeSampleStream::Decoder::checkEnd()
{
    std::vector<std::uint8_t> stored;
    try {
        m_reader.readStoredTrailing([&stored](std::span<const std::uint8_t> bytes) {
            if (stored.size() + bytes.size() > kMostStoredBytes)
                throw NurvFailure(u"it stores too much behind its sound"_s);
            stored.insert(stored.end(), bytes.begin(), bytes.end());
        });
        m_reader.checkMd5();
    } catch (const ToolError &error) {
        throw NurvFailure(codecFailureReason(error, m_input.name()));
    }
    // An encoder that believed a wrong header stored samples as if they were none.
    const bool isOdd = (header().totalBlocks() * header().bytesPerBlock() & 1) != 0;
    if (lookBehindSound(MemoryBytes(stored), 0, isOdd, false) != BehindSound::Chunks)
        throw NurvFailure(u"it stores bytes behind its sound that may be sound, too"_s);
    if (!holdsOnlyTags(*m_file, static_cast<std::int64_t>(m_input.position())))
        throw NurvFailure(u"it holds more than its header counts"_s);
    m_isAtEnd = true;
}

ApeSampleStream::ApeSampleStream(std::unique_ptr<RegularFile> file)
{
    const std::string name = file->lastingName();
    try {
        m_decoder = std::make_unique<Decoder>(std::move(file));
    } catch (const ToolError &error) {
        throw NurvFailure(codecFailureReason(error, name));
    }
}

ApeSampleStream::~ApeSampleStream() = default;

SampleFormat ApeSampleStream::format() const
{
    const ApeHeader &header = m_decoder->header();
    return {.sampleRateHz = static_cast<int>(std::min<std::uint32_t>(header.sampleRateHz, 100'000'000)),
            .channels = header.channels,
            .bitsPerSample = header.bitsPerSample,
            .isFloat = false};
}

std::optional<std::int64_t> ApeSampleStream::declaredFrames() const
{
    return static_cast<std::int64_t>(m_decoder->header().totalBlocks());
}

std::size_t ApeSampleStream::read(std::int32_t *samples, std::size_t frames)
{
    return m_decoder->read(samples, frames);
}

double ApeSampleStream::progress() const
{
    return m_decoder->progress();
}

} // namespace nurv

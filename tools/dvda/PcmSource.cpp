// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dvda/PcmSource.h"

#include "sound/FlacDecoder.h"
#include "support/Bytes.h"
#include "support/Id3v2.h"
#include "support/InputFile.h"
#include "support/ToolError.h"
#include "support/WaveReader.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include <strings.h>

namespace nurv {

namespace {

constexpr size_t kPieceFrames = 65536;

[[noreturn]] void refuse(const std::string &name, ToolError::Kind kind, const std::string &why)
{
    throw ToolError(kind, name + ": " + why);
}

[[noreturn]] void refuseLength(const std::string &name, uint64_t promised, uint64_t present)
{
    refuse(name, ToolError::Kind::Damaged,
           "its header promises " + std::to_string(promised) + " samples, the file holds " + std::to_string(present));
}

/// What programs fill in that write into a pipe and do not know the size: the largest one of 32 or 31 bits, or a
/// little less.
bool isPlaceholder(uint64_t size)
{
    constexpr uint64_t kRange = 0x2000;
    return (size <= 0xFFFFFFFF && size > 0xFFFFFFFF - kRange) || (size <= 0x7FFFFFFF && size > 0x7FFFFFFF - kRange);
}

class WavPcmSource final : public PcmSource {
public:
    explicit WavPcmSource(const std::string &name) : PcmSource(name), m_input(name)
    {
        skipId3v2Tags(m_input);
        m_reader.emplace(m_input, WaveReader::Kinds::RiffAndRf64);
        const WaveFormat &format = m_reader->format();
        if (!format.isIntegerPcm())
            refuse(name, ToolError::Kind::UnsupportedFormat, "its samples are no whole numbers");
        setFormat({format.sampleRateHz, format.bitsPerSample, format.channels}, format.channelMask);
        const uint64_t present = m_reader->payloadBytesPresent().value_or(0) / format.blockAlign;
        if (m_reader->hasUnknownSize())
            return;
        const uint64_t promised = m_reader->declaredDataBytes() / format.blockAlign;
        const bool isOpenEnded = promised > present && isPlaceholder(m_reader->declaredDataBytes());
        m_promisedFrames = isOpenEnded ? present : promised;
        if (*m_promisedFrames > present)
            refuseLength(name, promised, present);
    }

protected:
    void decodeAll(const ByteSink &pcm) override
    {
        std::vector<uint8_t> piece(kPieceFrames * format().bytesPerFrame());
        while (const size_t count = m_reader->readPayload(piece))
            pcm(std::span(piece).first(count));
    }

private:
    InputFile m_input;
    std::optional<WaveReader> m_reader;
};

class FlacPcmSource final : public PcmSource {
public:
    explicit FlacPcmSource(const std::string &name)
        : PcmSource(name), m_decoder(name, [this](std::vector<uint8_t> &pcm, unsigned) {
              if (m_sink != nullptr)
                  (*m_sink)(pcm);
          })
    {
        const FlacStreamInfo &info = m_decoder.info();
        setFormat({info.sampleRateHz, info.bitsPerSample, info.channels}, info.channelMask);
        if (info.totalSamples != 0)
            m_promisedFrames = info.totalSamples;
        if (info.md5 != std::array<uint8_t, 16>{})
            m_decoder.checkMd5();
    }

protected:
    void decodeAll(const ByteSink &pcm) override
    {
        uint64_t frames = 0;
        const ByteSink counting = [&](std::span<const uint8_t> bytes) {
            frames += bytes.size() / format().bytesPerFrame();
            pcm(bytes);
        };
        m_sink = &counting;
        // What some taggers put behind the sound is not read.
        while ((!m_promisedFrames || frames < *m_promisedFrames) && m_decoder.next()) {
        }
        m_sink = nullptr;
        if (!m_promisedFrames || frames == *m_promisedFrames)
            m_decoder.finish();
    }

private:
    FlacDecoder m_decoder;
    const ByteSink *m_sink = nullptr;
};

bool hasFlacName(const std::string &name)
{
    const size_t dot = name.rfind('.');
    return dot != std::string::npos && ::strcasecmp(name.c_str() + dot, ".flac") == 0;
}

} // namespace

std::unique_ptr<PcmSource> PcmSource::open(const std::string &name)
{
    // A name that stands for standard input elsewhere.
    const std::string path = name == "-" ? "./-" : name;
    InputFile input(path);
    if (!input.size())
        refuse(name, ToolError::Kind::InvalidInput, "this is no regular file");
    skipId3v2Tags(input);
    const std::span<const uint8_t> head = input.peek(4);
    if (startsWith(head, "fLaC"))
        return std::make_unique<FlacPcmSource>(path);
    if (startsWith(head, "RIFF") || startsWith(head, "RF64"))
        return std::make_unique<WavPcmSource>(path);
    refuse(name, ToolError::Kind::InvalidInput,
           hasFlacName(name) ? "it does not begin as a FLAC file does" : "this is neither a WAV nor a FLAC file");
}

uint64_t PcmSource::decode(const ByteSink &pcm)
{
    uint64_t frames = 0;
    decodeAll([&](std::span<const uint8_t> bytes) {
        frames += bytes.size() / m_format.bytesPerFrame();
        pcm(bytes);
    });
    if (m_promisedFrames && frames != *m_promisedFrames)
        refuseLength(m_name, *m_promisedFrames, frames);
    if (frames == 0)
        refuse(m_name, ToolError::Kind::InvalidInput, "it holds no sound");
    return frames;
}

void PcmSource::setFormat(const DvdAudioFormat &format, uint32_t channelMask)
{
    // Centre and LFE, the front, and surrounds at the back or the sides.
    constexpr uint32_t kSurroundAtTheBack = 0x3F;
    constexpr uint32_t kSurroundAtTheSides = 0x60F;
    m_format = format;
    if (const std::optional<std::string> objection = objectionTo(format))
        refuse(m_name, ToolError::Kind::UnsupportedFormat, *objection);
    if (format.channels == 6 && channelMask != 0 && channelMask != kSurroundAtTheBack
        && channelMask != kSurroundAtTheSides)
        refuse(m_name, ToolError::Kind::UnsupportedFormat, "its six channels are not those of 5.1 sound");
}

} // namespace nurv

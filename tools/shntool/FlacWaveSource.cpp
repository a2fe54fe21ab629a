// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/FlacWaveSource.h"

#include "shntool/PcmWaveHeader.h"
#include "shntool/SoundHash.h"
#include "support/Bytes.h"
#include "support/ToolError.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <functional>
#include <string_view>
#include <vector>

#include <FLAC/stream_decoder.h>
#include <strings.h>

namespace nurv {

namespace {

/// Samples of all channels, least significant byte first, in containers of `Bytes` bytes.
template<unsigned Bytes>
void interleave(const FLAC__int32 *const channels[], unsigned channelCount, unsigned frames, unsigned shift,
                uint32_t offset, uint8_t *out)
{
    for (unsigned i = 0; i < frames; ++i) {
        for (unsigned channel = 0; channel < channelCount; ++channel) {
            const uint32_t sample = (static_cast<uint32_t>(channels[channel][i]) << shift) + offset;
            for (unsigned byte = 0; byte < Bytes; ++byte)
                *out++ = static_cast<uint8_t>(sample >> (8 * byte));
        }
    }
}

/// The sound of most recordings, as the above.
void interleaveCd(const FLAC__int32 *const channels[], unsigned frames, uint8_t *out)
{
    const FLAC__int32 *left = channels[0];
    const FLAC__int32 *right = channels[1];
    for (unsigned i = 0; i < frames; ++i) {
        putLittleEndian32(out + size_t{4} * i, static_cast<uint16_t>(left[i]) | static_cast<uint32_t>(right[i]) << 16);
    }
}

/// What the comment says of the places of speakers, 0 where it says nothing.
uint32_t channelMaskIn(const FLAC__StreamMetadata_VorbisComment &comment)
{
    constexpr std::string_view kName = "WAVEFORMATEXTENSIBLE_CHANNEL_MASK=";
    for (FLAC__uint32 i = 0; i < comment.num_comments; ++i) {
        const FLAC__StreamMetadata_VorbisComment_Entry &entry = comment.comments[i];
        const std::string text(reinterpret_cast<const char *>(entry.entry), entry.length);
        if (text.size() > kName.size() && ::strncasecmp(text.c_str(), kName.data(), kName.size()) == 0)
            return static_cast<uint32_t>(std::strtoul(text.c_str() + kName.size(), nullptr, 0));
    }
    return 0;
}

} // namespace

/// The library's decoder, one frame at a time.
class FlacWaveSource::Decoder {
public:
    /// Gets the PCM of a frame, and how many samples of every channel that are.
    using Sink = std::function<void(std::vector<uint8_t> &, unsigned)>;

    Decoder(const std::string &name, Sink sink) : m_input(name), m_sink(std::move(sink))
    {
        if (!m_decoder)
            throw ToolError(ToolError::Kind::OutOfMemory, "not enough memory");
        FLAC__stream_decoder_set_metadata_respond(m_decoder.get(), FLAC__METADATA_TYPE_VORBIS_COMMENT);
        const auto status = FLAC__stream_decoder_init_stream(m_decoder.get(), readBytes, nullptr, nullptr, nullptr,
                                                             nullptr, writeFrame, takeMetadata, takeError, this);
        if (status != FLAC__STREAM_DECODER_INIT_STATUS_OK
            || !FLAC__stream_decoder_process_until_end_of_metadata(m_decoder.get()) || !m_hasInfo || m_isDamaged)
            fail();
    }

    /// Decodes the next frame, if there is one. Throws ToolError(Damaged).
    bool next()
    {
        const bool isDone = FLAC__stream_decoder_process_single(m_decoder.get()) != 0;
        if (m_exception)
            std::rethrow_exception(m_exception);
        if (!isDone || m_isDamaged)
            fail();
        return FLAC__stream_decoder_get_state(m_decoder.get()) != FLAC__STREAM_DECODER_END_OF_STREAM;
    }
    /// The file names this MD5 for the samples as they are coded, which are not the bytes of a WAV file.
    void checkMd5(const std::array<uint8_t, 16> &md5)
    {
        m_md5 = md5;
        m_hash.emplace(SoundHash::Kind::Md5);
    }
    /// After the last frame. Throws ToolError(Damaged).
    void finish()
    {
        if (m_hash && !std::ranges::equal(m_hash->finish(), m_md5))
            fail();
    }
    [[nodiscard]] const FLAC__StreamMetadata_StreamInfo &info() const { return m_info; }
    [[nodiscard]] uint32_t channelMask() const { return m_channelMask; }
    [[noreturn]] void fail() const
    {
        throw ToolError(ToolError::Kind::Damaged, m_input.name() + ": the FLAC stream is damaged");
    }

private:
    struct Free {
        void operator()(FLAC__StreamDecoder *decoder) const { FLAC__stream_decoder_delete(decoder); }
    };

    static Decoder &self(void *client) { return *static_cast<Decoder *>(client); }

    static FLAC__StreamDecoderReadStatus readBytes(const FLAC__StreamDecoder *, FLAC__byte buffer[], size_t *bytes,
                                                   void *client)
    {
        Decoder &decoder = self(client);
        try {
            *bytes = decoder.m_input.read({buffer, *bytes});
        } catch (...) {
            decoder.m_exception = std::current_exception();
            return FLAC__STREAM_DECODER_READ_STATUS_ABORT;
        }
        return *bytes == 0 ? FLAC__STREAM_DECODER_READ_STATUS_END_OF_STREAM : FLAC__STREAM_DECODER_READ_STATUS_CONTINUE;
    }

    static FLAC__StreamDecoderWriteStatus writeFrame(const FLAC__StreamDecoder *, const FLAC__Frame *frame,
                                                     const FLAC__int32 *const channels[], void *client)
    {
        Decoder &decoder = self(client);
        try {
            decoder.write(*frame, channels);
        } catch (...) {
            decoder.m_exception = std::current_exception();
            return FLAC__STREAM_DECODER_WRITE_STATUS_ABORT;
        }
        return FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE;
    }

    static void takeMetadata(const FLAC__StreamDecoder *, const FLAC__StreamMetadata *metadata, void *client)
    {
        Decoder &decoder = self(client);
        if (metadata->type == FLAC__METADATA_TYPE_STREAMINFO) {
            decoder.m_info = metadata->data.stream_info;
            decoder.m_hasInfo = true;
        } else if (metadata->type == FLAC__METADATA_TYPE_VORBIS_COMMENT) {
            decoder.m_channelMask = channelMaskIn(metadata->data.vorbis_comment);
        }
    }

    static void takeError(const FLAC__StreamDecoder *, FLAC__StreamDecoderErrorStatus, void *client)
    {
        self(client).m_isDamaged = true;
    }

    void write(const FLAC__Frame &frame, const FLAC__int32 *const channels[]);
    void makePcm(const FLAC__Frame &frame, const FLAC__int32 *const channels[], unsigned shift, uint32_t offset);

    InputFile m_input;
    Sink m_sink;
    std::unique_ptr<FLAC__StreamDecoder, Free> m_decoder{FLAC__stream_decoder_new()};
    FLAC__StreamMetadata_StreamInfo m_info{};
    bool m_hasInfo = false;
    bool m_isDamaged = false;
    uint32_t m_channelMask = 0;
    std::exception_ptr m_exception;
    std::vector<uint8_t> m_pcm;
    std::optional<SoundHash> m_hash;
    std::array<uint8_t, 16> m_md5{};
};

/// What comes after some damage is not the sound any more.
void FlacWaveSource::Decoder::write(const FLAC__Frame &frame, const FLAC__int32 *const channels[])
{
    const FLAC__FrameHeader &header = frame.header;
    if (m_isDamaged || header.channels != m_info.channels || header.bits_per_sample != m_info.bits_per_sample)
        fail();
    const unsigned bytes = (m_info.bits_per_sample + 7) / 8;
    if (m_hash) {
        makePcm(frame, channels, 0, 0);
        m_hash->add(m_pcm);
    }
    makePcm(frame, channels, bytes * 8 - m_info.bits_per_sample, bytes == 1 ? 0x80 : 0);
    m_sink(m_pcm, header.blocksize);
}

void FlacWaveSource::Decoder::makePcm(const FLAC__Frame &frame, const FLAC__int32 *const channels[], unsigned shift,
                                      uint32_t offset)
{
    const unsigned count = frame.header.channels;
    const unsigned frames = frame.header.blocksize;
    const unsigned bytes = (m_info.bits_per_sample + 7) / 8;
    m_pcm.resize(size_t{frames} * count * bytes);
    if (bytes == 2 && count == 2 && shift == 0)
        return interleaveCd(channels, frames, m_pcm.data());
    switch (bytes) {
    case 1: interleave<1>(channels, count, frames, shift, offset, m_pcm.data()); break;
    case 2: interleave<2>(channels, count, frames, shift, offset, m_pcm.data()); break;
    case 3: interleave<3>(channels, count, frames, shift, offset, m_pcm.data()); break;
    default: interleave<4>(channels, count, frames, shift, offset, m_pcm.data()); break;
    }
}

FlacWaveSource::FlacWaveSource(const std::string &name)
    : m_decoder(std::make_unique<Decoder>(name, [this](std::vector<uint8_t> &pcm, unsigned frames) {
          giveAll(pcm);
          m_samplesGiven += frames;
      }))
{
    const FLAC__StreamMetadata_StreamInfo &info = m_decoder->info();
    m_header = pcmHeader(info.sample_rate, info.channels, info.bits_per_sample, m_decoder->channelMask());
    m_totalSamples = info.total_samples;
    if (m_totalSamples == 0)
        countSamples(name);
    std::array<uint8_t, 16> md5{};
    std::copy_n(info.md5sum, md5.size(), md5.begin());
    if (md5 == std::array<uint8_t, 16>{})
        return;
    if (info.bits_per_sample == m_header.bitsPerSample && info.bits_per_sample != 8)
        m_soundMd5 = md5;
    else
        m_decoder->checkMd5(md5);
}

FlacWaveSource::~FlacWaveSource() = default;

void FlacWaveSource::countSamples(const std::string &name)
{
    Decoder counter(name, [this](std::vector<uint8_t> &, unsigned frames) { m_totalSamples += frames; });
    while (counter.next()) {
    }
}

uint64_t FlacWaveSource::dataBytes() const
{
    return m_totalSamples * m_header.blockAlign;
}

bool FlacWaveSource::makePiece()
{
    switch (m_next) {
    case Part::Header:
        give(makeWaveHeader(m_header, dataBytes()));
        m_next = Part::Frames;
        return true;
    case Part::Frames:
        // What some taggers put behind the sound is not read.
        if (m_samplesGiven < m_totalSamples && m_decoder->next())
            return true;
        m_next = Part::Nothing;
        if (m_samplesGiven != m_totalSamples)
            m_decoder->fail();
        m_decoder->finish();
        if (dataBytes() % 2 != 0)
            give(std::array<uint8_t, 1>{});
        return false;
    case Part::Nothing: break;
    }
    return false;
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/FlacDecoder.h"

#include "support/Bytes.h"
#include "support/ToolError.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include <FLAC/stream_decoder.h>
#include <strings.h>

namespace nurv {

namespace {

/// Samples of all channels, least significant byte first, in containers of `Bytes` bytes.
template<unsigned Bytes>
void interleave(const int32_t *const channels[], unsigned channelCount, unsigned frames, unsigned shift,
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
void interleaveCd(const int32_t *const channels[], unsigned frames, uint8_t *out)
{
    const int32_t *left = channels[0];
    const int32_t *right = channels[1];
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

struct FlacDecoder::Calls {
    static FlacDecoder &self(void *client) { return *static_cast<FlacDecoder *>(client); }

    static FLAC__StreamDecoderReadStatus readBytes(const FLAC__StreamDecoder *, FLAC__byte buffer[], size_t *bytes,
                                                   void *client)
    {
        FlacDecoder &decoder = self(client);
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
        FlacDecoder &decoder = self(client);
        try {
            // What comes after some damage is not the sound any more.
            const FLAC__FrameHeader &header = frame->header;
            if (decoder.m_isDamaged || header.channels != decoder.m_info.channels
                || header.bits_per_sample != decoder.m_info.bitsPerSample)
                decoder.fail();
            decoder.takeFrame(channels, header.blocksize);
        } catch (...) {
            decoder.m_exception = std::current_exception();
            return FLAC__STREAM_DECODER_WRITE_STATUS_ABORT;
        }
        return FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE;
    }

    static void takeMetadata(const FLAC__StreamDecoder *, const FLAC__StreamMetadata *metadata, void *client)
    {
        FlacDecoder &decoder = self(client);
        if (metadata->type == FLAC__METADATA_TYPE_STREAMINFO) {
            const FLAC__StreamMetadata_StreamInfo &info = metadata->data.stream_info;
            decoder.m_info.sampleRateHz = info.sample_rate;
            decoder.m_info.channels = info.channels;
            decoder.m_info.bitsPerSample = info.bits_per_sample;
            decoder.m_info.totalSamples = info.total_samples;
            std::copy_n(info.md5sum, decoder.m_info.md5.size(), decoder.m_info.md5.begin());
            decoder.m_hasInfo = true;
        } else if (metadata->type == FLAC__METADATA_TYPE_VORBIS_COMMENT) {
            decoder.m_info.channelMask = channelMaskIn(metadata->data.vorbis_comment);
        }
    }

    static void takeError(const FLAC__StreamDecoder *, FLAC__StreamDecoderErrorStatus, void *client)
    {
        self(client).m_isDamaged = true;
    }
};

class FlacDecoder::Handle {
public:
    Handle() : m_decoder(FLAC__stream_decoder_new()) {}
    ~Handle() { FLAC__stream_decoder_delete(m_decoder); }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;

    [[nodiscard]] FLAC__StreamDecoder *get() const { return m_decoder; }

private:
    FLAC__StreamDecoder *m_decoder;
};

FlacDecoder::FlacDecoder(const std::string &name, Sink sink)
    : m_input(name), m_sink(std::move(sink)), m_decoder(std::make_unique<Handle>())
{
    if (m_decoder->get() == nullptr)
        throw ToolError(ToolError::Kind::OutOfMemory, "not enough memory");
    FLAC__stream_decoder_set_metadata_respond(m_decoder->get(), FLAC__METADATA_TYPE_VORBIS_COMMENT);
    const auto status =
        FLAC__stream_decoder_init_stream(m_decoder->get(), Calls::readBytes, nullptr, nullptr, nullptr, nullptr,
                                         Calls::writeFrame, Calls::takeMetadata, Calls::takeError, this);
    if (status != FLAC__STREAM_DECODER_INIT_STATUS_OK
        || !FLAC__stream_decoder_process_until_end_of_metadata(m_decoder->get()) || !m_hasInfo || m_isDamaged)
        fail();
}

FlacDecoder::~FlacDecoder() = default;

bool FlacDecoder::next()
{
    const bool isDone = FLAC__stream_decoder_process_single(m_decoder->get()) != 0;
    if (m_exception)
        std::rethrow_exception(m_exception);
    if (!isDone || m_isDamaged)
        fail();
    return FLAC__stream_decoder_get_state(m_decoder->get()) != FLAC__STREAM_DECODER_END_OF_STREAM;
}

void FlacDecoder::checkMd5()
{
    m_hash.emplace(SoundHash::Kind::Md5);
}

void FlacDecoder::finish()
{
    if (m_hash && !std::ranges::equal(m_hash->finish(), m_info.md5))
        fail();
}

void FlacDecoder::fail() const
{
    throw ToolError(ToolError::Kind::Damaged, m_input.name() + ": the FLAC stream is damaged");
}

void FlacDecoder::takeFrame(const int32_t *const channels[], unsigned frames)
{
    const unsigned bytes = (m_info.bitsPerSample + 7) / 8;
    const unsigned shift = bytes * 8 - m_info.bitsPerSample;
    const uint32_t offset = bytes == 1 ? 0x80 : 0;
    if (m_hash) {
        makePcm(channels, frames, 0, 0);
        m_hash->add(m_pcm);
    }
    if (!m_hash || shift != 0 || offset != 0)
        makePcm(channels, frames, shift, offset);
    m_sink(m_pcm, frames);
}

void FlacDecoder::makePcm(const int32_t *const channels[], unsigned frames, unsigned shift, uint32_t offset)
{
    const unsigned count = m_info.channels;
    const unsigned bytes = (m_info.bitsPerSample + 7) / 8;
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

} // namespace nurv

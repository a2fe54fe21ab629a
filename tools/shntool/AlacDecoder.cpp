// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/AlacDecoder.h"

#include "shntool/PcmWaveHeader.h"
#include "support/ToolError.h"

#include <algorithm>
#include <array>
#include <new>

namespace nurv {

namespace {

constexpr unsigned kMostChannels = 8;
constexpr unsigned kMostBits = 32;
constexpr int kMostFrames = 1 << 20; ///< of one packet

/// Least significant byte first, in the upper bytes of a sample of 32 bits, or all of one of 16.
void putSample(const uint8_t *plane, size_t index, bool isWide, unsigned bytes, uint8_t *out)
{
    const uint32_t sample = isWide ? reinterpret_cast<const uint32_t *>(plane)[index] >> (8 * (4 - bytes))
                                   : reinterpret_cast<const uint16_t *>(plane)[index];
    for (unsigned byte = 0; byte < bytes; ++byte)
        out[byte] = static_cast<uint8_t>(sample >> (8 * byte));
}

} // namespace

AlacDecoder::AlacDecoder(const std::string &name)
    : m_name(name), m_packet(::av_packet_alloc()), m_frame(::av_frame_alloc())
{
    ::av_log_set_level(AV_LOG_QUIET);
    if (!m_packet || !m_frame)
        throw std::bad_alloc();
    open();
    openCodec();
}

AlacDecoder::~AlacDecoder() = default;

void AlacDecoder::open()
{
    AVFormatContext *context = nullptr;
    const int error =
        ::avformat_open_input(&context, ("file:" + m_name).c_str(), ::av_find_input_format("mov"), nullptr);
    m_format.reset(context);
    if (error < 0)
        throw ToolError(ToolError::Kind::InvalidInput, m_name + ": " + avErrorText(error));
    for (unsigned i = 0; i < m_format->nb_streams; ++i) {
        if (m_format->streams[i]->codecpar->codec_id == AV_CODEC_ID_ALAC) {
            m_stream = static_cast<int>(i);
            return;
        }
    }
    throw ToolError(ToolError::Kind::UnsupportedFormat, m_name + ": there is no Apple Lossless sound");
}

void AlacDecoder::openCodec()
{
    const AVStream &stream = *m_format->streams[m_stream];
    const AVCodec *const decoder = ::avcodec_find_decoder(AV_CODEC_ID_ALAC);
    m_codec.reset(::avcodec_alloc_context3(decoder));
    if (!decoder || !m_codec)
        throw ToolError(ToolError::Kind::UnsupportedFormat, "the library that reads Apple Lossless lacks the decoder");
    m_codec->err_recognition = AV_EF_CRCCHECK | AV_EF_BITSTREAM | AV_EF_BUFFER | AV_EF_EXPLODE;
    int error = ::avcodec_parameters_to_context(m_codec.get(), stream.codecpar);
    if (error >= 0)
        error = ::avcodec_open2(m_codec.get(), decoder, nullptr);
    if (error < 0)
        throw ToolError(ToolError::Kind::UnsupportedFormat, m_name + ": " + avErrorText(error));
    const AVChannelLayout &layout = m_codec->ch_layout;
    const auto channels = static_cast<unsigned>(layout.nb_channels);
    const auto bits = static_cast<unsigned>(m_codec->bits_per_raw_sample);
    if (channels < 1 || channels > kMostChannels || bits < 1 || bits > kMostBits || m_codec->sample_rate < 1)
        throw ToolError(ToolError::Kind::UnsupportedFormat, m_name + ": the header is damaged");
    const bool hasMask = channels > 2 && layout.order == AV_CHANNEL_ORDER_NATIVE;
    m_header = pcmHeader(static_cast<uint32_t>(m_codec->sample_rate), channels, bits,
                         hasMask ? static_cast<uint32_t>(layout.u.mask) : 0);
    m_totalFrames = static_cast<uint64_t>(
        std::max<int64_t>(::av_rescale_q(stream.duration, stream.time_base, AVRational{1, m_codec->sample_rate}), 0));
}

void AlacDecoder::failDamaged(const std::string &why) const
{
    throw ToolError(ToolError::Kind::Damaged, m_name + ": " + why);
}

void AlacDecoder::decode(const ByteSink &sink)
{
    const uint64_t dataBytes = m_totalFrames * m_header.blockAlign;
    sink(makeWaveHeader(m_header, dataBytes));
    int error = 0;
    while ((error = ::av_read_frame(m_format.get(), m_packet.get())) >= 0) {
        const bool isOurs = m_packet->stream_index == m_stream;
        const bool isDamaged = (m_packet->flags & AV_PKT_FLAG_CORRUPT) != 0;
        if (isOurs && !isDamaged)
            error = ::avcodec_send_packet(m_codec.get(), m_packet.get());
        ::av_packet_unref(m_packet.get());
        if (isOurs && (isDamaged || error < 0))
            failDamaged("a packet is damaged");
        if (isOurs)
            takeFrames(sink);
    }
    if (error != AVERROR_EOF)
        failDamaged(avErrorText(error));
    if (::avcodec_send_packet(m_codec.get(), nullptr) >= 0)
        takeFrames(sink);
    if (m_decodedFrames != m_totalFrames)
        failDamaged("there is not as much sound as the file counts");
    if (dataBytes % 2 != 0)
        sink(std::array<uint8_t, 1>{});
}

void AlacDecoder::takeFrames(const ByteSink &sink)
{
    int error = 0;
    while ((error = ::avcodec_receive_frame(m_codec.get(), m_frame.get())) >= 0) {
        giveFrame(sink);
        ::av_frame_unref(m_frame.get());
    }
    if (error != AVERROR(EAGAIN) && error != AVERROR_EOF)
        failDamaged("a packet is damaged");
}

void AlacDecoder::giveFrame(const ByteSink &sink)
{
    const bool isWide = m_frame->format == AV_SAMPLE_FMT_S32P;
    const unsigned bytes = m_header.bitsPerSample / 8U;
    if ((!isWide && m_frame->format != AV_SAMPLE_FMT_S16P) || (!isWide && bytes != 2)
        || m_frame->ch_layout.nb_channels != m_header.channels || m_frame->nb_samples > kMostFrames)
        failDamaged("the sound changes its shape");
    const auto frames = static_cast<size_t>(m_frame->nb_samples);
    m_decodedFrames += frames;
    if (m_decodedFrames > m_totalFrames)
        failDamaged("there is more sound than the file counts");
    m_pcm.resize(frames * m_header.blockAlign);
    uint8_t *out = m_pcm.data();
    for (size_t i = 0; i < frames; ++i) {
        for (unsigned channel = 0; channel < m_header.channels; ++channel, out += bytes)
            putSample(m_frame->extended_data[channel], i, isWide, bytes, out);
    }
    sink(m_pcm);
}

} // namespace nurv

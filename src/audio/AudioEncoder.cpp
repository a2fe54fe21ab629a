// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/AudioEncoder.h"

#include "audio/AudioSamples.h"
#include "audio/LibAv.h"
#include "base/Log.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <vector>

namespace nurv {

namespace {

constexpr std::uint32_t kMostChannels = 8;
constexpr std::uint32_t kMostQuality = 127;
constexpr std::uint32_t kMostBitRateMode = 3;
constexpr std::uint32_t kConstant = 0;
constexpr std::uint32_t kByQuality = 3;
/// What the thorough search is told of a wanted bit rate, so that the average comes near to it (decision 0019).
constexpr double kShareOfWantedRate = 0.955;
/// ISO/IEC 14496-3: an AAC frame has at most 6144 bits per channel.
constexpr double kMostAacBitsPerSample = 6144.0 / 1024.0;
/// The range of the encoder's own quality that is used, 47 to 293 kbit/s for music in stereo; above it nothing changes
/// (decision 0019).
constexpr double kLowestQuality = 0.3;
constexpr double kHighestQuality = 2.0;
/// The Apple Lossless encoder reserves too little for the coefficients of a block of a
/// few frames with many channels, and ends the process. Such blocks are stored as they are.
constexpr int kShortBlock = 64;
constexpr int kStored = 0; ///< the compression level of Apple Lossless that stores
/// Frames that are resampled at once.
constexpr int kResampledBlock = 4096;

// The speakers of the encoders for 0 to 8 channels.
constexpr std::array<std::uint64_t, kMostChannels + 1> kAacLayouts = {0,
                                                                      AV_CH_LAYOUT_MONO,
                                                                      AV_CH_LAYOUT_STEREO,
                                                                      AV_CH_LAYOUT_SURROUND,
                                                                      AV_CH_LAYOUT_4POINT0,
                                                                      AV_CH_LAYOUT_5POINT0_BACK,
                                                                      AV_CH_LAYOUT_5POINT1_BACK,
                                                                      AV_CH_LAYOUT_6POINT1_BACK,
                                                                      AV_CH_LAYOUT_7POINT1};
constexpr std::array<std::uint64_t, kMostChannels + 1> kAppleLosslessLayouts = {0,
                                                                                AV_CH_LAYOUT_MONO,
                                                                                AV_CH_LAYOUT_STEREO,
                                                                                AV_CH_LAYOUT_SURROUND,
                                                                                AV_CH_LAYOUT_4POINT0,
                                                                                AV_CH_LAYOUT_5POINT0_BACK,
                                                                                AV_CH_LAYOUT_5POINT1_BACK,
                                                                                AV_CH_LAYOUT_6POINT1_BACK,
                                                                                AV_CH_LAYOUT_7POINT1_WIDE_BACK};

const AVCodec *encoderFor(FourCharCode formatId)
{
    switch (formatId) {
    case kFormatAAC: return avcodec_find_encoder(AV_CODEC_ID_AAC);
    case kFormatAppleLossless: return avcodec_find_encoder(AV_CODEC_ID_ALAC);
    default: return nullptr;
    }
}

bool takesRate(const AVCodec &codec, int rate)
{
    const int *const rates = libAv::supportedRates(codec);
    for (const int *known = rates; known && *known != 0; ++known) {
        if (*known == rate)
            return true;
    }
    return rates == nullptr;
}

AudioFileStatus refused(const char *what, int error)
{
    qCWarning(audioLog).noquote() << what << libAv::errorText(error);
    return AudioFileStatus::Unspecified;
}

} // namespace

class AudioEncoder::Engine {
public:
    explicit Engine(const AudioStreamDescription &file) : m_file(file) {}

    [[nodiscard]] AudioFileStatus open();
    [[nodiscard]] AudioFileStatus encode(const std::uint8_t *client, std::uint32_t frames, const PacketSink &sink);
    [[nodiscard]] AudioFileStatus flush(const PacketSink &sink);
    [[nodiscard]] std::int64_t fileFrames(std::int64_t clientFrames) const;

    AudioStreamDescription m_file;
    AudioStreamDescription m_client;
    AudioEncoderSettings m_settings;
    std::uint64_t m_inputLayout = 0;
    std::uint64_t m_outputLayout = 0;
    libAv::Codec m_codec;

    std::int64_t m_encodedFrames = 0; ///< frames that have gone to the encoder

private:
    [[nodiscard]] AudioFileStatus openCodec(libAv::Codec &opened, int compressionLevel) const;
    [[nodiscard]] bool isResampling() const { return m_client.sampleRate != m_file.sampleRate; }
    void applySettings(AVCodecContext &codec) const;
    [[nodiscard]] bool makeBlock(libAv::Frame &block, int frames) const;
    [[nodiscard]] bool openResampler();
    [[nodiscard]] AudioFileStatus resample(int frames, bool isLast, const PacketSink &sink);
    [[nodiscard]] AudioFileStatus appendResampled(int frames, const PacketSink &sink);
    [[nodiscard]] AudioFileStatus sendBlock(const PacketSink &sink);
    [[nodiscard]] AudioFileStatus drain(AVCodecContext &codec, const PacketSink &sink);

    libAv::Resampler m_resampler;
    libAv::Frame m_block;     ///< one frame of the encoder, being filled
    libAv::Frame m_source;    ///< before resampling
    libAv::Frame m_resampled; ///< after it
    libAv::Packet m_packet{av_packet_alloc()};
    int m_filled = 0;
    std::int64_t m_clientFrames = 0;
};

void AudioEncoder::Engine::applySettings(AVCodecContext &codec) const
{
    // The thorough search comes out above the rate that it is told.
    if (m_settings.bitRate > 0)
        codec.bit_rate = m_settings.bitRateMode == kConstant
                             ? m_settings.bitRate
                             : std::lround(m_settings.bitRate * kShareOfWantedRate);
    // Of this mode a quality of 0 is the lowest one.
    if (m_settings.bitRateMode == kByQuality) {
        const double share = static_cast<double>(m_settings.quality) / kMostQuality;
        const double quality = kLowestQuality * std::pow(kHighestQuality / kLowestQuality, share);
        codec.flags |= AV_CODEC_FLAG_QSCALE;
        codec.global_quality = static_cast<int>(std::lround(quality * FF_QP2LAMBDA));
    }
    // The fast search gives frames of steady size, the thorough one better frames.
    if (m_file.formatId == kFormatAAC)
        av_opt_set(codec.priv_data, "aac_coder", m_settings.bitRateMode == kConstant ? "fast" : "twoloop", 0);
}

bool AudioEncoder::Engine::makeBlock(libAv::Frame &block, int frames) const
{
    block.reset(av_frame_alloc());
    if (!block)
        return false;
    block->format = m_codec->sample_fmt;
    block->nb_samples = frames;
    block->sample_rate = m_codec->sample_rate;
    return av_channel_layout_copy(&block->ch_layout, &m_codec->ch_layout) >= 0
           && av_frame_get_buffer(block.get(), 0) >= 0;
}

bool AudioEncoder::Engine::openResampler()
{
    SwrContext *resampler = nullptr;
    const int error = swr_alloc_set_opts2(&resampler, &m_codec->ch_layout, m_codec->sample_fmt, m_codec->sample_rate,
                                          &m_codec->ch_layout, m_codec->sample_fmt,
                                          static_cast<int>(m_client.sampleRate), 0, nullptr);
    m_resampler.reset(resampler);
    // A longer filter than usual, so that the highest octave stays.
    return error >= 0 && av_opt_set_int(resampler, "filter_size", 64, 0) >= 0
           && av_opt_set_double(resampler, "cutoff", 0.97, 0) >= 0 && swr_init(resampler) >= 0
           && makeBlock(m_source, kResampledBlock) && makeBlock(m_resampled, 2 * kResampledBlock);
}

AudioFileStatus AudioEncoder::Engine::openCodec(libAv::Codec &opened, int compressionLevel) const
{
    const AVCodec *encoder = encoderFor(m_file.formatId);
    libAv::Codec codec(encoder ? avcodec_alloc_context3(encoder) : nullptr);
    if (!codec || !m_packet)
        return AudioFileStatus::Unspecified;
    const bool isAac = m_file.formatId == kFormatAAC;
    const std::uint64_t usual = (isAac ? kAacLayouts : kAppleLosslessLayouts)[m_file.channelsPerFrame];
    const std::uint64_t layout = m_outputLayout != 0 ? m_outputLayout : usual;
    if (m_inputLayout != 0 && m_inputLayout != layout)
        return AudioFileStatus::InvalidValue;
    if (av_channel_layout_from_mask(&codec->ch_layout, layout) < 0)
        return AudioFileStatus::InvalidValue;
    codec->sample_rate = static_cast<int>(m_file.sampleRate);
    codec->time_base = {1, codec->sample_rate};
    codec->sample_fmt = isAac                                       ? AV_SAMPLE_FMT_FLTP
                        : m_file.formatFlags == kAppleLossless16Bit ? AV_SAMPLE_FMT_S16P
                                                                    : AV_SAMPLE_FMT_S32P;
    codec->bits_per_raw_sample = isAac ? 0 : m_file.formatFlags == kAppleLossless16Bit ? 16 : 24;
    codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER | AV_CODEC_FLAG_BITEXACT;
    codec->thread_count = 1;
    codec->compression_level = compressionLevel;
    applySettings(*codec);
    if (const int error = avcodec_open2(codec.get(), encoder, nullptr); error < 0)
        return refused("The encoder refused:", error);
    opened = std::move(codec);
    return AudioFileStatus::Ok;
}

AudioFileStatus AudioEncoder::Engine::open()
{
    if (const AudioFileStatus status = openCodec(m_codec, FF_COMPRESSION_DEFAULT); status != AudioFileStatus::Ok)
        return status;
    if (!makeBlock(m_block, m_codec->frame_size) || (isResampling() && !openResampler()))
        return AudioFileStatus::Unspecified;
    return AudioFileStatus::Ok;
}

std::int64_t AudioEncoder::Engine::fileFrames(std::int64_t clientFrames) const
{
    return isResampling() ? av_rescale_rnd(clientFrames, static_cast<std::int64_t>(m_file.sampleRate),
                                           static_cast<std::int64_t>(m_client.sampleRate), AV_ROUND_UP)
                          : clientFrames;
}

AudioFileStatus AudioEncoder::Engine::drain(AVCodecContext &codec, const PacketSink &sink)
{
    for (;;) {
        const int error = avcodec_receive_packet(&codec, m_packet.get());
        if (error == AVERROR(EAGAIN) || error == AVERROR_EOF)
            return AudioFileStatus::Ok;
        if (error < 0)
            return refused("The encoder failed:", error);
        const AudioFileStatus status = sink(*m_packet);
        av_packet_unref(m_packet.get());
        if (status != AudioFileStatus::Ok)
            return status;
    }
}

AudioFileStatus AudioEncoder::Engine::sendBlock(const PacketSink &sink)
{
    libAv::Codec storing;
    if (m_file.formatId == kFormatAppleLossless && m_filled < kShortBlock) {
        if (const AudioFileStatus status = openCodec(storing, kStored); status != AudioFileStatus::Ok)
            return status;
    }
    AVCodecContext &codec = storing ? *storing : *m_codec;
    m_block->nb_samples = m_filled;
    m_block->pts = m_encodedFrames;
    m_encodedFrames += m_filled;
    m_filled = 0;
    if (const int error = avcodec_send_frame(&codec, m_block.get()); error < 0)
        return refused("The encoder failed:", error);
    const AudioFileStatus status = drain(codec, sink);
    // The encoder may still look at the block.
    m_block->nb_samples = m_codec->frame_size;
    if (const int error = av_frame_make_writable(m_block.get()); error < 0)
        return refused("The encoder failed:", error);
    return status;
}

AudioFileStatus AudioEncoder::Engine::appendResampled(int frames, const PacketSink &sink)
{
    for (int done = 0; done < frames;) {
        const int part = std::min(frames - done, m_codec->frame_size - m_filled);
        av_samples_copy(m_block->extended_data, m_resampled->extended_data, m_filled, done, part,
                        m_codec->ch_layout.nb_channels, m_codec->sample_fmt);
        m_filled += part;
        done += part;
        if (m_filled < m_codec->frame_size)
            continue;
        if (const AudioFileStatus status = sendBlock(sink); status != AudioFileStatus::Ok)
            return status;
    }
    return AudioFileStatus::Ok;
}

AudioFileStatus AudioEncoder::Engine::resample(int frames, bool isLast, const PacketSink &sink)
{
    const auto **input = const_cast<const std::uint8_t **>(m_source->extended_data);
    for (;;) {
        const std::int64_t room =
            isLast ? fileFrames(m_clientFrames) - m_encodedFrames - m_filled : 2 * kResampledBlock;
        const int wanted = static_cast<int>(std::clamp<std::int64_t>(room, 0, 2 * kResampledBlock));
        if (wanted == 0)
            return AudioFileStatus::Ok;
        const int count =
            swr_convert(m_resampler.get(), m_resampled->extended_data, wanted, isLast ? nullptr : input, frames);
        if (count < 0)
            return refused("The sample rate cannot be changed:", count);
        if (count == 0)
            return AudioFileStatus::Ok;
        if (const AudioFileStatus status = appendResampled(count, sink); status != AudioFileStatus::Ok)
            return status;
        frames = 0;
    }
}

AudioFileStatus AudioEncoder::Engine::encode(const std::uint8_t *client, std::uint32_t frames, const PacketSink &sink)
{
    const int width = static_cast<int>(m_client.bitsPerChannel / 8);
    AVFrame &target = isResampling() ? *m_source : *m_block;
    while (frames > 0) {
        const int room = isResampling() ? kResampledBlock : m_codec->frame_size - m_filled;
        const int part = static_cast<int>(std::min<std::uint32_t>(frames, static_cast<std::uint32_t>(room)));
        if (!audioSamples::fromClient(client, part, width, target, isResampling() ? 0 : m_filled))
            return AudioFileStatus::UnsupportedDataFormat;
        client += std::size_t{m_client.bytesPerFrame} * static_cast<std::size_t>(part);
        frames -= static_cast<std::uint32_t>(part);
        m_clientFrames += part;
        AudioFileStatus status = AudioFileStatus::Ok;
        if (isResampling()) {
            status = resample(part, false, sink);
        } else {
            m_filled += part;
            if (m_filled == m_codec->frame_size)
                status = sendBlock(sink);
        }
        if (status != AudioFileStatus::Ok)
            return status;
    }
    return AudioFileStatus::Ok;
}

AudioFileStatus AudioEncoder::Engine::flush(const PacketSink &sink)
{
    AudioFileStatus status = isResampling() ? resample(0, true, sink) : AudioFileStatus::Ok;
    if (status == AudioFileStatus::Ok && m_filled > 0)
        status = sendBlock(sink);
    if (status != AudioFileStatus::Ok)
        return status;
    if (const int error = avcodec_send_frame(m_codec.get(), nullptr); error < 0)
        return refused("The encoder failed:", error);
    return drain(*m_codec, sink);
}

AudioEncoder::AudioEncoder(const AudioStreamDescription &file) : m_engine(std::make_unique<Engine>(file)) {}
AudioEncoder::~AudioEncoder() = default;

AudioFileStatus AudioEncoder::check(const AudioStreamDescription &file)
{
    const AVCodec *codec = encoderFor(file.formatId);
    // The encoder makes 24 bits of wider samples without a word.
    const bool keepsBits = file.formatId != kFormatAppleLossless || file.formatFlags == kAppleLossless16Bit
                           || file.formatFlags == kAppleLossless24Bit;
    const bool isShapeKnown = file.channelsPerFrame >= 1 && file.channelsPerFrame <= kMostChannels
                              && file.sampleRate >= 1 && file.sampleRate <= 1e7;
    if (!codec || !keepsBits || !isShapeKnown || !takesRate(*codec, static_cast<int>(file.sampleRate)))
        return AudioFileStatus::UnsupportedDataFormat;
    return AudioFileStatus::Ok;
}

AudioFileStatus AudioEncoder::setClientFormat(const AudioStreamDescription &format)
{
    const AudioStreamDescription &file = m_engine->m_file;
    const bool isForm = format.formatId == kFormatLinearPCM && format.formatFlags == kBigEndianIntegers
                        && format.framesPerPacket == 1 && format.bytesPerPacket == format.bytesPerFrame
                        && format.bytesPerFrame == format.bitsPerChannel / 8 * format.channelsPerFrame
                        && (format.bitsPerChannel == 8 || format.bitsPerChannel == 16 || format.bitsPerChannel == 24
                            || format.bitsPerChannel == 32);
    const std::uint32_t widest = file.formatFlags == kAppleLossless16Bit ? 16 : 24;
    const bool isLossy = file.formatId == kFormatAAC;
    if (!isForm || format.channelsPerFrame != file.channelsPerFrame || format.sampleRate < 1
        || (!isLossy && (format.bitsPerChannel > widest || format.sampleRate != file.sampleRate)))
        return AudioFileStatus::UnsupportedDataFormat;
    m_engine->m_client = format;
    return AudioFileStatus::Ok;
}

std::uint32_t AudioEncoder::mostBitRate() const
{
    const AudioStreamDescription &file = m_engine->m_file;
    return static_cast<std::uint32_t>(kMostAacBitsPerSample * file.sampleRate * file.channelsPerFrame);
}

AudioFileStatus AudioEncoder::setForAac(std::uint32_t &setting, std::uint32_t value, std::uint32_t most)
{
    if (m_engine->m_file.formatId != kFormatAAC || value > most)
        return AudioFileStatus::InvalidValue;
    setting = value;
    m_engine->m_codec.reset();
    return AudioFileStatus::Ok;
}

AudioFileStatus AudioEncoder::setBitRate(std::uint32_t bitsPerSecond)
{
    return setForAac(m_engine->m_settings.bitRate, bitsPerSecond, mostBitRate());
}

AudioFileStatus AudioEncoder::setQuality(std::uint32_t quality)
{
    return setForAac(m_engine->m_settings.quality, quality, kMostQuality);
}

AudioFileStatus AudioEncoder::setBitRateMode(std::uint32_t mode)
{
    return setForAac(m_engine->m_settings.bitRateMode, mode, kMostBitRateMode);
}

AudioFileStatus AudioEncoder::setInputChannelLayout(std::uint32_t bitmap)
{
    if (static_cast<std::uint32_t>(std::popcount(bitmap)) != m_engine->m_file.channelsPerFrame)
        return AudioFileStatus::InvalidValue;
    m_engine->m_inputLayout = bitmap;
    m_engine->m_codec.reset();
    return AudioFileStatus::Ok;
}

AudioFileStatus AudioEncoder::setOutputChannelLayout(std::uint32_t bitmap)
{
    if (static_cast<std::uint32_t>(std::popcount(bitmap)) != m_engine->m_file.channelsPerFrame)
        return AudioFileStatus::InvalidValue;
    m_engine->m_outputLayout = bitmap;
    m_engine->m_codec.reset();
    return AudioFileStatus::Ok;
}

AudioFileStatus AudioEncoder::getSettings(AudioEncoderSettings &settings) const
{
    settings = m_engine->m_settings;
    return m_engine->m_file.formatId == kFormatAAC ? AudioFileStatus::Ok : AudioFileStatus::InvalidValue;
}

AudioFileStatus AudioEncoder::setSettings(const AudioEncoderSettings &settings)
{
    m_engine->m_settings = settings;
    return open();
}

AudioFileStatus AudioEncoder::open()
{
    return m_engine->m_codec ? AudioFileStatus::Ok : m_engine->open();
}

const AVCodecContext &AudioEncoder::codec() const
{
    return *m_engine->m_codec;
}

std::int64_t AudioEncoder::fileFrames(std::int64_t clientFrames) const
{
    return m_engine->fileFrames(clientFrames);
}

std::int64_t AudioEncoder::encodedFrames() const
{
    return m_engine->m_encodedFrames;
}

AudioFileStatus AudioEncoder::encode(const std::uint8_t *client, std::uint32_t frames, const PacketSink &sink)
{
    return m_engine->encode(client, frames, sink);
}

AudioFileStatus AudioEncoder::flush(const PacketSink &sink)
{
    return m_engine->flush(sink);
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/DecodedSampleStream.h"

#include "audio/AudioFileHeader.h"
#include "audio/LibAv.h"
#include "base/NurvFailure.h"
#include "samples/CodecHeaders.h"
#include "samples/DecodedSoundCheck.h"
#include "samples/LibAvSamples.h"
#include "samples/SampleCount.h"
#include "samples/WavpackBlocks.h"

#include <QString>

#include <algorithm>
#include <cerrno>
#include <span>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kMostChannels = 64;
constexpr int kDecoderThreads = 2;
/// FFmpeg's decoder has no order of speakers for these, and fails at the first block.
constexpr int kTtaChannelsWithoutLayout = 5;

std::unique_ptr<AudioFileHeader> readHeader(const RegularFile &file)
{
    AudioFileStatus status = AudioFileStatus::Ok;
    QString reason;
    // What an edit list leaves out is sound, too.
    auto header = AudioFileHeader::read(QString::fromStdString(file.lastingName()), status, &reason,
                                        AudioFileHeader::Edits::LeftToCaller, AudioFileHeader::Kinds::All);
    // What the library says of bytes that it does not know is nothing that helps a user.
    const bool isVague = reason.isEmpty() || reason == libAv::errorText(AVERROR_INVALIDDATA)
                         || reason == libAv::errorText(AVERROR(EINVAL)) || reason == libAv::errorText(AVERROR_EOF);
    if (!header)
        throw NurvFailure(isVague ? u"it is no sound file of a kind that can be decoded here"_s : reason);
    return header;
}

} // namespace

class DecodedSampleStream::Decoder {
public:
    Decoder(std::unique_ptr<RegularFile> file, std::int64_t start)
        : m_file(std::move(file)), m_header(readHeader(*m_file))
    {
        describe(start);
        openDecoder();
    }

    [[nodiscard]] std::size_t read(std::int32_t *samples, std::size_t frames);
    [[nodiscard]] double progress() const
    {
        const std::int64_t position = avio_tell(m_header->container()->pb);
        return m_file->size() > 0 ? static_cast<double>(position) / static_cast<double>(m_file->size()) : 1.0;
    }

    [[nodiscard]] const SampleFormat &format() const { return m_format; }
    [[nodiscard]] std::optional<std::int64_t> declaredFrames() const { return m_declaredFrames; }
    [[nodiscard]] bool isLossless() const { return m_isLossless; }

private:
    [[nodiscard]] const AVCodecParameters &parameters() const { return *m_header->stream()->codecpar; }
    void describe(std::int64_t start);
    void describeFlac(std::int64_t start);
    void describeWavpack(std::int64_t start);
    void describeOther(std::int64_t start);
    void openDecoder();
    [[nodiscard]] bool nextPacket();
    void sendPacket();
    [[nodiscard]] bool nextBlock();
    [[nodiscard]] std::int64_t framesLeft() const;
    void checkEnd();
    [[noreturn]] void failDamaged(int error) const;

    std::unique_ptr<RegularFile> m_file;
    std::unique_ptr<AudioFileHeader> m_header;
    SampleFormat m_format;
    std::optional<std::int64_t> m_declaredFrames;
    bool m_isLossless = false;
    std::optional<std::int64_t> m_soundEnd;     ///< the offset, where it is known
    std::unique_ptr<DecodedSoundCheck> m_check; ///< null: there is nothing to check
    libAv::Codec m_decoder;
    libAv::Packet m_packet{av_packet_alloc()};
    libAv::Frame m_block{av_frame_alloc()};
    std::vector<std::int32_t> m_samples; ///< of the block, interleaved
    std::size_t m_blockFrames = 0;
    std::size_t m_blockOffset = 0;
    std::int64_t m_framesToSkip = 0;
    std::int64_t m_framesRead = 0;
    std::optional<std::int64_t> m_mostFrames; ///< where a lossy file's padding begins
};

void DecodedSampleStream::Decoder::describe(std::int64_t start)
{
    const AudioStreamDescription description = m_header->format();
    m_format = {.sampleRateHz = static_cast<int>(description.sampleRate),
                .channels = static_cast<int>(description.channelsPerFrame),
                .bitsPerSample = static_cast<int>(description.bitsPerChannel),
                .isFloat = description.formatId == kFormatLinearPCM && (description.formatFlags & kFlagFloat) != 0};
    m_isLossless = m_header->isLossless();
    if (m_header->isLengthExact())
        m_declaredFrames = m_header->lengthFrames();
    switch (parameters().codec_id) {
    case AV_CODEC_ID_FLAC: describeFlac(start); break;
    case AV_CODEC_ID_WAVPACK: describeWavpack(start); break;
    case AV_CODEC_ID_TTA:
    case AV_CODEC_ID_APE: describeOther(start); break;
    default: break;
    }
    if (!m_isLossless && m_header->hasOneEdit()) {
        m_framesToSkip = m_header->firstFrame();
        m_mostFrames = m_declaredFrames;
    }
}

void DecodedSampleStream::Decoder::describeFlac(std::int64_t start)
{
    if (parameters().extradata_size < static_cast<int>(CodecHeader::kStreamInfoBytes))
        throw NurvFailure(u"its header is cut off"_s);
    const CodecHeader header = CodecHeader::fromStreamInfo(std::span<const std::uint8_t, CodecHeader::kStreamInfoBytes>(
        parameters().extradata, CodecHeader::kStreamInfoBytes));
    m_format = header.format;
    m_declaredFrames = header.declaredFrames;
    if (LIBAVCODEC_VERSION_MAJOR < 60 && m_format.bitsPerSample > 24)
        throw NurvFailure(
            u"its samples have %1 bits, and the decoder knows FLAC of up to 24"_s.arg(m_format.bitsPerSample));
    const bool isNative = CodecHeader::read(*m_file, start).has_value();
    m_check = makeFlacCheck(*m_file, header, isNative ? CodecHeader::flacSoundStart(*m_file, start) : std::nullopt);
}

void DecodedSampleStream::Decoder::describeWavpack(std::int64_t start)
{
    const auto first = WavpackBlocks::readBlock(*m_file, start);
    if (!first)
        throw NurvFailure(u"its header is damaged"_s);
    if (first->isDsd())
        throw NurvFailure(u"it holds no samples but a stream of single bits (DSD)"_s);
    m_format.bitsPerSample = first->bitsPerSample();
    m_format.isFloat = first->isFloat();
    m_declaredFrames = first->totalFrames;
    WavpackBlocks blocks(*m_file, start);
    m_isLossless = blocks.isLossless();
    m_soundEnd = blocks.soundEnd();
    m_check = makeWavpackCheck(std::move(blocks));
}

void DecodedSampleStream::Decoder::describeOther(std::int64_t start)
{
    const auto header = CodecHeader::read(*m_file, start);
    if (!header)
        throw NurvFailure(u"its header is damaged"_s);
    m_format = header->format;
    m_declaredFrames = header->declaredFrames;
    m_isLossless = true;
    if (header->kind == CodecHeader::Kind::Tta && m_format.channels == kTtaChannelsWithoutLayout)
        throw NurvFailure(u"the decoder knows no TTA files of %1 channels"_s.arg(m_format.channels));
    if (header->kind == CodecHeader::Kind::Tta)
        m_check = makeTtaCheck(*m_file, *header);
}

void DecodedSampleStream::Decoder::openDecoder()
{
    const AVCodec *codec = avcodec_find_decoder(parameters().codec_id);
    libAv::Codec decoder(codec ? avcodec_alloc_context3(codec) : nullptr);
    if (!decoder || !m_packet || !m_block || avcodec_parameters_to_context(decoder.get(), &parameters()) < 0)
        throw NurvFailure(u"there is no decoder for it"_s);
    for (unsigned index = 0; index < m_header->container()->nb_streams; ++index) {
        AVStream *stream = m_header->container()->streams[index];
        stream->discard = stream == m_header->stream() ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    decoder->pkt_timebase = m_header->stream()->time_base;
    decoder->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
    const bool isDecodedAhead = m_isLossless && (codec->capabilities & AV_CODEC_CAP_FRAME_THREADS) != 0;
    decoder->thread_count = isDecodedAhead ? kDecoderThreads : 1;
    decoder->thread_type = FF_THREAD_FRAME;
    if (m_isLossless)
        decoder->err_recognition = AV_EF_CRCCHECK | AV_EF_BITSTREAM | AV_EF_BUFFER | AV_EF_EXPLODE;
    if (const int error = avcodec_open2(decoder.get(), codec, nullptr); error < 0)
        throw NurvFailure(u"the decoder refused it: %1"_s.arg(libAv::errorText(error)));
    if (m_format.channels < 1 || m_format.channels > kMostChannels || m_format.sampleRateHz < 1)
        throw NurvFailure(u"its header is damaged"_s);
    m_decoder = std::move(decoder);
}

void DecodedSampleStream::Decoder::failDamaged(int error) const
{
    if (m_header->readError() != 0)
        throw NurvFailure(u"it cannot be read on: %1"_s.arg(libAv::errorText(AVERROR(m_header->readError()))));
    throw NurvFailure(u"its sound is damaged at %1 (%2)"_s.arg(timeOfFrame(m_framesRead, m_format.sampleRateHz),
                                                               libAv::errorText(error)));
}

/// Whether there was one. Throws also for what is not decoded: another track, or what an
/// edit list hides.
bool DecodedSampleStream::Decoder::nextPacket()
{
    if (m_isLossless && m_header->holdsMoreSound())
        throw NurvFailure(u"it holds more sound than it shows: a further track, or a hidden part"_s);
    for (;;) {
        av_packet_unref(m_packet.get());
        const int error = av_read_frame(m_header->container(), m_packet.get());
        if (m_header->readError() != 0)
            failDamaged(AVERROR(EIO));
        // Tags that the demuxer does not know are no damage.
        const bool isBehindSound = m_soundEnd && avio_tell(m_header->container()->pb) >= *m_soundEnd;
        if (error == AVERROR_EOF || (error < 0 && isBehindSound))
            return false;
        if (error < 0)
            failDamaged(error);
        if (m_packet->stream_index != m_header->stream()->index)
            continue;
        // The demuxers mark what the end of the file cut off.
        const bool isWhole = m_packet->size > 0 && (m_packet->flags & AV_PKT_FLAG_CORRUPT) == 0;
        if (!isWhole && m_isLossless)
            failDamaged(AVERROR_INVALIDDATA);
        if (m_check) {
            const std::size_t size = m_check->onPacket({m_packet->data, static_cast<std::size_t>(m_packet->size)});
            av_shrink_packet(m_packet.get(), static_cast<int>(size));
        }
        return true;
    }
}

void DecodedSampleStream::Decoder::sendPacket()
{
    const bool isAtEnd = !nextPacket();
    const int error = avcodec_send_packet(m_decoder.get(), isAtEnd ? nullptr : m_packet.get());
    if (error < 0 && (m_isLossless || error != AVERROR_INVALIDDATA))
        failDamaged(error);
}

/// Whether there was one; fills `m_samples`.
bool DecodedSampleStream::Decoder::nextBlock()
{
    for (;;) {
        const int error = avcodec_receive_frame(m_decoder.get(), m_block.get());
        if (error == AVERROR(EAGAIN)) {
            sendPacket();
            continue;
        }
        if (error == AVERROR_EOF)
            return false;
        if (error < 0)
            failDamaged(error);
        if (m_block->ch_layout.nb_channels != m_format.channels || m_block->sample_rate != m_format.sampleRateHz)
            throw NurvFailure(u"its format changes at %1"_s.arg(timeOfFrame(m_framesRead, m_format.sampleRateHz)));
        if (!libAvSamples::interleave(*m_block, m_samples))
            throw NurvFailure(u"its samples are of a kind that nothing here compares"_s);
        m_blockFrames = static_cast<std::size_t>(m_block->nb_samples);
        if (m_check)
            m_check->onSamples(m_samples.data(), m_blockFrames);
        m_blockOffset = std::min(m_blockFrames, static_cast<std::size_t>(m_framesToSkip));
        m_framesToSkip -= static_cast<std::int64_t>(m_blockOffset);
        if (m_blockOffset < m_blockFrames)
            return true;
    }
}

std::int64_t DecodedSampleStream::Decoder::framesLeft() const
{
    return m_mostFrames ? std::max<std::int64_t>(*m_mostFrames - m_framesRead, 0) : std::int64_t{1} << 62;
}

std::size_t DecodedSampleStream::Decoder::read(std::int32_t *samples, std::size_t frames)
{
    const auto channels = static_cast<std::size_t>(m_format.channels);
    std::size_t done = 0;
    while (done < frames && framesLeft() > 0) {
        if (m_blockOffset == m_blockFrames && !nextBlock())
            break;
        const std::size_t part =
            std::min({frames - done, m_blockFrames - m_blockOffset, static_cast<std::size_t>(framesLeft())});
        std::copy_n(m_samples.data() + m_blockOffset * channels, part * channels, samples + done * channels);
        m_blockOffset += part;
        done += part;
        m_framesRead += static_cast<std::int64_t>(part);
    }
    if (done == 0 && frames > 0)
        checkEnd();
    return done;
}

void DecodedSampleStream::Decoder::checkEnd()
{
    checkPromise(m_declaredFrames, m_framesRead);
    if (m_check)
        m_check->atEnd(m_framesRead);
}

DecodedSampleStream::DecodedSampleStream(std::unique_ptr<RegularFile> file, std::int64_t start)
    : m_decoder(std::make_unique<Decoder>(std::move(file), start))
{
}

DecodedSampleStream::~DecodedSampleStream() = default;

SampleFormat DecodedSampleStream::format() const
{
    return m_decoder->format();
}

std::optional<std::int64_t> DecodedSampleStream::declaredFrames() const
{
    return m_decoder->declaredFrames();
}

bool DecodedSampleStream::isLossless() const
{
    return m_decoder->isLossless();
}

std::size_t DecodedSampleStream::read(std::int32_t *samples, std::size_t frames)
{
    return m_decoder->read(samples, frames);
}

double DecodedSampleStream::progress() const
{
    return m_decoder->progress();
}

} // namespace nurv

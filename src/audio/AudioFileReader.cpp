// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/AudioFileReader.h"

#include "audio/AudioFileHeader.h"
#include "audio/AudioSamples.h"
#include "audio/LibAv.h"
#include "base/Log.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace nurv {

namespace {

constexpr std::uint32_t kMostChannels = 64;
constexpr int kDecoderThreads = 2;
/// What encoders of lossy formats may put before and after the sound.
constexpr std::int64_t kLossyPadding = 8192;

bool isClientForm(const AudioStreamDescription &format)
{
    const bool isWidthKnown =
        format.bitsPerChannel % 8 == 0 && format.bitsPerChannel >= 8 && format.bitsPerChannel <= 32;
    return isWidthKnown && format.formatId == kFormatLinearPCM && format.formatFlags == kBigEndianIntegers
           && format.bytesPerFrame == format.bitsPerChannel / 8 * format.channelsPerFrame
           && format.bytesPerPacket == format.bytesPerFrame && format.framesPerPacket == 1;
}

} // namespace

/// The open file: its header, and the way from packets to client samples.
class AudioFileReader::Source {
public:
    explicit Source(std::unique_ptr<AudioFileHeader> header)
        : m_header(std::move(header)), m_framesToSkip(m_header->firstFrame())
    {
    }

    [[nodiscard]] const AudioFileHeader &header() const { return *m_header; }
    [[nodiscard]] AudioFileStatus setClientFormat(const AudioStreamDescription &format, Precision precision);
    [[nodiscard]] AudioFileStatus read(std::uint8_t *buffer, std::uint32_t &frames);
    [[nodiscard]] bool goesOn() const { return m_goesOn; }

private:
    /// What a step towards the next samples came to.
    enum class Step { Done, AtEnd, Failed };

    [[nodiscard]] bool openDecoder();
    [[nodiscard]] std::uint32_t framesLeft() const;
    void lookBehindEnd();
    [[nodiscard]] Step nextPacket();
    [[nodiscard]] Step nextBlock();
    [[nodiscard]] Step sendPacket();
    [[nodiscard]] Step takePcm(std::uint8_t *buffer, std::uint32_t wanted, std::uint32_t &taken);
    [[nodiscard]] Step takeDecoded(std::uint8_t *buffer, std::uint32_t wanted, std::uint32_t &taken);

    std::unique_ptr<AudioFileHeader> m_header;
    libAv::Codec m_decoder; ///< none for plain PCM
    libAv::Packet m_packet{av_packet_alloc()};
    libAv::Frame m_block{av_frame_alloc()};
    AudioStreamDescription m_client;
    std::int64_t m_framesToSkip;
    std::int64_t m_delivered = 0;
    int m_packetOffset = 0;
    int m_blockOffset = 0;
    bool m_atEnd = false;
    bool m_goesOn = false; ///< behind the length that the header tells
};

AudioFileStatus AudioFileReader::Source::setClientFormat(const AudioStreamDescription &format, Precision precision)
{
    const AudioStreamDescription file = m_header->format();
    const bool isFloat = file.formatId == kFormatLinearPCM && (file.formatFlags & kFlagFloat) != 0;
    const bool isNarrower = m_header->isLossless() && format.bitsPerChannel < file.bitsPerChannel;
    const bool losesBits = precision == Precision::Exact && (isFloat || isNarrower);
    const bool fits = format.channelsPerFrame == file.channelsPerFrame && format.channelsPerFrame > 0
                      && format.channelsPerFrame <= kMostChannels && format.sampleRate == file.sampleRate
                      && format.sampleRate > 0;
    if (!isClientForm(format) || !fits || losesBits)
        return AudioFileStatus::UnsupportedDataFormat;
    m_client = format;
    for (unsigned index = 0; index < m_header->container()->nb_streams; ++index) {
        AVStream *stream = m_header->container()->streams[index];
        stream->discard = stream == m_header->stream() ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    const bool isCopied = m_header->isPlainPcm() && format.bitsPerChannel == file.bitsPerChannel;
    return isCopied || openDecoder() ? AudioFileStatus::Ok : AudioFileStatus::UnsupportedDataFormat;
}

bool AudioFileReader::Source::openDecoder()
{
    const AVCodecParameters *parameters = m_header->stream()->codecpar;
    const AVCodec *codec = avcodec_find_decoder(parameters->codec_id);
    libAv::Codec decoder(codec ? avcodec_alloc_context3(codec) : nullptr);
    if (!decoder || avcodec_parameters_to_context(decoder.get(), parameters) < 0)
        return false;
    decoder->pkt_timebase = m_header->stream()->time_base;
    if (m_header->hasOneEdit())
        decoder->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
    // Lossless packets stand alone: the next ones are decoded while one is written.
    const bool isDecodedAhead = m_header->isLossless() && (codec->capabilities & AV_CODEC_CAP_FRAME_THREADS) != 0;
    decoder->thread_count = isDecodedAhead ? kDecoderThreads : 1;
    decoder->thread_type = FF_THREAD_FRAME;
    if (m_header->isLossless())
        decoder->err_recognition = AV_EF_CRCCHECK | AV_EF_BITSTREAM | AV_EF_BUFFER | AV_EF_EXPLODE;
    if (const int error = avcodec_open2(decoder.get(), codec, nullptr); error < 0) {
        qCWarning(audioLog).noquote() << "The decoder refused:" << libAv::errorText(error);
        return false;
    }
    m_decoder = std::move(decoder);
    return true;
}

std::uint32_t AudioFileReader::Source::framesLeft() const
{
    if (!m_header->isLengthExact())
        return std::numeric_limits<std::uint32_t>::max();
    const std::int64_t left = std::max<std::int64_t>(m_header->lengthFrames() - m_delivered, 0);
    return static_cast<std::uint32_t>(std::min<std::int64_t>(left, std::numeric_limits<std::uint32_t>::max()));
}

AudioFileReader::Source::Step AudioFileReader::Source::nextPacket()
{
    for (;;) {
        av_packet_unref(m_packet.get());
        m_packetOffset = 0;
        const int error = av_read_frame(m_header->container(), m_packet.get());
        if (m_header->readError() != 0)
            return Step::Failed;
        if (error == AVERROR_EOF)
            return Step::AtEnd;
        if (error < 0) {
            qCWarning(audioLog).noquote() << "The file cannot be read on:" << libAv::errorText(error);
            return Step::Failed;
        }
        if (m_packet->stream_index != m_header->stream()->index)
            continue;
        if (m_packet->size > 0)
            return Step::Done;
        if (m_header->isLossless())
            return Step::Failed;
    }
}

AudioFileReader::Source::Step AudioFileReader::Source::takePcm(std::uint8_t *buffer, std::uint32_t wanted,
                                                               std::uint32_t &taken)
{
    const std::size_t size = std::size_t{wanted} * m_client.bytesPerFrame;
    std::size_t filled = 0;
    Step step = Step::Done;
    while (filled < size) {
        if (m_packetOffset == m_packet->size) {
            step = nextPacket();
            if (step != Step::Done)
                break;
        }
        const std::size_t part = std::min(size - filled, static_cast<std::size_t>(m_packet->size - m_packetOffset));
        std::memcpy(buffer + filled, m_packet->data + m_packetOffset, part);
        m_packetOffset += static_cast<int>(part);
        filled += part;
    }
    const int width = static_cast<int>(m_client.bitsPerChannel / 8);
    taken = static_cast<std::uint32_t>(filled / m_client.bytesPerFrame);
    const std::size_t whole = std::size_t{taken} * m_client.bytesPerFrame;
    if (m_header->hasUnsignedSamples())
        audioSamples::toggleSign(buffer, whole);
    else if ((m_header->format().formatFlags & kFlagBigEndian) == 0)
        audioSamples::swapBytes(buffer, whole, width);
    return step;
}

AudioFileReader::Source::Step AudioFileReader::Source::sendPacket()
{
    const Step step = nextPacket();
    if (step == Step::Failed)
        return step;
    const int error = avcodec_send_packet(m_decoder.get(), step == Step::AtEnd ? nullptr : m_packet.get());
    if (error < 0) {
        qCWarning(audioLog).noquote() << "The sound is damaged:" << libAv::errorText(error);
        return Step::Failed;
    }
    return Step::Done;
}

AudioFileReader::Source::Step AudioFileReader::Source::nextBlock()
{
    m_blockOffset = 0;
    for (;;) {
        const int error = avcodec_receive_frame(m_decoder.get(), m_block.get());
        if (error == AVERROR(EAGAIN)) {
            if (sendPacket() == Step::Failed)
                return Step::Failed;
            continue;
        }
        if (error == AVERROR_EOF)
            return Step::AtEnd;
        if (error < 0) {
            qCWarning(audioLog).noquote() << "The sound is damaged:" << libAv::errorText(error);
            return Step::Failed;
        }
        // A damaged file may change its mind on the way.
        if (m_block->ch_layout.nb_channels != static_cast<int>(m_client.channelsPerFrame)
            || m_block->sample_rate != static_cast<int>(m_client.sampleRate))
            return Step::Failed;
        m_blockOffset = static_cast<int>(std::min<std::int64_t>(m_framesToSkip, m_block->nb_samples));
        m_framesToSkip -= m_blockOffset;
        if (m_blockOffset < m_block->nb_samples)
            return Step::Done;
    }
}

AudioFileReader::Source::Step AudioFileReader::Source::takeDecoded(std::uint8_t *buffer, std::uint32_t wanted,
                                                                   std::uint32_t &taken)
{
    const int width = static_cast<int>(m_client.bitsPerChannel / 8);
    while (taken < wanted) {
        if (m_blockOffset == m_block->nb_samples) {
            const Step step = nextBlock();
            if (step != Step::Done) {
                av_frame_unref(m_block.get());
                m_blockOffset = 0;
                return step;
            }
        }
        const int part = std::min(static_cast<int>(std::min<std::uint32_t>(wanted - taken, 1U << 24)),
                                  m_block->nb_samples - m_blockOffset);
        std::uint8_t *to = buffer + std::size_t{taken} * m_client.bytesPerFrame;
        if (!audioSamples::toClient(*m_block, m_blockOffset, part, width, to))
            return Step::Failed;
        m_blockOffset += part;
        taken += static_cast<std::uint32_t>(part);
    }
    return Step::Done;
}

/// Sound that an edit list hides was told of with the header.
void AudioFileReader::Source::lookBehindEnd()
{
    if (m_atEnd || !m_decoder || !m_header->isLossless() || m_header->hasOneEdit() || framesLeft() > 0)
        return;
    m_atEnd = true;
    m_goesOn = m_blockOffset < m_block->nb_samples || nextBlock() == Step::Done;
}

AudioFileStatus AudioFileReader::Source::read(std::uint8_t *buffer, std::uint32_t &frames)
{
    const std::uint32_t wanted = std::min(std::exchange(frames, 0), framesLeft());
    if (m_client.bytesPerFrame == 0 || !m_packet || !m_block)
        return AudioFileStatus::NotOpen;
    if (wanted == 0) {
        lookBehindEnd();
        return AudioFileStatus::Ok;
    }
    if (!m_atEnd) {
        const Step step = m_decoder ? takeDecoded(buffer, wanted, frames) : takePcm(buffer, wanted, frames);
        if (step == Step::Failed)
            return AudioFileStatus::InvalidFile;
        m_atEnd = step == Step::AtEnd;
        m_delivered += frames;
    }
    if (frames > 0 || !m_header->isLengthExact())
        return AudioFileStatus::Ok;
    const std::int64_t missing = m_header->lengthFrames() - m_delivered;
    if (missing <= (m_header->isLossless() ? 0 : kLossyPadding))
        return AudioFileStatus::Ok;
    qCWarning(audioLog) << "The file ends" << missing << "frames too early.";
    return AudioFileStatus::InvalidFile;
}

AudioFileReader::AudioFileReader() = default;
AudioFileReader::~AudioFileReader() = default;

AudioFileStatus AudioFileReader::open(const QString &path)
{
    m_source.reset();
    AudioFileStatus status = AudioFileStatus::Ok;
    QString reason;
    auto header = AudioFileHeader::read(path, status, &reason);
    if (header && header->hasOneEdit())
        header = AudioFileHeader::read(path, status, &reason, AudioFileHeader::Edits::LeftToCaller);
    if (header)
        m_source = std::make_unique<Source>(std::move(header));
    else
        qCWarning(audioLog).noquote() << path << "cannot be read as an audio file:" << reason;
    return status;
}

AudioFileStatus AudioFileReader::fileDataFormat(AudioStreamDescription &format) const
{
    if (!m_source)
        return AudioFileStatus::NotOpen;
    format = m_source->header().format();
    return format.sampleRate > 0 && format.channelsPerFrame > 0 ? AudioFileStatus::Ok : AudioFileStatus::InvalidFile;
}

AudioFileStatus AudioFileReader::lengthFrames(std::int64_t &frames) const
{
    if (!m_source)
        return AudioFileStatus::NotOpen;
    frames = m_source->header().lengthFrames();
    return AudioFileStatus::Ok;
}

bool AudioFileReader::holdsMoreSound() const
{
    return m_source && (m_source->header().holdsMoreSound() || m_source->goesOn());
}

bool AudioFileReader::isLengthExact() const
{
    return m_source && m_source->header().isLengthExact();
}

AudioFileStatus AudioFileReader::setClientFormat(const AudioStreamDescription &format, Precision precision)
{
    return m_source ? m_source->setClientFormat(format, precision) : AudioFileStatus::NotOpen;
}

AudioFileStatus AudioFileReader::read(std::uint8_t *buffer, std::uint32_t &frames)
{
    if (!m_source) {
        frames = 0;
        return AudioFileStatus::NotOpen;
    }
    return m_source->read(buffer, frames);
}

bool AudioFileReader::isSameFile(const struct stat &facts) const
{
    return m_source && m_source->header().facts().st_dev == facts.st_dev
           && m_source->header().facts().st_ino == facts.st_ino;
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeLegacyDecoder.h"

#include "ape/ApeError.h"
#include "ape/ApePcm.h"
#include "support/Bytes.h"
#include "support/Id3v2.h"
#include "support/InputFile.h"

extern "C" {
#include <libavutil/opt.h>
}

#include <algorithm>
#include <array>

namespace nurv {

namespace {

constexpr uint64_t kMaxBlocks = uint64_t{1} << 32; // more fit into no WAV file

/// No encoder makes frames longer than the last one of today.
const int64_t kMaxFrameBlocks = apeBlocksPerFrame(ApeLevel::Insane);

/// The sample at `index` of a plane, as wide as it was in the file.
int32_t sampleAt(const uint8_t *plane, size_t index, AVSampleFormat format)
{
    switch (format) {
    case AV_SAMPLE_FMT_U8P: return plane[index] - 128;
    case AV_SAMPLE_FMT_S16P: return static_cast<int16_t>(littleEndian16(plane + 2 * index));
    default: return static_cast<int32_t>(littleEndian32(plane + 4 * index)) >> 8;
    }
}

} // namespace

ApeLegacyDecoder::ApeLegacyDecoder(InputFile &input)
    : m_input(input), m_packet(::av_packet_alloc()), m_frame(::av_frame_alloc())
{
    ::av_log_set_level(AV_LOG_QUIET);
    if (!m_packet || !m_frame)
        throw std::bad_alloc();
    open();
    openCodec();
    findStoredParts();
}

void ApeLegacyDecoder::open()
{
    AVFormatContext *context = nullptr;
    const AVInputFormat *const demuxer = ::av_find_input_format("ape");
    const int error = ::avformat_open_input(&context, ("file:" + m_input.name()).c_str(), demuxer, nullptr);
    m_format.reset(context);
    if (error < 0)
        throw ApeError(ApeErrorNumber::InvalidInputFile, m_input.name() + ": " + avErrorText(error));
}

void ApeLegacyDecoder::openCodec()
{
    if (m_format->nb_streams == 0)
        throw ApeError(ApeErrorNumber::InvalidInputFile, m_input.name() + ": there is no sound");
    const AVStream &stream = *m_format->streams[0];
    const AVCodec *const decoder = ::avcodec_find_decoder(AV_CODEC_ID_APE);
    m_codec.reset(::avcodec_alloc_context3(decoder));
    if (!decoder || !m_codec)
        throw ApeError(ApeErrorNumber::UnsupportedVersion, "the library that reads older versions lacks the decoder");
    // Without this a damaged frame would be decoded to something.
    m_codec->err_recognition = AV_EF_CRCCHECK | AV_EF_EXPLODE;
    int error = ::avcodec_parameters_to_context(m_codec.get(), stream.codecpar);
    // A frame at once: its checksum is looked at when its last samples are decoded.
    if (error >= 0)
        error = ::av_opt_set_int(m_codec->priv_data, "max_samples", kMaxFrameBlocks + 1, 0);
    if (error >= 0)
        error = ::avcodec_open2(m_codec.get(), decoder, nullptr);
    if (error < 0)
        throw ApeError(ApeErrorNumber::UnsupportedVersion, m_input.name() + ": " + avErrorText(error));
    m_header.channels = static_cast<uint16_t>(stream.codecpar->ch_layout.nb_channels);
    m_header.sampleRateHz = static_cast<uint32_t>(stream.codecpar->sample_rate);
    m_header.bitsPerSample = static_cast<uint16_t>(stream.codecpar->bits_per_coded_sample);
    m_totalBlocks = static_cast<uint64_t>(std::max<int64_t>(stream.duration, 0));
    if (m_header.channels != 1 && m_header.channels != 2)
        throw ApeError(ApeErrorNumber::UnsupportedChannels, "only one and two channels are supported");
    if (m_header.bitsPerSample != 8 && m_header.bitsPerSample != 16 && m_header.bitsPerSample != 24)
        throw ApeError(ApeErrorNumber::UnsupportedBitDepth, "only 8, 16 and 24 bits per sample are supported");
    if (m_totalBlocks == 0 || m_totalBlocks > kMaxBlocks)
        throw ApeError(ApeErrorNumber::InvalidInputFile, m_input.name() + ": the header is damaged");
}

/// A file with a descriptor tells where they are.
void ApeLegacyDecoder::findStoredParts()
{
    skipId3v2Tags(m_input);
    const uint64_t start = m_input.position();
    std::array<uint8_t, kApeDescriptorBytes> bytes{};
    if (m_input.read(bytes) < bytes.size() || !startsWith(bytes, "MAC "))
        return;
    const ApeDescriptor descriptor = ApeDescriptor::read(bytes);
    if (descriptor.version < kApeFirstDescriptorVersion)
        return;
    const uint64_t end = start + descriptor.descriptorBytes + descriptor.headerBytes + descriptor.seekTableBytes;
    m_storedHeaderOffset = end;
    m_storedHeaderBytes = descriptor.storedHeaderBytes;
    m_storedTrailingOffset = end + m_storedHeaderBytes + descriptor.frameDataBytes;
    m_storedTrailingBytes = descriptor.storedTrailingBytes;
}

void ApeLegacyDecoder::decode(const ByteSink &sink, const std::function<void(size_t)> &onBlocks)
{
    if (m_storedHeaderBytes > 0)
        copyStored(m_storedHeaderOffset, m_storedHeaderBytes, sink);
    else
        sink(apeWaveHeader(m_header, m_totalBlocks * m_header.bytesPerBlock()));
    int error = 0;
    while ((error = ::av_read_frame(m_format.get(), m_packet.get())) >= 0) {
        error = ::avcodec_send_packet(m_codec.get(), m_packet.get());
        ::av_packet_unref(m_packet.get());
        if (error < 0)
            failFrame();
        receiveFrames(sink, onBlocks);
    }
    if (error == AVERROR_EOF && ::avcodec_send_packet(m_codec.get(), nullptr) >= 0)
        receiveFrames(sink, onBlocks);
    if (m_decodedBlocks != m_totalBlocks)
        throw ApeError(ApeErrorNumber::Read, m_input.name() + ": the file ends too early");
    copyStored(m_storedTrailingOffset, m_storedTrailingBytes, sink);
    if (m_storedHeaderBytes == 0 && m_totalBlocks * m_header.bytesPerBlock() % 2 != 0)
        sink(std::array<uint8_t, 1>{});
}

void ApeLegacyDecoder::copyStored(uint64_t offset, uint64_t count, const ByteSink &sink)
{
    constexpr uint64_t kStep = 64 * 1024;
    m_input.seek(offset);
    m_pcm.resize(static_cast<size_t>(std::min(count, kStep)));
    while (count > 0) {
        const std::span<uint8_t> piece = std::span(m_pcm).first(static_cast<size_t>(std::min(count, kStep)));
        m_input.readExactly(piece);
        sink(piece);
        count -= piece.size();
    }
}

void ApeLegacyDecoder::receiveFrames(const ByteSink &sink, const std::function<void(size_t)> &onBlocks)
{
    int error = 0;
    while ((error = ::avcodec_receive_frame(m_codec.get(), m_frame.get())) >= 0) {
        const auto blocks = static_cast<size_t>(m_frame->nb_samples);
        if (m_frame->nb_samples > kMaxFrameBlocks)
            throw ApeError(ApeErrorNumber::InvalidInputFile, m_input.name() + ": the header is damaged");
        m_decodedBlocks += blocks;
        writeFrame(sink);
        ::av_frame_unref(m_frame.get());
        if (onBlocks)
            onBlocks(blocks);
    }
    if (error != AVERROR(EAGAIN) && error != AVERROR_EOF)
        failFrame();
}

/// The library does not tell a wrong checksum from what cannot be decoded.
void ApeLegacyDecoder::failFrame() const
{
    throw ApeError(ApeErrorNumber::InvalidChecksum, m_input.name() + ": a frame is damaged: its checksum is wrong");
}

void ApeLegacyDecoder::writeFrame(const ByteSink &sink)
{
    const auto blocks = static_cast<size_t>(m_frame->nb_samples);
    const auto format = static_cast<AVSampleFormat>(m_frame->format);
    m_samples.resize(blocks * m_header.channels);
    for (size_t channel = 0; channel < m_header.channels; ++channel) {
        const uint8_t *const plane = m_frame->extended_data[channel];
        for (size_t i = 0; i < blocks; ++i)
            m_samples[i * m_header.channels + channel] = sampleAt(plane, i, format);
    }
    m_pcm.resize(m_samples.size() * m_header.bitsPerSample / 8);
    writePcm(m_samples, m_header.bitsPerSample, m_pcm);
    sink(m_pcm);
}

} // namespace nurv

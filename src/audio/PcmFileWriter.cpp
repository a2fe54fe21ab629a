// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/PcmFileWriter.h"

#include "audio/AudioOutputFile.h"
#include "audio/AudioSamples.h"

#include <QtEndian>

#include <array>
#include <limits>

namespace nurv {

namespace {

constexpr std::uint32_t kMostChannels = 8;
/// More than any header here takes.
constexpr std::int64_t kHeaderRoom = 128;
constexpr std::int64_t kMost32BitBytes = std::numeric_limits<std::uint32_t>::max() - kHeaderRoom;
constexpr std::uint32_t kUnknown32BitSize = 0xFFFFFFFF;
constexpr quint16 kTagPcm = 1;
constexpr quint16 kTagExtensible = 0xFFFE;
// KSDATAFORMAT_SUBTYPE_PCM
constexpr char kPcmGuid[] = "\x01\x00\x00\x00\x00\x00\x10\x00\x80\x00\x00\xaa\x00\x38\x9b\x71";
// The usual speakers of 0 to 8 channels, in the order of RFC 9639, section 9.1.3.
constexpr std::array<quint32, kMostChannels + 1> kSpeakers = {0, 0x4, 0x3, 0x7, 0x33, 0x37, 0x3F, 0x70F, 0x63F};

template<typename Number>
void appendLittle(QByteArray &bytes, Number value)
{
    std::array<char, sizeof(Number)> raw = {};
    qToLittleEndian(value, raw.data());
    bytes.append(raw.data(), raw.size());
}

template<typename Number>
void appendBig(QByteArray &bytes, Number value)
{
    std::array<char, sizeof(Number)> raw = {};
    qToBigEndian(value, raw.data());
    bytes.append(raw.data(), raw.size());
}

/// The 80-bit IEEE 754 number in which AIFF keeps its sample rate.
void appendExtended(QByteArray &bytes, quint32 value)
{
    quint16 exponent = 16383 + 31;
    for (; value != 0 && (value & 0x80000000U) == 0; value <<= 1)
        --exponent;
    appendBig(bytes, exponent);
    appendBig(bytes, value);
    appendBig(bytes, quint32{0});
}

} // namespace

AudioFileStatus PcmFileWriter::check(FourCharCode fileType, const AudioStreamDescription &format,
                                     std::int64_t expectedFrames)
{
    const std::uint32_t flags = fileType == kFileWave ? kLittleEndianIntegers : kBigEndianIntegers;
    const std::uint32_t bits = format.bitsPerChannel;
    const bool isWidthKnown = bits == 8 || bits == 16 || bits == 24 || bits == 32;
    const bool areChannelsKnown = format.channelsPerFrame >= 1 && format.channelsPerFrame <= kMostChannels;
    const bool isRateKnown = format.sampleRate >= 1 && format.sampleRate <= std::numeric_limits<int>::max();
    if (format.formatId != kFormatLinearPCM || format.formatFlags != flags || !isWidthKnown || !areChannelsKnown
        || !isRateKnown || format.framesPerPacket != 1 || format.bytesPerPacket != format.bytesPerFrame
        || format.bytesPerFrame != bits / 8 * format.channelsPerFrame)
        return AudioFileStatus::UnsupportedDataFormat;
    if (fileType == kFileAIFF && expectedFrames > kMost32BitBytes / format.bytesPerFrame)
        return AudioFileStatus::TooLarge;
    return AudioFileStatus::Ok;
}

PcmFileWriter::PcmFileWriter(AudioOutputFile &file, FourCharCode fileType, const AudioStreamDescription &format,
                             std::int64_t expectedFrames)
    : m_file(file), m_fileType(fileType), m_format(format), m_expectedBytes(expectedFrames * format.bytesPerFrame),
      m_is64Bit(fileType == kFileWave && m_expectedBytes > kMost32BitBytes)
{
}

QByteArray PcmFileWriter::wavHeader(std::int64_t dataBytes) const
{
    const bool isExtensible = m_format.channelsPerFrame > 2;
    const auto rate = static_cast<quint32>(m_format.sampleRate);
    const auto bits = static_cast<quint16>(m_format.bitsPerChannel);
    QByteArray format;
    appendLittle(format, isExtensible ? kTagExtensible : kTagPcm);
    appendLittle(format, static_cast<quint16>(m_format.channelsPerFrame));
    appendLittle(format, rate);
    appendLittle(format, rate * m_format.bytesPerFrame);
    appendLittle(format, static_cast<quint16>(m_format.bytesPerFrame));
    appendLittle(format, bits);
    if (isExtensible) {
        appendLittle(format, quint16{22});
        appendLittle(format, bits);
        appendLittle(format, kSpeakers[m_format.channelsPerFrame]);
        format.append(kPcmGuid, 16);
    }
    QByteArray sizes;
    if (m_is64Bit) {
        const std::int64_t riffBytes = 4 + 36 + 8 + format.size() + 8 + dataBytes + (dataBytes & 1);
        sizes.append("ds64");
        appendLittle(sizes, quint32{28});
        appendLittle(sizes, static_cast<quint64>(riffBytes));
        appendLittle(sizes, static_cast<quint64>(dataBytes));
        appendLittle(sizes, static_cast<quint64>(dataBytes / m_format.bytesPerFrame));
        appendLittle(sizes, quint32{0});
    }
    const std::int64_t rest = 4 + sizes.size() + 8 + format.size() + 8 + dataBytes + (dataBytes & 1);
    QByteArray header(m_is64Bit ? "RF64" : "RIFF");
    appendLittle(header, m_is64Bit ? kUnknown32BitSize : static_cast<quint32>(rest));
    header.append("WAVE").append(sizes).append("fmt ");
    appendLittle(header, static_cast<quint32>(format.size()));
    header.append(format).append("data");
    appendLittle(header, m_is64Bit ? kUnknown32BitSize : static_cast<quint32>(dataBytes));
    return header;
}

QByteArray PcmFileWriter::aiffHeader(std::int64_t dataBytes) const
{
    QByteArray body("AIFFCOMM");
    appendBig(body, quint32{18});
    appendBig(body, static_cast<quint16>(m_format.channelsPerFrame));
    appendBig(body, static_cast<quint32>(dataBytes / m_format.bytesPerFrame));
    appendBig(body, static_cast<quint16>(m_format.bitsPerChannel));
    appendExtended(body, static_cast<quint32>(m_format.sampleRate));
    body.append("SSND");
    appendBig(body, static_cast<quint32>(dataBytes + 8));
    body.append(8, '\0');
    QByteArray header("FORM");
    appendBig(header, static_cast<quint32>(body.size() + dataBytes + (dataBytes & 1)));
    return header + body;
}

QByteArray PcmFileWriter::header(std::int64_t dataBytes) const
{
    return m_fileType == kFileWave ? wavHeader(dataBytes) : aiffHeader(dataBytes);
}

AudioFileStatus PcmFileWriter::begin()
{
    const QByteArray bytes = header(m_expectedBytes);
    return m_file.write(bytes.constData(), static_cast<std::size_t>(bytes.size())) ? AudioFileStatus::Ok
                                                                                   : AudioFileStatus::Unspecified;
}

AudioFileStatus PcmFileWriter::setClientFormat(const AudioStreamDescription &format)
{
    AudioStreamDescription expected = m_format;
    expected.formatFlags = kBigEndianIntegers;
    return format == expected ? AudioFileStatus::Ok : AudioFileStatus::UnsupportedDataFormat;
}

AudioFileStatus PcmFileWriter::write(const std::uint8_t *client, std::uint32_t frames)
{
    const std::size_t size = std::size_t{frames} * m_format.bytesPerFrame;
    if (!m_is64Bit && m_writtenBytes + static_cast<std::int64_t>(size) > kMost32BitBytes)
        return AudioFileStatus::TooLarge;
    const std::uint8_t *bytes = client;
    if (m_fileType == kFileWave) {
        m_scratch.assign(client, client + size);
        if (m_format.bitsPerChannel == 8)
            audioSamples::toggleSign(m_scratch.data(), size);
        else
            audioSamples::swapBytes(m_scratch.data(), size, static_cast<int>(m_format.bitsPerChannel / 8));
        bytes = m_scratch.data();
    }
    if (!m_file.write(bytes, size))
        return AudioFileStatus::Unspecified;
    m_writtenBytes += static_cast<std::int64_t>(size);
    return AudioFileStatus::Ok;
}

AudioFileStatus PcmFileWriter::finish()
{
    bool isWritten = (m_writtenBytes & 1) == 0 || m_file.write("", 1);
    if (m_writtenBytes != m_expectedBytes) {
        const QByteArray bytes = header(m_writtenBytes);
        isWritten =
            isWritten && m_file.seek(0) && m_file.write(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    }
    return isWritten ? AudioFileStatus::Ok : AudioFileStatus::Unspecified;
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/CoreAudioHelper.h"

#include "platform/FileDescriptor.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <mutex>

#include <fcntl.h>
#include <sys/stat.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace nurv {

namespace {

constexpr int kReadBufferSize = 32 * 1024;
constexpr int64_t kProbeSize = 32 * 1024;
// The containers of the formats that the audio service reads; none of them is a
// play list, so no file leads to another.
constexpr char kContainers[] = "wav,aiff,mov,caf,flac,mp3,aac,ac3,au";

struct BufferedFile {
    FileDescriptor descriptor;
    int64_t size = 0;
};

int readFile(void *opaque, uint8_t *buffer, int size)
{
    const auto *file = static_cast<BufferedFile *>(opaque);
    ssize_t count = 0;
    do {
        count = ::read(file->descriptor.get(), buffer, static_cast<size_t>(size));
    } while (count < 0 && errno == EINTR);
    if (count < 0)
        return AVERROR(errno);
    return count == 0 ? AVERROR_EOF : static_cast<int>(count);
}

int64_t seekFile(void *opaque, int64_t offset, int whence)
{
    const auto *file = static_cast<BufferedFile *>(opaque);
    if (whence == AVSEEK_SIZE)
        return file->size;
    const off_t position = ::lseek(file->descriptor.get(), offset, whence & ~AVSEEK_FORCE);
    return position < 0 ? AVERROR(errno) : position;
}

// A track inside a file may name another file as its data.
int refuseToOpen(AVFormatContext *, AVIOContext **, const char *, int, AVDictionary **)
{
    return AVERROR(EPERM);
}

struct IoCloser {
    void operator()(AVIOContext *io) const
    {
        av_freep(&io->buffer);
        avio_context_free(&io);
    }
};

struct FormatCloser {
    void operator()(AVFormatContext *format) const { avformat_close_input(&format); }
};

// One open audio file with its header read.
class Header {
public:
    static std::unique_ptr<Header> read(const QString &path);

    [[nodiscard]] AVCodecID codec() const { return m_stream->codecpar->codec_id; }
    [[nodiscard]] bool isWavContainer() const
    {
        return qstrcmp(m_format->iformat->name, "wav") == 0;
    }
    [[nodiscard]] AudioFormatObject format() const;

private:
    bool open(const QString &path);
    bool selectStream();
    [[nodiscard]] int bitsPerChannel() const;

    BufferedFile m_file;
    std::unique_ptr<AVIOContext, IoCloser> m_io;
    std::unique_ptr<AVFormatContext, FormatCloser> m_format;
    AVStream *m_stream = nullptr;
    // From the decoder's own header, where the container's fields do not tell.
    AudioFormatObject m_declared;
};

std::unique_ptr<Header> Header::read(const QString &path)
{
    // The messages of this library are about bytes, not for users.
    static std::once_flag quiet;
    std::call_once(quiet, [] { av_log_set_level(AV_LOG_QUIET); });

    auto header = std::make_unique<Header>();
    return header->open(path) && header->selectStream() ? std::move(header) : nullptr;
}

bool Header::open(const QString &path)
{
    // Non-blocking, so that a pipe without a writer cannot hold the caller.
    m_file.descriptor = FileDescriptor(::open(QFile::encodeName(path).constData(),
                                              O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat facts = {};
    if (!m_file.descriptor.isOpen() || ::fstat(m_file.descriptor.get(), &facts) != 0
        || !S_ISREG(facts.st_mode))
        return false;
    m_file.size = facts.st_size;

    auto *buffer = static_cast<unsigned char *>(av_malloc(kReadBufferSize));
    if (!buffer)
        return false;
    m_io.reset(avio_alloc_context(buffer, kReadBufferSize, 0, &m_file, readFile, nullptr, seekFile));
    if (!m_io) {
        av_free(buffer);
        return false;
    }
    AVFormatContext *format = avformat_alloc_context();
    if (!format)
        return false;
    format->pb = m_io.get();
    format->io_open = refuseToOpen;
    format->format_whitelist = av_strdup(kContainers);
    format->format_probesize = static_cast<int>(kProbeSize);
    format->probesize = kProbeSize;
    format->max_streams = 64;
    // On failure the context is freed by the call.
    if (avformat_open_input(&format, nullptr, nullptr, nullptr) < 0)
        return false;
    m_format.reset(format);
    return true;
}

// Byte layouts: RFC 9639, section 8.2, and the Apple Lossless "magic cookie".
AudioFormatObject declaredBy(const AVCodecParameters &parameters)
{
    AudioFormatObject declared;
    const uint8_t *bytes = parameters.extradata;
    if (parameters.codec_id == AV_CODEC_ID_FLAC && parameters.extradata_size >= 34) {
        const auto packed = qFromBigEndian<quint64>(bytes + 10);
        declared.sampleRate = static_cast<int>(packed >> 44);
        declared.channels = static_cast<int>((packed >> 41) & 7) + 1;
        declared.bitsPerChannel = static_cast<int>((packed >> 36) & 31) + 1;
        declared.totalSamples = static_cast<std::int64_t>(packed & 0xFFFFFFFFFULL);
    } else if (parameters.codec_id == AV_CODEC_ID_ALAC && parameters.extradata_size >= 36) {
        declared.bitsPerChannel = bytes[17];
        declared.channels = bytes[21];
        const auto rate = qFromBigEndian<quint32>(bytes + 32);
        declared.sampleRate = static_cast<int>(std::min<quint32>(rate, 10'000'000));
    }
    return declared;
}

bool Header::selectStream()
{
    for (unsigned index = 0; index < m_format->nb_streams; ++index) {
        AVStream *stream = m_format->streams[index];
        if (stream->codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
            m_stream = stream;
            break;
        }
    }
    if (!m_stream)
        return false;
    m_declared = declaredBy(*m_stream->codecpar);
    // Streams without a header of their own (MP3, ADTS) tell in their first frames.
    const bool isTold = m_stream->codecpar->sample_rate > 0
        && m_stream->codecpar->ch_layout.nb_channels > 0;
    if (!isTold && m_declared.sampleRate == 0)
        avformat_find_stream_info(m_format.get(), nullptr);
    return true;
}

int Header::bitsPerChannel() const
{
    const AVCodecParameters &parameters = *m_stream->codecpar;
    if (m_declared.bitsPerChannel > 0)
        return m_declared.bitsPerChannel;
    const int exact = av_get_exact_bits_per_sample(parameters.codec_id);
    if (exact == 0)
        return 0;
    return parameters.bits_per_coded_sample > 0 ? parameters.bits_per_coded_sample : exact;
}

AudioFormatObject Header::format() const
{
    const AVCodecParameters &parameters = *m_stream->codecpar;
    AudioFormatObject result;
    result.sampleRate = m_declared.sampleRate > 0 ? m_declared.sampleRate : parameters.sample_rate;
    result.channels = m_declared.channels > 0 ? m_declared.channels : parameters.ch_layout.nb_channels;
    result.bitsPerChannel = bitsPerChannel();
    if (m_declared.totalSamples > 0)
        result.totalSamples = m_declared.totalSamples;
    else if (m_stream->duration > 0 && result.sampleRate > 0)
        result.totalSamples = av_rescale_q(m_stream->duration, m_stream->time_base,
                                           AVRational{1, result.sampleRate});
    return result;
}

bool isSignedLittleEndian(AVCodecID codec)
{
    return codec == AV_CODEC_ID_PCM_S16LE || codec == AV_CODEC_ID_PCM_S24LE
        || codec == AV_CODEC_ID_PCM_S32LE;
}

// Eight signed bits have no byte order; they are the AIFF kind of sample.
bool isSignedBigEndian(AVCodecID codec)
{
    return codec == AV_CODEC_ID_PCM_S16BE || codec == AV_CODEC_ID_PCM_S24BE
        || codec == AV_CODEC_ID_PCM_S32BE || codec == AV_CODEC_ID_PCM_S8;
}

bool holdsWavSamples(const Header &header)
{
    return isSignedLittleEndian(header.codec())
        || (header.codec() == AV_CODEC_ID_PCM_U8 && header.isWavContainer());
}

} // namespace

bool CoreAudioHelper::isAppleLossless(const QString &path)
{
    const auto header = Header::read(path);
    return header && header->codec() == AV_CODEC_ID_ALAC;
}

bool CoreAudioHelper::isAiffOrWav(const QString &path)
{
    const auto header = Header::read(path);
    return header && (holdsWavSamples(*header) || isSignedBigEndian(header->codec()));
}

bool CoreAudioHelper::isWav(const QString &path)
{
    const auto header = Header::read(path);
    return header && holdsWavSamples(*header);
}

bool CoreAudioHelper::isAiff(const QString &path)
{
    const auto header = Header::read(path);
    return header && isSignedBigEndian(header->codec());
}

std::optional<AudioFormatObject> CoreAudioHelper::getFormatInfo(const QString &path)
{
    const auto header = Header::read(path);
    if (!header)
        return std::nullopt;
    return header->format();
}

} // namespace nurv

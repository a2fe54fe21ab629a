// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/AudioFileHeader.h"

#include "audio/LibAv.h"
#include "base/SystemError.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

// Nine years of sound at the highest rate: lengths up to here can be multiplied by the size
// of a frame.
constexpr std::int64_t kMostFrames = std::int64_t{1} << 48;
constexpr int kProbeSize = 32 * 1024;
constexpr int kMostStreams = 64;
// A file of a few kilobytes can announce millions of packets in every track, and memory is
// taken for each. Pictures are no tracks.
constexpr int kMostTracks = 8;
// The containers of the formats that the audio service reads; none of them is a
// play list, so no file leads to another.
constexpr char kContainers[] = "wav,aiff,mov,caf,flac,mp3,aac,ac3,au";
constexpr char kAllContainers[] = "wav,aiff,mov,caf,flac,mp3,aac,ac3,au,ogg,eac3,wv,tta,ape";
// Sizes from here on stand for "not known yet" in WAV files that came through a pipe.
constexpr std::uint32_t kStreamedWavSize = 0x7FFFF000;

// A track inside a file may name another file as its data.
int refuseToOpen(AVFormatContext *, AVIOContext **, const char *, int, AVDictionary **)
{
    return AVERROR(EPERM);
}

// Byte layouts: RFC 9639, section 8.2, and the Apple Lossless "magic cookie".
struct ExtradataHeader {
    std::uint32_t sampleRate = 0;
    std::uint32_t channels = 0;
    std::uint32_t bits = 0;
    std::int64_t frames = 0;
};

ExtradataHeader extradataHeader(const AVCodecParameters &parameters)
{
    ExtradataHeader header;
    const uint8_t *bytes = parameters.extradata;
    if (parameters.codec_id == AV_CODEC_ID_FLAC && parameters.extradata_size >= 34) {
        const auto packed = qFromBigEndian<quint64>(bytes + 10);
        header.sampleRate = static_cast<std::uint32_t>(packed >> 44);
        header.channels = static_cast<std::uint32_t>((packed >> 41) & 7) + 1;
        header.bits = static_cast<std::uint32_t>((packed >> 36) & 31) + 1;
        header.frames = static_cast<std::int64_t>(packed & 0xFFFFFFFFFULL);
    } else if (parameters.codec_id == AV_CODEC_ID_ALAC && parameters.extradata_size >= 36) {
        header.bits = bytes[17];
        header.channels = bytes[21];
        header.sampleRate = std::min<std::uint32_t>(qFromBigEndian<quint32>(bytes + 32), 10'000'000);
    }
    return header;
}

FourCharCode codeOf(AVCodecID codec)
{
    switch (codec) {
    case AV_CODEC_ID_ALAC: return kFormatAppleLossless;
    case AV_CODEC_ID_AAC: return kFormatAAC;
    case AV_CODEC_ID_FLAC: return fourCharCode("flac");
    case AV_CODEC_ID_MP3: return fourCharCode(".mp3");
    case AV_CODEC_ID_AC3: return fourCharCode("ac-3");
    case AV_CODEC_ID_PCM_MULAW: return fourCharCode("ulaw");
    case AV_CODEC_ID_PCM_ALAW: return fourCharCode("alaw");
    default: return fourCharCode("????");
    }
}

/// The flags of linear PCM; nothing for other codecs.
std::optional<std::uint32_t> pcmFlags(AVCodecID codec)
{
    switch (codec) {
    case AV_CODEC_ID_PCM_U8:
    case AV_CODEC_ID_PCM_S16LE:
    case AV_CODEC_ID_PCM_S24LE:
    case AV_CODEC_ID_PCM_S32LE: return kLittleEndianIntegers;
    // Eight signed bits have no byte order; they are the AIFF kind of sample.
    case AV_CODEC_ID_PCM_S8:
    case AV_CODEC_ID_PCM_S16BE:
    case AV_CODEC_ID_PCM_S24BE:
    case AV_CODEC_ID_PCM_S32BE: return kBigEndianIntegers;
    case AV_CODEC_ID_PCM_F32LE:
    case AV_CODEC_ID_PCM_F64LE: return kFlagFloat | kFlagPacked;
    case AV_CODEC_ID_PCM_F32BE:
    case AV_CODEC_ID_PCM_F64BE: return kFlagFloat | kFlagPacked | kFlagBigEndian;
    default: return std::nullopt;
    }
}

bool isContainer(const AVFormatContext &container, const char *name)
{
    return std::strcmp(container.iformat->name, name) == 0;
}

bool isMpeg4(const AVFormatContext &container)
{
    return std::strncmp(container.iformat->name, "mov,", 4) == 0;
}

} // namespace

struct AudioFileHeader::Handles {
    libAv::Io io;
    libAv::Input container;
};

AudioFileHeader::AudioFileHeader() : m_handles(std::make_unique<Handles>()) {}
AudioFileHeader::~AudioFileHeader() = default;

std::unique_ptr<AudioFileHeader> AudioFileHeader::read(const QString &path, AudioFileStatus &status, QString *reason,
                                                       Edits edits, Kinds kinds)
{
    libAv::prepare();
    std::unique_ptr<AudioFileHeader> header(new AudioFileHeader);
    QString failure;
    status = header->open(path, failure, edits, kinds);
    if (status == AudioFileStatus::Ok && !header->selectStream()) {
        status = AudioFileStatus::InvalidFile;
        failure = u"it holds no sound"_s;
    }
    if (reason)
        *reason = failure;
    if (status != AudioFileStatus::Ok)
        return nullptr;
    header->describe();
    header->measure();
    if (header->m_length < 0 || header->m_length > kMostFrames) {
        status = AudioFileStatus::InvalidFile;
        if (reason)
            *reason = u"it announces more sound than there can be"_s;
        return nullptr;
    }
    header->lookForMoreSound();
    return header;
}

AVFormatContext *AudioFileHeader::container() const
{
    return m_handles->container.get();
}

bool AudioFileHeader::hasUnsignedSamples() const
{
    return m_stream->codecpar->codec_id == AV_CODEC_ID_PCM_U8;
}

int AudioFileHeader::readBytes(void *self, std::uint8_t *buffer, int size)
{
    auto *header = static_cast<AudioFileHeader *>(self);
    ssize_t count = 0;
    do {
        count = ::read(header->m_file.get(), buffer, static_cast<std::size_t>(size));
    } while (count < 0 && errno == EINTR);
    if (count < 0) {
        header->m_readError = errno;
        return AVERROR(header->m_readError);
    }
    return count == 0 ? AVERROR_EOF : static_cast<int>(count);
}

std::int64_t AudioFileHeader::seek(void *self, std::int64_t offset, int whence)
{
    const auto *header = static_cast<AudioFileHeader *>(self);
    if (whence == AVSEEK_SIZE)
        return header->m_facts.st_size;
    const off_t position = ::lseek(header->m_file.get(), offset, whence & ~AVSEEK_FORCE);
    return position < 0 ? AVERROR(errno) : position;
}

AudioFileStatus AudioFileHeader::open(const QString &path, QString &reason, Edits edits, Kinds kinds)
{
    // Non-blocking, so that a pipe without a writer cannot hold the caller.
    m_file = FileDescriptor(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!m_file.isOpen() || ::fstat(m_file.get(), &m_facts) != 0) {
        const int error = errno;
        reason = systemErrorText(error);
        return error == EACCES || error == EPERM ? AudioFileStatus::PermissionDenied : AudioFileStatus::Unspecified;
    }
    if (!S_ISREG(m_facts.st_mode)) {
        reason = u"it is no regular file"_s;
        return AudioFileStatus::InvalidFile;
    }

    if (Mpeg4Timing::trackCount(byteReader(), m_facts.st_size) > kMostTracks) {
        reason = u"it has too many tracks"_s;
        return AudioFileStatus::InvalidFile;
    }

    m_handles->io = libAv::makeIo(this, readBytes, nullptr, seek);
    AVFormatContext *container = m_handles->io ? avformat_alloc_context() : nullptr;
    if (!container)
        return AudioFileStatus::Unspecified;
    container->pb = m_handles->io.get();
    container->io_open = refuseToOpen;
    container->format_whitelist = av_strdup(kinds == Kinds::All ? kAllContainers : kContainers);
    container->format_probesize = kProbeSize;
    container->probesize = kProbeSize;
    container->max_streams = kMostStreams;
    // A header whose own checksum is wrong is no header. FLAC's has none, and its reader would refuse the
    // file for a picture.
    if (kinds == Kinds::All && !isFlac())
        container->error_recognition = AV_EF_CRCCHECK | AV_EF_EXPLODE;
    AVDictionary *options = nullptr;
    if (edits == Edits::LeftToCaller)
        av_dict_set(&options, "ignore_editlist", "1", 0);
    // On failure the context is freed by the call.
    const int error = avformat_open_input(&container, nullptr, nullptr, &options);
    av_dict_free(&options);
    if (error < 0) {
        reason = libAv::errorText(error);
        return m_readError != 0 ? AudioFileStatus::Unspecified : AudioFileStatus::InvalidFile;
    }
    m_handles->container.reset(container);
    return AudioFileStatus::Ok;
}

bool AudioFileHeader::selectStream()
{
    const AVFormatContext &format = *container();
    for (unsigned index = 0; index < format.nb_streams && !m_stream; ++index) {
        if (format.streams[index]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO)
            m_stream = format.streams[index];
    }
    if (!m_stream)
        return false;
    // Streams without a header of their own (MP3, ADTS) tell in their first frames.
    const AVCodecParameters &parameters = *m_stream->codecpar;
    const bool isTold = parameters.sample_rate > 0 && parameters.ch_layout.nb_channels > 0;
    if (!isTold && extradataHeader(parameters).sampleRate == 0)
        avformat_find_stream_info(container(), nullptr);
    return true;
}

void AudioFileHeader::describe()
{
    const AVCodecParameters &parameters = *m_stream->codecpar;
    const ExtradataHeader declared = extradataHeader(parameters);
    const int rate = std::max(parameters.sample_rate, 0);
    const int channels = std::max(parameters.ch_layout.nb_channels, 0);
    m_declaredLength = declared.frames;
    m_format.sampleRate = declared.sampleRate > 0 ? declared.sampleRate : rate;
    m_format.channelsPerFrame = declared.channels > 0 ? declared.channels : static_cast<std::uint32_t>(channels);
    m_format.bitsPerChannel = declared.bits;
    m_isLossless = declared.bits > 0;
    if (const std::optional<std::uint32_t> flags = pcmFlags(parameters.codec_id)) {
        m_format.formatId = kFormatLinearPCM;
        m_format.formatFlags = *flags;
        m_format.bitsPerChannel = static_cast<std::uint32_t>(av_get_exact_bits_per_sample(parameters.codec_id));
        m_format.bytesPerFrame = m_format.bitsPerChannel / 8 * m_format.channelsPerFrame;
        m_format.bytesPerPacket = m_format.bytesPerFrame;
        m_format.framesPerPacket = 1;
        m_isLossless = true;
        m_isPlainPcm =
            (*flags & kFlagFloat) == 0 && (isContainer(*container(), "wav") || isContainer(*container(), "aiff"));
        return;
    }
    m_format.formatId = codeOf(parameters.codec_id);
    if (m_format.formatId == kFormatAppleLossless) {
        m_format.formatFlags = appleLosslessFlags(declared.bits);
        m_format.framesPerPacket =
            parameters.extradata_size >= 36 ? qFromBigEndian<quint32>(parameters.extradata + 12) : 0;
    }
}

std::optional<std::int64_t> AudioFileHeader::declaredWavBytes() const
{
    // The demuxer stands at the first sample, right behind the head of the chunk.
    const std::int64_t start = avio_tell(m_handles->io.get());
    std::uint8_t chunkHead[8] = {};
    std::uint8_t fileHead[36] = {};
    if (::pread(m_file.get(), chunkHead, sizeof(chunkHead), start - 8) != sizeof(chunkHead)
        || ::pread(m_file.get(), fileHead, sizeof(fileHead), 0) != sizeof(fileHead)
        || std::memcmp(chunkHead, "data", 4) != 0)
        return std::nullopt;
    const std::int64_t available = std::max<std::int64_t>(m_facts.st_size - start, 0);
    const std::uint32_t size = qFromLittleEndian<quint32>(chunkHead + 4);
    // EBU Tech 3306: "ds64" comes first and holds the sizes of the file, then of "data".
    if (std::memcmp(fileHead, "RIFF", 4) != 0 && std::memcmp(fileHead + 12, "ds64", 4) == 0) {
        const auto wide = qFromLittleEndian<qint64>(fileHead + 28);
        return wide > 0 ? wide : available;
    }
    const bool isFinished = qFromLittleEndian<quint32>(fileHead + 4) + std::int64_t{8} >= start + size
                            && qFromLittleEndian<quint32>(fileHead + 4) != 0xFFFFFFFF;
    if (size == 0)
        return isFinished ? 0 : available;
    return size >= kStreamedWavSize && size > available ? available : size;
}

bool AudioFileHeader::isFlac() const
{
    std::array<char, 4> mark = {};
    return byteReader()(0, mark.data(), mark.size()) && std::memcmp(mark.data(), "fLaC", mark.size()) == 0;
}

Mpeg4Timing::ReadAt AudioFileHeader::byteReader() const
{
    return [this](std::int64_t offset, void *bytes, std::size_t size) {
        return ::pread(m_file.get(), bytes, size, offset) == static_cast<ssize_t>(size);
    };
}

bool AudioFileHeader::measureOneEdit()
{
    const auto timing = Mpeg4Timing::read(byteReader(), m_facts.st_size, static_cast<std::uint32_t>(m_stream->id));
    const auto rate = static_cast<std::int64_t>(m_format.sampleRate);
    if (timing && timing->mediaTimescale > 0)
        m_mediaLength = av_rescale(timing->mediaDuration, rate, timing->mediaTimescale);
    if (timing && timing->tableDuration && *timing->tableDuration != timing->mediaDuration)
        m_tableFrames = av_rescale(*timing->tableDuration, rate, timing->mediaTimescale);
    const auto length = timing ? timing->length() : std::nullopt;
    // In other units than the sample rate, frames would have to be guessed.
    if (!length || timing->mediaTimescale != m_format.sampleRate)
        return false;
    m_length = *length;
    m_firstFrame = timing->editStart;
    m_hasOneEdit = true;
    m_isLengthExact = true;
    return true;
}

void AudioFileHeader::lookForMoreSound()
{
    const AVFormatContext &format = *container();
    int tracks = 0;
    for (unsigned index = 0; index < format.nb_streams; ++index) {
        if (format.streams[index]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO)
            ++tracks;
    }
    // A lossy encoder's priming and padding are hidden on purpose.
    m_holdsMoreSound = tracks > 1 || (m_isLossless && m_mediaLength > m_length);
}

std::optional<std::int64_t> AudioFileHeader::framesBeforeCut() const
{
    const int rate = static_cast<int>(m_format.sampleRate);
    if (!isMpeg4(*container()) || rate <= 0)
        return std::nullopt;
    const auto isCut = [this](const AVIndexEntry &entry) { return entry.pos + entry.size > m_facts.st_size; };
    const int count = avformat_index_get_entries_count(m_stream);
    if (count == 0 || !isCut(*avformat_index_get_entry(m_stream, count - 1)))
        return std::nullopt;
    int first = count - 1;
    while (first > 0 && isCut(*avformat_index_get_entry(m_stream, first - 1)))
        --first;
    const std::int64_t time = avformat_index_get_entry(m_stream, first)->timestamp;
    return std::max<std::int64_t>(av_rescale_q(time, m_stream->time_base, AVRational{1, rate}), 0);
}

void AudioFileHeader::measure()
{
    const AVFormatContext &format = *container();
    if (isContainer(format, "wav") && m_format.formatId == kFormatLinearPCM && m_format.bytesPerFrame > 0) {
        if (const auto bytes = declaredWavBytes()) {
            m_length = *bytes / m_format.bytesPerFrame;
            m_isLengthExact = true;
            return;
        }
    }
    if (isMpeg4(format) && measureOneEdit())
        return;
    if (m_declaredLength > 0) {
        m_length = m_declaredLength;
        m_isLengthExact = true;
        return;
    }
    const int rate = static_cast<int>(m_format.sampleRate);
    if (m_stream->duration > 0 && rate > 0) {
        m_length = av_rescale_q(m_stream->duration, m_stream->time_base, AVRational{1, rate});
        m_isLengthExact = isMpeg4(format) || isContainer(format, "aiff");
    }
}

} // namespace nurv

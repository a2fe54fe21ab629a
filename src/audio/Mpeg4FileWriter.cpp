// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/Mpeg4FileWriter.h"

#include "audio/AudioOutputFile.h"
#include "audio/LibAv.h"
#include "audio/Mpeg4Timing.h"
#include "base/Log.h"

#include <QtEndian>

#include <algorithm>
#include <cerrno>
#include <limits>

namespace nurv {

namespace {

// The boxes of "moov" that do not grow with the file take less than 1 KiB.
constexpr std::int64_t kFixedIndexBytes = 4096;
constexpr std::int64_t kIndexBytesPerPacket = 4;
// The muxer joins packets to chunks of up to 1 MiB; a chunk has an 8-byte offset
// and perhaps 12 bytes in the table of chunk lengths.
constexpr std::int64_t kChunkBytes = 1 << 20;
constexpr std::int64_t kIndexBytesPerChunk = 20;
constexpr std::uint32_t kTrackId = 1;

/// A second look at the file that is being written.
struct ReadBack {
    const AudioOutputFile *file = nullptr;
    std::int64_t position = 0;
    libAv::Io io;
};

int readBack(void *opaque, std::uint8_t *buffer, int size)
{
    auto *reader = static_cast<ReadBack *>(opaque);
    const std::int64_t count = reader->file->readAt(reader->position, buffer, static_cast<std::size_t>(size));
    if (count < 0)
        return AVERROR(EIO);
    reader->position += count;
    return count == 0 ? AVERROR_EOF : static_cast<int>(count);
}

std::int64_t seekBack(void *opaque, std::int64_t offset, int whence)
{
    auto *reader = static_cast<ReadBack *>(opaque);
    switch (whence & ~AVSEEK_FORCE) {
    case SEEK_SET: return reader->position = offset;
    case SEEK_CUR: return reader->position += offset;
    case AVSEEK_SIZE: return reader->file->size();
    default: return AVERROR(EINVAL);
    }
}

/// `Byte` is what the callback of the installed FFmpeg has: bytes or constant bytes.
template<typename Byte>
int writeBytes(void *opaque, Byte *bytes, int size)
{
    auto *file = static_cast<AudioOutputFile *>(opaque);
    return file->write(bytes, static_cast<std::size_t>(size)) ? size : AVERROR(file->error());
}

std::int64_t seekOutput(void *opaque, std::int64_t offset, int whence)
{
    auto *file = static_cast<AudioOutputFile *>(opaque);
    whence &= ~AVSEEK_FORCE;
    if (whence == AVSEEK_SIZE)
        return file->size();
    const std::int64_t target = whence == SEEK_CUR ? file->position() + offset : offset;
    if (whence == SEEK_END)
        return AVERROR(EINVAL);
    return file->seek(target) ? target : AVERROR(file->error());
}

} // namespace

struct Mpeg4FileWriter::Muxer {
    ReadBack readBack;
    libAv::Io io;
    libAv::Output container;
    AVStream *stream = nullptr;
};

namespace {

// The muxer reads its own output when it moves the index to the front.
int openReadBack(AVFormatContext *container, AVIOContext **io, const char *, int, AVDictionary **)
{
    auto *reader = static_cast<ReadBack *>(container->opaque);
    reader->position = 0;
    reader->io = libAv::makeIo(reader, readBack, nullptr, seekBack);
    *io = reader->io.get();
    return *io ? 0 : AVERROR(ENOMEM);
}

int closeReadBack(AVFormatContext *container, AVIOContext *)
{
    static_cast<ReadBack *>(container->opaque)->io.reset();
    return 0;
}

AudioFileStatus refused(const char *what, int error)
{
    qCWarning(audioLog).noquote() << what << libAv::errorText(error);
    return AudioFileStatus::Unspecified;
}

} // namespace

Mpeg4FileWriter::Mpeg4FileWriter(AudioOutputFile &file, const AudioStreamDescription &format,
                                 std::int64_t expectedFrames)
    : m_file(file), m_encoder(format), m_expectedFrames(expectedFrames)
{
    libAv::prepare();
}

Mpeg4FileWriter::~Mpeg4FileWriter() = default;

AudioFileStatus Mpeg4FileWriter::setClientFormat(const AudioStreamDescription &format)
{
    m_client = format;
    return m_encoder.setClientFormat(format);
}

std::int64_t Mpeg4FileWriter::roomForIndex() const
{
    const AVCodecContext &codec = m_encoder.codec();
    const std::int64_t frames = m_encoder.fileFrames(m_expectedFrames);
    const std::int64_t packets = frames / std::max(codec.frame_size, 1) + 8;
    // No packet of either format grows much beyond its samples.
    const std::int64_t soundBytes = frames * codec.ch_layout.nb_channels * 5;
    const std::int64_t chunks = std::min(packets, 8 + 2 * soundBytes / kChunkBytes);
    return kFixedIndexBytes + packets * kIndexBytesPerPacket + chunks * kIndexBytesPerChunk;
}

AudioFileStatus Mpeg4FileWriter::start()
{
    if (const AudioFileStatus status = m_encoder.open(); status != AudioFileStatus::Ok)
        return status;
    auto muxer = std::make_unique<Muxer>();
    AVFormatContext *container = nullptr;
    if (const int error = avformat_alloc_output_context2(&container, nullptr, "ipod", ""); error < 0)
        return refused("No MPEG-4 file can be made:", error);
    muxer->container.reset(container);
    muxer->io = libAv::makeIo(&m_file, nullptr, writeBytes, seekOutput);
    muxer->stream = avformat_new_stream(container, nullptr);
    if (!muxer->io || !muxer->stream)
        return AudioFileStatus::Unspecified;
    muxer->readBack.file = &m_file;
    container->pb = muxer->io.get();
    container->opaque = &muxer->readBack;
    container->io_open = openReadBack;
    container->io_close2 = closeReadBack;
    // No name of the muxer and no time of the day: the same sound gives the same file.
    container->flags |= AVFMT_FLAG_BITEXACT;
    muxer->stream->time_base = m_encoder.codec().time_base;
    if (const int error = avcodec_parameters_from_context(muxer->stream->codecpar, &m_encoder.codec()); error < 0)
        return refused("No MPEG-4 file can be made:", error);

    AVDictionary *options = nullptr;
    if (m_expectedFrames > 0)
        av_dict_set_int(&options, "moov_size", roomForIndex(), 0);
    else
        av_dict_set(&options, "movflags", "+faststart", 0);
    const int error = avformat_write_header(container, &options);
    av_dict_free(&options);
    m_muxer = std::move(muxer);
    return error < 0 ? refused("The file cannot be begun:", error) : AudioFileStatus::Ok;
}

AudioFileStatus Mpeg4FileWriter::writePacket(AVPacket &packet)
{
    packet.stream_index = m_muxer->stream->index;
    av_packet_rescale_ts(&packet, m_encoder.codec().time_base, m_muxer->stream->time_base);
    const int error = av_write_frame(m_muxer->container.get(), &packet);
    return error < 0 ? refused("A packet cannot be written:", error) : AudioFileStatus::Ok;
}

AudioFileStatus Mpeg4FileWriter::write(const std::uint8_t *client, std::uint32_t frames)
{
    if (!m_muxer) {
        if (const AudioFileStatus status = start(); status != AudioFileStatus::Ok)
            return status;
    }
    m_writtenFrames += frames;
    // The room in front would not do.
    if (m_expectedFrames > 0 && m_writtenFrames > m_expectedFrames)
        return AudioFileStatus::TooLarge;
    return m_encoder.encode(client, frames, [this](AVPacket &packet) { return writePacket(packet); });
}

// The muxer counts the length that is to be heard in milliseconds, so that a player
// takes up to one of them too little or too much. Counted in frames it is exact.
bool Mpeg4FileWriter::makeLengthExact()
{
    const std::int64_t frames = m_encoder.encodedFrames();
    const auto readAt = [this](std::int64_t offset, void *bytes, std::size_t size) {
        return m_file.readAt(offset, bytes, size) == static_cast<std::int64_t>(size);
    };
    const auto timing = Mpeg4Timing::read(readAt, m_file.size(), kTrackId);
    // Longer than a day: the fields would overflow, or have 64 bits.
    if (!timing || timing->movieTimescaleAt == 0 || timing->trackDurationAt == 0
        || (timing->hasOneEdit && timing->editDurationAt == 0) || frames > std::numeric_limits<std::uint32_t>::max())
        return true;
    const auto patch = [this](std::int64_t offset, std::int64_t value) {
        const quint32 bytes = qToBigEndian(static_cast<quint32>(value));
        return offset == 0 || (m_file.seek(offset) && m_file.write(&bytes, sizeof(bytes)));
    };
    return patch(timing->movieTimescaleAt, m_encoder.codec().sample_rate) && patch(timing->movieDurationAt, frames)
           && patch(timing->trackDurationAt, frames) && patch(timing->editDurationAt, frames);
}

AudioFileStatus Mpeg4FileWriter::finish()
{
    if (!m_muxer) {
        if (const AudioFileStatus status = start(); status != AudioFileStatus::Ok)
            return status;
    }
    const AudioFileStatus status = m_encoder.flush([this](AVPacket &packet) { return writePacket(packet); });
    if (status != AudioFileStatus::Ok)
        return status;
    if (const int error = av_write_trailer(m_muxer->container.get()); error < 0)
        return refused("The file cannot be completed:", error);
    avio_flush(m_muxer->io.get());
    if (m_muxer->io->error < 0)
        return refused("The file cannot be completed:", m_muxer->io->error);
    return makeLengthExact() ? AudioFileStatus::Ok : AudioFileStatus::Unspecified;
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/LossyComparison.h"

#include "audio/AudioFileHeader.h"
#include "audio/LibAv.h"
#include "base/NurvFailure.h"
#include "samples/ProgressTeller.h"
#include "samples/SampleCount.h"
#include "samples/SampleStream.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Frames of the source that are decoded at once.
constexpr std::size_t kBlockFrames = 16384;
/// Packets between two reports.
constexpr int kReportEvery = 64;
/// Where the format does not tell how long its frames are: 20 ms at 48 kHz. Such formats, Opus above all, tell to the
/// sample where their sound begins and ends.
constexpr int kUsualEncoderFrame = 960;

/// The frames of the source, counted; nothing when it was given up.
std::optional<std::int64_t> countFrames(SampleStream &source, const SoundComparison::Progress &progress,
                                        const SoundComparison::IsUnwanted &isUnwanted)
{
    std::vector<std::int32_t> samples(kBlockFrames * static_cast<std::size_t>(source.format().channels));
    std::int64_t frames = 0;
    while (const std::size_t count = source.read(samples.data(), kBlockFrames)) {
        frames += static_cast<std::int64_t>(count);
        if (isUnwanted && isUnwanted())
            return std::nullopt;
        if (progress)
            progress(source.progress() * 100.0);
    }
    return frames;
}

[[noreturn]] void failDamaged(const LossySound &sound, int error)
{
    throw NurvFailure(u"its sound is damaged at %1 (%2)"_s.arg(timeOfFrame(sound.frames, std::max(sound.sampleRateHz, 1)),
                                                               libAv::errorText(error)));
}

/// Decodes what the packet holds, or after the last one what is left.
void decodePacket(AVCodecContext &decoder, const AVPacket *packet, AVFrame &block, LossySound &sound)
{
    if (const int error = avcodec_send_packet(&decoder, packet); error < 0)
        failDamaged(sound, error);
    for (;;) {
        const int error = avcodec_receive_frame(&decoder, &block);
        if (error == AVERROR(EAGAIN) || error == AVERROR_EOF)
            return;
        if (error < 0)
            failDamaged(sound, error);
        if (block.sample_rate != sound.sampleRateHz || block.ch_layout.nb_channels != sound.channels)
            throw NurvFailure(u"its format changes at %1"_s.arg(timeOfFrame(sound.frames, sound.sampleRateHz)));
        sound.frames += block.nb_samples;
    }
}

} // namespace

std::optional<LossySound> LossySound::decode(const QString &path, const SoundComparison::Progress &progress,
                                             const SoundComparison::IsUnwanted &isUnwanted)
{
    AudioFileStatus status = AudioFileStatus::Ok;
    QString reason;
    const auto header = AudioFileHeader::read(path, status, &reason, AudioFileHeader::Edits::AppliedByDemuxer,
                                              AudioFileHeader::Kinds::All);
    if (!header)
        throw NurvFailure(u"it cannot be read: %1"_s.arg(reason));
    AVFormatContext *const container = header->container();
    const AVStream *const stream = header->stream();
    const AVCodec *const codec = avcodec_find_decoder(stream->codecpar->codec_id);
    const libAv::Codec decoder(codec ? avcodec_alloc_context3(codec) : nullptr);
    const libAv::Packet packet{av_packet_alloc()};
    const libAv::Frame block{av_frame_alloc()};
    if (!decoder || !packet || !block || avcodec_parameters_to_context(decoder.get(), stream->codecpar) < 0)
        throw NurvFailure(u"there is no decoder for it"_s);
    decoder->pkt_timebase = stream->time_base;
    decoder->thread_count = 1;
    decoder->err_recognition = AV_EF_CRCCHECK | AV_EF_BITSTREAM | AV_EF_BUFFER | AV_EF_EXPLODE;
    if (const int error = avcodec_open2(decoder.get(), codec, nullptr); error < 0)
        throw NurvFailure(u"the decoder refused it: %1"_s.arg(libAv::errorText(error)));

    const AudioStreamDescription format = header->format();
    LossySound sound{.frames = 0,
                     .sampleRateHz = static_cast<int>(format.sampleRate),
                     .channels = static_cast<int>(format.channelsPerFrame),
                     .encoderFrame = decoder->frame_size > 0 ? decoder->frame_size : stream->codecpar->frame_size};
    if (sound.encoderFrame <= 0)
        sound.encoderFrame = kUsualEncoderFrame;
    const double size = static_cast<double>(std::max<std::int64_t>(avio_size(container->pb), 1));
    for (int count = 1;; ++count) {
        const int error = av_read_frame(container, packet.get());
        if (error == AVERROR_EOF && header->readError() == 0)
            break;
        if (error < 0)
            failDamaged(sound, error);
        const bool isOurs = packet->stream_index == stream->index;
        if (isOurs && (packet->flags & AV_PKT_FLAG_CORRUPT) != 0)
            failDamaged(sound, AVERROR_INVALIDDATA);
        if (isOurs)
            decodePacket(*decoder, packet.get(), *block, sound);
        av_packet_unref(packet.get());
        if (count % kReportEvery != 0)
            continue;
        if (isUnwanted && isUnwanted())
            return std::nullopt;
        if (progress)
            progress(std::min(100.0 * static_cast<double>(avio_tell(container->pb)) / size, 100.0));
    }
    decodePacket(*decoder, nullptr, *block, sound);
    return sound;
}

SoundComparison::Result LossyComparison::compare(const QString &source, const QString &output,
                                                 const SoundComparison::Progress &progress,
                                                 const SoundComparison::IsUnwanted &isUnwanted)
{
    SoundComparison::Result result;
    ProgressTeller teller(progress);
    const auto half = [&teller](double offset) {
        return [&teller, offset](double percent) { teller.tell(offset + percent / 2.0); };
    };
    QString side = u"the source"_s;
    try {
        const std::unique_ptr<SampleStream> stream = SampleStream::open(source);
        const SampleFormat format = stream->format();
        if (!stream->isLossless()) {
            result.difference = u"the source is lossy: nothing made of it stands for it"_s;
            return result;
        }
        const std::optional<std::int64_t> frames = countFrames(*stream, half(0.0), isUnwanted);
        side = u"the output"_s;
        const std::optional<LossySound> made =
            frames ? LossySound::decode(output, half(50.0), isUnwanted) : std::nullopt;
        if (!made) {
            result.wasGivenUp = true;
            return result;
        }
        result.frames = made->frames;
        const double wanted =
            static_cast<double>(*frames) * made->sampleRateHz / static_cast<double>(format.sampleRateHz);
        const double apart = std::abs(static_cast<double>(made->frames) - wanted);
        if (*frames == 0)
            result.difference = u"the source holds no sound"_s;
        else if (made->frames == 0)
            result.difference = u"the output holds no sound"_s;
        else if (made->channels != format.channels)
            result.difference = u"the output has %1 channels instead of %2"_s.arg(made->channels).arg(format.channels);
        else if (apart > static_cast<double>(kMostFramesApart * made->encoderFrame))
            result.difference = u"the output lasts %1 instead of %2"_s.arg(timeOfFrame(made->frames, made->sampleRateHz),
                                                                           timeOfFrame(*frames, format.sampleRateHz));
        result.isProven = result.difference.isEmpty();
    } catch (const NurvFailure &failure) {
        result.difference = u"%1 cannot be decoded to its end: %2"_s.arg(side, failure.reason());
    }
    return result;
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/SoundLength.h"

#include "audio/AudioFileHeader.h"
#include "base/NurvFailure.h"
#include "samples/ByteSource.h"
#include "samples/CodecHeaders.h"
#include "samples/FlacLastFrame.h"
#include "samples/PcmHeader.h"
#include "samples/ShortenSampleStream.h"
#include "samples/WavpackBlocks.h"
#include "samples/XingHeader.h"

#include <algorithm>
#include <cmath>

namespace nurv {

namespace {

SoundLength lengthOf(const SampleFormat &format, std::optional<std::int64_t> declaredFrames)
{
    return {.declaredFrames = declaredFrames,
            .heldFrames = std::nullopt,
            .roughFrames = std::nullopt,
            .isBacked = true,
            .sampleRateHz = format.sampleRateHz,
            .channels = format.channels,
            .bitsPerSample = format.bitsPerSample};
}

SoundLength pcmLength(const PcmHeader &header)
{
    SoundLength length = lengthOf(header.format, header.declaredFrames);
    length.heldFrames = header.heldFrames();
    // Of a header that contradicts the file, every reader believes another part.
    const bool isOneLength = !length.declaredFrames || length.declaredFrames == length.heldFrames;
    length.isBacked = isOneLength && !header.holdsFurtherSound;
    return length;
}

/// By way of the demuxers: MPEG-4, and what is rare here.
std::optional<SoundLength> demuxedLength(const RegularFile &file)
{
    AudioFileStatus status = AudioFileStatus::Ok;
    const auto header = AudioFileHeader::read(QString::fromStdString(file.lastingName()), status, nullptr,
                                              AudioFileHeader::Edits::AppliedByDemuxer, AudioFileHeader::Kinds::All);
    if (!header)
        return std::nullopt;
    const AudioStreamDescription format = header->format();
    const std::optional<std::int64_t> beforeCut = header->framesBeforeCut();
    return SoundLength{.declaredFrames = header->isLengthExact() ? std::optional(header->lengthFrames()) : std::nullopt,
                       .heldFrames = beforeCut ? beforeCut : header->tableFrames(),
                       .roughFrames = header->lengthFrames() > 0 ? std::optional(header->lengthFrames()) : std::nullopt,
                       .isBacked = true,
                       .sampleRateHz = static_cast<int>(format.sampleRate),
                       .channels = static_cast<int>(format.channelsPerFrame),
                       .bitsPerSample = static_cast<int>(format.bitsPerChannel)};
}

std::optional<SoundLength> wavpackLength(const RegularFile &file, const WavpackBlocks::Block &first)
{
    // Rate and channels stand in metadata of the block for all but the simplest files.
    std::optional<SoundLength> length = demuxedLength(file);
    if (!length)
        return std::nullopt;
    length->declaredFrames = first.totalFrames;
    length->bitsPerSample = first.bitsPerSample();
    return length;
}

/// Nothing where it is too long to be read for this, or makes no sense.
std::optional<PcmHeader> storedShortenHeader(const RegularFile &file)
{
    try {
        return ShortenSampleStream::storedHeader(file);
    } catch (const NurvFailure &) {
        return std::nullopt;
    }
}

std::optional<SoundLength> readLength(const RegularFile &file)
{
    const std::int64_t start = offsetBehindTags(file);
    if (PcmHeader::isAt(file, start))
        return pcmLength(PcmHeader::read(file, start));
    if (ShortenSampleStream::isAt(file, start)) {
        const auto header = storedShortenHeader(file);
        if (!header)
            return SoundLength{.declaredFrames = {}, .heldFrames = {}, .roughFrames = {}, .isBacked = false};
        // The WAV header in a Shorten file is a copy of what a recorder wrote, and nothing else tells.
        SoundLength length = lengthOf(header->format, header->declaredFrames);
        length.isBacked = false;
        return length;
    }
    if (const auto header = CodecHeader::read(file, start)) {
        SoundLength length = lengthOf(header->format, header->declaredFrames);
        if (header->kind == CodecHeader::Kind::Flac)
            length.heldFrames = framesByLastFlacFrame(file, start);
        // A checksum of TTA goes over the bytes of a frame, whatever of it is decoded. That of a FLAC file goes over
        // all samples, but is not looked at behind the total.
        const bool hasMd5 = std::any_of(header->md5.begin(), header->md5.end(), [](auto byte) { return byte != 0; });
        length.isBacked = header->kind == CodecHeader::Kind::MonkeysAudio || (hasMd5 && length.heldFrames);
        return length;
    }
    if (const auto first = WavpackBlocks::readBlock(file, start))
        return wavpackLength(file, *first);
    std::optional<SoundLength> length = demuxedLength(file);
    // The demuxer believes what the header counts, whatever of it is there.
    if (const auto share = shareOfCountedMpegAudio(file, start); length && length->roughFrames && share)
        length->roughFrames = std::llround(static_cast<double>(*length->roughFrames) * *share);
    return length;
}

} // namespace

std::optional<SoundLength> soundLength(const QString &path)
{
    try {
        return readLength(RegularFile(path));
    } catch (const NurvFailure &) {
        return std::nullopt;
    }
}

} // namespace nurv

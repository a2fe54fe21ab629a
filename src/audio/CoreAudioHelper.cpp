// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/CoreAudioHelper.h"

#include "audio/AudioFileHeader.h"

namespace nurv {

namespace {

std::optional<AudioStreamDescription> formatOf(const QString &path)
{
    AudioFileStatus status = AudioFileStatus::Ok;
    const auto header = AudioFileHeader::read(path, status);
    return header ? std::optional(header->format()) : std::nullopt;
}

bool isLinearPcm(const QString &path, std::uint32_t flags, std::uint32_t otherFlags)
{
    const auto format = formatOf(path);
    return format && format->formatId == kFormatLinearPCM
           && (format->formatFlags == flags || format->formatFlags == otherFlags);
}

} // namespace

CoreAudioHelper::SoundKind CoreAudioHelper::soundKind(const QString &path)
{
    AudioFileStatus status = AudioFileStatus::Ok;
    const auto header = AudioFileHeader::read(path, status);
    if (!header)
        return status == AudioFileStatus::PermissionDenied ? SoundKind::NotReadable : SoundKind::None;
    const AudioStreamDescription format = header->format();
    if (format.formatId == kFormatAppleLossless)
        return SoundKind::AppleLossless;
    const bool isPlain = format.formatId == kFormatLinearPCM
                         && (format.formatFlags == kBigEndianIntegers || format.formatFlags == kLittleEndianIntegers);
    return isPlain ? SoundKind::PlainIntegers : SoundKind::Other;
}

bool CoreAudioHelper::isAppleLossless(const QString &path)
{
    const auto format = formatOf(path);
    return format && format->formatId == kFormatAppleLossless;
}

bool CoreAudioHelper::isAiffOrWav(const QString &path)
{
    return isLinearPcm(path, kBigEndianIntegers, kLittleEndianIntegers);
}

bool CoreAudioHelper::isWav(const QString &path)
{
    return isLinearPcm(path, kLittleEndianIntegers, kLittleEndianIntegers);
}

bool CoreAudioHelper::isAiff(const QString &path)
{
    return isLinearPcm(path, kBigEndianIntegers, kBigEndianIntegers);
}

std::optional<AudioFormatObject> CoreAudioHelper::getFormatInfo(const QString &path)
{
    AudioFileStatus status = AudioFileStatus::Ok;
    const auto header = AudioFileHeader::read(path, status);
    if (!header)
        return std::nullopt;
    const AudioStreamDescription format = header->format();
    return AudioFormatObject{
        .sampleRate = static_cast<int>(format.sampleRate),
        .bitsPerChannel = static_cast<int>(format.bitsPerChannel),
        .channels = static_cast<int>(format.channelsPerFrame),
        .totalSamples = header->lengthFrames(),
    };
}

} // namespace nurv

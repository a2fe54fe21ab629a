// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/AudioFileWriter.h"

#include "audio/AudioFileReader.h"
#include "audio/AudioOutputFile.h"
#include "audio/Mpeg4FileWriter.h"
#include "audio/PcmFileWriter.h"

#include <utility>

namespace nurv {

namespace {

AudioFileStatus check(FourCharCode fileType, const AudioStreamDescription &format, std::int64_t expectedFrames)
{
    switch (fileType) {
    case kFileWave:
    case kFileAIFF: return PcmFileWriter::check(fileType, format, expectedFrames);
    case kFileM4A: return AudioEncoder::check(format);
    default: return AudioFileStatus::UnsupportedFileType;
    }
}

} // namespace

AudioFileWriter::AudioFileWriter() = default;
AudioFileWriter::~AudioFileWriter() = default;

AudioFileStatus AudioFileWriter::create(const QString &path, FourCharCode fileType,
                                        const AudioStreamDescription &format, const AudioFileReader &source)
{
    std::int64_t frames = 0;
    if (source.isLengthExact() && source.lengthFrames(frames) != AudioFileStatus::Ok)
        return AudioFileStatus::NotOpen;
    if (const AudioFileStatus status = check(fileType, format, frames); status != AudioFileStatus::Ok)
        return status;
    auto file = std::make_unique<AudioOutputFile>();
    const auto isSource = [&source](const struct stat &facts) { return source.isSameFile(facts); };
    if (const AudioFileStatus status = file->create(path, isSource); status != AudioFileStatus::Ok)
        return status;
    m_file = std::move(file);
    if (fileType == kFileM4A)
        m_container = std::make_unique<Mpeg4FileWriter>(*m_file, format, frames);
    else
        m_container = std::make_unique<PcmFileWriter>(*m_file, fileType, format, frames);
    return m_container->begin();
}

AudioFileStatus AudioFileWriter::setClientFormat(const AudioStreamDescription &format)
{
    return m_container ? m_container->setClientFormat(format) : AudioFileStatus::NotOpen;
}

AudioEncoder *AudioFileWriter::converter()
{
    return m_container ? m_container->converter() : nullptr;
}

AudioFileStatus AudioFileWriter::setConverterConfig(const AudioEncoderSettings &settings)
{
    AudioEncoder *const encoder = converter();
    return encoder ? encoder->setSettings(settings) : AudioFileStatus::NotOpen;
}

AudioFileStatus AudioFileWriter::write(const std::uint8_t *buffer, std::uint32_t frames)
{
    return m_container ? m_container->write(buffer, frames) : AudioFileStatus::NotOpen;
}

AudioFileStatus AudioFileWriter::close()
{
    if (!m_container)
        return AudioFileStatus::NotOpen;
    AudioFileStatus status = m_container->finish();
    m_container.reset();
    if (!m_file->close() && status == AudioFileStatus::Ok)
        status = AudioFileStatus::Unspecified;
    m_file.reset();
    return status;
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeCoreAudioSync.h"

#include "audio/AudioFileReader.h"
#include "audio/AudioFileWriter.h"
#include "base/Log.h"
#include "base/NurvFailure.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskResults.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::uint32_t kBufferBytes = 32768;
/// Left, right, centre, low frequencies, left and right surround.
constexpr std::uint32_t kSurroundBitmap = 0x3F;
constexpr std::uint32_t kSurroundChannels = 6;

QString formatName(FourCharCode formatType, FourCharCode fileType)
{
    switch (formatType) {
    case kFormatAAC: return u"AAC"_s;
    case kFormatAppleLossless: return u"Apple Lossless"_s;
    case kFormatLinearPCM: return fileType == kFileAIFF ? u"AIFF"_s : u"WAV"_s;
    default: return {};
    }
}

/// Throws the reason with the status in the place of "%1", unless the status is good.
void check(AudioFileStatus status, const QString &reason)
{
    if (status != AudioFileStatus::Ok)
        throw NurvFailure(QString(reason).replace(u"%1"_s, statusText(status)));
}

/// The same, telling the log something else.
void check(AudioFileStatus status, const QString &logText, const QString &reason)
{
    if (status != AudioFileStatus::Ok)
        qCWarning(convertLog).noquote() << logText;
    check(status, reason);
}

constexpr std::uint32_t kRoundedBits = 24;

std::uint32_t workingBits(const AudioStreamDescription &source)
{
    if (source.formatId != kFormatAppleLossless)
        return source.bitsPerChannel == 0 ? 16 : source.bitsPerChannel;
    switch (source.formatFlags) {
    case kAppleLossless16Bit: return 16;
    case kAppleLossless20Bit: return 20;
    case kAppleLossless24Bit: return 24;
    case kAppleLossless32Bit: return 32;
    default: return source.bitsPerChannel;
    }
}

AudioStreamDescription workingFormat(const AudioStreamDescription &source)
{
    AudioStreamDescription working;
    working.sampleRate = source.sampleRate;
    working.formatId = kFormatLinearPCM;
    working.formatFlags = kBigEndianIntegers;
    // In whole bytes: 20 bits come as the upper ones of 24.
    working.bitsPerChannel = (workingBits(source) + 7) / 8 * 8;
    working.channelsPerFrame = source.channelsPerFrame;
    working.bytesPerFrame = working.bitsPerChannel / 8 * working.channelsPerFrame;
    working.bytesPerPacket = working.bytesPerFrame;
    working.framesPerPacket = 1;
    return working;
}

double aacRate(double sourceRate)
{
    if (sourceRate == 96000.0 || sourceRate == 192000.0)
        return 48000.0;
    if (sourceRate == 88200.0 || sourceRate == 176400.0)
        return 44100.0;
    return sourceRate;
}

/// The sample rates of MPEG-4 AAC (ISO/IEC 14496-3, table 1.18).
bool takesAacRate(double rate)
{
    constexpr std::array kRates{96000, 88200, 64000, 48000, 44100, 32000, 24000, 22050, 16000, 12000, 11025, 8000, 7350};
    return std::find(kRates.begin(), kRates.end(), static_cast<int>(std::lround(rate))) != kRates.end();
}

/// What a source has that an output of the kind cannot hold, in a user's words; empty when there is nothing.
QString obstacleIn(const AudioStreamDescription &source, const AudioStreamDescription &working, FourCharCode formatType,
                   const QString &formatName)
{
    constexpr std::uint32_t kMostChannels = 8;
    if (formatType == kFormatAAC && source.channelsPerFrame <= kMostChannels)
        return takesAacRate(aacRate(source.sampleRate))
                   ? QString()
                   : u"AAC has no sample rate of %1 Hz"_s.arg(std::lround(source.sampleRate));
    if (source.channelsPerFrame > kMostChannels)
        return u"it has %1 channels, and %2 is written with up to %3"_s.arg(source.channelsPerFrame)
            .arg(formatName)
            .arg(kMostChannels);
    if (source.formatId == kFormatLinearPCM && (source.formatFlags & kFlagFloat) != 0)
        return u"its samples are floating-point numbers, which %1 cannot hold exactly"_s.arg(formatName);
    const std::uint32_t bits = working.bitsPerChannel;
    if (formatType == kFormatAppleLossless && bits != 16 && bits != 24)
        return u"its samples have %1 bits, and %2 is written with 16 or 24"_s.arg(bits).arg(formatName);
    return {};
}

AudioEncoder &converterOf(AudioFileWriter &output)
{
    AudioEncoder *const converter = output.converter();
    check(converter ? AudioFileStatus::Ok : AudioFileStatus::NotOpen,
          u"ExtAudioFileGetProperty kExtAudioFileProperty_AudioConverter failure"_s,
          u"kExtAudioFileProperty_AudioConverter failed %1"_s);
    return *converter;
}

} // namespace

EncodeCoreAudioSync::EncodeCoreAudioSync(NURVTask &task, const QString &fileName, const QString &outputFile,
                                         FourCharCode formatType, FourCharCode fileType)
    : m_task(task), m_fileName(fileName), m_outFile(outputFile), m_formatType(formatType), m_fileType(fileType),
      m_formatStringValue(formatName(formatType, fileType))
{
}

void EncodeCoreAudioSync::doEncodeCall()
{
    try {
        AudioFileReader source;
        AudioFileWriter output;
        convert(source, output);
    } catch (const NurvFailure &failure) {
        qCWarning(convertLog).noquote() << "Exception" << failure.reason();
        m_failureText =
            u"Error encoding "_s + m_fileName + u" to "_s + m_formatStringValue + u":\n"_s + failure.reason();
        m_task.setError(true);
        if (const auto results = m_task.results())
            results->setResults(m_failureText);
    }
}

void EncodeCoreAudioSync::convert(AudioFileReader &source, AudioFileWriter &output)
{
    check(source.open(m_fileName), u"ExtAudioFileOpenURL failed %1"_s);
    m_leavesSoundBehind = source.holdsMoreSound();
    AudioStreamDescription format;
    check(source.fileDataFormat(format),
          u"input ExtAudioFileGetProperty kExtAudioFileProperty_FileDataFormat failed %1"_s);
    std::int64_t totalFrames = 0;
    check(source.lengthFrames(totalFrames),
          u"input ExtAudioFileGetProperty kExtAudioFileProperty_FileLengthFrames failed %1"_s);

    AudioStreamDescription integers = format;
    if (isRounded(format)) {
        integers.formatFlags &= ~kFlagFloat;
        integers.bitsPerChannel = kRoundedBits;
    }
    const AudioStreamDescription working = workingFormat(integers);
    m_obstacle = obstacleIn(integers, working, m_formatType, m_formatStringValue);
    check(output.create(m_outFile, m_fileType, outputFormat(format, working), source),
          u"ExtAudioFileCreateWithURL failed %1"_s);
    const auto precision =
        m_formatType == kFormatAAC || m_mayRound ? AudioFileReader::Precision::Rounded : AudioFileReader::Precision::Exact;
    check(source.setClientFormat(working, precision),
          u"ExtAudioFileSetProperty inFile, kExtAudioFileProperty_ClientDataFormat failed"_s);
    const AudioFileStatus status = output.setClientFormat(working);
    check(status, u"Error "_s + QString::number(static_cast<std::int32_t>(status)),
          u"ExtAudioFileSetProperty outFile, kExtAudioFileProperty_ClientDataFormat failed"_s);
    if (m_formatType == kFormatAAC) {
        setAACSettings(output);
        if (working.channelsPerFrame == kSurroundChannels)
            setAACSurroundChannelFormatSettings(output);
    }
    m_obstacle.clear();
    copy(source, output, working, totalFrames);
    m_leavesSoundBehind = source.holdsMoreSound();
    // What the system reports only at the end is a failed write all the same. Nobody
    // asks whether a cancelled conversion is complete.
    if (const AudioFileStatus closed = output.close(); !m_task.cancelled())
        check(closed, u"ExtAudioFileWrite failed"_s);
}

bool EncodeCoreAudioSync::isRounded(const AudioStreamDescription &source) const
{
    return m_mayRound && source.formatId == kFormatLinearPCM
           && ((source.formatFlags & kFlagFloat) != 0 || source.bitsPerChannel > kRoundedBits);
}

AudioStreamDescription EncodeCoreAudioSync::outputFormat(const AudioStreamDescription &source,
                                                         const AudioStreamDescription &working) const
{
    AudioStreamDescription output;
    output.sampleRate = source.sampleRate;
    output.formatId = m_formatType;
    output.channelsPerFrame = source.channelsPerFrame;
    switch (m_formatType) {
    case kFormatAAC: output.sampleRate = aacRate(source.sampleRate); break;
    case kFormatAppleLossless:
        output.formatFlags = appleLosslessFlags(working.bitsPerChannel);
        output.bitsPerChannel = source.bitsPerChannel;
        break;
    case kFormatLinearPCM:
        output = working;
        output.formatFlags = m_fileType == kFileWave ? kLittleEndianIntegers : kBigEndianIntegers;
        break;
    default: break;
    }
    return output;
}

void EncodeCoreAudioSync::copy(AudioFileReader &source, AudioFileWriter &output, const AudioStreamDescription &working,
                               std::int64_t totalFrames)
{
    std::vector<std::uint8_t> buffer(kBufferBytes);
    const std::uint32_t framesPerPass = kBufferBytes / working.bytesPerFrame;
    double lastShown = 0.0;
    for (std::int64_t pass = 1; !m_task.cancelled(); ++pass) {
        std::uint32_t frames = framesPerPass;
        check(source.read(buffer.data(), frames), u"ExtAudioFileRead failed"_s);
        if (frames == 0)
            return;
        check(output.write(buffer.data(), frames), u"ExtAudioFileWrite failed"_s);
        // Files that do not tell their length show none.
        if (totalFrames == 0)
            continue;
        const double percent = static_cast<double>(pass * frames) * 100.0 / static_cast<double>(totalFrames);
        if (percent > lastShown + 1.0) {
            showProgress(percent);
            lastShown = percent;
        }
    }
}

void EncodeCoreAudioSync::showProgress(double percent)
{
    m_task.setTopTextFieldString(u"Encoding to "_s + m_formatStringValue + u": "_s + QString::number(percent, 'f', 6)
                                 + u'%');
    m_task.setProgressIndicatorValue(percent);
    m_task.updateStatus();
}

void EncodeCoreAudioSync::setAACSettings(AudioFileWriter &output)
{
    AudioEncoder &converter = converterOf(output);
    if (m_bitrate != 0) {
        if (const std::uint32_t most = converter.mostBitRate(); m_bitrate > most)
            m_obstacle = u"AAC takes up to %1 kbit/s at its sample rate with its channels, not %2"_s.arg(most / 1000).arg(m_bitrate / 1000);
        check(converter.setBitRate(m_bitrate), u"ExtAudioFileGetProperty kAudioConverterEncodeBitRate failure"_s,
              u"kAudioConverterEncodeBitRate failed %1"_s);
    }
    if (m_quality != 0) {
        check(converter.setQuality(m_quality), u"AudioConverterSetProperty vbrq failure"_s,
              u"AudioConverterSetProperty vbrqfailed"_s);
    }
    check(converter.setBitRateMode(m_mode), u"AudioConverterSetProperty kAudioCodecBitRateFormat failure"_s,
          u"kAudioCodecBitRateFormat failed"_s);
    AudioEncoderSettings settings;
    check(converter.getSettings(settings), u"AudioConverterGetProperty kAudioConverterPropertySettings failure"_s,
          u"kAudioConverterPropertySettings failed"_s);
    check(output.setConverterConfig(settings),
          u"ExtAudioFileSetProperty kExtAudioFileProperty_ConverterConfig failure"_s,
          u"kExtAudioFileProperty_ConverterConfig failed"_s);
}

void EncodeCoreAudioSync::setAACSurroundChannelFormatSettings(AudioFileWriter &output) const
{
    AudioEncoder &converter = converterOf(output);
    if (converter.setInputChannelLayout(kSurroundBitmap) != AudioFileStatus::Ok)
        qCWarning(convertLog) << "AudioConverterSetProperty kAudioConverterInputChannelLayout failure";
    if (converter.setOutputChannelLayout(kSurroundBitmap) != AudioFileStatus::Ok)
        qCWarning(convertLog) << "AudioConverterSetProperty kAudioConverterOutputChannelLayout failure";
}

} // namespace nurv

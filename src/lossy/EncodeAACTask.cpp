// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lossy/EncodeAACTask.h"

#include "app/PathNames.h"
#include "programs/AtomicParsley.h"
#include "programs/ProgramOutput.h"
#include "tags/AACTagsHelper.h"
#include "tags/TagLibTagsHelper.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::uint32_t kBitsPerKilobit = 1000;
constexpr int kBestQuality = 127;
/// More than any number of channels at any rate takes.
constexpr int kMostKilobits = 100'000;

/// The encoder's modes, by the types that are told in kbit/s.
constexpr std::uint32_t kConstant = 0;
constexpr std::uint32_t kAverage = 1;
constexpr std::uint32_t kConstrained = 2;
constexpr std::uint32_t kVariable = 3;

} // namespace

EncodeAACTask::EncodeAACTask(NURVTaskQueue *queue, const QString &fileName, const QString &type,
                             const QString &outputPath, int level)
    : LossyEncodeTask(queue, fileName, outputPath, u"m4a"_s), m_type(type), m_level(level)
{
}

QString EncodeAACTask::openingStatus() const
{
    return u"Encoding to AAC"_s;
}

std::optional<ProgramStage> EncodeAACTask::decoding(const QString &made) const
{
    std::optional<ProgramStage> stage = decodingToWav(made);
    if (stage && formatWord(fileName()) == u"FLAC")
        stage->parse = programOutput::inSteps(stage->parse);
    return stage;
}

NeededPrograms EncodeAACTask::tagPrograms() const
{
    return {{atomicParsley::program().name}, {}};
}

AudioEncoderSettings EncodeAACTask::settings() const
{
    const auto level = static_cast<std::uint32_t>(m_level);
    if (m_type == u"CBR")
        return {.bitRate = level * kBitsPerKilobit, .bitRateMode = kConstant};
    if (m_type == u"ABR")
        return {.bitRate = level * kBitsPerKilobit, .bitRateMode = kAverage};
    if (m_type == u"VBR Constrained")
        return {.bitRate = level * kBitsPerKilobit, .bitRateMode = kConstrained};
    if (m_type == u"VBR")
        return {.quality = level, .bitRateMode = kVariable};
    return {};
}

std::optional<QString> EncodeAACTask::encoderSettingsForTag() const
{
    if (m_type == u"CBR" || m_type == u"ABR" || m_type == u"VBR Constrained")
        return u"%1 %2kbps"_s.arg(m_type).arg(m_level);
    if (m_type == u"VBR")
        return u"True VBR Quality %1"_s.arg(m_level);
    return std::nullopt;
}

/// What is wrong with the level for the type; nothing: it is one that it can have.
std::optional<QString> EncodeAACTask::faultOfLevel() const
{
    if (m_type == u"VBR" && (m_level < 0 || m_level > kBestQuality))
        return u"AAC has no quality %1"_s.arg(m_level);
    if (settings().bitRateMode != kVariable && encoderSettingsForTag() && (m_level < 1 || m_level > kMostKilobits))
        return u"AAC has no rate of %1 kbit/s"_s.arg(m_level);
    return std::nullopt;
}

void EncodeAACTask::doEncodeCall()
{
    if (const std::optional<QString> fault = faultOfLevel()) {
        noteProblem(*fault);
        failWith(problemLine(*fault));
        return;
    }
    if (needsDecoder())
        encodeDecoded([this](const QString &wav) { encode(wav); });
    else
        encode(fileName());
    if (!error())
        finishOutput();
}

void EncodeAACTask::encode(const QString &input)
{
    showStatus(openingStatus());
    convertToOutput(input, kFormatAAC, kFileM4A, settings());
}

void EncodeAACTask::finishOutput()
{
    copyTags([this] {
        if (formatWord(fileName()) == u"FLAC")
            handleFlacTags();
        else
            setEncoderTag();
    });
    if (!error() && !cancelled())
        optimizeFile();
}

void EncodeAACTask::handleFlacTags()
{
    showStatus(u"Copying FLAC Tags"_s);
    TagsObject tags = TagLibTagsHelper::tagsForFlacFile(fileName());
    if (const auto text = encoderSettingsForTag())
        tags.setEncoderSettings(*text);
    writeRecord(tags);
}

void EncodeAACTask::setEncoderTag()
{
    const auto text = encoderSettingsForTag();
    if (!text)
        return;
    TagsObject tags;
    tags.setEncoderSettings(*text);
    writeRecord(tags);
}

void EncodeAACTask::writeRecord(const TagsObject &tags)
{
    const std::optional<QString> unrendered = AACTagsHelper::writeTagsForFile(outputFile(), tags, false, true);
    noteLostPicture(unrendered ? unrendered : tags.albumArtFault());
}

void EncodeAACTask::optimizeFile()
{
    showStatus(u"Making Gapless"_s);
    AACTagsHelper::makeGapless(outputFile(), [this] { return cancelled(); });
}

} // namespace nurv

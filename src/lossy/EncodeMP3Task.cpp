// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lossy/EncodeMP3Task.h"

#include "app/PathNames.h"
#include "base/Log.h"
#include "files/FileStatus.h"
#include "originals/OutputClaim.h"
#include "programs/Shntool.h"
#include "tags/AACTagsHelper.h"
#include "tags/TagLibTagsHelper.h"

#include <QFile>
#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Whether the file begins as its extension does not say: shntool would leave that extension in the name of what it
/// makes.
bool isNamedAsAnotherFormat(const QString &path)
{
    static const QHash<QString, QList<QByteArray>> kBeginnings{
        {u"wav"_s, {"RIFF", "RF64"}}, {u"aiff"_s, {"FORM"}},       {u"shn"_s, {"ajkg"}}, {u"flac"_s, {"fLaC", "ID3"}},
        {u"ape"_s, {"MAC ", "ID3"}},  {u"tta"_s, {"TTA1", "ID3"}}, {u"wv"_s, {"wvpk"}}};
    const QList<QByteArray> beginnings = kBeginnings.value(pathExtension(path));
    QFile file(path);
    if (beginnings.isEmpty() || !file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray beginning = file.read(4);
    return std::none_of(beginnings.begin(), beginnings.end(),
                        [&](const QByteArray &known) { return beginning.startsWith(known); });
}

} // namespace

EncodeMP3Task::EncodeMP3Task(NURVTaskQueue *queue, const QString &fileName, const QString &type,
                             const QString &outputPath, int level)
    : LossyEncodeTask(queue, fileName, outputPath, u"mp3"_s), m_encoding{type, level}
{
}

QString EncodeMP3Task::openingStatus() const
{
    return u"Encoding to LAME MP3"_s;
}

std::optional<ProgramStage> EncodeMP3Task::encoding(const QString &input) const
{
    return roadFrom(input).stage;
}

EncodeMP3Task::Road EncodeMP3Task::roadFrom(const QString &input) const
{
    const QString format = formatWord(input);
    if (input == fileName() && format == u"WAV")
        return {lame::encoding(m_encoding, input, outputFile()), outputFile()};
    if ((format == u"FLAC" && pathExtension(input) != u"flac") || isNamedAsAnotherFormat(input))
        return roadWithName(input);
    return {lame::encodingByShntool(m_encoding, input, outputPath()),
            shntool::replacesExtension(pathExtension(input))
                ? namedAfter(input)
                : joinPath(outputPath(), lastPathComponent(input) + u".mp3"_s)};
}

EncodeMP3Task::Road EncodeMP3Task::roadWithName(const QString &input) const
{
    return {lame::encodingByShntoolTo(m_encoding, input, outputFile()), outputFile()};
}

void EncodeMP3Task::encode(const QString &input)
{
    Road road = roadFrom(input);
    OutputClaim claim;
    if (road.made != outputFile()) {
        // In this order: what another job made and let go of before is seen then.
        if (isOutputOfBatch(road.made) || claim.take(road.made, fileName(), nullptr) || isThere(road.made))
            road = roadWithName(input);
    }
    if (road.made != outputFile()) {
        encodeUnderName(road.stage, road.made);
        return;
    }
    qCDebug(waitLog).noquote() << "before wait until exit" << title();
    runForOutput(road.stage);
    qCDebug(waitLog).noquote() << "after wait until exit" << title();
}

QString EncodeMP3Task::intermediateFile() const
{
    const QString made = roadFrom(fileName()).made;
    return made == outputFile() || formatWord(fileName()) == u"M4A" ? QString() : made;
}

void EncodeMP3Task::doEncodeCall()
{
    const QString format = formatWord(fileName());
    // lame brings floating-point samples to full level, each file by a factor of its own.
    if (format != u"M4A" && !(format == u"WAV" && hasFloatingPoint())) {
        encode(fileName());
        return;
    }
    encodeDecoded([this](const QString &wav) {
        showStatus(openingStatus());
        encode(wav);
    });
}

void EncodeMP3Task::cleanup()
{
    const QString format = formatWord(fileName());
    if (format == u"FLAC" || format == u"M4A")
        copyTags([this] { writeTags(); }, QString());
    LossyEncodeTask::cleanup();
}

void EncodeMP3Task::writeTags()
{
    const bool isFlac = formatWord(fileName()) == u"FLAC";
    const TagsObject tags =
        isFlac ? TagLibTagsHelper::tagsForFlacFile(fileName()) : AACTagsHelper::tagsForFile(fileName());
    showStatus(isFlac ? u"Copying FLAC Tags"_s : u"Copying M4A Tags"_s);
    TagLibTagsHelper::writeTagsForMP3File(outputFile(), tags, false);
    noteLostPicture(tags.albumArtFault());
}

} // namespace nurv

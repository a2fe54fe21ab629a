// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagTrial.h"

#include "base/NurvFailure.h"
#include "tags/AACTagsHelper.h"
#include "tags/FlacTagHelper.h"
#include "tags/HandedFile.h"
#include "tags/TagLibTagsHelper.h"

#include <QFile>

#include <mutex>

#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// As FlacTagHelper would put it in, which writes it once the file is saved.
void replaceDate(StoredTags &tags, const TagsObject::Text &date)
{
    if (!date || date->isEmpty())
        return;
    tags.removeIf([](const StoredTag &tag) {
        return tag.holder == StoredTag::Holder::Vorbis
               && tag.name.compare(FlacTagHelper::kDate, Qt::CaseInsensitive) == 0;
    });
    tags.append({.holder = StoredTag::Holder::Vorbis, .name = FlacTagHelper::kDate.toString(), .text = date});
}

TagTrial tryHanded(const TagsProcess::Writing &writing, const QString &path, const TagsObject &record)
{
    TagLibTagsHelper::checkPicture(writing.format, record);
    TagsObject tags = record;
    tags.setAlbumArt(nullptr);
    TagTrial trial{.before = storedTags::read(writing.format, path), .after = {}};
    const TagsProcess::Written written = writeTagsByFormat(writing, path, tags);
    trial.after = storedTags::read(writing.format, path);
    if (writing.format == TagFormat::Flac)
        replaceDate(trial.after, tags.dateText() && !tags.dateText()->isEmpty() ? tags.dateText() : written.date);
    return trial;
}

} // namespace

TagsProcess::Written writeTagsByFormat(const TagsProcess::Writing &writing, const QString &path, const TagsObject &tags)
{
    switch (writing.format) {
    case TagFormat::Mp3: TagLibTagsHelper::writeTagsForMP3File(path, tags, writing.writeEmptyTags); return {};
    case TagFormat::Aiff: TagLibTagsHelper::writeTagsForAIFFFile(path, tags); return {};
    case TagFormat::Flac:
        return {.date = TagLibTagsHelper::writeTagsButDate(path, tags, writing.writeEmptyTags),
                .leftOut = {},
                .disorder = {}};
    case TagFormat::Ape: TagLibTagsHelper::writeTagsForAPEFile(path, tags, writing.writeEmptyTags); return {};
    case TagFormat::Wavpack: TagLibTagsHelper::writeTagsForWavpackFile(path, tags, writing.writeEmptyTags); return {};
    case TagFormat::Mp4: {
        AACTagsHelper::Shortfall shortfall =
            AACTagsHelper::writeInAnyOrder(path, tags, writing.writeEmptyTags, writing.encoding);
        return {.date = {}, .leftOut = std::move(shortfall.picture), .disorder = std::move(shortfall.order)};
    }
    case TagFormat::Tta: break;
    }
    throw NurvFailure(u"its format is not written"_s);
}

TagTrial tryTags(TagFormat format, const QString &path, const TagsObject &tags, bool writeEmptyTags)
{
    const TagsProcess::Writing writing{.format = format, .writeEmptyTags = writeEmptyTags};
    if (std::optional<TagTrial> asked = TagsProcess::tryTags(writing, path, tags))
        return *std::move(asked);
    if (path == HandedFile::name())
        return tryHanded(writing, path, tags);
    // A process has one handed file at a time.
    static std::mutex oneAtATime;
    const std::lock_guard lock(oneAtATime);
    FileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.isOpen())
        throw NurvFailure(u"Unable to open the file for reading."_s);
    const HandedFile handed(std::move(file));
    return tryHanded(writing, HandedFile::name(), tags);
}

} // namespace nurv

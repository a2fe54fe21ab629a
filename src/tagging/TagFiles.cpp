// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagging/TagFiles.h"

#include "app/PathNames.h"
#include "base/NurvFailure.h"
#include "journal/OutputJournal.h"
#include "tags/AACTagsHelper.h"
#include "tags/TagLibTagsHelper.h"

#include <vector>

using namespace Qt::StringLiterals;

namespace nurv::tagFiles {

std::optional<TagFormat> formatOf(const QString &path)
{
    const QString word = formatWord(path);
    if (word == u"FLAC")
        return TagFormat::Flac;
    if (word == u"MP3")
        return TagFormat::Mp3;
    if (word == u"APE")
        return TagFormat::Ape;
    if (word == u"WV")
        return TagFormat::Wavpack;
    if (word == u"M4A")
        return TagFormat::Mp4;
    return std::nullopt;
}

std::optional<TagsObject> read(const QString &path)
{
    const std::optional<TagFormat> format = formatOf(path);
    if (!format)
        return std::nullopt;
    switch (*format) {
    case TagFormat::Flac: return TagLibTagsHelper::tagsForFlacFile(path);
    case TagFormat::Mp3: return TagLibTagsHelper::tagsForMP3File(path);
    case TagFormat::Ape: return TagLibTagsHelper::tagsForAPEFile(path);
    case TagFormat::Wavpack: return TagLibTagsHelper::tagsForWavpackFile(path);
    case TagFormat::Mp4: return AACTagsHelper::tagsForFile(path);
    case TagFormat::Aiff:
    case TagFormat::Tta: break;
    }
    return std::nullopt;
}

namespace {

/// The date goes in by a program whose status nobody looks at.
void expectDate(const QString &path, const TagsObject::Text &date)
{
    if (date && !date->isEmpty() && TagLibTagsHelper::tagsForFlacFile(path).dateText() != date)
        throw NurvFailure(u"The date could not be written; all other tags were."_s);
}

} // namespace

TagsObject::Text write(const QString &path, const TagsObject &tags, bool writeEmptyTags)
{
    const std::optional<TagFormat> format = formatOf(path);
    if (!format)
        return std::nullopt;
    switch (*format) {
    case TagFormat::Flac:
        TagLibTagsHelper::writeTagsForFLACFile(path, tags, writeEmptyTags);
        expectDate(path, tags.dateText());
        break;
    case TagFormat::Mp3: TagLibTagsHelper::writeTagsForMP3File(path, tags, writeEmptyTags); break;
    case TagFormat::Ape: TagLibTagsHelper::writeTagsForAPEFile(path, tags, writeEmptyTags); break;
    case TagFormat::Wavpack: TagLibTagsHelper::writeTagsForWavpackFile(path, tags, writeEmptyTags); break;
    case TagFormat::Mp4: return AACTagsHelper::writeTagsForFile(path, tags, writeEmptyTags, false);
    case TagFormat::Aiff:
    case TagFormat::Tta: break;
    }
    return std::nullopt;
}

std::shared_ptr<OutputJournal> beginJournal(const QStringList &paths)
{
    std::vector<OutputJournal::Planned> planned;
    for (const QString &path : paths)
        planned.push_back({path, path});
    std::shared_ptr<OutputJournal> journal = OutputJournal::begin(planned);
    OutputJournal::prepareForTemporaries();
    return journal;
}

} // namespace nurv::tagFiles

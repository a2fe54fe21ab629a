// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/TagsWriting.h"

#include "base/NurvFailure.h"
#include "cli/FilesRun.h"
#include "tagging/TagFields.h"
#include "tagging/TagFiles.h"
#include "tags/TagLibTagsHelper.h"

#include <QMap>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv::tagsWriting {

namespace {

bool isThere(const TagsObject::Text &text)
{
    return text && !text->isEmpty();
}

/// Number and total share one item of MP3 and M4A files: the one that is not given stays as it is.
void addOtherHalves(TagWriting &writing)
{
    const TagFormat format = *tagFiles::formatOf(writing.path);
    if (format != TagFormat::Mp3 && format != TagFormat::Mp4)
        return;
    TagsObject &record = writing.record;
    const bool hasHalfTrack = record.trackText().has_value() != record.trackTotalText().has_value();
    const bool hasHalfDisc = record.discText().has_value() != record.discTotalText().has_value();
    if (!hasHalfTrack && !hasHalfDisc)
        return;
    const TagsObject stored = tagFiles::read(writing.path).value_or(TagsObject());
    if (hasHalfTrack && !record.trackText())
        record.setTrackText(stored.trackText());
    else if (hasHalfTrack)
        record.setTrackTotalText(stored.trackTotalText());
    if (hasHalfDisc && !record.discText())
        record.setDiscText(stored.discText());
    else if (hasHalfDisc)
        record.setDiscTotalText(stored.discTotalText());
    if (isThere(record.trackTotalText()) && !isThere(record.trackText()))
        throw NurvFailure(u"it has no track number, and its kind takes a total only beside one"_s);
    if (isThere(record.discTotalText()) && !isThere(record.discText()))
        throw NurvFailure(u"it has no disc number, and its kind takes a total only beside one"_s);
}

/// Whether a file of the format gets any of the tags.
bool takesAnyOf(const TagsObject &record, TagFormat format)
{
    const auto &fields = tagFields();
    const bool takesText = std::any_of(fields.begin(), fields.end(), [&](const TagField &field) {
        return (record.*field.text)() && (field.isInApeTags || !hasApeTags(format));
    });
    return takesText || (record.albumArt() && !hasApeTags(format))
           || (!record.customTagsDictionary().isEmpty() && format == TagFormat::Flac);
}

} // namespace

bool hasApeTags(TagFormat format)
{
    return format == TagFormat::Ape || format == TagFormat::Wavpack;
}

std::optional<QString> faultOfCustomName(const QString &name)
{
    static const QMap<QString, QString> options{
        {u"TITLE"_s, u"title"_s},          {u"ARTIST"_s, u"artist"_s},
        {u"ALBUM"_s, u"album"_s},          {u"DATE"_s, u"date"_s},
        {u"GENRE"_s, u"genre"_s},          {u"COMPOSER"_s, u"composer"_s},
        {u"TRACKNUMBER"_s, u"track"_s},    {u"DISCNUMBER"_s, u"disc"_s},
        {u"COMMENT"_s, u"comment"_s},      {u"TRACKTOTAL"_s, u"track-total"_s},
        {u"DISCTOTAL"_s, u"disc-total"_s}, {u"DESCRIPTION"_s, u"comment"_s}};
    if (!TagLibTagsHelper::isFlacFieldName(name))
        return u"\"%1\": names of fields have characters of ASCII only, and no \"~\""_s.arg(name);
    if (const QString option = options.value(name.toUpper()); !option.isEmpty())
        return u"%1: there is --%2 for it"_s.arg(name, option);
    return std::nullopt;
}

QJsonObject writeOrTell(FilesRun &run, TagWriting writing, bool writeEmptyTags, bool isTrial)
{
    if (!writeEmptyTags && !takesAnyOf(writing.record, *tagFiles::formatOf(writing.path)))
        throw NurvFailure(u"files of its kind take none of these tags"_s);
    if (!writeEmptyTags)
        addOtherHalves(writing);
    if (isTrial)
        return run.tellChanges(writing.path, tagPreview::changesOf(writing, writeEmptyTags));
    if (const TagsObject::Text leftOut = tagFiles::write(writing.path, writing.record, writeEmptyTags))
        throw NurvFailure(u"the picture was not written, all other tags were: %1"_s.arg(*leftOut));
    return {{u"type"_s, u"written"_s}, {u"file"_s, run.nameOf(writing.path)}, {u"path"_s, writing.path}};
}

} // namespace nurv::tagsWriting

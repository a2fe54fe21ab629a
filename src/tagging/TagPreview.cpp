// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagging/TagPreview.h"

#include "app/PathNames.h"
#include "base/NurvFailure.h"
#include "base/ParallelLoop.h"
#include "tagging/TagFields.h"
#include "tagging/TagFiles.h"
#include "tags/PictureView.h"
#include "tags/TagTrial.h"
#include "text/PrintableText.h"

#include <QHash>
#include <QMap>

#include <algorithm>
#include <compare>
#include <exception>
#include <map>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv::tagPreview {

namespace {

constexpr qsizetype kLongestValue = 200;

/// What people call the tags of all kinds of files.
QString captionOf(const StoredTag &tag)
{
    static const QHash<QString, QString> captions{{u"TITLE"_s, u"Title"_s},
                                                  {u"TIT2"_s, u"Title"_s},
                                                  {u"\251NAM"_s, u"Title"_s},
                                                  {u"ARTIST"_s, u"Artist"_s},
                                                  {u"TPE1"_s, u"Artist"_s},
                                                  {u"\251ART"_s, u"Artist"_s},
                                                  {u"ALBUMARTIST"_s, u"Album artist"_s},
                                                  {u"TPE2"_s, u"Album artist"_s},
                                                  {u"AART"_s, u"Album artist"_s},
                                                  {u"ALBUM"_s, u"Album"_s},
                                                  {u"TALB"_s, u"Album"_s},
                                                  {u"\251ALB"_s, u"Album"_s},
                                                  {u"DATE"_s, u"Date"_s},
                                                  {u"TDRC"_s, u"Date"_s},
                                                  {u"\251DAY"_s, u"Date"_s},
                                                  {u"YEAR"_s, u"Date"_s},
                                                  {u"GENRE"_s, u"Genre"_s},
                                                  {u"TCON"_s, u"Genre"_s},
                                                  {u"\251GEN"_s, u"Genre"_s},
                                                  {u"GNRE"_s, u"Genre, as a number"_s},
                                                  {u"COMPOSER"_s, u"Composer"_s},
                                                  {u"TCOM"_s, u"Composer"_s},
                                                  {u"\251WRT"_s, u"Composer"_s},
                                                  {u"TRACKNUMBER"_s, u"Track"_s},
                                                  {u"TRCK"_s, u"Track"_s},
                                                  {u"TRKN"_s, u"Track"_s},
                                                  {u"TRACK"_s, u"Track"_s},
                                                  {u"TRACKTOTAL"_s, u"Track total"_s},
                                                  {u"DISCNUMBER"_s, u"Disc"_s},
                                                  {u"TPOS"_s, u"Disc"_s},
                                                  {u"DISK"_s, u"Disc"_s},
                                                  {u"DISCTOTAL"_s, u"Disc total"_s},
                                                  {u"COMMENT"_s, u"Comment"_s},
                                                  {u"COMM"_s, u"Comment"_s},
                                                  {u"\251CMT"_s, u"Comment"_s},
                                                  {u"DESCRIPTION"_s, u"Description"_s},
                                                  {u"ENCODER"_s, u"Encoder"_s},
                                                  {u"APIC"_s, u"Picture"_s},
                                                  {u"COVR"_s, u"Picture"_s},
                                                  {u"PICTURE"_s, u"Picture"_s},
                                                  {u"ID3V1"_s, u"Old tag for old players (ID3v1)"_s}};
    const QString caption = captions.value(tag.name.toUpper());
    return caption.isEmpty() ? tag.name : caption;
}

QString shown(const StoredTag &tag)
{
    if (tag.text) {
        QString text = printableLine(*tag.text);
        if (text.size() > kLongestValue)
            text = text.left(kLongestValue) + u'…';
        return u'“' + text + u'”';
    }
    return u"%1 bytes"_s.arg(tag.data.size());
}

/// Values by the kind and name of what holds them; equal ones stand together.
struct Values {
    QString caption;
    QStringList texts;
    QList<QByteArray> contents;
};

struct Key {
    StoredTag::Holder holder;
    QString name;

    auto operator<=>(const Key &other) const
    {
        if (holder != other.holder)
            return holder < other.holder ? std::strong_ordering::less : std::strong_ordering::greater;
        const int order = name.compare(other.name);
        return order < 0   ? std::strong_ordering::less
               : order > 0 ? std::strong_ordering::greater
                           : std::strong_ordering::equal;
    }
    bool operator==(const Key &other) const = default;
};

std::map<Key, Values> grouped(const StoredTags &tags)
{
    std::map<Key, Values> groups;
    for (const StoredTag &tag : tags) {
        Values &values = groups[{tag.holder, tag.name.toUpper()}];
        values.caption = captionOf(tag);
        values.texts.append(shown(tag));
        // How a frame is written down is no value.
        values.contents.append(tag.text ? tag.text->toUtf8() : tag.data);
    }
    return groups;
}

QString joinedTexts(const std::map<Key, Values> &groups, const Key &key)
{
    const auto found = groups.find(key);
    return found == groups.end() ? u"(none)"_s : found->second.texts.join(u", "_s);
}

bool hasApeTags(TagFormat format)
{
    return format == TagFormat::Ape || format == TagFormat::Wavpack;
}

/// What the record has and files of the format do not get from here, a line each.
QStringList refusalsOf(TagFormat format, const TagsObject &record, bool writeEmptyTags)
{
    QStringList lines;
    const auto refuse = [&lines](const QString &caption, const QString &reason) {
        lines.append(u"%1: %2"_s.arg(printableLine(caption), reason));
    };
    const auto isThere = [](const TagsObject::Text &text) { return text && !text->isEmpty(); };
    const QString notOfItsKind = u"files of this kind take none from here"_s;
    for (const TagField &field : tagFields()) {
        if (hasApeTags(format) && !field.isInApeTags && isThere((record.*field.text)()))
            refuse(QString::fromLatin1(field.caption), notOfItsKind);
    }
    // Number and total share one item of these files, which is written for the sake of the number.
    if ((format == TagFormat::Mp3 || format == TagFormat::Mp4) && !writeEmptyTags) {
        const QString alone = u"not written without a number"_s;
        if (isThere(record.trackTotalText()) && !isThere(record.trackText()))
            refuse(u"Track total"_s, alone);
        if (isThere(record.discTotalText()) && !isThere(record.discText()))
            refuse(u"Disc total"_s, alone);
    }
    const QMap<QString, QString> &customTags = record.customTagsDictionary();
    if (format != TagFormat::Flac) {
        for (auto tag = customTags.cbegin(); tag != customTags.cend(); ++tag) {
            if (!tag.value().isEmpty())
                refuse(tag.key(), notOfItsKind);
        }
    }
    return lines;
}

QString pictureLine(TagFormat format, const CoverPicture &picture, const StoredTags &before)
{
    const QString words = pictureWords(picture);
    const auto count = std::count_if(before.begin(), before.end(), [](const StoredTag &tag) {
        return tag.holder == StoredTag::Holder::FlacPicture || tag.name == u"APIC" || tag.name == u"covr";
    });
    if (hasApeTags(format))
        return u"Picture: files of this kind take none from here"_s;
    if (count == 0)
        return u"Picture: (none) → %1"_s.arg(words);
    if (format == TagFormat::Mp4)
        return u"Picture: the first of %1 → %2"_s.arg(count).arg(words);
    return u"Picture: %1 is added beside the %2 in the file"_s.arg(words).arg(count);
}

} // namespace

QStringList differences(const StoredTags &before, const StoredTags &after)
{
    const std::map<Key, Values> old = grouped(before);
    const std::map<Key, Values> fresh = grouped(after);
    QStringList lines;
    const auto addLine = [&](const Key &key, const QString &caption, const QString &newText) {
        const QString oldText = joinedTexts(old, key);
        const QString more = oldText == newText ? u", which differ further on"_s : QString();
        lines.append(u"%1: %2 → %3%4"_s.arg(printableLine(caption), oldText, newText, more));
    };
    for (const auto &[key, values] : fresh) {
        const auto former = old.find(key);
        if (former == old.end() || former->second.contents != values.contents)
            addLine(key, values.caption, values.texts.join(u", "_s));
    }
    for (const auto &[key, values] : old) {
        if (!fresh.contains(key))
            addLine(key, values.caption, u"(removed)"_s);
    }
    return lines;
}

QStringList changesOf(const TagWriting &writing, bool writeEmptyTags)
{
    const std::optional<TagFormat> format = tagFiles::formatOf(writing.path);
    if (!format)
        return {};
    const TagTrial trial = tryTags(*format, writing.path, writing.record, writeEmptyTags);
    QStringList lines = differences(trial.before, trial.after);
    lines.append(refusalsOf(*format, writing.record, writeEmptyTags));
    if (writing.record.albumArt())
        lines.append(pictureLine(*format, *writing.record.albumArt(), trial.after));
    return lines;
}

namespace {

QStringList changesOrReason(const TagWriting &writing, bool writeEmptyTags)
{
    try {
        return changesOf(writing, writeEmptyTags);
    } catch (const NurvFailure &failure) {
        return {u"cannot be written: %1"_s.arg(printableLine(failure.reason()))};
    } catch (const std::exception &failure) {
        return {u"cannot be written: %1"_s.arg(QString::fromUtf8(failure.what()))};
    }
}

} // namespace

QString textOf(const QList<TagWriting> &writings, bool writeEmptyTags, const QString &end,
               const std::function<bool()> &isUnwanted)
{
    std::vector<QStringList> changes(static_cast<std::size_t>(writings.size()));
    runInParallel(writings.size(), parallelThreads(), isUnwanted, [&](qsizetype i) {
        changes[static_cast<std::size_t>(i)] = changesOrReason(writings.at(i), writeEmptyTags);
    });
    QStringList lines;
    for (qsizetype i = 0; i < writings.size(); ++i) {
        lines.append(printableLine(lastPathComponent(writings.at(i).path)));
        const QStringList &ofFile = changes[static_cast<std::size_t>(i)];
        if (ofFile.isEmpty())
            lines.append(u"    nothing changes"_s);
        for (const QString &line : ofFile)
            lines.append(u"    "_s + line);
    }
    lines.append(QString());
    lines.append(u"All other tags and pictures of these files stay as they are, also those that no field shows."_s);
    if (!end.isEmpty())
        lines.append(end);
    return lines.join(u'\n') + u'\n';
}

} // namespace nurv::tagPreview

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/TagsJson.h"

#include "app/PathNames.h"
#include "base/NurvFailure.h"
#include "tagging/TagFields.h"
#include "tags/PictureView.h"
#include "tags/TagLibTagsHelper.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace nurv::tagsJson {

namespace {

QJsonObject objectOf(const StoredTag &tag)
{
    QJsonObject object{{u"holder"_s, storedTags::wordOf(tag.holder)}, {u"name"_s, tag.name}};
    if (tag.text)
        object.insert(u"text"_s, *tag.text);
    if (!tag.data.isEmpty())
        object.insert(u"data"_s, QString::fromLatin1(tag.data.toBase64()));
    return object;
}

/// The text of that name, empty without one. Throws NurvFailure for anything else than a text.
QString textIn(const QJsonObject &object, const QString &name)
{
    const QJsonValue value = object.value(name);
    if (!value.isString() && !value.isUndefined())
        throw NurvFailure(u"\"%1\" is no text"_s.arg(name));
    return value.toString();
}

QJsonObject objectIn(const QJsonObject &object, const QString &name)
{
    const QJsonValue value = object.value(name);
    if (!value.isObject() && !value.isUndefined())
        throw NurvFailure(u"\"%1\" is no object"_s.arg(name));
    return value.toObject();
}

StoredTag storedTagOf(const QJsonObject &object)
{
    const std::optional<StoredTag::Holder> holder = storedTags::holderOf(object.value(u"holder"_s).toString());
    StoredTag tag;
    tag.name = object.value(u"name"_s).toString();
    if (!holder || tag.name.isEmpty())
        throw NurvFailure(u"one of its stored tags has no holder or no name"_s);
    tag.holder = *holder;
    if (object.contains(u"text"_s))
        tag.text = textIn(object, u"text"_s);
    const auto decoded =
        QByteArray::fromBase64Encoding(textIn(object, u"data"_s).toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        throw NurvFailure(u"the data of %1 is damaged"_s.arg(tag.name));
    tag.data = *decoded;
    return tag;
}

} // namespace

QJsonObject objectOf(const QString &file, const QString &path, const TagsObject &record, const StoredTags &stored)
{
    QJsonObject fields;
    for (const TagField &field : tagFields()) {
        if (const TagsObject::Text &text = (record.*field.text)(); text && !text->isEmpty())
            fields.insert(field.name.toString(), *text);
    }
    QJsonObject custom;
    const QMap<QString, QString> &customTags = record.customTagsDictionary();
    for (auto tag = customTags.cbegin(); tag != customTags.cend(); ++tag)
        custom.insert(tag.key(), tag.value());
    QJsonArray all;
    for (const StoredTag &tag : stored)
        all.append(objectOf(tag));
    QJsonObject object{
        {u"type"_s, u"tags"_s}, {u"file"_s, file},     {u"path"_s, path}, {u"format"_s, formatWord(path)},
        {u"fields"_s, fields},  {u"custom"_s, custom}, {u"stored"_s, all}};
    if (const AlbumArt &picture = record.albumArt())
        object.insert(u"picture"_s, QJsonObject{{u"format"_s, pictureFormat(picture->bytes())},
                                                {u"width"_s, picture->size().width()},
                                                {u"height"_s, picture->size().height()}});
    else if (record.albumArtFault())
        object.insert(u"picture"_s, QJsonObject{{u"problem"_s, *record.albumArtFault()}});
    return object;
}

std::optional<Restoration> restorationOf(const QJsonObject &object)
{
    if (object.value(u"type"_s) != u"tags"_s)
        return std::nullopt;
    Restoration restoration{.path = object.value(u"path"_s).toString(),
                            .format = object.value(u"format"_s).toString(),
                            .stored = {},
                            .record = {}};
    if (restoration.path.isEmpty())
        throw NurvFailure(u"an object names no path"_s);
    if (object.contains(u"stored"_s)) {
        // What is no list would take every tag away.
        if (!object.value(u"stored"_s).isArray())
            throw NurvFailure(u"\"stored\" is no list"_s);
        restoration.stored.emplace();
        for (const QJsonValue &tag : object.value(u"stored"_s).toArray())
            restoration.stored->append(storedTagOf(tag.toObject()));
        return restoration;
    }
    const QJsonObject fields = objectIn(object, u"fields"_s);
    qsizetype known = 0;
    for (const TagField &field : tagFields()) {
        if (!fields.contains(field.name))
            continue;
        (restoration.record.*field.setText)(textIn(fields, field.name.toString()));
        ++known;
    }
    const QJsonObject custom = objectIn(object, u"custom"_s);
    for (auto tag = custom.begin(); tag != custom.end(); ++tag) {
        if (!TagLibTagsHelper::isFlacFieldName(tag.key()))
            throw NurvFailure(u"no field of a FLAC file can be called \"%1\""_s.arg(tag.key()));
        restoration.record.customTagsDictionary().insert(tag.key(), textIn(custom, tag.key()));
    }
    if (known < fields.size())
        throw NurvFailure(u"one of its fields is none of those that \"nurv tags show\" tells"_s);
    if (fields.isEmpty() && custom.isEmpty())
        throw NurvFailure(u"it has no tags"_s);
    return restoration;
}

} // namespace nurv::tagsJson

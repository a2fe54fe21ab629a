// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/MetadataCollector.h"

#include "base/NurvFailure.h"
#include "tags/MetadataBytes.h"
#include "tags/MetadataFieldNames.h"

#include <id3v1genres.h>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kMostEntries = 10'000;

bool isDigits(const QString &text)
{
    return std::all_of(text.begin(), text.end(),
                       [](QChar character) { return character >= u'0' && character <= u'9'; });
}

/// "05" and "5" are one number, and 0 stands for none.
QString plainNumber(const QString &digits)
{
    const auto first = std::find_if(digits.begin(), digits.end(), [](QChar digit) { return digit != u'0'; });
    return digits.mid(first - digits.begin());
}

/// A flag that is not set, and the stamp that one converter leaves where no other place is.
bool saysNothing(const QString &field, const QString &value)
{
    return (field == u"COMPILATION" && value == u"0") || (field == u"COMMENT" && value == u"Processed by SoX");
}

} // namespace

void MetadataCollector::countOne()
{
    if (++m_count > kMostEntries)
        throw NurvFailure(u"they have more than %1 parts"_s.arg(kMostEntries));
}

void MetadataCollector::addText(const QString &field, const QString &text)
{
    if (metadataFields::describesTheEncoding(field))
        return;
    for (const QStringView part : QStringView(text).tokenize(u'\0', Qt::SkipEmptyParts)) {
        const QString value = part.toString().normalized(QString::NormalizationForm_C);
        if (metadataFields::isNumber(field))
            addTrackOrDisc(field, value.trimmed());
        else if (!saysNothing(field, value))
            addValue(field, value);
    }
}

void MetadataCollector::addTrackOrDisc(const QString &field, const QString &value)
{
    const QString totalField = metadataFields::totalOf(field);
    const qsizetype slash = totalField.isEmpty() ? -1 : value.indexOf(u'/');
    const QString number = slash < 0 ? value : value.left(slash).trimmed();
    const QString total = slash < 0 ? QString() : value.mid(slash + 1).trimmed();
    if (!isDigits(number) || !isDigits(total)) {
        addValue(field, value);
        return;
    }
    addValue(field, plainNumber(number));
    addValue(totalField, plainNumber(total));
}

void MetadataCollector::addNumbers(const QString &field, unsigned int number, unsigned int total)
{
    addTrackOrDisc(field, QString::number(number) + u'/' + QString::number(total));
}

void MetadataCollector::addBytes(const QString &field, const QByteArray &bytes)
{
    if (!bytes.isEmpty() && !metadataFields::describesTheEncoding(field))
        addValue(field, QString::fromLatin1(metadataDigest(bytes).toHex()));
}

void MetadataCollector::addValue(const QString &field, const QString &value)
{
    if (value.isEmpty())
        return;
    countOne();
    if (m_values.contains({field, value}))
        return;
    m_values.insert({field, value});
    m_inventory.tags[field].append(value);
}

void MetadataCollector::addPicture(const QByteArray &bytes)
{
    if (bytes.isEmpty() || m_pictures.contains(bytes))
        return;
    countOne();
    m_pictures.insert(bytes);
    m_inventory.pictures.append(bytes);
}

void MetadataCollector::addChunk(const QByteArray &name, const QByteArray &digest)
{
    countOne();
    m_inventory.foreignChunks[QString::fromLatin1(name).trimmed()].append(digest);
}

void MetadataCollector::addId3v1(const QByteArray &tag)
{
    countOne();
    m_id3v1Tags.append(tag);
}

void MetadataCollector::addRestOfId3v1(const QByteArray &tag)
{
    addId3v1Text(u"TITLE"_s, tag.mid(3, 30));
    addId3v1Text(u"ARTIST"_s, tag.mid(33, 30));
    addId3v1Text(u"ALBUM"_s, tag.mid(63, 30));
    addId3v1Text(u"DATE"_s, tag.mid(93, 4));
    // Version 1.1 keeps a track number in the last two bytes of the comment.
    const bool hasTrack = tag.at(125) == '\0' && tag.at(126) != '\0';
    addId3v1Text(u"COMMENT"_s, tag.mid(97, hasTrack ? 28 : 30));
    if (hasTrack && !m_inventory.tags.contains(u"TRACKNUMBER"_s))
        addNumbers(u"TRACKNUMBER"_s, static_cast<unsigned char>(tag.at(126)), 0);
    // Which genre of the old list stands for one that it lacks differs from program to program.
    if (!m_inventory.tags.contains(u"GENRE"_s))
        addText(u"GENRE"_s,
                QString::fromStdString(TagLib::ID3v1::genre(static_cast<unsigned char>(tag.at(127))).to8Bit(true)));
}

void MetadataCollector::addId3v1Text(const QString &field, QByteArray text)
{
    if (const qsizetype zero = text.indexOf('\0'); zero >= 0)
        text.truncate(zero);
    text = text.trimmed();
    const QStringList fuller = m_inventory.tags.value(field);
    const bool isRepeated = std::any_of(fuller.begin(), fuller.end(), [&](const QString &value) {
        // Programs write either encoding, and "?" for what Latin-1 lacks.
        return value.toLatin1().startsWith(text) || value.toUtf8().startsWith(text);
    });
    if (!isRepeated)
        addText(field, QString::fromLatin1(text));
}

MetadataInventory MetadataCollector::inventory()
{
    for (const QByteArray &tag : std::exchange(m_id3v1Tags, {}))
        addRestOfId3v1(tag);
    return std::move(m_inventory);
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/StoredTags.h"

#include "base/NurvFailure.h"
#include "tags/ApeItems.h"
#include "tags/Mp4Edit.h"
#include "tags/Mp4Movie.h"
#include "tags/StoredFrames.h"
#include "tags/TagLibFile.h"
#include "tags/TagLibTagsHelper.h"
#include "tags/TagLibText.h"
#include "tags/TagsProcess.h"
#include "tags/VorbisFields.h"

#include <apetag.h>
#include <flacpicture.h>
#include <id3v1tag.h>
#include <id3v2tag.h>
#include <xiphcomment.h>

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using Holder = StoredTag::Holder;
using tagLibFile::kFlacBlockLimit;

constexpr int kId3v1Size = 128;
/// Of a Vorbis comment: a FLAC picture in base64.
constexpr QStringView kPictureField = u"METADATA_BLOCK_PICTURE";

[[noreturn]] void refuse(const StoredTag &tag)
{
    throw NurvFailure(u"Unable to save the tags: %1 cannot be written as it is given."_s.arg(tag.name));
}

// FLAC

void readVorbis(StoredTags &found, TagLib::FLAC::File &file)
{
    if (const TagLib::Ogg::XiphComment *const comment = file.xiphComment()) {
        for (const auto &[name, values] : comment->fieldListMap()) {
            for (const TagLib::String &value : values)
                found.append({.holder = Holder::Vorbis, .name = qtText(name), .text = qtText(value)});
        }
        // TagLib keeps them apart from the fields that they are.
        for (TagLib::FLAC::Picture *const picture : const_cast<TagLib::Ogg::XiphComment *>(comment)->pictureList())
            found.append({.holder = Holder::Vorbis,
                          .name = kPictureField.toString(),
                          .text = QString::fromLatin1(qtBytes(picture->render()).toBase64())});
    }
    for (const TagLib::FLAC::Picture *const picture : file.pictureList())
        found.append({.holder = Holder::FlacPicture, .name = u"PICTURE"_s, .data = qtBytes(picture->render())});
}

void writeVorbis(TagLib::FLAC::File &file, const StoredTags &tags)
{
    TagLib::Ogg::XiphComment &comment = *file.xiphComment(true);
    const TagLib::Ogg::FieldListMap fields = comment.fieldListMap();
    for (const auto &[name, values] : fields)
        comment.removeFields(name);
    comment.removeAllPictures();
    file.removePictures();
    for (const StoredTag &tag : tags) {
        if (tag.holder == Holder::Vorbis && tag.text && tag.name.compare(kPictureField, Qt::CaseInsensitive) == 0) {
            auto picture = std::make_unique<TagLib::FLAC::Picture>();
            if (!picture->parse(byteVector(QByteArray::fromBase64(tag.text->toLatin1()))))
                refuse(tag);
            comment.addPicture(picture.release());
        } else if (tag.holder == Holder::Vorbis && tag.text) {
            const TagLib::String name = TagLibTagsHelper::tagLibString(tag.name);
            comment.addField(name, TagLibTagsHelper::tagLibString(*tag.text), false);
            if (!comment.contains(name))
                refuse(tag);
        } else if (tag.holder == Holder::FlacPicture) {
            auto picture = std::make_unique<TagLib::FLAC::Picture>();
            if (!picture->parse(byteVector(tag.data)) || picture->render().size() > kFlacBlockLimit)
                refuse(tag);
            file.addPicture(picture.release());
        } else {
            refuse(tag);
        }
    }
    if (comment.render(false).size() > kFlacBlockLimit)
        throw NurvFailure(u"The tags are too large for this kind of file."_s);
}

// ID3v1

template<typename File>
void readId3v1(StoredTags &found, File &file, TagLib::IOStream &stream)
{
    if (!file.hasID3v1Tag())
        return;
    stream.seek(-kId3v1Size, TagLib::IOStream::End);
    found.append({.holder = Holder::Id3v1, .name = u"ID3v1"_s, .data = qtBytes(stream.readBlock(kId3v1Size))});
}

/// Once everything else is saved: the tag of 128 bytes at the end is the one that is given, or there is none.
void replaceId3v1(TagLib::IOStream &stream, const StoredTags &tags)
{
    // An APE tag of 131 bytes has "TAG" there, too: its first eight are "APETAGEX".
    constexpr int kApeLetters = 3;
    const bool hasRoom = stream.length() >= kId3v1Size + kApeLetters;
    stream.seek(hasRoom ? -(kId3v1Size + kApeLetters) : -kId3v1Size, TagLib::IOStream::End);
    const TagLib::ByteVector end = stream.readBlock(kId3v1Size + kApeLetters);
    const bool isThere = stream.length() >= kId3v1Size && end.mid(hasRoom ? kApeLetters : 0).startsWith("TAG")
                         && !end.startsWith("APETAGEX");
    if (isThere)
        stream.truncate(stream.length() - kId3v1Size);
    for (const StoredTag &tag : tags) {
        if (tag.holder != Holder::Id3v1)
            continue;
        if (tag.data.size() != kId3v1Size || !tag.data.startsWith("TAG"))
            refuse(tag);
        stream.seek(0, TagLib::IOStream::End);
        stream.writeBlock(byteVector(tag.data));
        return;
    }
}

// APE tags

void readApe(StoredTags &found, const TagLib::APE::Tag *tag)
{
    if (tag == nullptr)
        return;
    for (const auto &[name, item] : tag->itemListMap()) {
        // Nothing can be written that says so.
        if (item.isEmpty())
            continue;
        // Upper case is the key of TagLib's map; the item has the name as it stands in the file.
        StoredTag stored{.holder = Holder::Ape, .name = qtText(item.key())};
        if (item.type() == TagLib::APE::Item::Text && !item.isReadOnly()) {
            stored.text = qtText(item.values().toString(TagLib::String(std::string(1, '\0'))));
        } else {
            if (item.type() == TagLib::APE::Item::Text)
                stored.text = qtText(item.toString());
            stored.data = qtBytes(item.render());
        }
        found.append(stored);
    }
}

void writeApe(TagLib::APE::Tag &tag, const StoredTags &tags)
{
    const TagLib::APE::ItemListMap items = tag.itemListMap();
    for (const auto &[name, item] : items)
        tag.removeItem(name);
    for (const StoredTag &stored : tags) {
        if (stored.holder != Holder::Ape)
            continue;
        TagLib::APE::Item item;
        if (stored.data.isEmpty() && stored.text) {
            TagLib::StringList values;
            for (const QString &value : stored.text->split(QChar(u'\0')))
                values.append(TagLibTagsHelper::tagLibString(value));
            item = TagLib::APE::Item(TagLibTagsHelper::tagLibString(stored.name), values);
        } else {
            item.parse(byteVector(stored.data));
        }
        if (item.key().isEmpty() || item.isEmpty() || !TagLib::APE::Tag::checkKey(item.key()))
            refuse(stored);
        tag.setItem(item.key(), item);
    }
}

bool has(const StoredTags &tags, Holder holder)
{
    return std::any_of(tags.begin(), tags.end(), [holder](const StoredTag &tag) { return tag.holder == holder; });
}

// MP3

StoredTags readMp3(TagLib::MPEG::File &file, TagEditStream &stream)
{
    refuseUnreadableItems(stream);
    stream.refuseUnreadFrames();
    StoredTags found;
    if (file.hasID3v2Tag())
        found = storedFrames::of(*file.ID3v2Tag());
    if (file.hasAPETag())
        readApe(found, file.APETag());
    readId3v1(found, file, stream);
    return found;
}

void writeMp3(TagLib::MPEG::File &file, const StoredTags &tags)
{
    int kinds = TagLib::MPEG::File::NoTags;
    if (has(tags, Holder::Id3v2)) {
        storedFrames::replace(*file.ID3v2Tag(true), tags);
        kinds |= TagLib::MPEG::File::ID3v2;
    }
    if (has(tags, Holder::Ape)) {
        writeApe(*file.APETag(true), tags);
        kinds |= TagLib::MPEG::File::APE;
    }
    // Strips those that are not among the kinds; the ID3v1 tag follows as it is.
    const bool isSaved =
        kinds == TagLib::MPEG::File::NoTags
            ? file.strip(TagLib::MPEG::File::AllTags)
            : file.save(kinds, TagLib::MPEG::File::StripOthers, TagLib::ID3v2::v4, TagLib::MPEG::File::DoNotDuplicate);
    if (!isSaved)
        throw NurvFailure(u"Unable to save the tags."_s);
}

// Monkey's Audio and WavPack

template<typename File>
StoredTags readApeFile(File &file, TagEditStream &stream)
{
    refuseUnreadableItems(stream);
    StoredTags found;
    if (file.hasAPETag())
        readApe(found, file.APETag());
    readId3v1(found, file, stream);
    return found;
}

template<typename File>
void writeApeFile(File &file, const StoredTags &tags)
{
    file.strip(File::ID3v1);
    if (has(tags, Holder::Ape))
        writeApe(*file.APETag(true), tags);
    else
        file.strip(File::APE);
    if (!file.save())
        throw NurvFailure(u"Unable to save the tags."_s);
}

// MPEG-4

StoredTags readMp4(TagLib::IOStream &stream)
{
    const std::optional<Mp4Movie> movie = Mp4Movie::of(stream, Mp4Layout::of(stream));
    const std::optional<std::vector<Mp4Movie::RawItem>> items = movie ? movie->rawItems() : std::nullopt;
    if (!items)
        throw NurvFailure(u"Unable to open the file for reading."_s);
    StoredTags found;
    for (const Mp4Movie::RawItem &item : *items)
        found.append({.holder = Holder::Mp4, .name = item.name, .text = item.text, .data = item.box});
    return found;
}

void writeMp4(const QString &path, const StoredTags &tags)
{
    QByteArray items;
    for (const StoredTag &tag : tags) {
        if (!Mp4Movie::isItem(tag.data))
            refuse(tag);
        items += tag.data;
    }
    // Old order costs no tag.
    static_cast<void>(editMp4Movie(path, [&items](Mp4Movie &movie) { return movie.setRawItems(items); }));
}

// All of them

template<typename File, typename Work>
StoredTags readFile(const QString &path, const Work &work)
{
    std::optional<StoredTags> found = tagLibFile::readWithStream<File>(path, work);
    if (!found)
        throw NurvFailure(u"Unable to open the file for reading."_s);
    return *std::move(found);
}

template<typename File, typename Work>
void editFile(const QString &path, const StoredTags &tags, bool mayHaveId3v1, const Work &work)
{
    tagLibFile::editWithStream<File>(path, [&](File &file, TagEditStream &stream) {
        work(file, tags);
        if (mayHaveId3v1)
            replaceId3v1(stream, tags);
    });
}

} // namespace

namespace storedTags {

StoredTags read(TagFormat format, const QString &path)
{
    if (std::optional<StoredTags> asked = TagsProcess::readStoredTags(format, path))
        return *std::move(asked);
    switch (format) {
    case TagFormat::Flac:
        return readFile<TagLib::FLAC::File>(path, [](TagLib::FLAC::File &file, TagEditStream &stream) {
            refuseUnreadableFields(file, stream);
            StoredTags found;
            readVorbis(found, file);
            return found;
        });
    case TagFormat::Mp3: return readFile<TagLib::MPEG::File>(path, readMp3);
    case TagFormat::Ape: return readFile<TagLib::APE::File>(path, readApeFile<TagLib::APE::File>);
    case TagFormat::Wavpack: return readFile<TagLib::WavPack::File>(path, readApeFile<TagLib::WavPack::File>);
    case TagFormat::Mp4: {
        TagEditStream stream(path, TagEditStream::Access::Read);
        return readMp4(stream);
    }
    case TagFormat::Aiff:
    case TagFormat::Tta: break;
    }
    throw NurvFailure(u"the tags of its format are not kept"_s);
}

void replace(TagFormat format, const QString &path, const StoredTags &tags)
{
    for (const StoredTag &tag : tags) {
        if (!canHold(format, tag.holder))
            throw NurvFailure(u"Unable to save the tags: a file of this kind has no place for %1."_s.arg(tag.name));
    }
    if (TagsProcess::replaceStoredTags(format, path, tags))
        return;
    switch (format) {
    case TagFormat::Flac:
        editFile<TagLib::FLAC::File>(path, tags, false, [](TagLib::FLAC::File &file, const StoredTags &wanted) {
            writeVorbis(file, wanted);
            if (!file.save())
                throw NurvFailure(u"Unable to save the tags."_s);
        });
        return;
    case TagFormat::Mp3: editFile<TagLib::MPEG::File>(path, tags, true, writeMp3); return;
    case TagFormat::Ape: editFile<TagLib::APE::File>(path, tags, true, writeApeFile<TagLib::APE::File>); return;
    case TagFormat::Wavpack:
        editFile<TagLib::WavPack::File>(path, tags, true, writeApeFile<TagLib::WavPack::File>);
        return;
    case TagFormat::Mp4: writeMp4(path, tags); return;
    case TagFormat::Aiff:
    case TagFormat::Tta: break;
    }
    throw NurvFailure(u"the tags of its format are not written"_s);
}

namespace {

constexpr std::array<std::pair<Holder, QStringView>, 6> kWords = {{{Holder::Vorbis, u"vorbis"},
                                                                   {Holder::FlacPicture, u"flac-picture"},
                                                                   {Holder::Id3v2, u"id3v2"},
                                                                   {Holder::Id3v1, u"id3v1"},
                                                                   {Holder::Ape, u"ape"},
                                                                   {Holder::Mp4, u"mp4"}}};

} // namespace

QString wordOf(Holder holder)
{
    for (const auto &[known, word] : kWords) {
        if (known == holder)
            return word.toString();
    }
    return {};
}

std::optional<Holder> holderOf(const QString &word)
{
    for (const auto &[known, knownWord] : kWords) {
        if (knownWord == word)
            return known;
    }
    return std::nullopt;
}

bool canHold(TagFormat format, Holder holder)
{
    switch (format) {
    case TagFormat::Flac: return holder == Holder::Vorbis || holder == Holder::FlacPicture;
    case TagFormat::Mp3: return holder == Holder::Id3v2 || holder == Holder::Ape || holder == Holder::Id3v1;
    case TagFormat::Ape:
    case TagFormat::Wavpack: return holder == Holder::Ape || holder == Holder::Id3v1;
    case TagFormat::Mp4: return holder == Holder::Mp4;
    case TagFormat::Aiff:
    case TagFormat::Tta: break;
    }
    return false;
}

} // namespace storedTags

} // namespace nurv

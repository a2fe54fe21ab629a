// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagLibTagsHelper.h"

#include "base/Log.h"
#include "base/Version.h"
#include "tags/AlbumArt.h"
#include "tags/FlacTagHelper.h"
#include "tags/TagLibFile.h"
#include "tags/TagLibText.h"
#include "tags/TagsProcess.h"
#include "tags/VorbisFields.h"
#include "text/TextNumbers.h"

#include <attachedpictureframe.h>
#include <flacpicture.h>
#include <id3v2tag.h>
#include <textidentificationframe.h>
#include <xiphcomment.h>

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using tagLibFile::kFlacBlockLimit;
using Text = TagsObject::Text;

// Sizes in the heads of ID3v2 tags have 28 bits.
constexpr qsizetype kId3v2PictureLimit = 0x0f000000;
// Of a FLAC picture, with the type and no description.
constexpr qsizetype kFlacPictureHead = 32 + 9;

constexpr std::array<QStringView, 13> kKnownVorbisKeys = {
    u"TITLE",      u"ARTIST",      u"ALBUMARTIST", u"DATE",  u"ALBUM",    u"DISCNUMBER", u"TRACKNUMBER",
    u"TRACKTOTAL", u"DESCRIPTION", u"COMMENT",     u"GENRE", u"COMPOSER", u"ENCODER"};

bool hasText(const Text &text)
{
    return text && !text->isEmpty();
}

QString numberText(unsigned int number)
{
    return number == 0 ? u""_s : QString::number(number);
}

TagLib::String tagLibText(const Text &text)
{
    return TagLibTagsHelper::tagLibString(text.value_or(QString()));
}

unsigned int number(const Text &text)
{
    return static_cast<unsigned int>(std::max(0, leadingInteger(text.value_or(QString()))));
}

/// "number/total", or the number alone without a total.
QString numberAndTotal(const Text &number, const Text &total)
{
    const QString numberText = number.value_or(u""_s);
    return hasText(total) ? numberText + u'/' + *total : numberText;
}

TagsObject blankTags()
{
    TagsObject tags;
    TagLibTagsHelper::setBlankTags(tags);
    return tags;
}

QByteArray pngOf(const TagsObject &tags, qsizetype limit)
{
    const QByteArray png = getBitmapDataForImage(tags.albumArt(), ImageFileType::Png);
    if (png.size() > limit)
        throw NurvFailure(u"The picture is too large for this kind of file."_s);
    return png;
}

void readPictureInto(TagsObject &tags, const TagLib::ByteVector &bytes)
{
    PictureReading reading = readPicture(QByteArray(bytes.data(), bytes.size()));
    tags.setAlbumArt(std::move(reading.picture), std::move(reading.fault));
}

// ID3v2

Text frameText(const TagLib::ID3v2::Tag &tag, const char *frameId)
{
    const TagLib::ID3v2::FrameList &frames = tag.frameList(frameId);
    return frames.isEmpty() ? Text() : qtText(frames.front()->toString());
}

void addTextFrame(TagLib::ID3v2::Tag &tag, const char *frameId, const QString &text)
{
    auto frame = std::make_unique<TagLib::ID3v2::TextIdentificationFrame>(frameId, TagLib::String::UTF8);
    frame->setText(TagLibTagsHelper::tagLibString(text));
    tag.addFrame(frame.release());
}

/// An empty text only removes.
void replaceTextFrame(TagLib::ID3v2::Tag &tag, const char *frameId, const QString &text)
{
    tag.removeFrames(frameId);
    if (!text.isEmpty())
        addTextFrame(tag, frameId, text);
}

void addPictureFrame(TagLib::ID3v2::Tag &tag, const TagsObject &tags)
{
    if (!tags.albumArt())
        return;
    auto frame = std::make_unique<TagLib::ID3v2::AttachedPictureFrame>();
    frame->setMimeType("image/png");
    frame->setType(TagLib::ID3v2::AttachedPictureFrame::FrontCover);
    frame->setPicture(byteVector(pngOf(tags, kId3v2PictureLimit)));
    tag.addFrame(frame.release());
}

void readFirstPicture(TagsObject &tags, const TagLib::ID3v2::Tag &tag)
{
    const TagLib::ID3v2::FrameList &frames = tag.frameList("APIC");
    if (frames.isEmpty())
        return;
    // TagLib keeps the bytes of an encrypted frame.
    if (const auto *frame = dynamic_cast<const TagLib::ID3v2::AttachedPictureFrame *>(frames.front()))
        readPictureInto(tags, frame->picture());
    else
        tags.setAlbumArt(nullptr, u"its frame cannot be read"_s);
}

struct NumberAndTotal {
    QString number = u""_s;
    QString total = u""_s;
};

NumberAndTotal splitNumberAndTotal(const Text &text)
{
    NumberAndTotal parts;
    if (!text)
        return parts;
    const qsizetype slash = text->indexOf(u'/');
    parts.number = slash < 0 ? *text : text->left(slash);
    if (slash >= 0)
        parts.total = text->mid(slash + 1);
    return parts;
}

void readGenericTexts(TagsObject &tags, const TagLib::Tag &generic)
{
    tags.setTitleText(qtText(generic.title()));
    tags.setArtistText(qtText(generic.artist()));
    tags.setAlbumText(qtText(generic.album()));
    tags.setCommentText(qtText(generic.comment()));
    tags.setGenreText(qtText(generic.genre()));
}

void readId3v2Frames(TagsObject &tags, const TagLib::ID3v2::Tag &tag)
{
    if (const Text composer = frameText(tag, "TCOM"))
        tags.setComposerText(composer);
    const NumberAndTotal disc = splitNumberAndTotal(frameText(tag, "TPOS"));
    tags.setDiscText(disc.number);
    tags.setDiscTotalText(disc.total);
    const NumberAndTotal track = splitNumberAndTotal(frameText(tag, "TRCK"));
    tags.setTrackText(track.number);
    tags.setTrackTotalText(track.total);
    readFirstPicture(tags, tag);
}

// APE

TagsObject readGenericTags(const TagLib::Tag &generic)
{
    TagsObject tags = blankTags();
    readGenericTexts(tags, generic);
    tags.setDateText(numberText(generic.year()));
    tags.setTrackText(numberText(generic.track()));
    return tags;
}

void writeGenericTags(TagLib::Tag &generic, const TagsObject &tags, bool writeEmptyTags)
{
    const auto writes = [writeEmptyTags](const Text &text) { return writeEmptyTags || hasText(text); };
    if (writes(tags.titleText()))
        generic.setTitle(tagLibText(tags.titleText()));
    if (writes(tags.artistText()))
        generic.setArtist(tagLibText(tags.artistText()));
    if (writes(tags.dateText()))
        generic.setYear(number(tags.dateText()));
    if (writes(tags.albumText()))
        generic.setAlbum(tagLibText(tags.albumText()));
    if (writes(tags.trackText()))
        generic.setTrack(number(tags.trackText()));
    if (writes(tags.commentText()))
        generic.setComment(tagLibText(tags.commentText()));
    if (writes(tags.genreText()))
        generic.setGenre(tagLibText(tags.genreText()));
}

// Vorbis comments

Text fieldText(const TagLib::Ogg::FieldListMap &fields, QStringView key)
{
    const auto field = fields.find(TagLibTagsHelper::tagLibString(key.toString()));
    if (field == fields.end() || field->second.isEmpty())
        return std::nullopt;
    return qtText(field->second.toString(" "));
}

/// With `keepDate`, all but the date: it is replaced once the file is saved, and
/// must not be lost when that fails.
void removeEverything(TagLib::FLAC::File &file, TagLib::Ogg::XiphComment &comment, bool keepDate)
{
    const TagLib::Ogg::FieldListMap fields = comment.fieldListMap();
    for (const auto &[name, values] : fields) {
        if (!keepDate || name.upper() != "DATE")
            comment.removeFields(name.upper());
    }
    comment.removeAllPictures();
    file.removePictures();
}

void addFlacPicture(TagLib::FLAC::File &file, const TagsObject &tags)
{
    if (!tags.albumArt())
        return;
    auto picture = std::make_unique<TagLib::FLAC::Picture>();
    picture->setType(TagLib::FLAC::Picture::FrontCover);
    picture->setMimeType("image/png");
    picture->setWidth(tags.albumArt()->size().width());
    picture->setHeight(tags.albumArt()->size().height());
    picture->setColorDepth(tags.albumArt()->depth());
    picture->setData(byteVector(pngOf(tags, kFlacBlockLimit - kFlacPictureHead)));
    file.addPicture(picture.release());
}

void addCustomTags(TagLib::Ogg::XiphComment &comment, const QMap<QString, QString> &customTags)
{
    for (auto tag = customTags.cbegin(); tag != customTags.cend(); ++tag) {
        if (tag.value().isEmpty())
            continue;
        qCInfo(tagsLog, "setting custom tag: %s %s", qUtf8Printable(tag.key()), qUtf8Printable(tag.value()));
        const TagLib::String name = TagLibTagsHelper::tagLibString(tag.key());
        comment.addField(name, TagLibTagsHelper::tagLibString(tag.value()), true);
        // TagLib refuses names that Vorbis comments cannot have, and does not say so.
        if (!comment.contains(name))
            qCWarning(tagsLog, "Error setting custom tag: %s", qUtf8Printable(tag.key()));
    }
}

/// TagLib writes the low bits of a size that is too large, which ruins the file.
void refuseOversizedBlocks(TagLib::FLAC::File &file, const TagLib::Ogg::XiphComment &comment)
{
    bool fits = comment.render(false).size() <= kFlacBlockLimit;
    for (const TagLib::FLAC::Picture *picture : file.pictureList())
        fits = fits && picture->render().size() <= kFlacBlockLimit;
    if (!fits)
        throw NurvFailure(u"The tags are too large for this kind of file."_s);
}

void writeFlacFields(TagLib::FLAC::File &file, TagLib::Ogg::XiphComment &comment, const TagsObject &tags)
{
    const auto write = [&comment](const char *key, const Text &text) {
        if (hasText(text))
            comment.addField(key, tagLibText(text), true);
    };
    write("TITLE", tags.titleText());
    write("ARTIST", tags.artistText());
    write("ALBUMARTIST", tags.albumArtistText());
    write("ALBUM", tags.albumText());
    write("DISCNUMBER", tags.discText());
    write("DISCTOTAL", tags.discTotalText());
    write("TRACKNUMBER", tags.trackText());
    write("TRACKTOTAL", tags.trackTotalText());
    write("COMMENT", tags.commentText());
    write("DESCRIPTION", tags.commentText());
    write("GENRE", tags.genreText());
    write("COMPOSER", tags.composerText());
    addFlacPicture(file, tags);
    write("ENCODER", u"Nurv %1"_s.arg(shortVersionString()));
    addCustomTags(comment, tags.customTagsDictionary());
}

} // namespace

void TagLibTagsHelper::setBlankTags(TagsObject &tagObject)
{
    tagObject.setTitleText(u""_s);
    tagObject.setArtistText(u""_s);
    tagObject.setDateText(u""_s);
    tagObject.setAlbumText(u""_s);
    tagObject.setDiscText(u""_s);
    tagObject.setTrackText(u""_s);
    tagObject.setCommentText(u""_s);
    tagObject.setGenreText(u""_s);
    tagObject.setComposerText(u""_s);
    tagObject.setTrackTotalText(u""_s);
    tagObject.setDiscTotalText(u""_s);
    tagObject.setAlbumArt(nullptr);
}

void TagLibTagsHelper::checkPicture(TagFormat format, const TagsObject &tagObject)
{
    if (!tagObject.albumArt())
        return;
    if (format == TagFormat::Flac)
        static_cast<void>(pngOf(tagObject, kFlacBlockLimit - kFlacPictureHead));
    else if (format == TagFormat::Mp3 || format == TagFormat::Aiff)
        static_cast<void>(pngOf(tagObject, kId3v2PictureLimit));
}

bool TagLibTagsHelper::isFlacFieldName(const QString &name)
{
    return !name.isEmpty() && std::all_of(name.begin(), name.end(), [](QChar letter) {
        return letter >= u' ' && letter <= u'}' && letter != u'=';
    });
}

TagLib::String TagLibTagsHelper::tagLibString(const QString &text)
{
    return {text.toStdString(), TagLib::String::UTF8};
}

TagsObject TagLibTagsHelper::tagsForMP3File(const QString &path)
{
    if (std::optional<TagsObject> asked = TagsProcess::readTags(TagFormat::Mp3, path))
        return *std::move(asked);
    return tagLibFile::read<TagLib::MPEG::File>(path,
                                                [](TagLib::MPEG::File &file) {
                                                    TagsObject tags = blankTags();
                                                    readGenericTexts(tags, *file.tag());
                                                    if (const TagLib::ID3v2::Tag *id3v2 = file.ID3v2Tag())
                                                        readId3v2Frames(tags, *id3v2);
                                                    return tags;
                                                })
        .value_or(blankTags());
}

void TagLibTagsHelper::writeTagsForMP3File(const QString &path, const TagsObject &tagObject, bool writeEmptyTags)
{
    if (TagsProcess::writeTags({.format = TagFormat::Mp3, .writeEmptyTags = writeEmptyTags}, path, tagObject))
        return;
    tagLibFile::edit<TagLib::MPEG::File>(path, [&](TagLib::MPEG::File &file) {
        if (writeEmptyTags)
            file.strip(TagLib::MPEG::File::AllTags);
        TagLib::ID3v2::Tag &id3v2 = *file.ID3v2Tag(true);
        TagLib::Tag &generic = *file.tag();
        const auto writes = [writeEmptyTags](const Text &text) { return writeEmptyTags || hasText(text); };
        if (writes(tagObject.titleText()))
            generic.setTitle(tagLibText(tagObject.titleText()));
        if (writes(tagObject.albumText()))
            generic.setAlbum(tagLibText(tagObject.albumText()));
        if (writes(tagObject.artistText()))
            generic.setArtist(tagLibText(tagObject.artistText()));
        if (writes(tagObject.albumArtistText()))
            replaceTextFrame(id3v2, "TPE2", tagObject.albumArtistText().value_or(QString()));
        if (writes(tagObject.composerText()))
            replaceTextFrame(id3v2, "TCOM", tagObject.composerText().value_or(QString()));
        if (writes(tagObject.genreText()))
            generic.setGenre(tagLibText(tagObject.genreText()));
        if (writes(tagObject.dateText()))
            generic.setYear(number(tagObject.dateText()));
        if (writes(tagObject.commentText()))
            generic.setComment(tagLibText(tagObject.commentText()));
        if (writes(tagObject.trackText()))
            replaceTextFrame(id3v2, "TRCK", numberAndTotal(tagObject.trackText(), tagObject.trackTotalText()));
        if (writes(tagObject.discText()))
            replaceTextFrame(id3v2, "TPOS", numberAndTotal(tagObject.discText(), tagObject.discTotalText()));
        // A record without a picture needs no removal: stripping has taken the old ones.
        addPictureFrame(id3v2, tagObject);
    });
}

TagsObject TagLibTagsHelper::tagsForAIFFFile(const QString &path)
{
    if (std::optional<TagsObject> asked = TagsProcess::readTags(TagFormat::Aiff, path))
        return *std::move(asked);
    return tagLibFile::read<TagLib::RIFF::AIFF::File>(path,
                                                      [](TagLib::RIFF::AIFF::File &file) {
                                                          TagsObject tags = blankTags();
                                                          const TagLib::ID3v2::Tag &id3v2 = *file.tag();
                                                          readGenericTexts(tags, id3v2);
                                                          tags.setDateText(numberText(id3v2.year()));
                                                          if (const Text albumArtist = frameText(id3v2, "TPE2"))
                                                              tags.setAlbumArtistText(albumArtist);
                                                          readId3v2Frames(tags, id3v2);
                                                          return tags;
                                                      })
        .value_or(blankTags());
}

void TagLibTagsHelper::writeTagsForAIFFFile(const QString &path, const TagsObject &tagObject)
{
    if (TagsProcess::writeTags({.format = TagFormat::Aiff}, path, tagObject))
        return;
    tagLibFile::edit<TagLib::RIFF::AIFF::File>(path, [&](TagLib::RIFF::AIFF::File &file) {
        TagLib::ID3v2::Tag &id3v2 = *file.tag();
        if (hasText(tagObject.titleText()))
            id3v2.setTitle(tagLibText(tagObject.titleText()));
        if (hasText(tagObject.albumText()))
            id3v2.setAlbum(tagLibText(tagObject.albumText()));
        if (hasText(tagObject.artistText()))
            id3v2.setArtist(tagLibText(tagObject.artistText()));
        if (hasText(tagObject.albumArtistText()))
            addTextFrame(id3v2, "TPE2", *tagObject.albumArtistText());
        if (hasText(tagObject.composerText()))
            addTextFrame(id3v2, "TCOM", *tagObject.composerText());
        if (hasText(tagObject.genreText()))
            id3v2.setGenre(tagLibText(tagObject.genreText()));
        if (hasText(tagObject.dateText()))
            id3v2.setYear(number(tagObject.dateText()));
        if (hasText(tagObject.commentText()))
            id3v2.setComment(tagLibText(tagObject.commentText()));
        if (hasText(tagObject.trackText()))
            replaceTextFrame(id3v2, "TRCK", numberAndTotal(tagObject.trackText(), tagObject.trackTotalText()));
        if (hasText(tagObject.discText())) {
            // Here an empty total still counts as one.
            const QString disc = tagObject.discTotalText() ? *tagObject.discText() + u'/' + *tagObject.discTotalText()
                                                           : *tagObject.discText();
            replaceTextFrame(id3v2, "TPOS", disc);
        }
        addPictureFrame(id3v2, tagObject);
    });
}

TagsObject TagLibTagsHelper::tagsForFlacFile(const QString &path)
{
    if (std::optional<TagsObject> asked = TagsProcess::readTags(TagFormat::Flac, path))
        return *std::move(asked);
    return tagLibFile::read<TagLib::FLAC::File>(
               path,
               [](TagLib::FLAC::File &file) {
                   TagsObject tags = blankTags();
                   const TagLib::List<TagLib::FLAC::Picture *> pictures = file.pictureList();
                   if (!pictures.isEmpty())
                       readPictureInto(tags, pictures.front()->data());
                   const TagLib::Ogg::XiphComment *comment = file.xiphComment();
                   if (comment == nullptr)
                       return tags;
                   const TagLib::Ogg::FieldListMap &fields = comment->fieldListMap();
                   const auto read = [&](QStringView key, void (TagsObject::*set)(Text)) {
                       if (Text text = fieldText(fields, key))
                           (tags.*set)(std::move(text));
                   };
                   read(u"TITLE", &TagsObject::setTitleText);
                   read(u"ARTIST", &TagsObject::setArtistText);
                   read(u"ALBUMARTIST", &TagsObject::setAlbumArtistText);
                   read(u"DATE", &TagsObject::setDateText);
                   read(u"ALBUM", &TagsObject::setAlbumText);
                   read(u"DISCNUMBER", &TagsObject::setDiscText);
                   read(u"DISCTOTAL", &TagsObject::setDiscTotalText);
                   read(u"TRACKNUMBER", &TagsObject::setTrackText);
                   read(u"TRACKTOTAL", &TagsObject::setTrackTotalText);
                   read(fieldText(fields, u"DESCRIPTION") ? u"DESCRIPTION" : u"COMMENT", &TagsObject::setCommentText);
                   read(u"GENRE", &TagsObject::setGenreText);
                   read(u"COMPOSER", &TagsObject::setComposerText);
                   for (const auto &[name, values] : fields) {
                       const QString key = qtText(name);
                       if (std::find(kKnownVorbisKeys.begin(), kKnownVorbisKeys.end(), key.toUpper())
                           == kKnownVorbisKeys.end())
                           tags.customTagsDictionary().insert(key, qtText(values.toString(" ")));
                   }
                   return tags;
               })
        .value_or(blankTags());
}

TagsObject::Text TagLibTagsHelper::writeTagsButDate(const QString &path, const TagsObject &tagObject,
                                                    bool writeEmptyTags)
{
    if (std::optional<TagsProcess::Written> written =
            TagsProcess::writeTags({.format = TagFormat::Flac, .writeEmptyTags = writeEmptyTags}, path, tagObject))
        return std::move(written->date);
    Text fileDate;
    tagLibFile::editWithStream<TagLib::FLAC::File>(path, [&](TagLib::FLAC::File &file, TagEditStream &stream) {
        refuseUnreadableFields(file, stream);
        TagLib::Ogg::XiphComment &comment = *file.xiphComment(true);
        fileDate = fieldText(comment.fieldListMap(), FlacTagHelper::kDate);
        if (writeEmptyTags) {
            removeEverything(file, comment, hasText(tagObject.dateText()) || hasText(fileDate));
            if (!file.save())
                throw NurvFailure(u"Unable to save the tags."_s);
        }
        writeFlacFields(file, comment, tagObject);
        refuseOversizedBlocks(file, comment);
        if (!file.save())
            throw NurvFailure(u"Unable to save the tags."_s);
    });
    return fileDate;
}

void TagLibTagsHelper::writeTagsForFLACFile(const QString &path, const TagsObject &tagObject, bool writeEmptyTags)
{
    const Text fileDate = writeTagsButDate(path, tagObject, writeEmptyTags);
    // The date never goes through TagLib: a new one, and one that the file had, is
    // written by the other path once the file is saved.
    const Text &date = hasText(tagObject.dateText()) ? tagObject.dateText() : fileDate;
    if (!hasText(date))
        return;
    // One that nobody has changed is not taken away first.
    const bool isThere =
        !hasText(tagObject.dateText()) && FlacTagHelper::tagForFile(path, FlacTagHelper::kDate) == *date;
    if (!isThere)
        FlacTagHelper::writeTagForFile(path, FlacTagHelper::kDate, date, writeEmptyTags);
}

TagsObject TagLibTagsHelper::tagsForAPEFile(const QString &path)
{
    if (std::optional<TagsObject> asked = TagsProcess::readTags(TagFormat::Ape, path))
        return *std::move(asked);
    return tagLibFile::read<TagLib::APE::File>(path,
                                               [](TagLib::APE::File &file) { return readGenericTags(*file.tag()); })
        .value_or(blankTags());
}

void TagLibTagsHelper::writeTagsForAPEFile(const QString &path, const TagsObject &tagObject, bool writeEmptyTags)
{
    if (TagsProcess::writeTags({.format = TagFormat::Ape, .writeEmptyTags = writeEmptyTags}, path, tagObject))
        return;
    tagLibFile::edit<TagLib::APE::File>(path, [&](TagLib::APE::File &file) {
        file.APETag(true);
        writeGenericTags(*file.tag(), tagObject, writeEmptyTags);
    });
}

TagsObject TagLibTagsHelper::tagsForTTAFile(const QString &path)
{
    if (std::optional<TagsObject> asked = TagsProcess::readTags(TagFormat::Tta, path))
        return *std::move(asked);
    return tagLibFile::read<TagLib::TrueAudio::File>(
               path, [](TagLib::TrueAudio::File &file) { return readGenericTags(*file.tag()); })
        .value_or(blankTags());
}

TagsObject TagLibTagsHelper::tagsForWavpackFile(const QString &path)
{
    if (std::optional<TagsObject> asked = TagsProcess::readTags(TagFormat::Wavpack, path))
        return *std::move(asked);
    return tagLibFile::read<TagLib::WavPack::File>(
               path, [](TagLib::WavPack::File &file) { return readGenericTags(*file.tag()); })
        .value_or(blankTags());
}

void TagLibTagsHelper::writeTagsForWavpackFile(const QString &path, const TagsObject &tagObject, bool writeEmptyTags)
{
    if (TagsProcess::writeTags({.format = TagFormat::Wavpack, .writeEmptyTags = writeEmptyTags}, path, tagObject))
        return;
    tagLibFile::edit<TagLib::WavPack::File>(path, [&](TagLib::WavPack::File &file) {
        file.APETag(true);
        writeGenericTags(*file.tag(), tagObject, writeEmptyTags);
    });
}

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/StoredFrames.h"

#include "base/NurvFailure.h"
#include "tags/Id3v2Scan.h"
#include "tags/TagLibFile.h"
#include "tags/TagLibTagsHelper.h"
#include "tags/TagLibText.h"

#include <commentsframe.h>
#include <id3v2header.h>
#include <id3v2tag.h>
#include <textidentificationframe.h>

#include <algorithm>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv::storedFrames {

namespace {

using TagLib::ID3v2::TextIdentificationFrame;
using TagLib::ID3v2::UserTextIdentificationFrame;

constexpr int kFrameIdSize = 4;

/// Lets the scan that stands between files and TagLib see the frame, as a tag of that frame alone.
bool canBeParsed(const QByteArray &frame)
{
    const auto size = static_cast<unsigned int>(frame.size());
    if (size >= 1U << 28)
        return false;
    TagLib::ByteVector head("ID3\x04", 4);
    head.append(TagLib::ByteVector(2, '\0'));
    for (int shift = 21; shift >= 0; shift -= 7)
        head.append(static_cast<char>(size >> shift & 0x7fU));
    return !reasonToRefuseId3v2(head, TagLib::ByteVector(frame.constData(), size));
}

std::unique_ptr<TagLib::ID3v2::Frame> parsedFrame(const QByteArray &frame)
{
    if (!canBeParsed(frame))
        return nullptr;
    const TagLib::ID3v2::Header header;
    const TagLib::ByteVector bytes(frame.constData(), static_cast<unsigned int>(frame.size()));
    return std::unique_ptr<TagLib::ID3v2::Frame>(tagLibFile::frameFactory()->createFrame(bytes, &header));
}

StoredTag storedFrame(TagLib::ID3v2::Frame &frame)
{
    StoredTag stored{.holder = StoredTag::Holder::Id3v2, .name = QString::fromLatin1(qtBytes(frame.frameID()))};
    if (const auto *const own = dynamic_cast<UserTextIdentificationFrame *>(&frame)) {
        stored.text = qtText(own->toString());
    } else if (const auto *const text = dynamic_cast<TextIdentificationFrame *>(&frame)) {
        stored.text = qtText(text->toString());
        // A text that is written anew must be the same one.
        if (text->fieldList().size() == 1 && text->textEncoding() == TagLib::String::UTF8)
            return stored;
    } else if (const auto *const comment = dynamic_cast<TagLib::ID3v2::CommentsFrame *>(&frame)) {
        stored.text = qtText(comment->text());
    }
    // In the encoding that it will have once it is written again.
    const QByteArray rendered = qtBytes(frame.render());
    const std::unique_ptr<TagLib::ID3v2::Frame> parsed = parsedFrame(rendered);
    stored.data = parsed ? qtBytes(parsed->render()) : rendered;
    return stored;
}

/// Of capitals and digits (ID3v2.4.0, section 4.2); that of a user's own texts has a description besides.
bool isTextFrame(const QString &name)
{
    const bool isIdentifier = std::all_of(name.begin(), name.end(), [](QChar letter) {
        return (letter >= u'A' && letter <= u'Z') || (letter >= u'0' && letter <= u'9');
    });
    return isIdentifier && name.size() == kFrameIdSize && name.startsWith(u'T') && name != u"TXXX";
}

std::unique_ptr<TagLib::ID3v2::Frame> frameOf(const StoredTag &stored)
{
    if (stored.data.isEmpty() && stored.text && isTextFrame(stored.name)) {
        auto frame =
            std::make_unique<TextIdentificationFrame>(stored.name.toLatin1().constData(), TagLib::String::UTF8);
        frame->setText(TagLibTagsHelper::tagLibString(*stored.text));
        return frame;
    }
    return parsedFrame(stored.data);
}

} // namespace

StoredTags of(const TagLib::ID3v2::Tag &tag)
{
    StoredTags found;
    for (TagLib::ID3v2::Frame *const frame : tag.frameList())
        found.append(storedFrame(*frame));
    return found;
}

void replace(TagLib::ID3v2::Tag &tag, const StoredTags &tags)
{
    // A copy of the list would delete the frames once more.
    const std::vector<TagLib::ID3v2::Frame *> frames(tag.frameList().begin(), tag.frameList().end());
    for (TagLib::ID3v2::Frame *const frame : frames)
        tag.removeFrame(frame);
    for (const StoredTag &stored : tags) {
        if (stored.holder != StoredTag::Holder::Id3v2)
            continue;
        std::unique_ptr<TagLib::ID3v2::Frame> frame = frameOf(stored);
        if (!frame)
            throw NurvFailure(u"Unable to save the tags: %1 cannot be written as it is given."_s.arg(stored.name));
        tag.addFrame(frame.release());
    }
}

} // namespace nurv::storedFrames

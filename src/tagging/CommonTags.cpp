// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagging/CommonTags.h"

#include "tags/PictureDigest.h"

#include <exception>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

struct ComparedField {
    const TagsObject::Text &(TagsObject::*text)() const;
    void (TagsObject::*setText)(TagsObject::Text);
};

// In the order in which they are compared: a field that differs before the first equal one is not set.
constexpr std::array<ComparedField, 9> kCompared = {{{&TagsObject::albumText, &TagsObject::setAlbumText},
                                                     {&TagsObject::dateText, &TagsObject::setDateText},
                                                     {&TagsObject::artistText, &TagsObject::setArtistText},
                                                     {&TagsObject::commentText, &TagsObject::setCommentText},
                                                     {&TagsObject::discText, &TagsObject::setDiscText},
                                                     {&TagsObject::genreText, &TagsObject::setGenreText},
                                                     {&TagsObject::trackTotalText, &TagsObject::setTrackTotalText},
                                                     {&TagsObject::discTotalText, &TagsObject::setDiscTotalText},
                                                     {&TagsObject::composerText, &TagsObject::setComposerText}}};

} // namespace

bool isSamePicture(const AlbumArt &one, const AlbumArt &other)
{
    if (!one || !other)
        return !one && !other;
    if (one == other || one->bytes() == other->bytes())
        return true;
    if (one->size() != other->size() || one->depth() != other->depth())
        return false;
    try {
        const QByteArray digest = pictureDigest(one->bytes());
        return !digest.isEmpty() && digest == pictureDigest(other->bytes());
    } catch (const std::exception &) {
        return false; // nobody has seen that they are the same
    }
}

void CommonTags::add(const TagsObject &record)
{
    if (m_reference)
        compare(record);
    else
        m_reference = record;
}

void CommonTags::compare(const TagsObject &record)
{
    for (const ComparedField &field : kCompared) {
        const TagsObject::Text &text = ((*m_reference).*field.text)();
        const bool isEqual = TagsObject::stringTagsEqual(text, (record.*field.text)());
        if (isEqual && !m_common)
            m_common.emplace();
        if (m_common)
            ((*m_common).*field.setText)(isEqual ? text : u""_s);
    }
    const bool hasSamePicture = isSamePicture(m_reference->albumArt(), record.albumArt());
    const bool hasSameCustomTags = m_reference->customTagsDictionary() == record.customTagsDictionary();
    if (m_common) {
        m_common->setAlbumArt(hasSamePicture ? m_reference->albumArt() : nullptr);
        m_common->setCustomTagsDictionary(hasSameCustomTags ? m_reference->customTagsDictionary()
                                                            : QMap<QString, QString>());
    }
    m_picturesDiffer = m_picturesDiffer || !hasSamePicture;
    m_customTagsDiffer = m_customTagsDiffer || !hasSameCustomTags;
    for (std::size_t i = 0; i < m_differs.size(); ++i) {
        const TagField &field = tagFields().at(i);
        const bool isEqual = TagsObject::stringTagsEqual(((*m_reference).*field.text)(), (record.*field.text)());
        m_differs.at(i) = m_differs.at(i) || !isEqual;
    }
}

} // namespace nurv

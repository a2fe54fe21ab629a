// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagsObject.h"

namespace nurv {

bool TagsObject::isEqual(const TagsObject *object) const
{
    if (object == this)
        return true;
    return object != nullptr && isEqualToTagsObject(*object);
}

bool TagsObject::isEqualToTagsObject(const TagsObject &record) const
{
    return stringTagsEqual(m_titleText, record.m_titleText) && stringTagsEqual(m_albumText, record.m_albumText)
           && stringTagsEqual(m_dateText, record.m_dateText) && stringTagsEqual(m_artistText, record.m_artistText)
           && stringTagsEqual(m_commentText, record.m_commentText) && stringTagsEqual(m_discText, record.m_discText)
           && stringTagsEqual(m_genreText, record.m_genreText) && stringTagsEqual(m_trackText, record.m_trackText)
           && stringTagsEqual(m_trackTotalText, record.m_trackTotalText)
           && stringTagsEqual(m_discTotalText, record.m_discTotalText)
           && stringTagsEqual(m_composerText, record.m_composerText) && m_albumArt == record.m_albumArt;
}

bool TagsObject::stringTagsEqual(const Text &string1, const Text &string2)
{
    return string1 == string2;
}

} // namespace nurv

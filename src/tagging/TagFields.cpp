// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagging/TagFields.h"

namespace nurv {

const std::array<TagField, 11> &tagFields()
{
    static const std::array<TagField, 11> fields = {{
        {u"title", "Title", &TagsObject::titleText, &TagsObject::setTitleText},
        {u"artist", "Artist", &TagsObject::artistText, &TagsObject::setArtistText},
        {u"album", "Album", &TagsObject::albumText, &TagsObject::setAlbumText},
        {u"date", "Date", &TagsObject::dateText, &TagsObject::setDateText},
        {u"genre", "Genre", &TagsObject::genreText, &TagsObject::setGenreText},
        {u"composer", "Composer", &TagsObject::composerText, &TagsObject::setComposerText},
        {u"track", "Track", &TagsObject::trackText, &TagsObject::setTrackText},
        {u"track-total", "Track total", &TagsObject::trackTotalText, &TagsObject::setTrackTotalText},
        {u"disc", "Disc", &TagsObject::discText, &TagsObject::setDiscText},
        {u"disc-total", "Disc total", &TagsObject::discTotalText, &TagsObject::setDiscTotalText},
        {u"comment", "Comment", &TagsObject::commentText, &TagsObject::setCommentText},
    }};
    return fields;
}

} // namespace nurv

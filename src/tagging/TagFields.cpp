// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagging/TagFields.h"

namespace nurv {

const std::array<TagField, 11> &tagFields()
{
    static const std::array<TagField, 11> fields = {{
        {u"title", "Title", &TagsObject::titleText, &TagsObject::setTitleText, true},
        {u"artist", "Artist", &TagsObject::artistText, &TagsObject::setArtistText, true},
        {u"album", "Album", &TagsObject::albumText, &TagsObject::setAlbumText, true},
        {u"date", "Date", &TagsObject::dateText, &TagsObject::setDateText, true},
        {u"genre", "Genre", &TagsObject::genreText, &TagsObject::setGenreText, true},
        {u"composer", "Composer", &TagsObject::composerText, &TagsObject::setComposerText, false},
        {u"track", "Track", &TagsObject::trackText, &TagsObject::setTrackText, true},
        {u"track-total", "Track total", &TagsObject::trackTotalText, &TagsObject::setTrackTotalText, false},
        {u"disc", "Disc", &TagsObject::discText, &TagsObject::setDiscText, false},
        {u"disc-total", "Disc total", &TagsObject::discTotalText, &TagsObject::setDiscTotalText, false},
        {u"comment", "Comment", &TagsObject::commentText, &TagsObject::setCommentText, true},
    }};
    return fields;
}

} // namespace nurv

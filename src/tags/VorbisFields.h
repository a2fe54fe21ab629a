// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace TagLib::FLAC {
class File;
}

namespace nurv {

class TagEditStream;

/// TagLib leaves fields of a Vorbis comment out whose bytes are no UTF-8, or that have no name
/// or one of other characters than the format takes, and a file that it saves has lost them. Throws NurvFailure when the FLAC file, which it has opened on this stream, has such a field; also when
/// its comment is damaged or cannot be read.
void refuseUnreadableFields(TagLib::FLAC::File &file, TagEditStream &stream);

} // namespace nurv

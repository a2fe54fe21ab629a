// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <tbytevector.h>

#include <optional>

namespace nurv {

/// Walks over the frames of an ID3v2 tag (2.2 to 2.4) as TagLib would, without making any.
///
/// TagLib inflates compressed frames whatever their size, takes any number of frames and follows
/// frames inside frames to any depth. So it gets no tag that was not looked at here: at most
/// `kMostFrames` frames, those inside of chapters included; at most `kMostInflated` bytes of all
/// compressed frames, counted by inflating them; no frame that claims more bytes than it has.
///
/// `header` are the 10 bytes of the tag's header, `contents` what follows them. Returns why the tag
/// is refused, as the end of a sentence; nothing when TagLib may have it. Any thread.
[[nodiscard]] std::optional<QString> reasonToRefuseId3v2(const TagLib::ByteVector &header,
                                                         const TagLib::ByteVector &contents);

/// TagLib ends its reading at the first frame with a name that is none, without contents, or with more than the tag has,
/// and a tag that it saves has lost what stands there and behind. Returns the name of that frame, made printable; nothing
/// when TagLib reads all frames up to the padding, or refuses the tag. Any thread.
[[nodiscard]] std::optional<QString> firstUnreadId3v2Frame(const TagLib::ByteVector &header,
                                                           const TagLib::ByteVector &contents);

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

class TagEditStream;

/// TagLib makes empty texts of the items of an APE tag (https://wiki.hydrogenaud.io/index.php?title=APEv2_specification) whose
/// bytes are no UTF-8, drops items with names that it does not take, and all but one of those with the same name: a file
/// that it saves has lost them. Throws NurvFailure when the file has such an item, at its end
/// or before an ID3v1 tag there; also when the tag is damaged or cannot be read.
void refuseUnreadableItems(TagEditStream &stream);

} // namespace nurv

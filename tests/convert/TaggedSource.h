// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/AudioFixtures.h"

#include <QString>

namespace nurv::test {

/// What the tags of such a file say, where its kind has any.
extern const QString kSourceTitle;
extern const QString kSourceArtist;

/// Makes a tagged file of that kind ("FLAC") by other programs than the conversion's own, but for
/// Shorten and Monkey's Audio, which only the bundled ones write.
void makeTaggedSource(const QString &path, const QString &kind, const SoundShape &shape);

} // namespace nurv::test

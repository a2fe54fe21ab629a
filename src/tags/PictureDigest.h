// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

namespace nurv {

/// A digest of the pixels of a picture, the same whatever file type and depth of colour they are
/// written in. Empty for what is no picture (albumArtFromBytes). Any thread.
[[nodiscard]] QByteArray pictureDigest(const QByteArray &picture);

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace nurv {

/// A digest of the coded sound of an audio file, the same for files that differ only in
/// tags and layout: of what the decoder needs to know, and of every packet of the first
/// track. Empty for what cannot be read. Blocks for the reading; decodes nothing.
[[nodiscard]] QByteArray audioPacketsDigest(const QString &path);

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/MetadataBytes.h"
#include "tags/MetadataCollector.h"

#include <QByteArray>

#include <cstdint>

namespace nurv::soundChunks {

// The chunks of WAV (RIFF, RF64, BW64) and AIFF files, in such files and where other
// files keep them, so that decoding brings the former file back.

/// Bytes that a file starts with tell its kind.
inline constexpr std::int64_t kFormSize = 12;

/// Whether these are the first bytes of a WAV or AIFF file.
[[nodiscard]] bool isForm(const QByteArray &bytes);

/// Reads the chunks of a WAV or AIFF file that starts at that place, and the tags behind them. A sound
/// without a stored length, or that is cut, reaches to the end of the file.
void readFile(const MetadataBytes &bytes, std::int64_t begin, MetadataCollector &found);

/// Reads the chunks of a WAV or AIFF file of which all but the sound was stored: what stood
/// before it, and what stood behind it, whose first bytes may be the rest of the sound that was no
/// whole frame. Other bytes than those of such a file are added as data without a name.
void readStored(const QByteArray &before, const QByteArray &behind, MetadataCollector &found);

/// Reads one stored chunk, or the start of a file, or the head of the sound.
void readOneStored(const QByteArray &chunk, bool isBigEndian, MetadataCollector &found);

} // namespace nurv::soundChunks

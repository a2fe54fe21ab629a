// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/MetadataBytes.h"
#include "tags/MetadataCollector.h"

#include <cstdint>

namespace nurv {

// What WavPack and Monkey's Audio files keep of the WAV or AIFF file that they were made of: all
// but its sound. The file starts at `begin` and ends where its tags start. Each throws
// NurvFailure when it is damaged there.

void readWavPackMetadata(const MetadataBytes &bytes, std::int64_t begin, std::int64_t end, MetadataCollector &found);
void readMonkeysAudioMetadata(const MetadataBytes &bytes, std::int64_t begin, std::int64_t end,
                              MetadataCollector &found);

} // namespace nurv

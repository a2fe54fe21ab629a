// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/AudioFixtures.h"

namespace nurv::test {

/// Samples of 24 bits, little-endian and interleaved, whose lower four bits are 0.
[[nodiscard]] QByteArray twentyBitSamples(int frames, int channels);

/// Writes those samples to an Apple Lossless file of 20 bits a sample, which no encoder here makes: packets that are
/// not compressed take the place of those of a file by ffmpeg. For a part of a second. Returns the path.
QString writeTwentyBitAppleLossless(const QString &path, int frames, int channels);

} // namespace nurv::test

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// What the levels of encoders mean, for people.
namespace nurv::levelWords {

/// "8 – smallest" for a compression level 0…8.
[[nodiscard]] QString flac(int level);
/// "2000 – normal" for 1000…5000 in thousands, by Monkey's Audio's own names.
[[nodiscard]] QString monkeysAudio(int level);
/// "2 – very good" for the VBR quality 0…9 of lame.
[[nodiscard]] QString mp3(int quality);

} // namespace nurv::levelWords

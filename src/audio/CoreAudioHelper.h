// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/AudioFormatObject.h"

#include <QString>

#include <optional>

namespace nurv {

/// Answers about an audio file's format, from its header. Whatever its name says,
/// the contents decide. Only regular files are opened, and nothing that a file
/// refers to. A file that cannot be opened or read gives false or nothing.
///
/// May be called from any thread; blocks for the reading of the header.
class CoreAudioHelper {
public:
    enum class SoundKind {
        AppleLossless,
        PlainIntegers, ///< the samples of AIFF and WAV files
        Other,
        None,        ///< no sound can be found in it
        NotReadable, ///< not with the rights that there are
    };

    /// What the header tells of the sound, by one look.
    [[nodiscard]] static SoundKind soundKind(const QString &path);
    [[nodiscard]] static bool isAppleLossless(const QString &path);
    [[nodiscard]] static bool isAiffOrWav(const QString &path);
    /// Signed little-endian linear PCM (so also AIFF-C 'sowt'), or the unsigned
    /// 8-bit samples of a WAV file.
    [[nodiscard]] static bool isWav(const QString &path);
    /// Signed big-endian linear PCM.
    [[nodiscard]] static bool isAiff(const QString &path);
    /// Bits per channel are 0 for formats without any, such as AAC.
    [[nodiscard]] static std::optional<AudioFormatObject> getFormatInfo(const QString &path);
};

} // namespace nurv

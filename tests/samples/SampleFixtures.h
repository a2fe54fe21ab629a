// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "samples/SampleStream.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <vector>

namespace nurv {

void PrintTo(const SampleFormat &format, std::ostream *out);

} // namespace nurv

namespace nurv::test {

/// What a stream delivered, and how it ended.
struct Decoded {
    SampleFormat format;
    std::optional<std::int64_t> declaredFrames;
    bool isLossless = false;
    std::vector<std::int32_t> samples;
    QString refusal;   ///< of the opening; empty: none
    QString complaint; ///< of the reading; empty: none

    [[nodiscard]] std::int64_t frames() const;
};

std::ostream &operator<<(std::ostream &out, const Decoded &decoded);

/// Reads to the end, that many frames at a time.
[[nodiscard]] Decoded decode(const QString &path, std::size_t framesPerRead = 5000);

/// The samples of `makeSamples` as streams give them.
[[nodiscard]] std::vector<std::int32_t> expectedSamples(const SoundShape &shape);

/// A file of that kind, made by another program of the machine or by a bundled one: wav,
/// wavx (WAVE_FORMAT_EXTENSIBLE), aiff, aifc, sowt, flac, flac-ffmpeg, wv, wv-ffmpeg, tta,
/// tta-ffmpeg, ape1000 to ape5000, shn, m4a. Returns its path.
QString makeSound(const TestFolder &folder, const QString &kind, const SoundShape &shape);

/// A bundled program.
[[nodiscard]] QString bundled(const QString &name);
/// Runs it and fails the test when it fails.
QByteArray runOrFail(const QString &program, const QStringList &arguments, const QByteArray &input = {});

[[nodiscard]] QByteArray little32(std::uint32_t value);
[[nodiscard]] QByteArray big32(std::uint32_t value);
/// A copy with those bytes at the offset.
[[nodiscard]] QByteArray patched(QByteArray bytes, qsizetype offset, const QByteArray &with);

} // namespace nurv::test

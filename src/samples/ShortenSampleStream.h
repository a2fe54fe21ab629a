// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "samples/ByteSource.h"
#include "samples/PcmHeader.h"
#include "samples/SampleStream.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace nurv {

/// The samples of a Shorten file.
///
/// The decoder is that of the bundled program. FFmpeg's passes over commands that it does
/// not know and does not tell whether the stream's end was reached, and the format has no
/// checksum that would show what is missing then.
class ShortenSampleStream final : public SampleStream {
public:
    /// Throws NurvFailure, also where no header of a WAV or AIFF file is stored: nothing else
    /// tells the sample rate.
    explicit ShortenSampleStream(std::unique_ptr<RegularFile> file);
    ~ShortenSampleStream() override;

    [[nodiscard]] static bool isAt(const ByteSource &source, std::int64_t start);

    [[nodiscard]] SampleFormat format() const override;
    /// After the header that is stored.
    [[nodiscard]] std::optional<std::int64_t> declaredFrames() const override;
    [[nodiscard]] bool isLossless() const override { return true; }
    [[nodiscard]] std::size_t read(std::int32_t *samples, std::size_t frames) override;
    [[nodiscard]] double progress() const override;

    /// The header of a WAV or AIFF file that a Shorten file stores in front of the samples;
    /// nothing when there is none in its first pieces.
    [[nodiscard]] static std::optional<PcmHeader> storedHeader(const RegularFile &file);

private:
    class Decoder;
    std::unique_ptr<Decoder> m_decoder;
};

} // namespace nurv

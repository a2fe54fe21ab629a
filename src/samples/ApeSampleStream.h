// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "samples/ByteSource.h"
#include "samples/SampleStream.h"

#include <cstdint>
#include <memory>

namespace nurv {

/// The samples of a Monkey's Audio file of today's version.
///
/// The decoder is that of the bundled program: FFmpeg's gives wrong samples for some right
/// files (24 bits, highest level), and looks neither at the MD5 of the file nor at what is
/// stored behind the sound. Each frame has the checksum of the samples that went into it,
/// so a right one was decoded rightly, whoever wrote it.
class ApeSampleStream final : public SampleStream {
public:
    static constexpr std::uint16_t kVersion = 3990;

    /// Throws NurvFailure.
    explicit ApeSampleStream(std::unique_ptr<RegularFile> file);
    ~ApeSampleStream() override;

    [[nodiscard]] SampleFormat format() const override;
    [[nodiscard]] std::optional<std::int64_t> declaredFrames() const override;
    [[nodiscard]] bool isLossless() const override { return true; }
    [[nodiscard]] std::size_t read(std::int32_t *samples, std::size_t frames) override;
    [[nodiscard]] double progress() const override;

private:
    class Decoder;
    std::unique_ptr<Decoder> m_decoder;
};

} // namespace nurv

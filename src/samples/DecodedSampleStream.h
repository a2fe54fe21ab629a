// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "samples/ByteSource.h"
#include "samples/SampleStream.h"

#include <cstdint>
#include <memory>

namespace nurv {

/// The samples of a file that FFmpeg's libraries decode: FLAC, WavPack, TTA, Apple
/// Lossless, Monkey's Audio of older versions, lossy formats.
///
///     file ──> demuxer ──> packets ──> decoder ──> blocks ──> samples
///       └────────────── DecodedSoundCheck ─────────────────────┘
class DecodedSampleStream final : public SampleStream {
public:
    /// `start`: of the file's own header. Throws NurvFailure.
    DecodedSampleStream(std::unique_ptr<RegularFile> file, std::int64_t start);
    ~DecodedSampleStream() override;

    [[nodiscard]] SampleFormat format() const override;
    [[nodiscard]] std::optional<std::int64_t> declaredFrames() const override;
    [[nodiscard]] bool isLossless() const override;
    [[nodiscard]] std::size_t read(std::int32_t *samples, std::size_t frames) override;
    [[nodiscard]] double progress() const override;

private:
    class Decoder;
    std::unique_ptr<Decoder> m_decoder;
};

} // namespace nurv

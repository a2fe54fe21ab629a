// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "samples/ByteSource.h"
#include "samples/PcmHeader.h"
#include "samples/SampleStream.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace nurv {

/// The samples of a WAV or AIFF file: its bytes, with no library in between.
class PcmSampleStream final : public SampleStream {
public:
    /// `start`: of the file's header. Throws NurvFailure as PcmHeader::read.
    PcmSampleStream(std::unique_ptr<RegularFile> file, std::int64_t start);

    [[nodiscard]] SampleFormat format() const override { return m_header.format; }
    [[nodiscard]] std::optional<std::int64_t> declaredFrames() const override { return m_header.declaredFrames; }
    [[nodiscard]] bool isLossless() const override { return true; }
    [[nodiscard]] std::size_t read(std::int32_t *samples, std::size_t frames) override;
    [[nodiscard]] double progress() const override;

private:
    void checkEnd() const;

    std::unique_ptr<RegularFile> m_file;
    PcmHeader m_header;
    std::int64_t m_framesRead = 0;
    std::vector<std::uint8_t> m_bytes;
};

} // namespace nurv

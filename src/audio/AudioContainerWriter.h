// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/AudioFileStatus.h"

#include <cstdint>

namespace nurv {

class AudioEncoder;

/// Writes one kind of audio file into a file that its user has opened. What is
/// written takes client samples: see audioSamples.
class AudioContainerWriter {
public:
    AudioContainerWriter() = default;
    virtual ~AudioContainerWriter() = default;
    AudioContainerWriter(const AudioContainerWriter &) = delete;
    AudioContainerWriter &operator=(const AudioContainerWriter &) = delete;

    /// Begins the file.
    [[nodiscard]] virtual AudioFileStatus begin() = 0;
    [[nodiscard]] virtual AudioFileStatus setClientFormat(const AudioStreamDescription &format) = 0;
    [[nodiscard]] virtual AudioFileStatus write(const std::uint8_t *client, std::uint32_t frames) = 0;
    /// Completes the file; without it, it is not readable in every case.
    [[nodiscard]] virtual AudioFileStatus finish() = 0;
    /// What encodes the samples; null when they are only copied.
    [[nodiscard]] virtual AudioEncoder *converter() { return nullptr; }
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dvda/DvdAudioFormat.h"
#include "support/ByteSink.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace nurv {

/// The sound of a WAV or FLAC file, once from its start to its end.
class PcmSource {
public:
    /// By what the file holds, whatever its name. Throws ToolError for a file of another kind, one that ends before its
    /// header says, and for sound that a disc cannot hold.
    [[nodiscard]] static std::unique_ptr<PcmSource> open(const std::string &name);

    virtual ~PcmSource() = default;
    PcmSource(const PcmSource &) = delete;
    PcmSource &operator=(const PcmSource &) = delete;

    [[nodiscard]] const DvdAudioFormat &format() const { return m_format; }
    /// What the header says, where it says something.
    [[nodiscard]] std::optional<uint64_t> promisedFrames() const { return m_promisedFrames; }

    /// Hands on all sample frames as a WAV file has them, in pieces of whole ones, and returns their number. Throws
    /// ToolError where that is not what the header says, or the file is damaged.
    [[nodiscard]] uint64_t decode(const ByteSink &pcm);

protected:
    explicit PcmSource(std::string name) : m_name(std::move(name)) {}

    /// Throws ToolError(UnsupportedFormat).
    void setFormat(const DvdAudioFormat &format, uint32_t channelMask);
    virtual void decodeAll(const ByteSink &pcm) = 0;

    std::string m_name;
    std::optional<uint64_t> m_promisedFrames;

private:
    DvdAudioFormat m_format;
};

} // namespace nurv

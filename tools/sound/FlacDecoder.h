// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "sound/SoundHash.h"
#include "support/InputFile.h"

#include <array>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nurv {

/// What a FLAC stream says of itself.
struct FlacStreamInfo {
    uint32_t sampleRateHz = 0;
    unsigned channels = 0;
    unsigned bitsPerSample = 0;
    uint64_t totalSamples = 0;     ///< of every channel; 0: not told
    uint32_t channelMask = 0;      ///< 0: not told
    std::array<uint8_t, 16> md5{}; ///< of the samples; zeros: not told
};

/// The library's decoder, one frame at a time.
class FlacDecoder {
public:
    /// Gets the PCM of a frame, and how many samples of every channel that are: interleaved, least significant byte
    /// first, in containers of whole bytes as a WAV file has them.
    using Sink = std::function<void(std::vector<uint8_t> &, unsigned)>;

    /// Reads the metadata. Throws ToolError.
    FlacDecoder(const std::string &name, Sink sink);
    ~FlacDecoder();
    FlacDecoder(const FlacDecoder &) = delete;
    FlacDecoder &operator=(const FlacDecoder &) = delete;

    [[nodiscard]] const FlacStreamInfo &info() const { return m_info; }

    /// Decodes the next frame, if there is one. Throws ToolError(Damaged), and what the sink throws.
    bool next();

    /// Before the first frame: the samples as they are coded, which need not be the bytes of a WAV file, shall have
    /// the MD5 that the stream names.
    void checkMd5();
    /// After the last frame. Throws ToolError(Damaged).
    void finish();

    [[noreturn]] void fail() const;

private:
    /// What the library calls.
    struct Calls;
    /// Owns what the library calls its decoder.
    class Handle;

    void takeFrame(const int32_t *const channels[], unsigned frames);
    void makePcm(const int32_t *const channels[], unsigned frames, unsigned shift, uint32_t offset);

    InputFile m_input;
    Sink m_sink;
    std::unique_ptr<Handle> m_decoder;
    FlacStreamInfo m_info;
    bool m_hasInfo = false;
    bool m_isDamaged = false;
    std::exception_ptr m_exception;
    std::vector<uint8_t> m_pcm;
    std::optional<SoundHash> m_hash;
};

} // namespace nurv

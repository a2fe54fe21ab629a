// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "sound/SoundHash.h"
#include "shntool/WaveInfo.h"

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace nurv {

class Progress;
class WaveFiles;
class WaveOutput;
class WaveSource;

/// One pass over an open file: its header, its data, what is behind that. It compares the MD5 that a file names for
/// its sound with what was read.
class WavePass {
public:
    /// Moved at a time, as the progress shows it.
    static constexpr size_t kTransferBytes = 262144;

    /// Opens the file and reads its header. Where that fails, or the header is not the one that was examined,
    /// `isOpen` says so.
    WavePass(const WaveFiles &files, const WaveInfo &info);
    /// A pass over a source whose header was read already.
    WavePass(std::unique_ptr<WaveSource> source, const WaveInfo &info);
    ~WavePass();
    WavePass(const WavePass &) = delete;
    WavePass &operator=(const WavePass &) = delete;

    [[nodiscard]] bool isOpen() const { return m_isOpen; }
    [[nodiscard]] const WaveInfo &info() const { return m_info; }

    /// Reads the next bytes behind the header; fewer than asked for at the end or at a fault.
    size_t read(std::span<uint8_t> bytes);

    /// Moves bytes to the output, or nowhere where that is null, and shows the progress of each piece. Returns
    /// whether all of them were there and were written.
    bool transfer(WaveOutput *output, uint64_t count, Progress *progress);

    /// Reads to the end of the source. Whether nothing was wrong with any of it: a fault of a decoder, a sum that
    /// does not match, a status.
    [[nodiscard]] bool finish();

    /// Whether the pass makes the MD5 of the data for itself.
    [[nodiscard]] bool hashesData() const { return m_expectedMd5.has_value(); }
    /// After all data was read: its MD5, where it was computed anyway.
    [[nodiscard]] const std::optional<std::array<uint8_t, 16>> &dataMd5() const { return m_dataMd5; }

private:
    void startHash();
    void addToHash(std::span<const uint8_t> bytes);

    WaveInfo m_info;
    std::unique_ptr<WaveSource> m_source;
    bool m_isOpen = false;
    uint64_t m_bytesRead = 0; ///< behind the header
    std::optional<SoundHash> m_hash;
    std::optional<std::array<uint8_t, 16>> m_expectedMd5;
    std::optional<std::array<uint8_t, 16>> m_dataMd5;
    std::vector<uint8_t> m_buffer;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "samples/JoinedSound.h"

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

namespace nurv {

/// Decodes one side on a thread of its own, a few blocks ahead of whoever compares them.
///
///     thread: read ──> [block][block][block] ──> run, advance: caller
///
/// The thread ends with the object at the latest, and is joined. Operations throw what
/// reading threw, when its place is reached.
class ReadAheadSound {
public:
    using IsUnwanted = std::function<bool()>;

    /// Thrown where the caller's question whether to give up was answered with yes.
    struct GivenUp {};

    ReadAheadSound(const QStringList &paths, JoinedSound::Side side, IsUnwanted isUnwanted);
    ~ReadAheadSound();
    ReadAheadSound(const ReadAheadSound &) = delete;
    ReadAheadSound &operator=(const ReadAheadSound &) = delete;

    [[nodiscard]] const SampleFormat &format() const { return m_format; }
    [[nodiscard]] std::size_t channels() const { return static_cast<std::size_t>(m_format.channels); }

    /// The next samples, as many as are there; waits for at least a frame. Empty at the end
    /// only. Good until the next call of an operation.
    [[nodiscard]] std::span<const std::int32_t> run();
    /// Passes over frames of the run.
    void advance(std::size_t frames);
    /// Passes over everything up to the end.
    void drain();

    /// Frames that were passed over.
    [[nodiscard]] std::int64_t position() const { return m_position; }
    /// From 0 to 1; of the widths, what the files up to here have.
    [[nodiscard]] double progress() const { return m_progress; }
    [[nodiscard]] int leastBits() const { return m_leastBits; }
    [[nodiscard]] int mostBits() const { return m_mostBits; }

private:
    struct Block {
        std::vector<std::int32_t> samples;
        std::size_t frames = 0; ///< 0: the end, or the failure
        double progress = 0.0;
        int leastBits = 0;
        int mostBits = 0;
        QString failure;
    };
    static constexpr std::size_t kBlocks = 4;

    void fill();
    bool fillBlock(Block &block);
    [[nodiscard]] Block *waitForBlock();

    JoinedSound m_sound;
    SampleFormat m_format;
    IsUnwanted m_isUnwanted;

    std::array<Block, kBlocks> m_blocks;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::size_t m_filled = 0; ///< blocks, counted from the start; of these,
    std::size_t m_taken = 0;  ///< so many are free again
    bool m_isStopped = false;

    std::size_t m_offset = 0; ///< frames of the current block
    std::int64_t m_position = 0;
    double m_progress = 0.0;
    int m_leastBits = 0;
    int m_mostBits = 0;
    std::thread m_thread;
};

} // namespace nurv

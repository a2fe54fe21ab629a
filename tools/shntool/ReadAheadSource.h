// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/WaveSource.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

namespace nurv {

/// Reads another source on a thread of its own, up to some blocks ahead of whoever reads this one, so that decoding
/// goes on while the sound is hashed or written.
///
///     decoder ── thread ──> | block | block | block | ──> read
///
class ReadAheadSource final : public WaveSource {
public:
    explicit ReadAheadSource(std::unique_ptr<WaveSource> source);
    /// Gives up what is not read yet.
    ~ReadAheadSource() override;

    [[nodiscard]] std::optional<std::array<uint8_t, 16>> soundMd5() const override { return m_soundMd5; }

protected:
    size_t readSome(std::span<uint8_t> bytes) override;

private:
    void run();
    [[nodiscard]] bool waitForRoom();
    void add(std::vector<uint8_t> block, bool isLast);

    std::unique_ptr<WaveSource> m_source; ///< of the thread
    std::optional<std::array<uint8_t, 16>> m_soundMd5;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::vector<uint8_t>> m_blocks;
    std::optional<std::string> m_fault;
    bool m_isComplete = false;
    bool m_isGivenUp = false;
    std::vector<uint8_t> m_block; ///< of the reader
    size_t m_taken = 0;
    std::thread m_thread;
};

} // namespace nurv

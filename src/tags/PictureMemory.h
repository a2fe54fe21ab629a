// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>

namespace nurv {

/// The memory that all pictures which are decoded at the same time may take together. Parallel jobs
/// wait for their shares:
///
///     head of the picture ──> share ──> decoded ──> share given back
///
/// A share is held while one picture is decoded and nothing else is waited for, so nobody waits for
/// somebody who waits. Any thread.
class PictureMemory {
public:
    /// One share, given back at the end of its life.
    class Share {
    public:
        explicit Share(std::int64_t bytes) : m_bytes(bytes) {}
        Share(Share &&other) noexcept;
        Share &operator=(Share &&) = delete;
        Share(const Share &) = delete;
        Share &operator=(const Share &) = delete;
        ~Share();

    private:
        std::int64_t m_bytes;
    };

    static constexpr std::int64_t kCapacity = std::int64_t{512} << 20;

    /// Waits until so many bytes are free; who asks for more than there are gets all.
    [[nodiscard]] static Share take(std::int64_t bytes);
    /// How many bytes are given out now.
    [[nodiscard]] static std::int64_t givenOut();

    /// For a process that shares the memory of another: from now on `take` asks this instead, which
    /// returns when the bytes may be used. To be called before anything is decoded.
    static void askElsewhere(std::function<void(std::int64_t bytes)> ask);
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nurv {

/// Gives a WAV file from its start to its end, whatever the format it comes from. One object is one pass.
///
///     header ─> read ─> samples ─> read ─> chunks behind them ─> finish
///
class WaveSource {
public:
    WaveSource() = default;
    virtual ~WaveSource() = default;
    WaveSource(const WaveSource &) = delete;
    WaveSource &operator=(const WaveSource &) = delete;

    /// Reads up to `bytes.size()` bytes and returns their number: fewer than asked for at the end, or at a
    /// fault, which `finish` tells. Blocks.
    size_t read(std::span<uint8_t> bytes);

    /// Passes over that many bytes; returns how many there were.
    uint64_t skip(uint64_t count);

    /// Reads what is left and returns whether all of the source was good. A checksum over everything, or the
    /// status that a decoder ends with, is known only now.
    bool finish();

    /// The MD5 that the source names for the bytes of its data chunk, and leaves it to the reader to compare.
    /// Nothing where it names none, or compares by itself.
    [[nodiscard]] virtual std::optional<std::array<uint8_t, 16>> soundMd5() const { return std::nullopt; }

    /// Why the source ended early; nothing where it did not.
    [[nodiscard]] const std::optional<std::string> &failure() const { return m_failure; }

protected:
    /// Reads at least one byte, or returns 0 at the end. Throws whatever is derived from std::exception where the
    /// source is damaged.
    virtual size_t readSome(std::span<uint8_t> bytes) = 0;

private:
    std::optional<std::string> m_failure;
    bool m_isAtEnd = false;
};

/// A source that is made in pieces of its own size.
class PieceSource : public WaveSource {
protected:
    /// Makes the next piece with `give`, or returns false at the end. A call may give nothing.
    virtual bool makePiece() = 0;
    void give(std::span<const uint8_t> bytes);
    /// The same without a copy where nothing waits; what `bytes` hold then is of no use.
    void giveAll(std::vector<uint8_t> &bytes);

    size_t readSome(std::span<uint8_t> bytes) final;

private:
    std::vector<uint8_t> m_piece;
    size_t m_taken = 0;
    std::exception_ptr m_fault; ///< thrown once all in front of it is read
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/Mode.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nurv {

class Progress;
class WavePass;
struct WaveInfo;

/// Compares the data of two files, in place or moved against each other.
class CmpMode final : public Mode {
public:
    using Mode::Mode;

    void takeOption(char option, const char *value) override;
    int execute() override;

private:
    /// What one file has more in front than the other.
    struct Shift {
        uint64_t first = 0;
        uint64_t second = 0;
    };

    [[nodiscard]] Shift findShift(const WaveInfo &first, const WaveInfo &second) const;
    void tellShift(const WaveInfo &first, const Shift &shift) const;
    [[nodiscard]] std::vector<uint8_t> readFront(const WaveInfo &info) const;
    [[nodiscard]] bool areEqual(std::span<const uint8_t> one, std::span<const uint8_t> other) const;
    [[nodiscard]] bool compare(const WaveInfo &first, const WaveInfo &second, const Shift &shift) const;
    [[nodiscard]] bool comparePieces(std::span<const uint8_t> one, std::span<const uint8_t> other, uint64_t offset,
                                     bool hasDiffered, Progress &progress) const;
    [[nodiscard]] size_t bufferBytes(const WaveInfo &info) const;

    bool m_findsShift = false;
    bool m_listsBytes = false;
    int m_seconds = 3;
    std::optional<int> m_fuzz;
};

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/Mode.h"

#include <cstdint>
#include <string>

namespace nurv {

struct WaveInfo;

/// Tells length, size and properties of files, a line each, and totals.
class LenMode final : public Mode {
public:
    using Mode::Mode;

    void takeOption(char option, const char *value) override;
    int execute() override;

private:
    /// The unit of sizes, as a power of 1024.
    struct Unit {
        const char *name;
        unsigned power;
    };

    /// Of all files.
    struct Totals {
        bool areAllCdQuality = true;
        uint64_t dataBytes = 0;
        double seconds = 0;
        uint64_t totalBytes = 0;
        uint64_t actualBytes = 0;
        unsigned files = 0;
    };

    [[nodiscard]] Unit unitNamed(const char *name, const char *what) const;
    [[nodiscard]] static std::string sizeText(uint64_t bytes, Unit unit);
    void show(const WaveInfo &info) const;
    void add(const WaveInfo &info);
    void showTotals() const;

    Unit m_fileUnit{.name = "B ", .power = 0};
    Unit m_totalUnit{.name = "B ", .power = 0};
    bool m_hidesNames = false;
    bool m_hidesTotals = false;
    Totals m_totals;
};

} // namespace nurv

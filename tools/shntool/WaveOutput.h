// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace nurv {

/// Takes a WAV file from its start to its end and makes a file of it, in whatever format. Nothing has the name of the
/// file before `commit`, and nothing stays of an output that was given up.
class WaveOutput {
public:
    WaveOutput() = default;
    virtual ~WaveOutput() = default;
    WaveOutput(const WaveOutput &) = delete;
    WaveOutput &operator=(const WaveOutput &) = delete;

    /// Returns whether they were taken; the output is lost where they were not. Blocks.
    [[nodiscard]] virtual bool write(std::span<const uint8_t> bytes) = 0;

    /// Completes the file, still without its name: what can fail has failed by then. Returns whether that worked.
    /// Blocks.
    [[nodiscard]] virtual bool complete() { return true; }

    /// After `complete`: gives the file its name, in place of what had it. Returns whether that worked. Blocks.
    [[nodiscard]] virtual bool commit() = 0;

    /// What is to be told of an output that did not come about; empty: nothing more than has been told. Never empty
    /// where `complete` did not work.
    [[nodiscard]] virtual std::string complaint() { return {}; }
};

} // namespace nurv

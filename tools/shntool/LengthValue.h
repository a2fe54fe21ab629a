// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace nurv {

class RunMessages;
struct WaveHeader;

/// A length or a place as people give it: "bytes", "m:ss", "m:ss.ff" or "m:ss.nnn".
struct LengthValue {
    uint64_t minutes = 0;
    uint64_t seconds = 0;
    uint64_t parts = 0; ///< frames or milliseconds
    enum class Unit { Bytes, Seconds, Frames, Milliseconds } unit = Unit::Bytes;
    uint64_t bytes = 0; ///< of the unit Bytes

    /// Why a text is none of these.
    struct Fault {
        std::string text;
    };

    /// Throws Fault.
    [[nodiscard]] static LengthValue parse(const std::string &text);

    /// In bytes of that sound. Frames are 75 a second of any sound. Milliseconds are rounded to the nearest sector where the sound has the quality of a
    /// CD, and a warning says so; elsewhere both end on whole sample frames.
    [[nodiscard]] uint64_t inBytes(const WaveHeader &header, const RunMessages &messages) const;
};

/// The same in one step. Ends the run for a text that is none.
[[nodiscard]] LengthValue parseLength(const std::string &text, const RunMessages &messages);

} // namespace nurv

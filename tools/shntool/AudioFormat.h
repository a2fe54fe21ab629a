// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace nurv {

/// One of the formats that the program knows by name: how its files are told, and what reads and writes
/// them. Empty texts mean "none".
struct AudioFormat {
    /// Who does a job: nobody, this program itself, or a program that is started for it.
    enum class By { Nobody, Itself, Program };

    std::string_view name = {};
    std::string_view extension = {};   ///< of the files, without a dot
    std::string_view description = {}; ///< for the list of formats
    By reads = By::Nobody;
    By writes = By::Nobody;
    std::string_view decoder = {};          ///< the program, as -i names it
    std::string_view decoderArguments = {}; ///< with %f for the file
    std::string_view encoder = {};
    std::string_view encoderArguments = {};
    bool isCompressed = false;
    std::string_view magic = {}; ///< what a file begins with
    size_t magicOffset = 0;

    /// Whether a file of this format holds a WAV file byte for byte, so that its size tells what is missing.
    [[nodiscard]] bool isWave() const { return name == "wav"; }
};

/// All formats, in the order in which a file is tried.
[[nodiscard]] std::span<const AudioFormat> audioFormats();

/// The format of that name; null where there is none.
[[nodiscard]] const AudioFormat *audioFormatNamed(std::string_view name);

/// The format that a file with these first bytes has; null where none is known. WAV and AIFF files are told by
/// their first word alone.
[[nodiscard]] const AudioFormat *audioFormatOf(std::span<const uint8_t> firstBytes);

/// Enough first bytes for `audioFormatOf`.
inline constexpr size_t kMagicBytes = 12;

} // namespace nurv

// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace nurv {

class InputFile;
class OutputFile;

/// Called as the work goes on. `total` is 0 where it is not known.
using TtaProgress = std::function<void(uint64_t done, uint64_t total)>;

/// Whether the input, just opened, begins as a WAV file. Takes nothing of it.
[[nodiscard]] bool looksLikeWave(InputFile &input);

/// Encodes a WAV file from its start; what is not sound is dropped. The caller commits
/// the output. Throws ToolError, naming the input, and ClosedPipe.
void encodeWaveToTta(InputFile &input, OutputFile &output, const TtaProgress &progress);

/// Decodes a TTA1 file to a canonical WAV file, frame by frame as they come. Stops at the
/// first damaged frame, before any of its samples. Throws as above.
void decodeTtaToWave(InputFile &input, OutputFile &output, const TtaProgress &progress);

/// Decodes all frames, damaged ones too. Returns an empty text when all are good, or what
/// is damaged. Throws ToolError where that cannot be told frame by frame.
[[nodiscard]] std::string testTta(InputFile &input, const TtaProgress &progress);

} // namespace nurv

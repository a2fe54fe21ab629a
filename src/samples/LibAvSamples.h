// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

struct AVFrame;

namespace nurv::libAvSamples {

/// The samples of a decoded block as SampleStream gives them: interleaved, integers in the
/// high bits, floats as their bit patterns. False for 64-bit kinds.
[[nodiscard]] bool interleave(const AVFrame &block, std::vector<std::int32_t> &samples);

} // namespace nurv::libAvSamples
